// SIGINT and SIGTERM end the program the orderly way: they quit the event
// loop, and the normal teardown runs after it.
#pragma once

#include <QObject>

class QSocketNotifier;

namespace orv {

class QuitSignals : public QObject {
    Q_OBJECT
public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;

signals:
    void QuitRequested();

private:
    QSocketNotifier* notifier_ = nullptr;
};

}  // namespace orv

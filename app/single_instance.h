// One running program per user. The first start holds a lock file and listens
// on a local socket named after the main window's title; a later start finds
// the lock taken, tells the first over the socket to come to the front and
// ends without a window.
#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class QLocalServer;
class QLocalSocket;

namespace orv {

struct SingleInstanceTiming {
    // How long a later start keeps trying to reach the first, which may still
    // be between taking the lock and listening.
    std::chrono::milliseconds reachFirst{3000};
};

class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(const QString& windowTitle = QStringLiteral("OrvaneWin"),
                            SingleInstanceTiming timing = {}, QObject* parent = nullptr);
    ~SingleInstance() override;

    // True: this is the first instance and now listens for later starts.
    // False: another instance runs (it was asked to come to the front); end.
    bool Claim();

    // The socket's full path: the per-user runtime folder and the title.
    const QString& ServerName() const { return serverName_; }

signals:
    // A later start asked this instance to come to the front.
    void ActivationRequested();

private:
    void Listen();
    bool AskFirstToActivate();
    void OnConnection();
    void OnMessage(QLocalSocket* socket);

    QString serverName_;
    SingleInstanceTiming timing_;
    QLockFile lock_;
    std::unique_ptr<QLocalServer> server_;
};

}  // namespace orv

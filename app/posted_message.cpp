#include "app/posted_message.h"

#include <QCoreApplication>

namespace orv {

QEvent::Type PostedMessage::Type() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void PostMessageTo(QObject* target, uint32_t message, intptr_t wParam, intptr_t lParam) {
    QCoreApplication::postEvent(target, new PostedMessage(message, wParam, lParam));
}

}  // namespace orv

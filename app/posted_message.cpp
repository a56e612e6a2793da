#include "app/posted_message.h"

#include <QCoreApplication>

namespace orv {

QEvent::Type PostedMessage::Type() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

PostedMessage::PostedMessage(uint32_t id, intptr_t first, intptr_t second) : QEvent(Type()) {
    std::lock_guard<std::mutex> lock(handOver_);
    message_ = id;
    wParam_ = first;
    lParam_ = second;
}

uint32_t PostedMessage::Message() const {
    std::lock_guard<std::mutex> lock(handOver_);
    return message_;
}

intptr_t PostedMessage::WParam() const {
    std::lock_guard<std::mutex> lock(handOver_);
    return wParam_;
}

intptr_t PostedMessage::LParam() const {
    std::lock_guard<std::mutex> lock(handOver_);
    return lParam_;
}

void PostMessageTo(QObject* target, uint32_t message, intptr_t wParam, intptr_t lParam) {
    QCoreApplication::postEvent(target, new PostedMessage(message, wParam, lParam));
}

}  // namespace orv

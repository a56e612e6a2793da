// Window messages posted to the main dialog. Worker threads reach the dialog
// only this way; the dialog handles them on its own thread.
#pragma once

#include <QEvent>
#include <cstdint>
#include <mutex>

class QObject;

namespace orv {

enum : uint32_t {
    WM_ORV_E6_STATE = 0x401,      // second parameter 1 when the simulator is connected
    WM_ORV_ORVANE_STATE = 0x402,  // second parameter the sensor state 0..3
    WM_ORV_BATTERY = 0x403,       // second parameter the battery percentage
    WM_ORV_EXIT = 0x404,          // the user confirmed quitting
    WM_ORV_EXIT_DONE = 0x405,     // the session is torn down
    WM_ORV_SHOT = 0x406,          // a shot went out: show its figures
    WM_SIMULATOR_CLUB = 0x7EA,    // the control asks for a club change; second parameter the club
};

class PostedMessage : public QEvent {
public:
    static QEvent::Type Type();

    PostedMessage(uint32_t id, intptr_t first, intptr_t second);

    uint32_t Message() const;
    intptr_t WParam() const;
    intptr_t LParam() const;

private:
    // Publishes the fields to the receiving thread in a way the thread
    // sanitizer sees: Qt's own queue lock lives in an uninstrumented library.
    mutable std::mutex handOver_;
    uint32_t message_;
    intptr_t wParam_;
    intptr_t lParam_;
};

// Safe from any thread; the receiver handles it in its event loop.
void PostMessageTo(QObject* target, uint32_t message, intptr_t wParam, intptr_t lParam);

}  // namespace orv

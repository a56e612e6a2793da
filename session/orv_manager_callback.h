#pragma once

namespace Orvane {

// The user interface's side of the session. Called on worker threads: an
// implementation only posts to its own thread.
class OrvManagerCallback {
public:
    virtual ~OrvManagerCallback() = default;
    virtual void OnOrvE6ConnectionChanged(bool connected) = 0;
    // 0 disconnected, 1 scanning, 2 connecting, 3 connected (after the firmware version).
    virtual void OnOrvOrvaneConnectionChanged(int state) = 0;
    virtual void OnOrvOrvaneBatteryState(int percent) = 0;
    virtual void OnOrvShot() = 0;
    virtual void OnOrvReady() = 0;
};

}  // namespace Orvane

// A private dbus-daemon with a system-like configuration that allows
// everything and activates nothing. While it lives, DBUS_SYSTEM_BUS_ADDRESS
// points this process at it, so every D-Bus client here takes it for the
// system bus. The daemon is killed with the object, and with the process.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "tests/support/test_support.h"

namespace orv::test {

class PrivateSystemBus {
public:
    PrivateSystemBus();
    ~PrivateSystemBus();
    PrivateSystemBus(const PrivateSystemBus&) = delete;
    PrivateSystemBus& operator=(const PrivateSystemBus&) = delete;

    bool ok() const { return pid_ > 0 && !address_.empty(); }
    // Ends the daemon now (the bus disappears under its clients).
    void Kill();

private:
    TempDir dir_;
    pid_t pid_ = -1;
    std::string address_;
    std::optional<std::string> previousAddress_;
};

}  // namespace orv::test

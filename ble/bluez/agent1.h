// Our org.bluez.Agent1 object: bluetoothd asks it for pairing answers. Each
// request is answered later through its reply function, from any thread, so
// the bus thread never waits for the answer.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ble/ble_stack.h"

namespace bluez {

class Agent1 {
public:
    struct Request {
        enum class Kind { Passkey, PinCode, Confirmation, Notice };
        Kind kind = Kind::Notice;
        BlePairingNotice notice = BlePairingNotice::Authorization;  // for Kind::Notice
        std::string device;                                         // object path
        uint32_t number = 0;                                        // to compare
    };
    // Not accepted: org.bluez.Error.Rejected.
    struct Answer {
        bool accepted = false;
        uint32_t passkey = 0;
        std::string pin;
    };
    using Reply = std::function<void(const Answer&)>;
    using Handler = std::function<void(const Request&, Reply)>;

    static constexpr const char* kPath = "/org/orvane/agent";
    static constexpr const char* kCapability = "KeyboardDisplay";

    Agent1(sdbus::IConnection& connection, Handler handler);
    ~Agent1();
    Agent1(const Agent1&) = delete;
    Agent1& operator=(const Agent1&) = delete;

private:
    void Register();
    // Hands `request` to the handler; `send` gives an accepted answer.
    template <typename Result, typename Send>
    void Ask(Result&& result, Request request, Send send);

    Handler handler_;
    std::unique_ptr<sdbus::IObject> object_;
};

}  // namespace bluez

// Our org.bluez.Agent1 object: bluetoothd asks it for pairing answers. Each
// request is answered later through its reply function, from any thread, so
// the bus thread never waits for the answer.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace bluez {

class Agent1 {
public:
    // An empty answer rejects the request.
    template <typename T>
    using Reply = std::function<void(std::optional<T>)>;

    struct Handlers {
        std::function<void(const std::string& device, Reply<uint32_t> reply)> requestPasskey;
        std::function<void(const std::string& device, Reply<std::string> reply)> requestPinCode;
        std::function<void(const std::string& device, uint32_t passkey, Reply<bool> reply)>
            requestConfirmation;
    };

    static constexpr const char* kPath = "/org/orvane/agent";
    static constexpr const char* kCapability = "KeyboardDisplay";

    Agent1(sdbus::IConnection& connection, Handlers handlers);
    ~Agent1();
    Agent1(const Agent1&) = delete;
    Agent1& operator=(const Agent1&) = delete;

private:
    void Register();

    Handlers handlers_;
    std::unique_ptr<sdbus::IObject> object_;
};

}  // namespace bluez

// Arbitrary bytes as received from the simulator: cut into messages at the
// zero bytes and handled, and handled whole. Input that is JSON is also
// handled under every message type the client knows, placed in each member
// that type reads, so the handlers meet arbitrary values.
#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "simulator/e6_trusim_client.h"
#include "simulator/trusim_framer.h"

namespace {

class QuietListener : public E6TruSimClientCallback {
public:
    void OnConnect() override {}
    void OnDisconnect() override {}
    void OnE6Auth(bool) override {}
    void OnE6PlayerData(E6PlayerData) override {}
    void OnE6EnvironmentData(E6EnvironmentData) override {}
    void OnE6ArmState(int) override {}
    void OnE6Warning(std::string) override {}
};

constexpr const char* kTypes[] = {"Handshake", "Authentication", "DataModified", "SimCommand",
                                  "ACK",       "Warning",        "Pong",         "End"};
constexpr const char* kMembers[] = {"Challenge", "Success",        "PlayerData", "EnvironmentData",
                                    "Command",   "SetDataIgnored", "ShotFailed", "OutOfRange"};

void HandleUnderEveryType(E6TruSimClient& client, const nlohmann::json& value) {
    for (const char* type : kTypes) {
        nlohmann::json message = value.is_object() ? value : nlohmann::json::object();
        if (!value.is_object()) {
            for (const char* member : kMembers) {
                message[member] = value;
            }
        }
        message["Type"] = type;
        client.HandleRecvMsg(
            message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static QuietListener listener;
    // Never started: no connection, but every handler and notification runs.
    // Its end waits for the notification threads the input started.
    E6TruSimClient client;
    client.SetCallback(&listener);
    const char* bytes = reinterpret_cast<const char*>(data);

    client.HandleRecvMsg(std::string(bytes, size));
    TruSimFramer framer;
    framer.Feed(bytes, size, [&client](std::string text) {
        client.HandleRecvMsg(text);
        return true;
    });

    const nlohmann::json value = nlohmann::json::parse(bytes, bytes + size, nullptr, false);
    if (!value.is_discarded()) {
        HandleUnderEveryType(client, value);
    }
    return 0;
}

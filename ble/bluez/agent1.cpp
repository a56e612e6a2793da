#include "ble/bluez/agent1.h"

#include "ble/bluez/bluez_names.h"
#include "ble/bluez/dbus_value.h"
#include "common/debug_log.h"

namespace bluez {

namespace {

// Sends the answer, or org.bluez.Error.Rejected when it is refused.
template <typename Pending, typename Send>
void Answer(const Pending& pending, bool accepted, Send send) {
    try {
        if (accepted) {
            send();
        } else {
            pending->returnError(sdbus::Error("org.bluez.Error.Rejected", "Rejected"));
        }
    } catch (const sdbus::Error& error) {
        LOG_DBUS_FAILURE("Agent1 reply", error);
    }
}

// A pending method reply that can travel through copyable callbacks.
template <typename T>
Agent1::Reply<T> ReplyTo(sdbus::Result<T>&& result) {
    auto pending = std::make_shared<sdbus::Result<T>>(std::move(result));
    return [pending](std::optional<T> answer) {
        Answer(pending, answer.has_value(), [&] { pending->returnResults(*answer); });
    };
}

}  // namespace

Agent1::Agent1(sdbus::IConnection& connection, Handlers handlers)
    : handlers_(std::move(handlers)), object_(sdbus::createObject(connection, kPath)) {
    Register();
}

Agent1::~Agent1() {
    object_.reset();
}

void Agent1::Register() {
    object_->registerMethod("RequestPasskey")
        .onInterface(kAgentInterface)
        .implementedAs([this](sdbus::Result<uint32_t>&& result, sdbus::ObjectPath device) {
            auto reply = ReplyTo(std::move(result));
            handlers_.requestPasskey ? handlers_.requestPasskey(device, reply) : reply({});
        });
    object_->registerMethod("RequestPinCode")
        .onInterface(kAgentInterface)
        .implementedAs([this](sdbus::Result<std::string>&& result, sdbus::ObjectPath device) {
            auto reply = ReplyTo(std::move(result));
            handlers_.requestPinCode ? handlers_.requestPinCode(device, reply) : reply({});
        });
    object_->registerMethod("RequestConfirmation")
        .onInterface(kAgentInterface)
        .implementedAs([this](sdbus::Result<>&& result, sdbus::ObjectPath device,
                              uint32_t passkey) {
            auto pending = std::make_shared<sdbus::Result<>>(std::move(result));
            Reply<bool> reply = [pending](std::optional<bool> accept) {
                Answer(pending, accept.value_or(false), [&] { pending->returnResults(); });
            };
            handlers_.requestConfirmation ? handlers_.requestConfirmation(device, passkey, reply)
                                          : reply({});
        });
    // Authorisations are granted; displays and the end of the agent's life
    // need no answer beyond the empty reply.
    object_->registerMethod("RequestAuthorization")
        .onInterface(kAgentInterface)
        .implementedAs([](sdbus::ObjectPath) {});
    object_->registerMethod("AuthorizeService")
        .onInterface(kAgentInterface)
        .implementedAs([](sdbus::ObjectPath, std::string) {});
    object_->registerMethod("DisplayPasskey")
        .onInterface(kAgentInterface)
        .implementedAs([](sdbus::ObjectPath, uint32_t, uint16_t) {});
    object_->registerMethod("DisplayPinCode")
        .onInterface(kAgentInterface)
        .implementedAs([](sdbus::ObjectPath, std::string) {});
    object_->registerMethod("Cancel").onInterface(kAgentInterface).implementedAs([] {});
    object_->registerMethod("Release").onInterface(kAgentInterface).implementedAs([] {});
    object_->finishRegistration();
}

}  // namespace bluez

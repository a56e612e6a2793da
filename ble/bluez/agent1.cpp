#include "ble/bluez/agent1.h"

#include "ble/bluez/bluez_names.h"
#include "ble/bluez/dbus_value.h"
#include "common/debug_log.h"

namespace bluez {

Agent1::Agent1(sdbus::IConnection& connection, Handler handler)
    : handler_(std::move(handler)), object_(sdbus::createObject(connection, kPath)) {
    Register();
}

Agent1::~Agent1() {
    object_.reset();
}

template <typename Result, typename Send>
void Agent1::Ask(Result&& result, Request request, Send send) {
    // A pending method reply that can travel through copyable callbacks.
    auto pending = std::make_shared<Result>(std::move(result));
    Reply reply = [pending, send](const Answer& answer) {
        try {
            if (answer.accepted) {
                send(*pending, answer);
            } else {
                pending->returnError(sdbus::Error("org.bluez.Error.Rejected", "Rejected"));
            }
        } catch (const sdbus::Error& error) {
            LOG_DBUS_FAILURE("Agent1 reply", error);
        }
    };
    handler_ ? handler_(request, reply) : reply({});
}

void Agent1::Register() {
    using Kind = Request::Kind;
    const auto empty = [](sdbus::Result<>& result, const Answer&) { result.returnResults(); };
    const auto notice = [this, empty](sdbus::Result<>&& result, const sdbus::ObjectPath& device,
                                      BlePairingNotice what) {
        Ask(std::move(result), {Kind::Notice, what, device}, empty);
    };
    object_->registerMethod("RequestPasskey")
        .onInterface(kAgentInterface)
        .implementedAs([this](sdbus::Result<uint32_t>&& result, sdbus::ObjectPath device) {
            Ask(std::move(result), {Kind::Passkey, {}, device},
                [](auto& pending, const Answer& answer) { pending.returnResults(answer.passkey); });
        });
    object_->registerMethod("RequestPinCode")
        .onInterface(kAgentInterface)
        .implementedAs([this](sdbus::Result<std::string>&& result, sdbus::ObjectPath device) {
            Ask(std::move(result), {Kind::PinCode, {}, device},
                [](auto& pending, const Answer& answer) { pending.returnResults(answer.pin); });
        });
    object_->registerMethod("RequestConfirmation")
        .onInterface(kAgentInterface)
        .implementedAs(
            [this, empty](sdbus::Result<>&& result, sdbus::ObjectPath device, uint32_t passkey) {
                Ask(std::move(result), {Kind::Confirmation, {}, device, passkey}, empty);
            });
    object_->registerMethod("RequestAuthorization")
        .onInterface(kAgentInterface)
        .implementedAs([notice](sdbus::Result<>&& result, sdbus::ObjectPath device) {
            notice(std::move(result), device, BlePairingNotice::Authorization);
        });
    object_->registerMethod("AuthorizeService")
        .onInterface(kAgentInterface)
        .implementedAs([notice](sdbus::Result<>&& result, sdbus::ObjectPath device, std::string) {
            notice(std::move(result), device, BlePairingNotice::ServiceAuthorization);
        });
    object_->registerMethod("DisplayPasskey")
        .onInterface(kAgentInterface)
        .implementedAs(
            [notice](sdbus::Result<>&& result, sdbus::ObjectPath device, uint32_t, uint16_t) {
                notice(std::move(result), device, BlePairingNotice::PasskeyShown);
            });
    object_->registerMethod("DisplayPinCode")
        .onInterface(kAgentInterface)
        .implementedAs([notice](sdbus::Result<>&& result, sdbus::ObjectPath device, std::string) {
            notice(std::move(result), device, BlePairingNotice::PinShown);
        });
    // The end of a request or of the agent's life needs no answer beyond the
    // empty reply.
    object_->registerMethod("Cancel").onInterface(kAgentInterface).implementedAs([] {});
    object_->registerMethod("Release").onInterface(kAgentInterface).implementedAs([] {});
    object_->finishRegistration();
}

}  // namespace bluez

// How the client reacts to each message type the simulator sends.
#include <nlohmann/json.hpp>

#include "common/clock.h"
#include "common/debug_log.h"
#include "simulator/e6_trusim_client.h"
#include "simulator/hash_text.h"
#include "simulator/trusim_credentials.h"
#include "simulator/trusim_messages.h"

using nlohmann::json;

bool E6TruSimClient::HandleRecvMsg(const std::string& text) {
    PrintRaw("[E6] << %s\n", text.c_str());
    try {
        const json message = json::parse(text);
        if (!message.contains("Type")) {
            return false;
        }
        const std::string type = message.at("Type").get<std::string>();
        if (type == "Handshake") {
            return HandleHandshake(message);
        }
        if (type == "Authentication") {
            return HandleAuth(message);
        }
        if (type == "DataModified") {
            return HandleDataModified(message);
        }
        if (type == "SimCommand") {
            return HandleSimCommand(message);
        }
        if (type == "ACK") {
            return true;
        }
        if (type == "Warning") {
            return HandleWarning(message);
        }
        if (type == "Pong") {
            return true;  // the answer to the session's "Ping"
        }
        if (type == "End") {
            Disconnect();  // the connection loop comes back a second later
            return true;
        }
        return false;
    } catch (const std::exception& e) {
        LOG_ERROR("Error:%s\n", e.what());
        return true;  // reported and dropped
    }
}

bool E6TruSimClient::HandleHandshake(const json& message) {
    // The challenge is hashed exactly as received: no trimming, no re-encoding.
    const std::string keyed = message.at("Challenge").get<std::string>() + kE6SecretKey;
    const std::string hash = GetHashText(keyed.data(), keyed.size(), 1);
    return SendTruSimMessage(E6_GetChallengeJson(kE6DeveloperId, hash));
}

bool E6TruSimClient::HandleAuth(const json& message) {
    const bool success = ReadE6Truth(message.at("Success"));
    if (success) {
        armState_.store(kArmed);
    } else {
        // The link stays open and nothing is retried.
        LOG_INFO("Auth failed.\n");
    }
    authenticated_.store(success);
    Notify([success](E6TruSimClientCallback& listener) { listener.OnE6Auth(success); });
    return true;
}

bool E6TruSimClient::HandleDataModified(const json& message) {
    if (message.contains("PlayerData")) {
        HandlePlayerData(message.at("PlayerData"));
    }
    if (message.contains("EnvironmentData")) {
        HandleEnvironmentData(message.at("EnvironmentData"));
    }
    return true;
}

void E6TruSimClient::HandlePlayerData(const json& object) {
    E6TruSimClientCallback* listener = listener_.load();
    if (listener == nullptr) {
        return;
    }
    try {
        const E6PlayerData data = ReadE6PlayerData(object);
        currentClub_.store(data.club);
        // On this thread, before the next message is read.
        listener->OnE6PlayerData(data);
    } catch (const std::exception& e) {
        LOG_ERROR("Error:%s\n", e.what());
    }
}

void E6TruSimClient::HandleEnvironmentData(const json& object) {
    if (listener_.load() == nullptr) {
        return;
    }
    try {
        const E6EnvironmentData data = ReadE6EnvironmentData(object);
        const int64_t now = WallClockMs();
        // The time is kept even when nothing is passed on, so a stream of
        // messages less than the throttle apart is passed on only once.
        if (now - lastEnvironmentMs_ > Timing().environmentThrottle.count()) {
            Notify(
                [data](E6TruSimClientCallback& listener) { listener.OnE6EnvironmentData(data); });
        }
        distanceToPin_.store(data.DistanceToPin);
        {
            const std::lock_guard<std::mutex> lock(stateMutex_);
            surfaceCategory_ = data.SurfaceCAT;
            ballPosition_ = data.BallPosition;
        }
        lastEnvironmentMs_ = now;
    } catch (const std::exception& e) {
        LOG_ERROR("Error:%s\n", e.what());
    }
}

bool E6TruSimClient::HandleSimCommand(const json& message) {
    if (!message.contains("Command")) {
        return true;
    }
    const std::string command = message.at("Command").get<std::string>();
    if (command == "Arm") {
        armState_.store(kArmed);
    } else if (command == "Disarm") {
        armState_.store(kDisarmed);
    }
    // Any other command passes the unchanged state on all the same.
    const int state = armState_.load();
    Notify([state](E6TruSimClientCallback& listener) { listener.OnE6ArmState(state); });
    return true;
}

bool E6TruSimClient::HandleWarning(const json& message) {
    if (listener_.load() == nullptr) {
        return false;  // reported as not supported
    }
    for (const char* key : {"SetDataIgnored", "ShotFailed", "OutOfRange"}) {
        if (message.contains(key)) {
            std::string text = message.at(key).get<std::string>();
            Notify([text = std::move(text)](E6TruSimClientCallback& listener) {
                listener.OnE6Warning(text);
            });
        }
    }
    return true;
}

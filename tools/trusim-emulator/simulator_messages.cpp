#include "tools/trusim-emulator/simulator_messages.h"

#include <nlohmann/json.hpp>

#include "common/c_format.h"
#include "simulator/hash_text.h"
#include "simulator/trusim_credentials.h"
#include "tools/trusim-emulator/client_message_form.h"

namespace orv {

namespace {

// Ordered, so that "Type" comes first as a person reading the wire expects.
using Json = nlohmann::ordered_json;

std::string Dump(const Json& message) {
    return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

double NumberOf(const Json& object, const char* key) {
    const auto it = object.find(key);
    return it != object.end() && it->is_number() ? it->get<double>() : 0.0;
}

std::string TextOf(const Json& object, const char* key) {
    const auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : std::string();
}

const Json& MemberOf(const Json& object, const char* key) {
    static const Json kNone;
    const auto it = object.find(key);
    return it != object.end() ? *it : kNone;
}

}  // namespace

std::string DescribeShot(const TruSimShot& shot) {
    return CFormat(
        "%s, ball speed %.2f, launch angle %.2f, direction %.2f, back spin %.0f, "
        "side spin %.0f",
        shot.club.c_str(), shot.ballSpeed, shot.launchAngle, shot.launchDirection, shot.backSpin,
        shot.sideSpin);
}

std::string HandshakeReply(const std::string& challenge) {
    return Dump(Json{{"Type", "Handshake"}, {"Challenge", challenge}});
}

std::string AuthenticationReply(bool success) {
    return Dump(Json{{"Type", "Authentication"}, {"Success", success}});
}

std::string PlayerDataMessage(const std::string& club, const std::string& handed) {
    return Dump(Json{{"Type", "DataModified"},
                     {"PlayerData",
                      {{"PlayerName", "Emulator"},
                       {"PlayerID", 1},
                       {"Handed", handed},
                       {"Club", club},
                       {"Handicap", 12.0},
                       {"CurrentTeeHeight", 0.2},
                       {"OnTheTee", true}}}});
}

std::string EnvironmentDataMessage(double distanceToPin) {
    return Dump(Json{{"Type", "DataModified"},
                     {"EnvironmentData",
                      {{"DistanceToPin", distanceToPin},
                       {"SurfaceCAT", "Fairway"},
                       {"BallPosition", {{"x", 0.0}, {"y", 0.0}, {"z", 0.0}}}}}});
}

std::string SimCommandMessage(const char* command) {
    return Dump(Json{{"Type", "SimCommand"}, {"Command", command}});
}

std::string TypeOnlyMessage(const char* type) {
    return Dump(Json{{"Type", type}});
}

ClientMessage ReadClientMessage(const std::string& text) {
    ClientMessage read;
    const Json message = Json::parse(text, nullptr, false);
    if (message.is_discarded()) {
        read.error = "not JSON";
        return read;
    }
    const std::string type = TextOf(message, "Type");
    const char* form = ClientMessageForm(type);
    if (form == nullptr) {
        read.error = "unknown type \"" + type + "\"";
        return read;
    }
    if (!MatchesForm(form, text)) {
        read.error = type + " not in its exact form";
        return read;
    }
    read.type = type;
    read.developer = TextOf(message, "Developer");
    read.hash = TextOf(message, "Hash");
    read.clubType = TextOf(message, "ClubType");
    const Json& ball = MemberOf(message, "BallData");
    read.values.backSpin = NumberOf(ball, "BackSpin");
    read.values.ballSpeed = NumberOf(ball, "BallSpeed");
    read.values.launchAngle = NumberOf(ball, "LaunchAngle");
    read.values.launchDirection = NumberOf(ball, "LaunchDirection");
    read.values.sideSpin = NumberOf(ball, "SideSpin");
    const Json& club = MemberOf(message, "ClubData");
    read.values.clubAngleFace = NumberOf(club, "ClubAngleFace");
    read.values.clubAnglePath = NumberOf(club, "ClubAnglePath");
    read.values.clubHeadSpeed = NumberOf(club, "ClubHeadSpeed");
    return read;
}

bool IsRightChallengeAnswer(const std::string& challenge, const std::string& developer,
                            const std::string& hash) {
    const std::string keyed = challenge + kE6SecretKey;
    return !challenge.empty() && developer == kE6DeveloperId &&
           hash == GetHashText(keyed.data(), keyed.size(), 1);
}

}  // namespace orv

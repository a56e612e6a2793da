// The simulator's side of the TruSim texts: what the stand-in simulator sends,
// and the program's messages read back into plain values.
#pragma once

#include <string>

namespace orv {

struct TruSimShot {
    std::string club;  // the simulator's club name when the shot came
    double ballSpeed = 0.0;
    double launchAngle = 0.0;
    double launchDirection = 0.0;
    double backSpin = 0.0;
    double sideSpin = 0.0;
    double clubHeadSpeed = 0.0;
    double clubAngleFace = 0.0;
    double clubAnglePath = 0.0;
};

// "Driver, ball speed 139.12, launch angle 11.88, direction -2.00, back spin 2600, side spin -350"
std::string DescribeShot(const TruSimShot& shot);

std::string HandshakeReply(const std::string& challenge);
std::string AuthenticationReply(bool success);
std::string PlayerDataMessage(const std::string& club, const std::string& handed);
std::string EnvironmentDataMessage(double distanceToPin);
std::string SimCommandMessage(const char* command);  // "Arm", "Disarm"
std::string TypeOnlyMessage(const char* type);       // "ACK", "Pong", "End"

// One message of the program; members it does not carry stay empty or 0.
struct ClientMessage {
    std::string error;      // why the message was refused; empty when it was read
    std::string type;       // empty when refused
    std::string developer;  // "Challenge"
    std::string hash;       // "Challenge"
    std::string clubType;   // "SetClubType"
    TruSimShot values;      // "SetBallData" and "SetClubData" fill their part
};

// Refuses anything but valid JSON in the exact form of its type.
ClientMessage ReadClientMessage(const std::string& text);

// The program's answer to `challenge` is right: its developer identifier and
// the MD5 of the challenge followed by its key.
bool IsRightChallengeAnswer(const std::string& challenge, const std::string& developer,
                            const std::string& hash);

}  // namespace orv

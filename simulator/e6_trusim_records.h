// What the simulator tells about the player and the course, as read from its
// "DataModified" messages. A member missing from a message keeps its default.
#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json_fwd.hpp>

struct E6PlayerData {
    std::string PlayerName;
    int32_t PlayerID = 0;
    std::string Handed;  // as the simulator sends it ("Right", "Left")
    uint32_t club = 0;   // club code of the "Club" name; 0 when missing or unknown
    double Handicap = 0.0;
    double CurrentTeeHeight = 0.0;
    bool OnTheTee = false;
};

struct E6BallPosition {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

struct E6EnvironmentData {
    double DistanceToPin = 0.0;
    std::string SurfaceCAT;
    E6BallPosition BallPosition;
};

// Readers of the objects under "PlayerData" and "EnvironmentData". A member of
// the wrong type throws (nlohmann's exceptions, or std::range_error for an
// integer that does not fit); the caller logs and drops the message.
E6PlayerData ReadE6PlayerData(const nlohmann::json& object);
E6EnvironmentData ReadE6EnvironmentData(const nlohmann::json& object);

// A JSON boolean as it is; anything else read as text, true for "true" in any case.
bool ReadE6Truth(const nlohmann::json& value);

#include "simulator/e6_trusim_records.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "protocol/code_tables.h"
#include "simulator/hash_text.h"

namespace {

using nlohmann::json;

const json* Member(const json& object, const char* key) {
    if (!object.is_object()) {
        return nullptr;
    }
    const auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
}

// A float is truncated as a typed read would; one outside int32 is refused
// rather than converted with undefined behaviour.
int32_t ReadInt32(const json& value) {
    if (value.is_number_float()) {
        const double v = value.get<double>();
        if (!(v > std::numeric_limits<int32_t>::min() - 1.0 &&
              v < std::numeric_limits<int32_t>::max() + 1.0)) {
            throw std::range_error("integer out of range");
        }
        return static_cast<int32_t>(v);
    }
    return value.get<int32_t>();
}

}  // namespace

bool ReadE6Truth(const json& value) {
    if (value.is_boolean()) {
        return value.get<bool>();
    }
    return IsTrueString(value.get<std::string>());
}

E6PlayerData ReadE6PlayerData(const json& object) {
    E6PlayerData data;
    if (const json* club = Member(object, "Club")) {
        const __code_tag* entry = OrvGetClubCodeDef(club->get<std::string>().c_str());
        data.club = entry ? entry->code : 0;
    }
    if (const json* height = Member(object, "CurrentTeeHeight")) {
        data.CurrentTeeHeight = height->get<double>();
    }
    if (const json* handed = Member(object, "Handed")) {
        data.Handed = handed->get<std::string>();
    }
    if (const json* handicap = Member(object, "Handicap")) {
        data.Handicap = handicap->get<double>();
    }
    if (const json* onTee = Member(object, "OnTheTee")) {
        data.OnTheTee = ReadE6Truth(*onTee);
    }
    if (const json* id = Member(object, "PlayerID")) {
        data.PlayerID = ReadInt32(*id);
    }
    if (const json* name = Member(object, "PlayerName")) {
        data.PlayerName = name->get<std::string>();
    }
    return data;
}

E6EnvironmentData ReadE6EnvironmentData(const json& object) {
    E6EnvironmentData data;
    if (const json* distance = Member(object, "DistanceToPin")) {
        data.DistanceToPin = distance->get<double>();
    }
    if (const json* surface = Member(object, "SurfaceCAT")) {
        data.SurfaceCAT = surface->get<std::string>();
    }
    if (const json* position = Member(object, "BallPosition")) {
        // Each coordinate only when it is a number; anything else keeps 0.
        double* const axes[] = {&data.BallPosition.x, &data.BallPosition.y, &data.BallPosition.z};
        const char* const names[] = {"x", "y", "z"};
        for (int i = 0; i < 3; ++i) {
            const json* axis = Member(*position, names[i]);
            if (axis != nullptr && axis->is_number()) {
                *axes[i] = axis->get<double>();
            }
        }
    }
    return data;
}

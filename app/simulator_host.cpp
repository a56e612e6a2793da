#include "app/simulator_host.h"

#include <utility>

#include "common/settings.h"

namespace orv {

Orvane::OrvManagerConfig WithSimulatorHost(Orvane::OrvManagerConfig config) {
    if (config.simulatorAddress.empty()) {
        config.simulatorAddress = OrvSettings::GetInstance()->GetSimulatorHost();
    }
    return config;
}

}  // namespace orv

// The program decides which radio the session talks to: BlueZ on the system
// bus, or the in-process demo sensor.
#pragma once

#include <functional>
#include <memory>

#include "ble/ble_stack.h"

std::function<std::unique_ptr<BleStack>()> ChooseBleBackend(bool demo);

#include "app/ble_backend.h"

#include "ble/bluez/make_bluez_stack.h"
#include "ble/virtual/virtual_stack.h"

std::function<std::unique_ptr<BleStack>()> ChooseBleBackend(bool demo) {
    if (demo) {
        return [] { return MakeDemoStack(); };
    }
    return [] { return MakeBluezStack(); };
}

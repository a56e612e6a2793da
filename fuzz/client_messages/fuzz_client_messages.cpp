// Arbitrary bytes as the stand-in simulator reads them from the program: a
// message is either read or refused with a reason, never both.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tools/trusim-emulator/simulator_messages.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const orv::ClientMessage message =
        orv::ReadClientMessage(std::string(reinterpret_cast<const char*>(data), size));
    if (message.error.empty() == message.type.empty()) {
        std::abort();
    }
    return 0;
}

// Arbitrary bytes written to the virtual sensor, one frame after another:
// every answer must be a well-formed frame (length byte, XOR checksum) and
// the sensor's club must stay a known club.
#include <cstdint>
#include <cstring>

#include "ble/virtual/sensor_responder.h"
#include "protocol/code_tables.h"

namespace {

void CheckFrame(const SensorFrame& frame) {
    uint8_t sum = 0;
    for (uint8_t byte : frame) {
        sum ^= byte;
    }
    if (frame.size() < 3 || sum != 0 || frame[1] != frame.size() - 3) {
        __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SensorResponder sensor;
    sensor.SetRawBlockCount(3);
    // The first byte splits the input into two writes, so sequences are covered.
    const size_t split = size > 0 ? data[0] % (size + 1) : 0;
    for (const auto& [begin, length] :
         {std::pair{data, split}, std::pair{data + split, size - split}}) {
        for (const SensorFrame& answer : sensor.Answer(begin, length)) {
            CheckFrame(answer);
        }
        if (OrvGetClubCodeDef(sensor.Club()) == nullptr) {
            __builtin_trap();
        }
    }
    return 0;
}

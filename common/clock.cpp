#include "common/clock.h"

#include <chrono>

int64_t WallClockMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

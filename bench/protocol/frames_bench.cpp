// Frames built and parsed per second: the command the session sends most
// often with a payload, and the record each swing brings.
#include <benchmark/benchmark.h>

#include "ble/virtual/sensor_frames.h"
#include "protocol/byte_buffer.h"
#include "protocol/command_models.h"
#include "protocol/record_dispatch.h"
#include "tests/session/session_fixture.h"

namespace {

void BuildClubSelect(benchmark::State& state) {
    for (auto _ : state) {
        OrvCmdManualClubSelectModel command(1, 100, 200, 300, 400, 1.25f);
        benchmark::DoNotOptimize(command.MakeSendPacket());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildClubSelect);

void ParseSwingInfo(benchmark::State& state) {
    const SensorFrame frame = SwingInfoFrame(orv::test::DriverSwing());
    bb* buffer = bb_new_copy(frame.data(), static_cast<uint32_t>(frame.size()));
    for (auto _ : state) {
        float distance = 0;
        orv::VisitDataRecord(buffer,
                             orv::Overloaded{
                                 [&](OrvDataSwingInfoModel& r) { distance = r.SwingDistance; },
                                 [](auto&) {},
                             });
        benchmark::DoNotOptimize(distance);
    }
    bb_free(&buffer);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ParseSwingInfo);

}  // namespace

BENCHMARK_MAIN();

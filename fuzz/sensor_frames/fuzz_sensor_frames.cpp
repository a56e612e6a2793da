// Arbitrary bytes as a received sensor frame: record selection and parsing
// for every data type must stay inside the buffer; arbitrary command inputs
// must always yield a frame whose XOR over all bytes is zero.
#include <cstdint>
#include <cstring>

#include "common/debug_log.h"
#include "protocol/command_models.h"
#include "protocol/record_dispatch.h"

namespace {

void CheckFrame(bb* frame, uint32_t expectedSize) {
    uint8_t sum = 0;
    for (uint32_t i = 0; i < frame->size; ++i) {
        sum ^= frame->data[i];
    }
    if (sum != 0 || frame->size != expectedSize || frame->data[1] != expectedSize - 3) {
        __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    bb* frame = bb_new_copy(data, static_cast<uint32_t>(size));
    orv::VisitDataRecord(frame, orv::Overloaded{
                                    [](OrvDataSwingInfoModel& r) { r.ToLog(); },
                                    [](OrvDataLRSig& r) {
                                        if (r.GetCount() == 0) {
                                            __builtin_trap();
                                        }
                                    },
                                    [](OrvDataFWVersionModel& r) {
                                        if (std::strlen(r.version) >= sizeof r.version) {
                                            __builtin_trap();
                                        }
                                    },
                                    [](auto&) {},
                                });
    bb_free(&frame);

    if (size >= 13) {
        float factor;
        std::memcpy(&factor, data + 9, sizeof factor);
        auto s16 = [&](size_t at) { return static_cast<int16_t>(data[at] << 8 | data[at + 1]); };
        OrvCmdManualClubSelectModel select(data[0], s16(1), s16(3), s16(5), s16(7), factor);
        CheckFrame(select.MakeSendPacket(), 13);
        OrvCmdTimeSyncReqModel time(data[0], data[1], data[2], data[3]);
        CheckFrame(time.MakeSendPacket(), 7);
        OrvCmdModel plain(data[12]);
        CheckFrame(plain.MakeSendPacket(), 3);
    }
    return 0;
}

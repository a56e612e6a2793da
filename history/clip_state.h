// Whether a shot's clip is still the one recorded with it: the ring of ten
// files reuses each name, so the file must exist and date from that swing.
#pragma once

#include <cstdint>
#include <string>

namespace orv::history {

// A clip is finalised within seconds of its shot (the delayed stop); a file
// written much later belongs to a later swing.
constexpr int64_t kClipSettleMs = 30000;

bool ClipStillThere(const std::string& clip, int64_t shotWallTimeMs);

}  // namespace orv::history

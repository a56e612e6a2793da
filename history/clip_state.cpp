#include "history/clip_state.h"

#include <sys/stat.h>

namespace orv::history {

bool ClipStillThere(const std::string& clip, int64_t shotWallTimeMs) {
    struct stat info {};
    if (clip.empty() || stat(clip.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    const int64_t modifiedMs =
        static_cast<int64_t>(info.st_mtim.tv_sec) * 1000 + info.st_mtim.tv_nsec / 1000000;
    // Recording began at the address, seconds before the shot.
    return modifiedMs >= shotWallTimeMs - kClipSettleMs &&
           modifiedMs <= shotWallTimeMs + kClipSettleMs;
}

}  // namespace orv::history

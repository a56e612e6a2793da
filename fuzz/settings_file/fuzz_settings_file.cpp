// Arbitrary bytes as settings.ini: every loaded value stays in its range,
// and saving keeps what was loaded (loading the saved file gives the same
// values, with the first-launch mark turned over as it must be).
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/settings.h"

namespace {

namespace fs = std::filesystem;

// A private folder, in memory where the system offers one (saves flush to disk).
class Folder {
public:
    Folder() {
        const fs::path base =
            fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        std::string pattern = (base / "orvane-fuzz-settings-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        path = pattern;
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path path;
};

struct Values {
    int level, sensitivity, club;
    bool firstLaunch, hide, background, effect, preview, recording;
    std::string version;

    explicit Values(OrvSettings& s)
        : level(s.GetDifficulty()),
          sensitivity(s.GetSensitivity()),
          club(s.GetClubType()),
          firstLaunch(s.firstLaunch),
          hide(s.hideShotResult),
          background(s.backgroundSound),
          effect(s.effectSound),
          preview(s.showPreview),
          recording(s.recording),
          version(s.GetVersion()) {}

    bool SameAsSavedFrom(const Values& o) const {
        return level == o.level && sensitivity == o.sensitivity && club == o.club &&
               firstLaunch != o.firstLaunch && hide == o.hide && background == o.background &&
               effect == o.effect && preview == o.preview && recording == o.recording &&
               version == o.version;
    }
};

// A save also updates defaults.stg in the folder the file names: such
// inputs are only loaded, never saved, so the fuzzer touches no real file.
bool NamesSimulatorFolder(const uint8_t* data, size_t size) {
    const std::string key = "writeablefilespath";
    std::string lower(reinterpret_cast<const char*>(data), size);
    for (char& c : lower) {
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return lower.find(key) != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Folder folder;
    std::ofstream(folder.path / "settings.ini", std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    OrvSettings loaded(folder.path);
    const Values before(loaded);
    if (static_cast<unsigned>(before.level) > 2 || static_cast<unsigned>(before.sensitivity) > 2 ||
        static_cast<unsigned>(before.club) > 1) {
        __builtin_trap();
    }
    if (NamesSimulatorFolder(data, size)) {
        return 0;
    }
    loaded.SaveSetting();
    OrvSettings reloaded(folder.path);
    if (!Values(reloaded).SameAsSavedFrom(before)) {
        __builtin_trap();
    }
    return 0;
}

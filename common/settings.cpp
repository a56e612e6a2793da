#include "common/settings.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

#include "common/debug_log.h"
#include "common/file_access.h"
#include "common/ini_document.h"
#include "common/simulator_settings.h"
#include "common/user_depends_data.h"

namespace {

// Far above any real settings file; a bigger file is not ours.
constexpr size_t kMaxSettingsBytes = 1 << 20;
// Values are read into a buffer of 260 characters, terminator included.
constexpr size_t kMaxValueCharacters = 259;

std::string CutToValueBuffer(std::string text) {
    size_t characters = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        // UTF-8 continuation bytes belong to the character before them.
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80 &&
            ++characters > kMaxValueCharacters) {
            text.resize(i);
            break;
        }
    }
    return text;
}

std::string ReadText(const orv::IniDocument& ini, const char* section, const char* key,
                     const char* fallback) {
    return CutToValueBuffer(ini.Get(section, key, fallback));
}

// As _wtoi: leading blanks, a sign and digits; 0 when there are none,
// INT_MIN or INT_MAX when the number does not fit.
int ReadInt(const orv::IniDocument& ini, const char* section, const char* key,
            const char* fallback) {
    const std::string text = ReadText(ini, section, key, fallback);
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return value < INT_MIN ? INT_MIN : value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

bool ReadBool(const orv::IniDocument& ini, const char* section, const char* key,
              const char* fallback) {
    return ReadInt(ini, section, key, fallback) != 0;
}

const char* BoolText(bool value) {
    return value ? "1" : "0";
}

}  // namespace

OrvSettings* OrvSettings::g_pOrvSetting = nullptr;
std::mutex OrvSettings::instanceMutex;

OrvSettings::OrvSettings(std::filesystem::path settingsFolder)
    : folder(std::move(settingsFolder)), iniPath(folder / "settings.ini") {
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    LoadSetting();
}

OrvSettings::~OrvSettings() = default;

OrvSettings* OrvSettings::GetInstance() {
    {
        std::lock_guard lock(instanceMutex);
        if (g_pOrvSetting != nullptr) {
            return g_pOrvSetting;
        }
    }
    return GetInstanceIn(DefaultFolder());
}

OrvSettings* OrvSettings::GetInstanceIn(const std::filesystem::path& settingsFolder) {
    std::lock_guard lock(instanceMutex);
    if (g_pOrvSetting == nullptr) {
        g_pOrvSetting = new OrvSettings(settingsFolder);
    }
    return g_pOrvSetting;
}

void OrvSettings::ReleaseInstance() {
    std::lock_guard lock(instanceMutex);
    delete g_pOrvSetting;
    g_pOrvSetting = nullptr;
}

bool OrvSettings::IsEffectSoundOn() {
    std::lock_guard lock(instanceMutex);
    return g_pOrvSetting == nullptr || g_pOrvSetting->effectSound.load();
}

std::filesystem::path OrvSettings::DefaultFolder() {
    std::filesystem::path base;
    // Relative values do not count, as the XDG base directory rules say.
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/') {
        base = config;
    } else if (const char* home = std::getenv("HOME"); home && home[0] == '/') {
        base = std::filesystem::path(home) / ".config";
    }
    if (!base.empty()) {
        return base / "Orvane X";
    }
    std::error_code error;
    std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
    return error ? std::filesystem::path("/tmp") : temporary;
}

bool OrvSettings::ReadFile(orv::IniDocument& ini) const {
    std::string text;
    const orv::FileRead read = orv::ReadSmallFile(iniPath, kMaxSettingsBytes, text);
    if (read == orv::FileRead::Missing) {
        return false;
    }
    if (read != orv::FileRead::Ok) {
        LOG_ERROR("%s: %s\n", iniPath.c_str(), orv::FileReadText(read));
        return false;
    }
    if (!ini.Parse(text)) {
        LOG_ERROR("%s: not a text file\n", iniPath.c_str());
        return false;
    }
    return true;
}

bool OrvSettings::UpdateFile(const std::function<void(orv::IniDocument&)>& change) {
    orv::IniDocument ini;
    ReadFile(ini);
    change(ini);
    return orv::ReplaceFileContent(iniPath, ini.Text());
}

bool OrvSettings::LoadSetting() {
    orv::IniDocument ini;
    if (ReadFile(ini) && !ini.HasSections()) {
        LOG_INFO("%s holds no settings\n", iniPath.c_str());
    }

    // A stored 0 (or none) means this is the first launch; SaveSetting then
    // stores 1, which reads as "not the first launch" next time.
    firstLaunch = ReadInt(ini, "Golf", "FirstLaunch", "0") == 0;
    const int level = ReadInt(ini, "Golf", "SwingLevel", "1");
    gUserDependsData.swingLevel = static_cast<unsigned>(level) <= 2 ? level : 1;
    const int sensitivity = ReadInt(ini, "Golf", "SwingSensitivity", "1");
    gUserDependsData.swingSensitivity = static_cast<unsigned>(sensitivity) <= 2 ? sensitivity : 1;
    gUserDependsData.clubType = ReadInt(ini, "Golf", "ClubType", "0") == 1 ? 1 : 0;
    hideShotResult = ReadBool(ini, "Golf", "HideShotResult", "0");
    version = ReadText(ini, "Golf", "Version", "0.0.0");
    backgroundSound = ReadBool(ini, "Sound", "Background", "1");
    effectSound = ReadBool(ini, "Sound", "Effect", "1");
    showPreview = ReadBool(ini, "Camera", "ShowPreview", "0");
    recording = ReadBool(ini, "Camera", "Recording", "0");
    simulatorHost = ReadText(ini, "E6", "Host", "");

    LOG_INFO(
        "\n=========== Settings ==============\nSwing level: %d\nSwing sensitivity: %d\nHands: "
        "%d\nClub type: %d\nBackground sound: %d\nEffect sound: %d\nResult Screen: %d\nShow "
        "Preview: %d\nRecording: %d\n===================================\n\n",
        gUserDependsData.swingLevel.load(), gUserDependsData.swingSensitivity.load(),
        gUserDependsData.hands.load(), gUserDependsData.clubType.load(),
        static_cast<int>(backgroundSound.load()), static_cast<int>(effectSound.load()),
        static_cast<int>(hideShotResult.load()), static_cast<int>(showPreview.load()),
        static_cast<int>(recording.load()));
    return true;
}

void OrvSettings::SaveSetting() {
    // "Version" goes into the same write that SetVersion would make on its
    // own, so one save replaces the file once.
    UpdateFile([this](orv::IniDocument& ini) {
        ini.Set("Golf", "FirstLaunch", BoolText(firstLaunch));
        ini.Set("Golf", "SwingLevel", std::to_string(gUserDependsData.swingLevel.load()));
        ini.Set("Golf", "SwingSensitivity",
                std::to_string(gUserDependsData.swingSensitivity.load()));
        ini.Set("Golf", "ClubType", std::to_string(gUserDependsData.clubType.load()));
        ini.Set("Golf", "HideShotResult", BoolText(hideShotResult));
        ini.Set("Sound", "Background", BoolText(backgroundSound));
        ini.Set("Sound", "Effect", BoolText(effectSound));
        ini.Set("Camera", "ShowPreview", BoolText(showPreview));
        ini.Set("Camera", "Recording", BoolText(recording));
        ini.Set("Golf", "Version", version);
        // Files of users who never named a host stay as they were.
        if (!simulatorHost.empty() || !ini.Get("E6", "Host", "").empty()) {
            ini.Set("E6", "Host", simulatorHost);
        }
    });
    SaveShowResult();
}

void OrvSettings::SaveShowResult() {
    const std::string simulatorFolder = GetSimulatorPath("WriteableFilesPath");
    if (simulatorFolder.empty()) {
        LOG_INFO("E6 WriteableFilesPath unknown: defaults.stg not updated\n");
        return;
    }
    orv::UpdateShowResultFile(std::filesystem::path(simulatorFolder) / "defaults.stg",
                              hideShotResult);
}

int OrvSettings::GetDifficulty() {
    return gUserDependsData.swingLevel;
}
int OrvSettings::GetSensitivity() {
    return gUserDependsData.swingSensitivity;
}
int OrvSettings::GetClubType() {
    return gUserDependsData.clubType;
}

// Negative values turn into large unsigned ones and are rejected too.
void OrvSettings::SetDifficulty(int level) {
    if (static_cast<unsigned>(level) <= 2) {
        gUserDependsData.swingLevel = level;
    }
}

void OrvSettings::SetSensitivity(int sensitivity) {
    if (static_cast<unsigned>(sensitivity) <= 2) {
        gUserDependsData.swingSensitivity = sensitivity;
    }
}

void OrvSettings::SetClubType(int clubType) {
    if (clubType == 0 || clubType == 1) {
        gUserDependsData.clubType = clubType;
    }
}

std::string OrvSettings::GetVersion() const {
    return version;
}

void OrvSettings::SetVersion(const std::string& text) {
    UpdateFile([&text](orv::IniDocument& ini) { ini.Set("Golf", "Version", text); });
}

std::string OrvSettings::GetSimulatorPath(const char* key) const {
    orv::IniDocument ini;
    ReadFile(ini);
    return ReadText(ini, "E6", key, "");
}

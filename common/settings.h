// The user's settings: a small per-user initialisation file ("settings.ini"
// in the application data folder) and the one value mirrored into the E6
// simulator's own settings file. The three swing values live in
// gUserDependsData, where the swing and club logic reads them directly.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace orv {
class IniDocument;
}

class OrvSettings {
public:
    // Creates `folder` if needed and loads the file in it.
    explicit OrvSettings(std::filesystem::path folder);
    virtual ~OrvSettings();
    OrvSettings(const OrvSettings&) = delete;
    OrvSettings& operator=(const OrvSettings&) = delete;

    // The singleton in DefaultFolder(), created (and loaded) on first use.
    static OrvSettings* GetInstance();
    // The singleton, created in `folder` when there is none yet.
    static OrvSettings* GetInstanceIn(const std::filesystem::path& folder);
    static void ReleaseInstance();
    // Speech is allowed unless a settings object exists with "Effect" off;
    // safe to call from any thread while the singleton comes and goes.
    static bool IsEffectSoundOn();

    // $XDG_CONFIG_HOME (or ~/.config) followed by "Orvane X"; the system's
    // temporary folder when neither can be found.
    static std::filesystem::path DefaultFolder();

    bool LoadSetting();
    void SaveSetting();
    // Shows the simulator's own shot analysers exactly when our result
    // screen is hidden, in the simulator's "defaults.stg".
    void SaveShowResult();

    int GetDifficulty();
    int GetSensitivity();
    int GetClubType();
    void SetDifficulty(int level);
    void SetSensitivity(int sensitivity);
    void SetClubType(int clubType);

    std::string GetVersion() const;
    // Writes "Golf"/"Version" at once; the loaded version stays as it was.
    void SetVersion(const std::string& text);

    // Section "E6" of the settings file, standing in for the simulator's
    // registry values ("WriteableFilesPath", "DefaultPath"); empty when absent.
    std::string GetSimulatorPath(const char* key) const;

    // Section "E6", key "Host": the computer the simulator runs on (a name or
    // an IPv4 address); empty for this computer. UI thread only.
    const std::string& GetSimulatorHost() const { return simulatorHost; }
    void SetSimulatorHost(std::string host) { simulatorHost = std::move(host); }

    // The application data folder; recordings go there too.
    const std::filesystem::path& GetFolder() const { return folder; }
    const std::filesystem::path& GetIniPath() const { return iniPath; }

    // Written by the UI thread, read by the session's threads.
    std::atomic<bool> firstLaunch{false};
    std::atomic<bool> backgroundSound{true};
    std::atomic<bool> effectSound{true};
    std::atomic<bool> hideShotResult{true};
    std::atomic<bool> showPreview{false};
    std::atomic<bool> recording{false};

private:
    // Reads the settings file into `ini`: true when it exists and is text.
    // A file that cannot serve leaves `ini` empty and is logged.
    bool ReadFile(orv::IniDocument& ini) const;
    // Reads the file, applies `change` and replaces the file in one write.
    bool UpdateFile(const std::function<void(orv::IniDocument&)>& change);

    std::filesystem::path folder;
    std::filesystem::path iniPath;
    std::string version = "0.0.0";
    std::string simulatorHost;

    static OrvSettings* g_pOrvSetting;
    // Guards g_pOrvSetting against speakers on worker threads while the
    // UI thread creates or releases the singleton.
    static std::mutex instanceMutex;
};

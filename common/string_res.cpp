#include "common/string_res.h"

#include <cstdio>

#include <mutex>
#include <string_view>
#include <utility>

#include "common/debug_log.h"
#include "common/file_access.h"
#include "common/string_table.h"

namespace {

// A table is a few kilobytes; this only stops a wrong file.
constexpr size_t kMaxTableBytes = 1 << 20;

// Guards gStrings: loaded on the UI thread at start-up, read by every thread.
std::mutex gStringsMutex;
orv::StringTable gStrings;

}  // namespace

namespace orv {

const char* LanguageFolderName(int languageId) {
    switch (languageId) {
        case 1041:
            return "ja";
        case 1042:
            return "ko";
        case 2052:
            return "zh";
        default:
            return "en";
    }
}

std::filesystem::path ProgramFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : program.parent_path();
}

std::filesystem::path DataFolder() {
    const std::filesystem::path program = ProgramFolder();
    std::error_code error;
    if (std::filesystem::is_directory(program / "lang", error)) {
        return program;
    }
    return program.parent_path() / ORVANE_DATA_DIR;
}

}  // namespace orv

std::string GetStringRes(unsigned id) {
    std::lock_guard lock(gStringsMutex);
    const auto found = gStrings.find(id);
    return found == gStrings.end() ? std::string() : found->second;
}

bool LoadLanguageModule(int languageId) {
    return LoadLanguageModuleFrom(orv::DataFolder() / "lang", languageId);
}

namespace {

orv::StringTable ReadTable(const std::filesystem::path& langFolder, const char* language,
                           bool* ok) {
    const std::filesystem::path path = langFolder / language / "strings.tsv";
    std::string text;
    const orv::FileRead read = orv::ReadSmallFile(path, kMaxTableBytes, text);
    if (read != orv::FileRead::Ok) {
        LOG_ERROR("%s: %s\n", path.c_str(), orv::FileReadText(read));
    }
    size_t rejected = 0;
    orv::StringTable table = orv::ParseStringTable(text, &rejected);
    if (rejected != 0) {
        LOG_ERROR("%s: %zu lines are not entries\n", path.c_str(), rejected);
    }
    *ok = read == orv::FileRead::Ok;
    return table;
}

}  // namespace

bool LoadLanguageModuleFrom(const std::filesystem::path& langFolder, int languageId) {
    const char* language = orv::LanguageFolderName(languageId);
    bool ok = false;
    orv::StringTable table = ReadTable(langFolder, language, &ok);
    // A text this language lacks is said in English rather than not at all.
    if (std::string_view(language) != "en") {
        bool englishOk = false;
        orv::StringTable english = ReadTable(langFolder, "en", &englishOk);
        for (auto& [id, text] : table) {
            if (!text.empty()) {
                english[id] = std::move(text);
            }
        }
        table = std::move(english);
    }
    std::lock_guard lock(gStringsMutex);
    gStrings = std::move(table);
    return ok;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string FormatDistanceText(const std::string& format, const std::string& unit, int number) {
    char text[260];
    std::snprintf(text, sizeof text, format.c_str(), unit.c_str(), number);
    return text;
}
#pragma GCC diagnostic pop

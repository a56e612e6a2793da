// Interface texts of the language chosen at start-up, by resource id. Each
// language has its own table in a folder named after it (en, ja, ko, zh)
// inside the lang/ folder beside the program.
#pragma once

#include <filesystem>
#include <string>

// The text of `id` in the loaded language; empty when there is none.
std::string GetStringRes(unsigned id);

// Fills a distance text (string 169) with its unit word and whole number, at
// most 259 characters. The table texts refer to them as %1$s and %2$d.
std::string FormatDistanceText(const std::string& format, const std::string& unit, int number);

// Loads the table for `languageId` (1041 ja, 1042 ko, 2052 zh, any other en)
// from the lang/ folder beside the program; a text the table lacks or leaves
// empty comes from the English one. False when the table cannot be loaded.
bool LoadLanguageModule(int languageId);
// The same from an explicit lang/ folder.
bool LoadLanguageModuleFrom(const std::filesystem::path& langFolder, int languageId);

namespace orv {

// "ja", "ko", "zh" or "en".
const char* LanguageFolderName(int languageId);
// The folder of the running executable.
std::filesystem::path ProgramFolder();
// The folder holding lang/ (and the translations/ beside it): the program's
// own folder in a build, <prefix>/share/orvane-x once installed under
// <prefix>/bin. Always found from the program's location.
std::filesystem::path DataFolder();

}  // namespace orv

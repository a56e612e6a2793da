// Whole-file reads with a size cap, and writes that replace a file by rename
// so that nobody ever sees a half-written version of it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace orv {

enum class FileRead { Ok, Missing, Unreadable, TooLarge };

// Short English text for log lines ("missing", "unreadable", ...).
const char* FileReadText(FileRead result);

// Reads the whole regular file at `path` into `content` when it holds at most
// `maxBytes` bytes; `content` is left empty otherwise.
FileRead ReadSmallFile(const std::filesystem::path& path, size_t maxBytes, std::string& content);

// Writes `content` into a new file beside `path`, flushes it to the disk and
// renames it over `path` (keeping the old file's permissions). On failure the
// old file is untouched, the new one is removed and the failing call is
// logged once.
bool ReplaceFileContent(const std::filesystem::path& path, std::string_view content);

}  // namespace orv

// Texts made from the history for machines and for the console: CSV and the
// per-club summary. Numbers use "." whatever the locale.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "history/history_store.h"

namespace orv::history {

// `value` with `decimals` digits after the point; empty when not a number.
std::string FixedText(double value, int decimals);
// "2026-11-23T12:00:00.123Z".
std::string UtcTimeText(int64_t wallTimeMs);

// RFC 4180: a header row, then one row per shot, CRLF line ends, UTF-8.
void WriteCsv(const std::vector<HistoryRow>& rows, std::ostream& out);
// Writes every shot of the file at `history` into `csv`; false with one log line on failure.
bool ExportHistoryFile(const std::filesystem::path& history, const std::filesystem::path& csv);

}  // namespace orv::history

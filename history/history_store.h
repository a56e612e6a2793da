// The shot history file: one row per shot, one session per program run.
// Plain SQLite in WAL mode; each call is one transaction. A store is used by
// one thread at a time; the writer and a reader each open their own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "session/shot_report.h"

struct sqlite3;
struct sqlite3_stmt;

namespace orv::history {

struct HistoryRow {
    int64_t id = 0;
    int64_t session = 0;
    Orvane::ShotReport shot;
};

struct HistoryFilter {
    int club = 0;  // 0: every club
    int64_t fromMs = 0;
    int64_t toMs = std::numeric_limits<int64_t>::max();
    int64_t session = 0;  // 0: every session
};

struct Spread {
    double mean = 0.0;
    double deviation = 0.0;  // standard deviation of the shots
};

// Per club, over the shots whose values were numbers.
struct ClubFigures {
    int club = 0;
    std::string clubName;
    int64_t count = 0;
    Spread ballSpeed, launchAngle, direction, backSpin, sideSpin, headSpeed;
};

class HistoryStore {
public:
    static constexpr int kSchemaVersion = 1;

    // Opens or creates the file and brings its schema up to date. A file
    // that is not a database is moved aside and a new one started. Null,
    // with one log line, when nothing can be opened there.
    static std::unique_ptr<HistoryStore> Open(const std::filesystem::path& file);
    ~HistoryStore();
    HistoryStore(const HistoryStore&) = delete;
    HistoryStore& operator=(const HistoryStore&) = delete;

    // A new session; -1 when it cannot be written.
    int64_t BeginSession(int64_t startedMs);
    // The SQLite result code of the write (0 on success).
    int Insert(int64_t session, const Orvane::ShotReport& shot);
    std::vector<HistoryRow> Shots(const HistoryFilter& filter);
    std::vector<ClubFigures> Figures(const HistoryFilter& filter);
    // The newest session in the file; 0 when there is none.
    int64_t LatestSession();

    // True for the result codes that mean the file itself is broken.
    static bool IsCorruption(int code);
    // Renames the file (and its journal files) to "<file>.corrupt-<ms>".
    static bool MoveAside(const std::filesystem::path& file);

private:
    explicit HistoryStore(sqlite3* db) : db_(db) {}
    int Migrate();
    sqlite3_stmt* Prepare(const char* sql);

    sqlite3* db_;
    sqlite3_stmt* insert_ = nullptr;  // prepared once: one is written per shot
};

}  // namespace orv::history

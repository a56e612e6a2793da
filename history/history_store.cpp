#include "history/history_store.h"

#include <sqlite3.h>

#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "common/clock.h"
#include "common/debug_log.h"

namespace orv::history {

namespace {

// Each step brings the file from version i to i + 1; a new version appends
// its step and never edits an old one.
constexpr const char* kMigrations[] = {
    "CREATE TABLE sessions(id INTEGER PRIMARY KEY, started_ms INTEGER NOT NULL);"
    "CREATE TABLE shots(id INTEGER PRIMARY KEY, session INTEGER NOT NULL, time_ms INTEGER NOT "
    "NULL, sensor_club INTEGER NOT NULL, club INTEGER NOT NULL, club_name TEXT NOT NULL,"
    " head_speed REAL, path REAL, face REAL, tempo REAL, swing_distance REAL,"
    " back_spin REAL, ball_speed REAL, launch_angle REAL, launch_direction REAL, side_spin REAL,"
    " club_head_speed REAL, club_angle_face REAL, club_angle_path REAL,"
    " outcome TEXT NOT NULL, distance_to_pin REAL, clip TEXT NOT NULL);"
    "CREATE INDEX shots_by_time ON shots(time_ms);"
    // Running sums per session and club, so the figures need no scan of the shots.
    "CREATE TABLE club_totals(session INTEGER NOT NULL, club INTEGER NOT NULL, club_name TEXT,"
    " n INTEGER NOT NULL, s1 REAL, q1 REAL, s2 REAL, q2 REAL, s3 REAL, q3 REAL, s4 REAL, q4 REAL,"
    " s5 REAL, q5 REAL, s6 REAL, q6 REAL, PRIMARY KEY(session, club));"
    "CREATE TRIGGER shots_total AFTER INSERT ON shots WHEN NEW.outcome != 'refused_not_finite' "
    "BEGIN INSERT INTO club_totals VALUES(NEW.session, NEW.club, NEW.club_name, 1,"
    " NEW.ball_speed, NEW.ball_speed * NEW.ball_speed,"
    " NEW.launch_angle, NEW.launch_angle * NEW.launch_angle,"
    " NEW.launch_direction, NEW.launch_direction * NEW.launch_direction,"
    " NEW.back_spin, NEW.back_spin * NEW.back_spin,"
    " NEW.side_spin, NEW.side_spin * NEW.side_spin,"
    " NEW.club_head_speed, NEW.club_head_speed * NEW.club_head_speed)"
    " ON CONFLICT(session, club) DO UPDATE SET n = n + 1,"
    " s1 = s1 + excluded.s1, q1 = q1 + excluded.q1, s2 = s2 + excluded.s2, q2 = q2 + excluded.q2,"
    " s3 = s3 + excluded.s3, q3 = q3 + excluded.q3, s4 = s4 + excluded.s4, q4 = q4 + excluded.q4,"
    " s5 = s5 + excluded.s5, q5 = q5 + excluded.q5, s6 = s6 + excluded.s6, q6 = q6 + excluded.q6;"
    " END;",
};
static_assert(std::size(kMigrations) == HistoryStore::kSchemaVersion);

constexpr const char* kColumns =
    "id, session, time_ms, sensor_club, club, club_name, head_speed, path, face, tempo, "
    "swing_distance, back_spin, ball_speed, launch_angle, launch_direction, side_spin, "
    "club_head_speed, club_angle_face, club_angle_path, outcome, distance_to_pin, clip";

constexpr const char* kWhere =
    " WHERE (?1 = 0 OR club = ?1) AND time_ms >= ?2 AND time_ms <= ?3 AND (?4 = 0 OR session = "
    "?4)";

// Owns a prepared statement for one call.
class Statement {
public:
    explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    sqlite3_stmt* get() const { return statement_; }
    explicit operator bool() const { return statement_ != nullptr; }

private:
    sqlite3_stmt* statement_;
};

void BindFilter(sqlite3_stmt* statement, const HistoryFilter& filter) {
    sqlite3_bind_int(statement, 1, filter.club);
    sqlite3_bind_int64(statement, 2, filter.fromMs);
    sqlite3_bind_int64(statement, 3, filter.toMs);
    sqlite3_bind_int64(statement, 4, filter.session);
}

// SQLite keeps a NaN as NULL; it reads back as NaN.
double Real(sqlite3_stmt* statement, int column) {
    if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return sqlite3_column_double(statement, column);
}

std::string Text(sqlite3_stmt* statement, int column) {
    const unsigned char* text = sqlite3_column_text(statement, column);
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

Spread SpreadOf(sqlite3_stmt* statement, int column) {
    Spread spread;
    spread.mean = sqlite3_column_double(statement, column);
    const double meanOfSquares = sqlite3_column_double(statement, column + 1);
    spread.deviation = std::sqrt(std::max(0.0, meanOfSquares - spread.mean * spread.mean));
    return spread;
}

int Exec(sqlite3* db, const char* sql) {
    const int rc = sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        LOG_ERROR("sqlite3_exec error:0x%x\n", static_cast<unsigned>(rc));
    }
    return rc;
}

}  // namespace

bool HistoryStore::IsCorruption(int code) {
    const int primary = code & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

bool HistoryStore::MoveAside(const std::filesystem::path& file) {
    const std::string aside = file.string() + ".corrupt-" + std::to_string(WallClockMs());
    std::error_code error;
    std::filesystem::rename(file, aside, error);
    if (error) {
        LOG_ERROR("rename error:0x%x\n", static_cast<unsigned>(error.value()));
        return false;
    }
    LOG_ERROR("History file was damaged; kept as %s\n", aside.c_str());
    for (const char* suffix : {"-wal", "-shm"}) {
        std::filesystem::remove(file.string() + suffix, error);
    }
    return true;
}

std::unique_ptr<HistoryStore> HistoryStore::Open(const std::filesystem::path& file) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        sqlite3* db = nullptr;
        int rc =
            sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        if (rc != SQLITE_OK) {
            LOG_ERROR("sqlite3_open_v2 error:0x%x\n", static_cast<unsigned>(rc));
            sqlite3_close(db);
            return nullptr;
        }
        // A writer may hold the file for a moment; readers wait instead of failing.
        sqlite3_busy_timeout(db, 2000);
        std::unique_ptr<HistoryStore> store(new HistoryStore(db));
        rc = store->Migrate();
        if (rc == SQLITE_OK) {
            return store;
        }
        store.reset();
        if (!IsCorruption(rc) || !MoveAside(file)) {
            return nullptr;
        }
    }
    return nullptr;
}

HistoryStore::~HistoryStore() {
    sqlite3_finalize(insert_);
    sqlite3_close(db_);
}

sqlite3_stmt* HistoryStore::Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    const int rc = sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr);
    if (rc != SQLITE_OK) {
        LOG_ERROR("sqlite3_prepare_v2 error:0x%x\n", static_cast<unsigned>(rc));
        return nullptr;
    }
    return statement;
}

int HistoryStore::Migrate() {
    // The first read of the file: garbage shows here as "not a database".
    int rc = sqlite3_exec(db_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr,
                          nullptr, nullptr);
    if (rc != SQLITE_OK) {
        LOG_ERROR("sqlite3_exec error:0x%x\n", static_cast<unsigned>(rc));
        return rc;
    }
    int version = 0;
    {
        Statement query(Prepare("PRAGMA user_version"));
        if (!query) {
            return sqlite3_errcode(db_);
        }
        rc = sqlite3_step(query.get());
        if (rc != SQLITE_ROW) {
            return rc;
        }
        version = sqlite3_column_int(query.get(), 0);
    }
    if (version > kSchemaVersion) {
        LOG_ERROR("History file is of a newer version (%d)\n", version);
        return SQLITE_MISMATCH;
    }
    for (; version < kSchemaVersion; ++version) {
        const std::string step = std::string("BEGIN IMMEDIATE;") + kMigrations[version] +
                                 "PRAGMA user_version=" + std::to_string(version + 1) + ";COMMIT;";
        rc = Exec(db_, step.c_str());
        if (rc != SQLITE_OK) {
            sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
            return rc;
        }
    }
    return SQLITE_OK;
}

int64_t HistoryStore::BeginSession(int64_t startedMs) {
    Statement insert(Prepare("INSERT INTO sessions(started_ms) VALUES(?1)"));
    if (!insert) {
        return -1;
    }
    sqlite3_bind_int64(insert.get(), 1, startedMs);
    const int rc = sqlite3_step(insert.get());
    if (rc != SQLITE_DONE) {
        LOG_ERROR("sqlite3_step error:0x%x\n", static_cast<unsigned>(rc));
        return -1;
    }
    return sqlite3_last_insert_rowid(db_);
}

int HistoryStore::Insert(int64_t session, const Orvane::ShotReport& shot) {
    const std::string sql = std::string("INSERT INTO shots(") + kColumns +
                            ") VALUES(NULL,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";
    if (insert_ == nullptr) {
        insert_ = Prepare(sql.c_str());
        if (insert_ == nullptr) {
            return sqlite3_errcode(db_);
        }
    }
    sqlite3_stmt* s = insert_;
    int column = 0;
    sqlite3_bind_int64(s, ++column, session);
    sqlite3_bind_int64(s, ++column, shot.wallTimeMs);
    sqlite3_bind_int(s, ++column, shot.sensorClub);
    sqlite3_bind_int(s, ++column, shot.club);
    sqlite3_bind_text(s, ++column, shot.clubName.c_str(), -1, SQLITE_TRANSIENT);
    for (const double value :
         {shot.headSpeed, shot.path, shot.face, shot.tempo, shot.swingDistance, shot.ball.BackSpin,
          shot.ball.BallSpeed, shot.ball.LaunchAngle, shot.ball.LaunchDirection, shot.ball.SideSpin,
          shot.clubData.ClubHeadSpeed, shot.clubData.ClubAngleFace, shot.clubData.ClubAnglePath}) {
        sqlite3_bind_double(s, ++column, value);
    }
    sqlite3_bind_text(s, ++column, Orvane::ShotOutcomeKey(shot.outcome), -1, SQLITE_STATIC);
    sqlite3_bind_double(s, ++column, shot.distanceToPin);
    sqlite3_bind_text(s, ++column, shot.clip.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(s);
    sqlite3_reset(s);
    return rc == SQLITE_DONE ? SQLITE_OK : rc;
}

std::vector<HistoryRow> HistoryStore::Shots(const HistoryFilter& filter) {
    std::vector<HistoryRow> rows;
    const std::string sql =
        std::string("SELECT ") + kColumns + " FROM shots" + kWhere + " ORDER BY time_ms, id";
    Statement query(Prepare(sql.c_str()));
    if (!query) {
        return rows;
    }
    sqlite3_stmt* s = query.get();
    BindFilter(s, filter);
    while (sqlite3_step(s) == SQLITE_ROW) {
        HistoryRow& row = rows.emplace_back();
        Orvane::ShotReport& shot = row.shot;
        row.id = sqlite3_column_int64(s, 0);
        row.session = sqlite3_column_int64(s, 1);
        shot.wallTimeMs = sqlite3_column_int64(s, 2);
        shot.sensorClub = sqlite3_column_int(s, 3);
        shot.club = sqlite3_column_int(s, 4);
        shot.clubName = Text(s, 5);
        int column = 6;
        for (double* value :
             {&shot.headSpeed, &shot.path, &shot.face, &shot.tempo, &shot.swingDistance,
              &shot.ball.BackSpin, &shot.ball.BallSpeed, &shot.ball.LaunchAngle,
              &shot.ball.LaunchDirection, &shot.ball.SideSpin, &shot.clubData.ClubHeadSpeed,
              &shot.clubData.ClubAngleFace, &shot.clubData.ClubAnglePath}) {
            *value = Real(s, column++);
        }
        Orvane::ShotOutcomeFromKey(Text(s, column++), &shot.outcome);
        shot.distanceToPin = Real(s, column++);
        shot.clip = Text(s, column);
    }
    return rows;
}

std::vector<ClubFigures> HistoryStore::Figures(const HistoryFilter& filter) {
    std::vector<ClubFigures> figures;
    // Mean and mean of squares per value, over the shots whose values were
    // numbers: from the running sums unless a time range asks for the shots.
    const bool allTime = filter.fromMs <= 0 && filter.toMs == std::numeric_limits<int64_t>::max();
    std::string sql = "SELECT club, max(club_name), ";
    if (allTime) {
        sql += "sum(n)";
        for (int i = 1; i <= 6; ++i) {
            const std::string n = std::to_string(i);
            sql += ", sum(s" + n + ") / sum(n), sum(q" + n + ") / sum(n)";
        }
        sql +=
            " FROM club_totals WHERE (?1 = 0 OR club = ?1) AND ?2 <= ?3 AND (?4 = 0 OR session = "
            "?4) GROUP BY club ORDER BY club";
    } else {
        sql += "count(*)";
        for (const char* column : {"ball_speed", "launch_angle", "launch_direction", "back_spin",
                                   "side_spin", "club_head_speed"}) {
            sql += std::string(", avg(") + column + "), avg(" + column + "*" + column + ")";
        }
        sql += std::string(" FROM shots") + kWhere +
               " AND outcome != 'refused_not_finite' GROUP BY club ORDER BY club";
    }
    Statement query(Prepare(sql.c_str()));
    if (!query) {
        return figures;
    }
    sqlite3_stmt* s = query.get();
    BindFilter(s, filter);
    while (sqlite3_step(s) == SQLITE_ROW) {
        ClubFigures& club = figures.emplace_back();
        club.club = sqlite3_column_int(s, 0);
        club.clubName = Text(s, 1);
        club.count = sqlite3_column_int64(s, 2);
        int column = 3;
        for (Spread* spread : {&club.ballSpeed, &club.launchAngle, &club.direction, &club.backSpin,
                               &club.sideSpin, &club.headSpeed}) {
            *spread = SpreadOf(s, column);
            column += 2;
        }
    }
    return figures;
}

int64_t HistoryStore::LatestSession() {
    Statement query(Prepare("SELECT max(id) FROM sessions"));
    if (!query || sqlite3_step(query.get()) != SQLITE_ROW) {
        return 0;
    }
    return sqlite3_column_int64(query.get(), 0);
}

}  // namespace orv::history

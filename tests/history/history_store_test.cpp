// The history file on its own: many shots then the figures per club, files
// that cannot be written, a damaged file, CSV exactly as written under a
// comma locale by the command-line export, and clips told apart by date.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "common/debug_log.h"
#include "history/clip_state.h"
#include "history/history_store.h"
#include "history/history_text.h"
#include "history/history_writer.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;
using Orvane::ShotOutcome;
using Orvane::ShotReport;

constexpr int64_t kNoon = 1795003200000;  // 2026-11-18T12:00:00Z

ShotReport Shot(int club, double ballSpeed, int64_t time = kNoon) {
    ShotReport shot;
    shot.wallTimeMs = time;
    shot.sensorClub = club;
    shot.club = club;
    shot.clubName = club == 1 ? "Driver" : "7Iron";
    shot.headSpeed = 90.25;
    shot.path = -2.5;
    shot.face = 1.25;
    shot.tempo = 3.0;
    shot.swingDistance = 150.0;
    shot.ball = {12.5, -1.75, ballSpeed, 2500.0, -300.0};
    shot.clubData = {90.25, 1.25, -2.5};
    shot.distanceToPin = 150.0;
    return shot;
}

TEST(HistoryStore, TenThousandShotsThenFiguresPerClub) {
    TempDir dir;
    auto store = history::HistoryStore::Open(dir.path() / "history.db");
    ASSERT_TRUE(store);
    const int64_t session = store->BeginSession(kNoon);
    // Drivers at 100 and 110 mph in turn, irons always at 80; one refused shot.
    for (int i = 0; i < 10000; ++i) {
        const int club = i % 2 == 0 ? 1 : 7;
        ASSERT_EQ(store->Insert(session,
                                Shot(club, club == 1 ? (i % 4 == 0 ? 100 : 110) : 80, kNoon + i)),
                  0);
    }
    ShotReport refused = Shot(1, std::nan(""));
    refused.outcome = ShotOutcome::kRefusedNotFinite;
    ASSERT_EQ(store->Insert(session, refused), 0);

    const auto figures = store->Figures({});
    ASSERT_EQ(figures.size(), 2u);
    EXPECT_EQ(figures[0].count, 5000);
    EXPECT_NEAR(figures[0].ballSpeed.mean, 105.0, 1e-9);
    EXPECT_NEAR(figures[0].ballSpeed.deviation, 5.0, 1e-6);
    EXPECT_NEAR(figures[1].ballSpeed.deviation, 0.0, 1e-6);
    EXPECT_NEAR(figures[1].sideSpin.mean, -300.0, 1e-9);
    history::HistoryFilter ranged;  // a time range reads the shots instead of the running sums
    ranged.fromMs = kNoon;
    const auto scanned = store->Figures(ranged);
    ASSERT_EQ(scanned.size(), 2u);
    EXPECT_EQ(scanned[0].count, 5000);
    EXPECT_NEAR(scanned[0].ballSpeed.deviation, figures[0].ballSpeed.deviation, 1e-6);
    history::HistoryFilter ironsEarly;
    ironsEarly.club = 7;
    ironsEarly.toMs = kNoon + 99;
    EXPECT_EQ(store->Shots(ironsEarly).size(), 50u);
    EXPECT_EQ(store->Shots({}).size(), 10001u);
}

// Each fault is logged once; shots keep being accepted and the writer stops at once.
TEST(HistoryWriter, UnwritableOrDamagedFilesNeverStopShots) {
    enum class Fault { kFolderIsAFile, kFileSizeLimit, kDamagedFile };
    struct Case {
        const char* name;
        Fault fault;
        size_t rowsKept;
    };
    for (const Case& c : {Case{"folder is a file", Fault::kFolderIsAFile, 0},
                          Case{"file size limit", Fault::kFileSizeLimit, 0},
                          Case{"damaged file", Fault::kDamagedFile, 300}}) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        fs::path file = dir.path() / "history.db";
        if (c.fault == Fault::kFolderIsAFile) {
            WriteFileText(dir.path() / "blocked", "in the way\n");
            file = dir.path() / "blocked" / "history.db";
        } else if (c.fault == Fault::kDamagedFile) {
            WriteFileText(file, std::string(5000, 'x'));
        }
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        auto* previous = std::signal(SIGXFSZ, SIG_IGN);
        auto out = std::make_unique<StdoutCapture>();
        ShowLog(true, false);
        {
            history::HistoryWriter writer(file);
            if (c.fault == Fault::kFileSizeLimit) {
                rlimit small = saved;
                small.rlim_cur = 80000;  // room for the first shots only
                ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
            }
            writer.Start();
            for (int i = 0; i < 300; ++i) {
                writer.OnShotRecorded(Shot(1, 100.0 + i));
            }
            writer.Stop();
        }
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previous);
        ShowLog(false, false);
        const std::string log = out->Text();
        out.reset();
        if (c.fault == Fault::kDamagedFile) {
            EXPECT_EQ(CountOf(log, "History file was damaged; kept as "), 1u) << log;
            size_t aside = 0;
            for (const auto& entry : fs::directory_iterator(dir.path())) {
                if (entry.path().filename().string().starts_with("history.db.corrupt-")) {
                    EXPECT_EQ(ReadFileText(entry.path()), std::string(5000, 'x'));
                    ++aside;
                }
            }
            EXPECT_EQ(aside, 1u);
        } else {
            EXPECT_EQ(CountOf(log, "shots go on without being kept"), 1u) << "[" << log << "]";
        }
        auto store = fs::exists(file) ? history::HistoryStore::Open(file) : nullptr;
        const size_t kept = store ? store->Shots({}).size() : 0u;
        if (c.fault == Fault::kFileSizeLimit) {
            EXPECT_GT(kept, 0u);  // the disk filled up on the way
            EXPECT_LT(kept, 300u);
        } else {
            EXPECT_EQ(kept, c.rowsKept);
        }
    }
}

// The CSV under a comma locale, made by the program's switch without a display.
TEST(HistoryExport, CsvIsExactUnderACommaLocale) {
    TempDir dir;
    const fs::path locales = dir.path() / "locales";
    fs::create_directories(locales);
    ASSERT_EQ(std::system(("localedef -i de_DE -f UTF-8 '" + (locales / "de_DE.UTF-8").string() +
                           "' >/dev/null 2>&1")
                              .c_str()),
              0);
    fs::create_directories(dir.path() / "config/Orvane X");
    {
        auto store = history::HistoryStore::Open(dir.path() / "config/Orvane X/history.db");
        ASSERT_TRUE(store);
        const int64_t session = store->BeginSession(kNoon);
        ShotReport shot = Shot(1, 101.5);
        shot.clip = "/clips/My \"best\", MyRecord0.mp4";
        store->Insert(session, shot);
        shot.outcome = ShotOutcome::kRefusedNotFinite;
        shot.ball.BallSpeed = std::nan("");
        shot.clip.clear();
        store->Insert(session, shot);
    }
    const fs::path csv = dir.path() / "shots.csv";
    // glibc keeps the name of a locale loaded through LOCPATH for the process's
    // life; the leak checker of a sanitizer build must not take it for ours.
    const fs::path kept = dir.path() / "lsan.supp";
    std::ofstream(kept) << "leak:__argz_add_sep\n";
    const std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY LSAN_OPTIONS=suppressions='" +
                                kept.string() + "' LOCPATH='" + locales.string() +
                                "' LC_ALL=de_DE.UTF-8 XDG_CONFIG_HOME='" +
                                (dir.path() / "config").string() +
                                "' '" ORVANE_PROGRAM "' -export_history '" + csv.string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(ReadFileText(csv),
              "id,time,session,sensor_club,club,club_name,head_speed,path,face,tempo,"
              "swing_distance,back_spin,ball_speed,launch_angle,launch_direction,side_spin,"
              "club_head_speed,club_angle_face,club_angle_path,outcome,distance_to_pin,clip\r\n"
              "1,2026-11-18T12:00:00.000Z,1,1,1,Driver,90.250,-2.500,1.250,3.000,150.000,"
              "2500.000,101.500,12.500,-1.750,-300.000,90.250,1.250,-2.500,sent,150.000,"
              "\"/clips/My \"\"best\"\", MyRecord0.mp4\"\r\n"
              "2,2026-11-18T12:00:00.000Z,1,1,1,Driver,90.250,-2.500,1.250,3.000,150.000,"
              "2500.000,,12.500,-1.750,-300.000,90.250,1.250,-2.500,refused_not_finite,"
              "150.000,\r\n");
}

TEST(ClipState, AClipIsItsShotsOnlyWhileNoLaterSwingRewroteIt) {
    TempDir dir;
    const fs::path clip = dir.path() / "MyRecord0.mp4";
    WriteFileText(clip, "clip");
    struct Case {
        int64_t modifiedAfterShotMs;
        bool there;
    };
    for (const Case& c : {Case{2000, true}, Case{-5000, true}, Case{120000, false}}) {
        const int64_t modified = kNoon + c.modifiedAfterShotMs;
        const timespec times[2] = {{modified / 1000, (modified % 1000) * 1000000},
                                   {modified / 1000, (modified % 1000) * 1000000}};
        ASSERT_EQ(utimensat(AT_FDCWD, clip.c_str(), times, 0), 0);
        EXPECT_EQ(history::ClipStillThere(clip.string(), kNoon), c.there) << c.modifiedAfterShotMs;
    }
    EXPECT_FALSE(history::ClipStillThere((dir.path() / "MyRecord1.mp4").string(), kNoon));
}

}  // namespace
}  // namespace orv::test

// The history file on its own and in its window: many shots then the figures
// per club, files that cannot be written, a damaged file, CSV exactly as
// written under a comma locale by the command-line export, clips told apart by
// date, and the History window on a real file under a private X server.
#include <sys/resource.h>

#include <gtest/gtest.h>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QPushButton>
#include <QTableWidget>
#include <QXYSeries>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "app/history_dialog.h"
#include "common/clock.h"
#include "history/history_store.h"
#include "history/history_writer.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"
#include "tests/ui/gui_test_app.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;
using Orvane::ShotOutcome;
using Orvane::ShotReport;

constexpr int64_t kNoon = 1795003200000;  // 2026-11-18T12:00:00Z

ShotReport Shot(int club, double ballSpeed, int64_t time = kNoon, std::string clip = {}) {
    ShotReport shot;
    shot.clip = std::move(clip);
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
        const char* logged;
        size_t leastKept, mostKept;  // the size limit is reached on the way
    };
    const char* kNotKept = "shots go on without being kept";
    for (const Case& c : {Case{"folder is a file", Fault::kFolderIsAFile, kNotKept, 0, 0},
                          Case{"file size limit", Fault::kFileSizeLimit, kNotKept, 1, 299},
                          Case{"damaged file", Fault::kDamagedFile,
                               "History file was damaged; kept as ", 300, 300}}) {
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
        std::string log;
        {
            LogCapture capture;
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
            setrlimit(RLIMIT_FSIZE, &saved);
            log = capture.Text();
        }
        std::signal(SIGXFSZ, previous);
        EXPECT_EQ(CountOf(log, c.logged), 1u) << "[" << log << "]";
        if (c.fault == Fault::kDamagedFile) {
            size_t aside = 0;
            for (const auto& entry : fs::directory_iterator(dir.path())) {
                if (entry.path().filename().string().starts_with("history.db.corrupt-")) {
                    EXPECT_EQ(ReadFileText(entry.path()), std::string(5000, 'x'));
                    ++aside;
                }
            }
            EXPECT_EQ(aside, 1u);
        }
        auto store = fs::exists(file) ? history::HistoryStore::Open(file) : nullptr;
        const size_t kept = store ? store->Shots({}).size() : 0u;
        EXPECT_GE(kept, c.leastKept);
        EXPECT_LE(kept, c.mostKept);
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

TEST(HistoryView, ShowsShotsFiguresPlotsAndClipsAndExportsTheSelection) {
    GuiTestApp();
    TempDir dir;
    const auto file = dir.path() / "history.db";
    const int64_t now = WallClockMs();
    // Written now: the newest shot's clip, and a later swing's over an older shot's.
    const std::string kept = (dir.path() / "MyRecord0.mp4").string();
    const std::string rewritten = (dir.path() / "MyRecord1.mp4").string();
    WriteFileText(kept, "clip");
    WriteFileText(rewritten, "clip");
    int64_t current = 0;
    {
        auto store = history::HistoryStore::Open(file);
        ASSERT_TRUE(store);
        const int64_t earlier = store->BeginSession(now - 86400000);
        store->Insert(earlier, Shot(1, 150.0, now - 86400000, (dir.path() / "none.mp4").string()));
        current = store->BeginSession(now - 600000);
        const double speeds[] = {140, 146, 151, 138, 149};
        for (int i = 0; i < 5; ++i) {
            ShotReport shot = Shot(1, speeds[i], now - 500000 + i * 60000, i == 0 ? rewritten : "");
            shot.ball.SideSpin = -600.0 + 300.0 * i;  // spread over the shape plot
            shot.ball.LaunchDirection = shot.ball.SideSpin / 200.0;
            store->Insert(current, shot);
        }
        store->Insert(current, Shot(8, 110.0, now - 100000));
        store->Insert(current, Shot(8, 114.0, now - 90000));
        ShotReport refused = Shot(8, std::nan(""), now - 80000);
        refused.outcome = ShotOutcome::kRefusedNotFinite;
        refused.ball.SideSpin = std::nan("");
        store->Insert(current, refused);
        store->Insert(current, Shot(8, 112.0, now, kept));
    }

    HistoryDialog dialog(file, current);
    dialog.show();
    ASSERT_TRUE(ProcessEventsUntil([&] { return dialog.isVisible(); }));
    EXPECT_EQ(dialog.shotTable->rowCount(), 10);
    ASSERT_EQ(dialog.figureTable->rowCount(), 2);
    EXPECT_EQ(dialog.figureTable->item(0, 1)->text(), "6");
    EXPECT_EQ(dialog.figureTable->item(1, 1)->text(), "3");  // the refused shot has no figures
    EXPECT_EQ(dialog.shotTable->item(8, 8)->text(),
              "Shot not sent: the simulator named no known club");
    EXPECT_EQ(dialog.shotTable->item(0, 9)->text(), "gone");
    EXPECT_EQ(dialog.shotTable->item(1, 9)->text(), "gone");
    EXPECT_EQ(dialog.shotTable->item(9, 9)->text(), "MyRecord0.mp4");

    const QList<QAbstractSeries*> shapes = dialog.shapeChart->chart()->series();
    ASSERT_EQ(shapes.size(), 2);
    EXPECT_EQ(static_cast<QXYSeries*>(shapes[0])->count(), 6);
    EXPECT_EQ(static_cast<QXYSeries*>(shapes[1])->count(), 3);
    const auto* speeds = static_cast<QXYSeries*>(dialog.speedChart->chart()->series().at(0));
    ASSERT_EQ(speeds->count(), 8);  // this session's shots that had numbers
    EXPECT_EQ(speeds->at(2), QPointF(3, 151));

    dialog.shotTable->selectRow(1);
    EXPECT_FALSE(dialog.btnReplay->isEnabled());
    dialog.shotTable->selectRow(9);
    EXPECT_TRUE(dialog.btnReplay->isEnabled());
    const auto csv = dir.path() / "selected.csv";
    ASSERT_TRUE(dialog.ExportTo(csv, true));
    EXPECT_EQ(CountOf(ReadFileText(csv), "\r\n"), 2u);

    dialog.clubFilter->setCurrentIndex(dialog.clubFilter->findData(8));
    EXPECT_EQ(dialog.shotTable->rowCount(), 4);
    EXPECT_EQ(dialog.shapeChart->chart()->series().size(), 1);
}

}  // namespace
}  // namespace orv::test

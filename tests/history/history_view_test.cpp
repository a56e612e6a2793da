// The History window on a real file under a private X server: the shots, the
// figures per club, both plots, the club filter, clips there or gone, and
// the export of the selected shots.
#include <sys/stat.h>

#include <gtest/gtest.h>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QXYSeries>

#include <cmath>

#include "app/history_dialog.h"
#include "common/clock.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"
#include "tests/ui/gui_test_app.h"

namespace orv::test {
namespace {

Orvane::ShotReport Shot(int club, double speed, double sideSpin, int64_t time,
                        std::string clip = {}) {
    Orvane::ShotReport shot;
    shot.wallTimeMs = time;
    shot.club = club;
    shot.sensorClub = club;
    shot.clubName = club == 1 ? "Driver" : "7Iron";
    shot.ball = {club == 1 ? 12.0 : 18.0, sideSpin / 200.0, speed, club == 1 ? 2600.0 : 6500.0,
                 sideSpin};
    shot.clubData = {speed / 1.45, 0.5, -1.0};
    shot.clip = std::move(clip);
    return shot;
}

TEST(HistoryView, ShowsShotsFiguresPlotsAndClipsAndExportsTheSelection) {
    GuiTestApp();
    TempDir dir;
    const auto file = dir.path() / "history.db";
    const int64_t now = WallClockMs();
    const std::string kept = (dir.path() / "MyRecord0.mp4").string();
    WriteFileText(kept, "clip");  // written now: the newest shot's clip
    int64_t current = 0;
    {
        auto store = history::HistoryStore::Open(file);
        ASSERT_TRUE(store);
        const int64_t earlier = store->BeginSession(now - 86400000);
        store->Insert(earlier, Shot(1, 150.0, 400.0, now - 86400000));
        current = store->BeginSession(now - 600000);
        const double speeds[] = {140, 146, 151, 138, 149};
        for (int i = 0; i < 5; ++i) {
            store->Insert(current, Shot(1, speeds[i], -600.0 + 300.0 * i, now - 500000 + i * 60000,
                                        i == 0 ? (dir.path() / "MyRecord1.mp4").string() : ""));
        }
        store->Insert(current, Shot(8, 110.0, -250.0, now - 100000));
        store->Insert(current, Shot(8, 114.0, 150.0, now - 90000));
        Orvane::ShotReport refused = Shot(8, std::nan(""), std::nan(""), now - 80000);
        refused.outcome = Orvane::ShotOutcome::kRefusedNotFinite;
        store->Insert(current, refused);
        store->Insert(current, Shot(8, 112.0, 0.0, now, kept));
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
    EXPECT_EQ(dialog.shotTable->item(1, 9)->text(), "gone");  // its file was never there
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

    dialog.resize(980, 620);
    dialog.tabs->setCurrentIndex(2);
    ProcessEventsUntil([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_TRUE(dialog.grab().save(ORVANE_SCREENSHOT_DIR "/history-shape.png"));

    dialog.clubFilter->setCurrentIndex(dialog.clubFilter->findData(8));
    EXPECT_EQ(dialog.shotTable->rowCount(), 4);
    EXPECT_EQ(dialog.shapeChart->chart()->series().size(), 1);
}

}  // namespace
}  // namespace orv::test

// Fifty replays through the player window leave nothing behind: no
// GStreamer object, window, thread or descriptor made for a clip outlives it.
#include <gtest/gtest.h>

#include <QApplication>

#include <map>
#include <string>

#include "tests/video/video_test_support.h"
#include "video/player_wnd.h"

namespace {

using namespace std::chrono_literals;
using orv::test::ProcessEventsUntil;

// GStreamer's leak tracer sees every object made after gst_init.
const bool kTracer = (g_setenv("GST_TRACERS", "leaks", TRUE), true);
const bool kPlatform = (qputenv("QT_QPA_PLATFORM", "xcb"), true);

// Live GStreamer objects by type, as the leak tracer lists them.
std::map<std::string, int> LiveObjects() {
    std::map<std::string, int> live;
    GList* tracers = gst_tracing_get_active_tracers();
    for (GList* item = tracers; item != nullptr; item = item->next) {
        if (std::string(G_OBJECT_TYPE_NAME(item->data)) != "GstLeaksTracer") {
            continue;
        }
        GstStructure* info = nullptr;
        g_signal_emit_by_name(item->data, "get-live-objects", &info);
        const GValue* list = gst_structure_get_value(info, "live-objects-list");
        for (guint i = 0; i < gst_value_list_get_size(list); ++i) {
            const GValue* object = gst_structure_get_value(
                gst_value_get_structure(gst_value_list_get_value(list, i)), "object");
            ++live[G_VALUE_TYPE_NAME(object)];
            // The list holds the objects without a reference of its own but
            // drops one when freed (GStreamer 1.22): give it that reference.
            if (G_VALUE_HOLDS_OBJECT(object)) {
                g_object_ref(g_value_get_object(object));
            } else {
                gst_mini_object_ref(GST_MINI_OBJECT_CAST(g_value_get_boxed(object)));
            }
        }
        gst_structure_free(info);
    }
    g_list_free_full(tracers, gst_object_unref);
    return live;
}

TEST(ReplayLeakTest, FiftyReplaysLeaveNoObjectWindowOrDescriptor) {
    orv::test::UseGui();
    orv::test::TempDir dir;
    const std::string clip = (dir.path() / "swing.mp4").string();
    ASSERT_TRUE(orv::test::MakeClip(clip, 0.3));
    const qsizetype widgets = QApplication::allWidgets().size();
    PlayerWnd* player = PlayerWnd::GetInstance();
    ASSERT_TRUE(player->SetWindowInstance(nullptr));

    // Half end by themselves; half are cut short, as the next swing does.
    const auto replay = [&](int i) {
        ASSERT_TRUE(player->Create());
        ASSERT_TRUE(player->OpenURL(clip));
        if (i % 2 == 1) {
            ASSERT_TRUE(
                ProcessEventsUntil([&] { return player->State() == PlayerState::Started; }));
            player->Close();
        }
        ASSERT_TRUE(ProcessEventsUntil([&] { return !player->HasPlayer(); }));
    };
    // The first replays load the plugins and fill GStreamer's type caches.
    for (int i = 0; i < 2; ++i) {
        replay(i);
    }
    const std::map<std::string, int> objects = LiveObjects();
    ASSERT_FALSE(objects.empty());  // the tracer is on
    const int fds = orv::test::OpenFdCount();
    const int threads = orv::test::ThreadCount();
    for (int i = 0; i < 50; ++i) {
        replay(i);
    }
    const std::map<std::string, int> left = LiveObjects();
    for (const auto& [type, count] : left) {
        EXPECT_LE(count, objects.count(type) ? objects.at(type) : 0) << type;
    }
    EXPECT_EQ(orv::test::OpenFdCount(), fds);
    // Idle streaming threads of GStreamer's pool end after a while.
    EXPECT_TRUE(ProcessEventsUntil([&] { return orv::test::ThreadCount() <= threads; }, 30s))
        << orv::test::ThreadNames();
    PlayerWnd::ReleaseInstance();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(QApplication::allWidgets().size(), widgets);
}

}  // namespace

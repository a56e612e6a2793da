#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QThread>
#include <QUrl>

#include <thread>

#include "app/deployment.h"
#include "app/help_links.h"
#include "app/version_check_worker.h"
#include "tests/app/https_test_server.h"
#include "tests/support/test_support.h"
#include "tests/ui/gui_test_app.h"

namespace {

using orv::test::MessageBoxAnswerer;
using orv::test::ProcessEventsUntil;
using namespace std::chrono_literals;

// Stands in for the desktop's browser.
class UrlRecorder : public QObject {
    Q_OBJECT
public:
    UrlRecorder() { QDesktopServices::setUrlHandler("https", this, "Open"); }
    ~UrlRecorder() override { QDesktopServices::unsetUrlHandler("https"); }
    QStringList opened;

public slots:
    void Open(const QUrl& url) { opened << url.toString(); }
};

TEST(VersionCheckWorker, ResultArrivesOnTheUiThread) {
    orv::test::GuiTestApp();
    orv::test::TempDir dir;
    orv::test::HttpsTestServer server(dir.path(), "service");
    ASSERT_TRUE(server.ok());
    server.Answer(R"({"data":{"app_ver":"9.0.0","app_down_url":"https://dl.orvane.invalid/a",)"
                  R"("firm_ver":"1.0.4","firm_down_url":"https://dl.orvane.invalid/f"}})");
    orv::VersionCheckConfig config;
    config.host = "127.0.0.1";
    config.port = server.port();
    config.caFile = server.caFile();
    config.runningVersion = "1.0.0";

    orv::VersionCheckWorker worker(config);
    std::vector<orv::VersionCheckResult> results;
    bool onUiThread = false;
    QObject::connect(&worker, &orv::VersionCheckWorker::Finished,
                     [&](const orv::VersionCheckResult& result) {
                         onUiThread = QThread::currentThread() == qApp->thread();
                         results.push_back(result);
                     });
    worker.Start();
    worker.Start();  // once only
    ASSERT_TRUE(ProcessEventsUntil([&] { return !results.empty(); }));
    EXPECT_TRUE(onUiThread);
    EXPECT_TRUE(orv::ShouldOfferAppUpdate(results[0]));
    EXPECT_FALSE(orv::ShouldOfferFirmwareUpdate("1.0.5", results[0].latest.latestFirmwareVersion));
    QCoreApplication::processEvents();
    EXPECT_EQ(results.size(), 1u);
}

TEST(VersionCheckWorker, DestroyedWhileCheckingWaitsAndStaysSilent) {
    orv::test::GuiTestApp();
    orv::test::TempDir dir;
    orv::test::HttpsTestServer server(dir.path(), "service");
    ASSERT_TRUE(server.ok());
    server.Answer(R"({"data":{}})", orv::test::HttpsTestServer::Behaviour::kStall);
    orv::VersionCheckConfig config;
    config.host = "127.0.0.1";
    config.port = server.port();
    config.caFile = server.caFile();
    config.timing.total = 300ms;

    int finished = 0;
    const auto start = std::chrono::steady_clock::now();
    {
        orv::VersionCheckWorker worker(config);
        QObject::connect(&worker, &orv::VersionCheckWorker::Finished, [&] { ++finished; });
        worker.Start();
        ASSERT_TRUE(orv::test::Eventually([&] { return server.Connections() == 1; }));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    QCoreApplication::processEvents();
    EXPECT_EQ(finished, 0);
}

}  // namespace

#include "shell_links_test.moc"

#include "app/version_check.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "common/debug_log.h"
#include "tests/app/https_test_server.h"
#include "tests/support/test_support.h"

namespace {

using orv::VersionCheckStatus;
using orv::test::HttpsTestServer;
using namespace std::chrono_literals;

std::string Answer(const std::string& appVersion, const std::string& firmware = "2.1.0") {
    return R"({"result":"ok","data":{"app_ver":")" + appVersion +
           R"(","app_down_url":"https://dl.orvane.invalid/app.zip","firm_ver":")" + firmware +
           R"(","firm_down_url":"https://dl.orvane.invalid/fw.bin"}})";
}

TEST(VersionCompare, NumbersNotText) {
    EXPECT_EQ(orv::CompareVersion("1.2.3", "1.10.0"), -1);
    EXPECT_EQ(orv::CompareVersion("1.10.0", "1.2.3"), 1);
    EXPECT_EQ(orv::CompareVersion("1.2", "1.2.0"), 0);
    EXPECT_EQ(orv::CompareVersion("", "0.0.0"), 0);
    EXPECT_EQ(orv::CompareVersion("2.0.0", "1.99.99"), 1);
    EXPECT_EQ(orv::CompareVersion("1.0.9", "1.0.10"), -1);

    EXPECT_TRUE(orv::ShouldOfferFirmwareUpdate("1.0.3", "1.0.4"));
    EXPECT_FALSE(orv::ShouldOfferFirmwareUpdate("1.0.5", "1.0.4"));  // sensor newer than server
    EXPECT_FALSE(orv::ShouldOfferFirmwareUpdate("1.0.4", "1.0.4"));
    EXPECT_FALSE(orv::ShouldOfferFirmwareUpdate("", "1.0.4"));  // sensor not connected yet
    EXPECT_FALSE(orv::ShouldOfferFirmwareUpdate("1.0.3", ""));  // check not finished
    EXPECT_EQ(orv::CompareVersion(orv::GetVersion(), ORVANE_PROJECT_VERSION), 0);
}

struct VersionService : ::testing::Test {
    VersionService() : server(dir.path(), "service") { ShowLog(true, false); }
    ~VersionService() override { ShowLog(false, false); }

    orv::VersionCheckConfig Config(const std::string& running) const {
        orv::VersionCheckConfig config;
        config.host = "127.0.0.1";
        config.port = server.port();
        config.caFile = server.caFile();
        config.runningVersion = running;
        config.timing.connect = 5s;
        config.timing.total = 5s;
        return config;
    }

    orv::test::TempDir dir;
    HttpsTestServer server;
};

TEST_F(VersionService, OffersUpdateOnlyWhenRunningIsOlder) {
    ASSERT_TRUE(server.ok());
    struct Case {
        const char* running;
        const char* latest;
        bool offer;
    };
    for (const Case& c : {Case{"0.9.0", "1.0.0", true}, Case{"1.2", "1.2.0", false},
                          Case{"2.0.0", "1.0.0", false}, Case{"1.2.3", "1.10.0", true}}) {
        SCOPED_TRACE(std::string(c.running) + " vs " + c.latest);
        server.Answer(Answer(c.latest));
        orv::test::StdoutCapture out;
        const orv::VersionCheckResult result = orv::CheckVersion(Config(c.running));
        ASSERT_EQ(result.status, VersionCheckStatus::kOk);
        EXPECT_EQ(result.appVersion, c.running);
        EXPECT_EQ(result.latest.latestAppVersion, c.latest);
        EXPECT_EQ(result.latest.appDownloadUrl, "https://dl.orvane.invalid/app.zip");
        EXPECT_EQ(result.latest.latestFirmwareVersion, "2.1.0");
        EXPECT_EQ(result.latest.firmwareDownloadUrl, "https://dl.orvane.invalid/fw.bin");
        EXPECT_EQ(orv::ShouldOfferAppUpdate(result), c.offer);

        const std::string log = out.Text();
        const std::string tag = "[CMainDlg::CheckVersion(";
        EXPECT_NE(log.find(Answer(c.latest) + "\n"), std::string::npos) << log;
        const size_t app = log.find("] App ver: " + std::string(c.running) + "\n");
        const size_t latest = log.find("] Latest ver: " + std::string(c.latest) + "\n");
        const size_t url = log.find("] Down url: https://dl.orvane.invalid/app.zip\n");
        ASSERT_NE(app, std::string::npos) << log;
        EXPECT_LT(app, latest);
        EXPECT_LT(latest, url);
        EXPECT_EQ(orv::test::CountOf(log, tag), 4u) << log;
    }

    // The service's headers, in this order, and no accept types.
    const std::string request = server.LastRequest();
    EXPECT_EQ(request.rfind("GET /intro/version HTTP/1.1\r\n", 0), 0u) << request;
    EXPECT_NE(request.find("\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                           "ORVANE-app-Agent: 1.0\r\n"
                           "ORVANE-Language: en\r\n"
                           "ORVANE-Platform: WIN\r\n"),
              std::string::npos)
        << request;
    EXPECT_EQ(request.find("Accept:"), std::string::npos) << request;
}

TEST_F(VersionService, BadAnswersEndTheCheckWithALoggedError) {
    ASSERT_TRUE(server.ok());
    for (const char* body : {R"({"app_ver":"9.9.9"})", "<html>Service unavailable</html>",
                             R"({"data":{"app_ver":"9.9.9"}})", R"({"data":[1,2]})", ""}) {
        SCOPED_TRACE(body);
        server.Answer(body);
        orv::test::StdoutCapture out;
        const orv::VersionCheckResult result = orv::CheckVersion(Config("1.0.0"));
        EXPECT_EQ(result.status, VersionCheckStatus::kBadAnswer);
        EXPECT_TRUE(result.latest.latestAppVersion.empty());
        EXPECT_FALSE(orv::ShouldOfferAppUpdate(result));
        const std::string log = out.Text();
        EXPECT_NE(log.find("!!! ERROR ["), std::string::npos) << log;
        EXPECT_NE(log.find("[json.exception."), std::string::npos) << log;
        EXPECT_EQ(log.find("App ver:"), std::string::npos) << log;
    }
}

TEST_F(VersionService, SlowServerIsCutOffByTheTimeLimit) {
    ASSERT_TRUE(server.ok());
    server.Answer(Answer("9.9.9"), HttpsTestServer::Behaviour::kStall);
    orv::VersionCheckConfig config = Config("1.0.0");
    config.timing.total = 300ms;
    const auto start = std::chrono::steady_clock::now();
    const orv::VersionCheckResult result = orv::CheckVersion(config);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(result.status, VersionCheckStatus::kNoAnswer);
    EXPECT_GE(took, 250ms);
    EXPECT_LT(took, 3s);

    // A server that takes the connection but never does the TLS handshake
    // is cut off by the connect time-out.
    orv::test::MuteServer mute;
    config.port = mute.port();
    config.timing.connect = 300ms;
    config.timing.total = 10s;
    const auto handshake = std::chrono::steady_clock::now();
    EXPECT_EQ(orv::CheckVersion(config).status, VersionCheckStatus::kNoAnswer);
    EXPECT_LT(std::chrono::steady_clock::now() - handshake, 3s);
}

}  // namespace

#include "app/version_check.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

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

TEST(VersionCompare, NumbersNotTextAndFirmwareOfferedOnlyWhenBothAreKnown) {
    struct Case {
        const char* a;  // for the firmware: the sensor's
        const char* b;  // the service's
        int compared;
        bool firmwareOffer;
    };
    for (const Case& c : {Case{"1.2.3", "1.10.0", -1, true}, Case{"1.10.0", "1.2.3", 1, false},
                          Case{"1.2", "1.2.0", 0, false}, Case{"2.0.0", "1.99.99", 1, false},
                          Case{"1.0.9", "1.0.10", -1, true}, Case{"", "1.0.4", -1, false},
                          Case{"1.0.3", "", 1, false}}) {
        EXPECT_EQ(orv::CompareVersion(c.a, c.b), c.compared) << c.a << " " << c.b;
        EXPECT_EQ(orv::ShouldOfferFirmwareUpdate(c.a, c.b), c.firmwareOffer) << c.a << " " << c.b;
    }
    EXPECT_EQ(orv::CompareVersion(orv::GetVersion(), ORVANE_PROJECT_VERSION), 0);
}

orv::VersionCheckConfig Config(const HttpsTestServer& server, const std::string& running) {
    orv::VersionCheckConfig config;
    config.host = "127.0.0.1";
    config.port = server.port();
    config.caFile = server.caFile();
    config.runningVersion = running;
    config.timing = {5s, 5s};
    return config;
}

// Server answer -> result, offer and log, one exchange each over real TLS.
TEST(VersionService, AnswersOfferUpdatesOnlyWhenRunningIsOlderAndFaultsEndTheCheck) {
    HttpsTestServer server;
    HttpsTestServer mute(false);  // no TLS handshake ever
    ASSERT_TRUE(server.port() > 0 && mute.port() > 0);
    constexpr auto kOk = VersionCheckStatus::kOk;
    constexpr auto kBad = VersionCheckStatus::kBadAnswer;
    constexpr auto kNone = VersionCheckStatus::kNoAnswer;
    enum Answered { kWhole, kHalf, kNoTls };  // half: the rest never comes
    struct Case {
        std::string running, body;
        Answered answered;
        VersionCheckStatus status;
        bool offer;
    };
    const Case cases[] = {
        {"0.9.0", Answer("1.0.0"), kWhole, kOk, true},
        {"1.2", Answer("1.2.0"), kWhole, kOk, false},
        {"2.0.0", Answer("1.0.0"), kWhole, kOk, false},
        {"1.0.0", "<html>Service unavailable</html>", kWhole, kBad, false},
        {"1.0.0", R"({"data":{"app_ver":"9.9.9"}})", kWhole, kBad, false},
        {"1.0.0", Answer("9.9.9"), kHalf, kNone, false},  // cut off by the time limit
        {"1.0.0", "", kNoTls, kNone, false},              // cut off by the connect time-out
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.running + " " + c.body);
        server.Serve(c.body, c.answered == kHalf);
        orv::VersionCheckConfig config = Config(c.answered == kNoTls ? mute : server, c.running);
        if (c.answered == kHalf) {
            config.timing.total = 300ms;
        } else if (c.answered == kNoTls) {
            config.timing = {300ms, 10s};
        }
        orv::test::LogCapture log;
        const auto start = std::chrono::steady_clock::now();
        const orv::VersionCheckResult result = orv::CheckVersion(config);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
        EXPECT_EQ(result.status, c.status);
        EXPECT_EQ(orv::ShouldOfferAppUpdate(result), c.offer);
        const std::string text = log.Text();
        if (c.status == kBad) {
            EXPECT_NE(text.find("!!! ERROR ["), std::string::npos) << text;
            EXPECT_NE(text.find("[json.exception."), std::string::npos) << text;
        }
        if (c.status != kOk) {
            EXPECT_EQ(text.find("App ver:"), std::string::npos) << text;
            continue;
        }
        EXPECT_EQ(result.appVersion, c.running);
        EXPECT_EQ(result.latest.latestFirmwareVersion, "2.1.0");
        EXPECT_EQ(result.latest.firmwareDownloadUrl, "https://dl.orvane.invalid/fw.bin");
        size_t at = 0;
        for (const std::string& line :
             {c.body + "\n", "] App ver: " + c.running + "\n",
              "] Latest ver: " + result.latest.latestAppVersion + "\n",
              std::string("] Down url: https://dl.orvane.invalid/app.zip\n")}) {
            ASSERT_NE(at = text.find(line, at), std::string::npos) << line << text;
        }
        EXPECT_EQ(orv::test::CountOf(text, "[CMainDlg::CheckVersion("), 4u) << text;
    }

    // The service's headers, in this order, and no accept types.
    const std::string request = server.Served();
    EXPECT_EQ(request.rfind("GET /intro/version HTTP/1.1\r\n", 0), 0u) << request;
    EXPECT_NE(request.find("\r\nContent-Type: application/x-www-form-urlencoded\r\n"
                           "ORVANE-app-Agent: 1.0\r\n"
                           "ORVANE-Language: en\r\n"
                           "ORVANE-Platform: WIN\r\n"),
              std::string::npos)
        << request;
    EXPECT_EQ(request.find("Accept:"), std::string::npos) << request;
}

}  // namespace

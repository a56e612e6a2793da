// A real HTTPS server on 127.0.0.1: socat with a self-signed test certificate
// for 127.0.0.1, answering every connection with what Serve was last given.
#pragma once

#include <QProcess>
#include <QRegularExpression>

#include <string>

#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace orv::test {

class HttpsTestServer {
public:
    // Without TLS the server takes connections and never answers them.
    explicit HttpsTestServer(bool tls = true) {
        const QString listen = tls ? "OPENSSL-LISTEN:0,verify=0,cert=" + QString(caFile()) +
                                         ",key=" ORVANE_TEST_CERT_DIR "/service-key.pem"
                                   : "TCP-LISTEN:0";
        // The request's head is kept; a stalled answer waits for the client to leave.
        socat_.setWorkingDirectory(QString::fromStdString(dir_.path().string()));
        socat_.setStandardErrorFile(QString::fromStdString((dir_.path() / "log").string()));
        socat_.start("socat", {"-d", "-d", listen + ",bind=127.0.0.1,fork",
                               "SYSTEM:sed -u '/^\\r$/q' >request; cat answer; "
                               "test ! -e stall || exec cat >/dev/null"});
        const QRegularExpression listening(" listening on .*:(\\d+)\\n");
        Eventually([&] {
            const std::string log = ReadFileText(dir_.path() / "log");
            return (port_ = listening.match(QString::fromStdString(log)).captured(1).toInt()) > 0;
        });
    }
    ~HttpsTestServer() {
        socat_.terminate();
        socat_.waitForFinished();
    }

    bool ok() const { return port_ > 0; }
    int port() const { return port_; }
    // The certificate, which clients take as their CA file.
    static const char* caFile() { return ORVANE_TEST_CERT_DIR "/service-cert.pem"; }

    // The answer to the next connections: `body` whole, or its first half and then silence.
    void Serve(const std::string& body, bool stall = false) {
        WriteFileText(dir_.path() / "answer",
                      "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                          std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
                          body.substr(0, stall ? body.size() / 2 : body.size()));
        std::filesystem::remove(dir_.path() / "stall");
        if (stall) {
            WriteFileText(dir_.path() / "stall", "");
        }
    }
    bool Connected() const { return std::filesystem::exists(dir_.path() / "request"); }
    // The head of the last request (request line and headers).
    std::string Served() const { return ReadFileText(dir_.path() / "request"); }

private:
    TempDir dir_;
    QProcess socat_;
    int port_ = 0;
};

}  // namespace orv::test

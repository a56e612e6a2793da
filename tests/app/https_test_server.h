// A real HTTPS server on 127.0.0.1: socat with a self-signed test certificate
// for 127.0.0.1, answering every connection with what Serve was last given.
#pragma once

#include <memory>
#include <regex>
#include <string>

#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace orv::test {

class HttpsTestServer {
public:
    // Without TLS the server takes connections and never answers them.
    explicit HttpsTestServer(bool tls = true) {
        const std::string listen =
            (tls ? std::string("OPENSSL-LISTEN:0,verify=0,cert=") + caFile() +
                       ",key=" ORVANE_TEST_CERT_DIR "/service-key.pem"
                 : "TCP-LISTEN:0") +
            ",bind=127.0.0.1,fork";
        const std::string log = (dir_.path() / "log").string();
        // The request's head is kept; a stalled answer waits for the client to leave.
        const char* script =
            "SYSTEM:sed -u '/^\\r$/q' >request; cat answer; test ! -e stall || exec cat >/dev/null";
        // Gone after five minutes even when the test dies.
        server_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{"timeout", "300", "socat", "-d", "-d", "-lf", log, listen,
                                     script},
            dir_.path());
        const std::regex listening(" listening on .*:(\\d+)\n");
        std::smatch port;
        Eventually([&] {
            const std::string text = ReadFileText(log);
            return std::regex_search(text, port, listening) && (port_ = std::stoi(port[1])) > 0;
        });
    }
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
    std::unique_ptr<ChildProcess> server_;
    int port_ = 0;
};

}  // namespace orv::test

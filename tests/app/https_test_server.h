// A real HTTPS server on 127.0.0.1: socat with a self-signed test certificate
// for 127.0.0.1, answering every connection with what Serve was last given.
#pragma once

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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
        // Gone after five minutes even when the test dies; spawned, not forked,
        // as the test process already runs threads.
        const char* argv[] = {"timeout", "300",       "socat",        "-d",   "-d",
                              "-lf",     log.c_str(), listen.c_str(), script, nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, dir_.path().c_str());
        posix_spawnp(&pid_, "timeout", &actions, nullptr, const_cast<char**>(argv), environ);
        posix_spawn_file_actions_destroy(&actions);
        const std::regex listening(" listening on .*:(\\d+)\n");
        std::smatch port;
        Eventually([&] {
            const std::string text = ReadFileText(log);
            return std::regex_search(text, port, listening) && (port_ = std::stoi(port[1])) > 0;
        });
    }
    ~HttpsTestServer() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
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
    pid_t pid_ = 0;
    int port_ = 0;
};

}  // namespace orv::test

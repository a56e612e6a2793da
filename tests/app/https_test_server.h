// A real TLS server on 127.0.0.1 for the version check, with a self-signed
// test certificate for 127.0.0.1. One connection at a time.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orv::test {

class HttpsTestServer {
public:
    enum class Behaviour {
        kAnswer,  // the whole answer, then close
        kStall,   // the header and half the body, then nothing until the client leaves
    };

    HttpsTestServer();
    ~HttpsTestServer();
    HttpsTestServer(const HttpsTestServer&) = delete;
    HttpsTestServer& operator=(const HttpsTestServer&) = delete;

    bool ok() const { return port_ > 0; }
    int port() const { return port_; }
    // The certificate, which clients take as their CA file.
    static const char* caFile() { return ORVANE_TEST_CERT_DIR "/service-cert.pem"; }

    void Answer(std::string body, Behaviour behaviour = Behaviour::kAnswer);
    // The head of the last request (request line and header lines).
    std::string LastRequest() const;

private:
    void Serve();
    void HandleClient(int fd);

    void* context_ = nullptr;  // SSL_CTX
    int listenFd_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    mutable std::mutex mutex_;  // guards body_, behaviour_, lastRequest_
    std::string body_;
    Behaviour behaviour_ = Behaviour::kAnswer;
    std::string lastRequest_;
    std::thread thread_;
};

// Takes connections on 127.0.0.1 and never says a word, so a TLS client
// hangs in its handshake.
class MuteServer {
public:
    MuteServer();
    ~MuteServer();
    MuteServer(const MuteServer&) = delete;
    MuteServer& operator=(const MuteServer&) = delete;

    int port() const { return port_; }
    // Takes a waiting connection, if any; true once one was taken.
    bool Accept();

private:
    int port_ = 0;
    int listenFd_;
    std::vector<int> clients_;
};

}  // namespace orv::test

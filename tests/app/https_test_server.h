// A real TLS server on 127.0.0.1 for the version check, with a self-signed
// test certificate for 127.0.0.1. Serves one connection at a time.
#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace orv::test {

class HttpsTestServer {
public:
    enum class Behaviour {
        kAnswer,  // the whole answer, then close
        kStall,   // the header and half the body, then nothing until the client leaves
        kMute,    // takes the connection and never starts TLS
    };

    HttpsTestServer();
    ~HttpsTestServer();
    HttpsTestServer(const HttpsTestServer&) = delete;
    HttpsTestServer& operator=(const HttpsTestServer&) = delete;

    bool ok() const { return port_ > 0; }
    int port() const { return port_; }
    // The certificate, which clients take as their CA file.
    static const char* caFile() { return ORVANE_TEST_CERT_DIR "/service-cert.pem"; }

    // Serves the next connection on a thread of its own.
    void Serve(std::string body, Behaviour behaviour = Behaviour::kAnswer);
    bool Connected() const { return connected_; }
    // Waits for that connection's end; the head of its request (request line and headers).
    std::string Served();

private:
    void Handle(int fd, const std::string& body, Behaviour behaviour);

    void* context_ = nullptr;  // SSL_CTX
    int listenFd_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<bool> connected_{false};
    std::string request_;  // written by the thread, read after joining it
    std::thread thread_;
};

}  // namespace orv::test

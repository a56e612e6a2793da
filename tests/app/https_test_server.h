// A real TLS server on 127.0.0.1 for the version check, with a self-signed
// certificate made for the test. One connection at a time.
#pragma once

#include <atomic>
#include <filesystem>
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

    // Makes a key and certificate (for 127.0.0.1) and writes the certificate
    // to `folder`/`name`.pem, where clients find it as their CA file.
    HttpsTestServer(const std::filesystem::path& folder, const std::string& name);
    ~HttpsTestServer();
    HttpsTestServer(const HttpsTestServer&) = delete;
    HttpsTestServer& operator=(const HttpsTestServer&) = delete;

    bool ok() const { return port_ > 0; }
    int port() const { return port_; }
    std::string caFile() const { return caFile_.string(); }

    void Answer(std::string body, Behaviour behaviour = Behaviour::kAnswer);
    // The head of the last request (request line and header lines).
    std::string LastRequest() const;
    int Connections() const { return connections_.load(); }

private:
    void Serve();
    void HandleClient(int fd);

    std::filesystem::path caFile_;
    void* context_ = nullptr;  // SSL_CTX
    int listenFd_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> connections_{0};
    mutable std::mutex mutex_;  // guards body_, behaviour_, lastRequest_
    std::string body_;
    Behaviour behaviour_ = Behaviour::kAnswer;
    std::string lastRequest_;
    std::thread thread_;
};

// A loopback port on which nothing listens.
int UnusedLoopbackPort();

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

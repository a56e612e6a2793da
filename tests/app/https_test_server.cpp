#include "tests/app/https_test_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orv::test {

namespace {

// Polls `fd` until it can be read; false once the server stops.
bool WaitFor(int fd, const std::atomic<bool>& stop) {
    pollfd waiter{fd, POLLIN, 0};
    while (!stop) {
        if (poll(&waiter, 1, 20) > 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

HttpsTestServer::HttpsTestServer() {
    // A client that hangs up mid-answer must not kill the test process.
    signal(SIGPIPE, SIG_IGN);
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    context_ = context;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    listenFd_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (SSL_CTX_use_certificate_file(context, caFile(), SSL_FILETYPE_PEM) == 1 &&
        SSL_CTX_use_PrivateKey_file(context, ORVANE_TEST_CERT_DIR "/service-key.pem",
                                    SSL_FILETYPE_PEM) == 1 &&
        bind(listenFd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        listen(listenFd_, 8) == 0 &&
        getsockname(listenFd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
        port_ = ntohs(address.sin_port);
    }
}

HttpsTestServer::~HttpsTestServer() {
    stop_ = true;
    Served();
    close(listenFd_);
    SSL_CTX_free(static_cast<SSL_CTX*>(context_));
}

void HttpsTestServer::Serve(std::string body, Behaviour behaviour) {
    Served();
    connected_ = false;
    thread_ = std::thread([this, body = std::move(body), behaviour] {
        if (!WaitFor(listenFd_, stop_)) {
            return;
        }
        const int fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
        connected_ = true;
        Handle(fd, body, behaviour);
        close(fd);
    });
}

std::string HttpsTestServer::Served() {
    if (thread_.joinable()) {
        thread_.join();
    }
    return request_;
}

void HttpsTestServer::Handle(int fd, const std::string& body, Behaviour behaviour) {
    // A client that stops talking must not hold the server past the test.
    timeval limit{5, 0};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    SSL* ssl = SSL_new(static_cast<SSL_CTX*>(context_));
    SSL_set_fd(ssl, fd);
    std::string head;
    char buffer[1024];
    if (behaviour != Behaviour::kMute && SSL_accept(ssl) == 1) {
        for (int n = 0; head.find("\r\n\r\n") == std::string::npos &&
                        (n = SSL_read(ssl, buffer, sizeof buffer)) > 0;) {
            head.append(buffer, static_cast<size_t>(n));
        }
        request_ = head.substr(0, head.find("\r\n\r\n") + 2);
        const std::string answer =
            "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
            "Content-Length: " +
            std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
            body.substr(0, behaviour == Behaviour::kStall ? body.size() / 2 : body.size());
        SSL_write(ssl, answer.data(), static_cast<int>(answer.size()));
        if (behaviour == Behaviour::kAnswer) {
            SSL_shutdown(ssl);
        }
    }
    // Silent until the client gives up and closes.
    while (behaviour != Behaviour::kAnswer && WaitFor(fd, stop_) &&
           read(fd, buffer, sizeof buffer) > 0) {
    }
    SSL_free(ssl);
    ERR_clear_error();
}

}  // namespace orv::test

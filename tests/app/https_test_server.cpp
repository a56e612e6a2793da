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

// A listening socket on 127.0.0.1 with a port of the system's choosing; -1 on failure.
int ListenOnLoopback(int flags, int* port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(fd, 8) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        close(fd);
        return -1;
    }
    *port = ntohs(address.sin_port);
    return fd;
}

bool ReadRequestHead(SSL* ssl, std::string* head) {
    char buffer[1024];
    while (head->find("\r\n\r\n") == std::string::npos && head->size() < 16384) {
        const int n = SSL_read(ssl, buffer, sizeof buffer);
        if (n <= 0) {
            return false;
        }
        head->append(buffer, static_cast<size_t>(n));
    }
    return true;
}

// Blocking and without partial writes: all of it or an error.
void Write(SSL* ssl, const std::string& bytes) {
    SSL_write(ssl, bytes.data(), static_cast<int>(bytes.size()));
}

}  // namespace

HttpsTestServer::HttpsTestServer() {
    // A client that hangs up mid-answer must not kill the test process.
    signal(SIGPIPE, SIG_IGN);
    SSL_CTX* context = SSL_CTX_new(TLS_server_method());
    context_ = context;
    if (SSL_CTX_use_certificate_file(context, caFile(), SSL_FILETYPE_PEM) != 1 ||
        SSL_CTX_use_PrivateKey_file(context, ORVANE_TEST_CERT_DIR "/service-key.pem",
                                    SSL_FILETYPE_PEM) != 1) {
        return;
    }
    int port = 0;
    listenFd_ = ListenOnLoopback(0, &port);
    if (listenFd_ >= 0) {
        port_ = port;
        thread_ = std::thread([this] { Serve(); });
    }
}

HttpsTestServer::~HttpsTestServer() {
    stop_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
    if (listenFd_ >= 0) {
        close(listenFd_);
    }
    SSL_CTX_free(static_cast<SSL_CTX*>(context_));
}

void HttpsTestServer::Answer(std::string body, Behaviour behaviour) {
    std::lock_guard lock(mutex_);
    body_ = std::move(body);
    behaviour_ = behaviour;
}

std::string HttpsTestServer::LastRequest() const {
    std::lock_guard lock(mutex_);
    return lastRequest_;
}

void HttpsTestServer::Serve() {
    pollfd waiter{listenFd_, POLLIN, 0};
    while (!stop_) {
        if (poll(&waiter, 1, 20) <= 0) {
            continue;
        }
        const int fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd >= 0) {
            HandleClient(fd);
            close(fd);
        }
    }
}

void HttpsTestServer::HandleClient(int fd) {
    // A client that stops talking must not hold the server past the test.
    timeval limit{5, 0};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    SSL* ssl = SSL_new(static_cast<SSL_CTX*>(context_));
    SSL_set_fd(ssl, fd);
    std::string head;
    if (SSL_accept(ssl) == 1 && ReadRequestHead(ssl, &head)) {
        std::string body;
        Behaviour behaviour;
        {
            std::lock_guard lock(mutex_);
            lastRequest_ = head.substr(0, head.find("\r\n\r\n") + 2);
            body = body_;
            behaviour = behaviour_;
        }
        const std::string header =
            "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
            "Content-Length: " +
            std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
        if (behaviour == Behaviour::kAnswer) {
            Write(ssl, header + body);
            SSL_shutdown(ssl);
        } else {
            Write(ssl, header + body.substr(0, body.size() / 2));
            // Silent until the client gives up and closes.
            pollfd client{fd, POLLIN, 0};
            while (!stop_ && poll(&client, 1, 20) == 0) {
            }
        }
    }
    SSL_free(ssl);
    ERR_clear_error();
}

MuteServer::MuteServer() : listenFd_(ListenOnLoopback(SOCK_NONBLOCK, &port_)) {}

MuteServer::~MuteServer() {
    for (const int fd : clients_) {
        close(fd);
    }
    close(listenFd_);
}

bool MuteServer::Accept() {
    const int client = accept(listenFd_, nullptr, nullptr);
    if (client >= 0) {
        clients_.push_back(client);
    }
    return !clients_.empty();
}

}  // namespace orv::test

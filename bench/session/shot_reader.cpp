#include "bench/session/shot_reader.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

#include "bench/session/simulator_process.h"
#include "simulator/trusim_messages.h"
#include "tools/trusim-emulator/simulator_messages.h"

namespace orv::bench {

namespace {

void SendMessage(int fd, const std::string& json) {
    const std::string frame(json.c_str(), json.size() + 1);
    if (send(fd, frame.data(), frame.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(frame.size())) {
        std::perror("shot reader send");
    }
}

}  // namespace

int ListenOnLoopback(int* port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(fd, 1) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        std::perror("loopback listen");
        if (fd >= 0) {
            close(fd);
        }
        return -1;
    }
    *port = ntohs(address.sin_port);
    return fd;
}

ShotReader::ShotReader() : listenFd_(ListenOnLoopback(&port_)) {
    if (listenFd_ >= 0) {
        server_ = std::thread([this] { Serve(); });
    }
}

ShotReader::~ShotReader() {
    stopping_ = true;
    // Wakes the blocked accept or recv.
    if (listenFd_ >= 0) {
        shutdown(listenFd_, SHUT_RDWR);
    }
    const int connection = connectionFd_.load();
    if (connection >= 0) {
        shutdown(connection, SHUT_RDWR);
    }
    if (server_.joinable()) {
        server_.join();
    }
    if (listenFd_ >= 0) {
        close(listenFd_);
    }
}

void ShotReader::Serve() {
    while (!stopping_) {
        const int connection = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            break;
        }
        const int on = 1;
        setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        connectionFd_ = connection;
        std::string pending;
        char buffer[4096];
        ssize_t got = 0;
        while (!stopping_ && (got = recv(connection, buffer, sizeof buffer, 0)) > 0) {
            const int64_t readAt = SimulatorProcess::Now();
            pending.append(buffer, static_cast<size_t>(got));
            size_t end = 0;
            while ((end = pending.find('\0')) != std::string::npos) {
                Handle(connection, pending.substr(0, end), readAt);
                pending.erase(0, end + 1);
            }
        }
        connectionFd_ = -1;
        close(connection);
    }
}

void ShotReader::Handle(int connection, const std::string& message, int64_t readAt) {
    if (message == E6_GetSendShotJson()) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            ++shots_;
            shotAt_ = readAt;
        }
        changed_.notify_all();
        return;
    }
    const ClientMessage parsed = ReadClientMessage(message);
    if (parsed.type == "Handshake") {
        SendMessage(connection, HandshakeReply(challenge_));
    } else if (parsed.type == "Challenge") {
        const bool right = IsRightChallengeAnswer(challenge_, parsed.developer, parsed.hash);
        SendMessage(connection, AuthenticationReply(right));
        if (right) {
            SendMessage(connection, PlayerDataMessage("Driver", "Right"));
            SendMessage(connection, EnvironmentDataMessage(150.0));
            SendMessage(connection, SimCommandMessage("Arm"));
        }
    }
}

int ShotReader::Shots() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return shots_;
}

int64_t ShotReader::WaitShotAfter(int count, std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, timeout, [&] { return shots_ > count; })) {
        return 0;
    }
    return shotAt_;
}

}  // namespace orv::bench

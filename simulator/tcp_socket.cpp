#include "simulator/tcp_socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "common/debug_log.h"

namespace {

// How often a pending connect asks whether to keep trying.
constexpr std::chrono::milliseconds kConnectSlice{50};

}  // namespace

TcpSocket::~TcpSocket() {
    ::close(fd_);
}

std::shared_ptr<TcpSocket> TcpSocket::Open() {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
    if (fd < 0) {
        return nullptr;
    }
    // Each message is one small write; waiting to coalesce them only adds latency.
    const int on = 1;
    if (::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0) {
        LOG_ERROR("setsockopt error:0x%x\n", static_cast<unsigned>(errno));
    }
    return std::make_shared<TcpSocket>(fd);
}

bool TcpSocket::ConnectWithin(const sockaddr_in& peer, std::chrono::milliseconds limit,
                              const std::function<bool()>& keepTrying) {
    if (::connect(fd_, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0) {
        if (errno != EINPROGRESS) {
            return false;
        }
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (true) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0 || !keepTrying()) {
                return false;
            }
            pollfd entry{fd_, POLLOUT, 0};
            const int ready =
                ::poll(&entry, 1, static_cast<int>(std::min(left, kConnectSlice).count()));
            if (ready < 0 && errno != EINTR) {
                return false;
            }
            if (ready > 0) {
                int error = 0;
                socklen_t length = sizeof error;
                if (::getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error, &length) != 0 || error != 0) {
                    return false;
                }
                break;
            }
        }
    }
    const int flags = ::fcntl(fd_, F_GETFL);
    if (flags < 0 || ::fcntl(fd_, F_SETFL, flags & ~O_NONBLOCK) != 0) {
        LOG_ERROR("fcntl error:0x%x\n", static_cast<unsigned>(errno));
        return false;
    }
    return true;
}

void TcpSocket::Shutdown() {
    ::shutdown(fd_, SHUT_RDWR);
}

void TcpSocket::ShutdownReading() {
    ::shutdown(fd_, SHUT_RD);
}

void TcpSocket::SetResetOnClose() {
    const linger abortive{1, 0};
    if (::setsockopt(fd_, SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive) != 0) {
        LOG_ERROR("setsockopt error:0x%x\n", static_cast<unsigned>(errno));
    }
}

void TcpSocket::SetSendTimeLimit(std::chrono::milliseconds limit) {
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(limit).count();
    const timeval timeout{static_cast<time_t>(micros / 1000000),
                          static_cast<suseconds_t>(micros % 1000000)};
    if (::setsockopt(fd_, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout) != 0) {
        LOG_ERROR("setsockopt error:0x%x\n", static_cast<unsigned>(errno));
    }
}

ssize_t TcpSocket::Send(const void* data, size_t size) {
    ssize_t sent;
    do {
        sent = ::send(fd_, data, size, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent;
}

ssize_t TcpSocket::Receive(void* data, size_t size) {
    ssize_t received;
    do {
        received = ::recv(fd_, data, size, 0);
    } while (received < 0 && errno == EINTR);
    return received;
}

std::optional<in_addr> ResolveIPv4(const std::string& host) {
    in_addr address{};
    address.s_addr = ::inet_addr(host.c_str());
    if (address.s_addr != INADDR_NONE) {
        return address;
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0 || found == nullptr) {
        return std::nullopt;
    }
    address = reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr;
    ::freeaddrinfo(found);
    return address;
}

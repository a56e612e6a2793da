#include "tests/support/loopback_peer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orv::test {

LoopbackPeer::LoopbackPeer() {
    listenFd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listenFd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(listenFd_, 8) == 0 &&
        ::getsockname(listenFd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
        port_ = ntohs(address.sin_port);
    }
}

LoopbackPeer::~LoopbackPeer() {
    for (const int fd : connections_) {
        ::close(fd);
    }
    ::close(listenFd_);
}

bool LoopbackPeer::Accept(std::chrono::milliseconds timeout) {
    pollfd entry{listenFd_, POLLIN, 0};
    if (::poll(&entry, 1, static_cast<int>(timeout.count())) != 1) {
        return false;
    }
    const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    connections_.push_back(fd);
    return true;
}

bool LoopbackPeer::Write(std::string_view bytes) {
    return !connections_.empty() && ::send(connections_.back(), bytes.data(), bytes.size(),
                                           MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

}  // namespace orv::test

// A TCP socket that several threads may use at once: each holds it through a
// shared pointer, so the descriptor is closed exactly once, by the last
// holder, and is never reused under a thread still sending or receiving.
#pragma once

#include <netinet/in.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

class TcpSocket {
public:
    // Takes ownership of a connected descriptor.
    explicit TcpSocket(int fd) : fd_(fd) {}
    ~TcpSocket();
    TcpSocket(const TcpSocket&) = delete;
    TcpSocket& operator=(const TcpSocket&) = delete;

    // A new IPv4 stream socket, not yet connected; null on failure (errno says why).
    static std::shared_ptr<TcpSocket> Open();

    // Connects without blocking longer than `limit`; gives up early as soon as
    // `keepTrying` returns false (asked every few tens of milliseconds).
    // The socket blocks for reads and writes afterwards.
    bool ConnectWithin(const sockaddr_in& peer, std::chrono::milliseconds limit,
                       const std::function<bool()>& keepTrying);

    // Ends both directions: a read or write blocked on another thread returns at once.
    void Shutdown();
    // Ends reading only, so nothing is sent to the peer: a blocked read returns 0.
    void ShutdownReading();
    // Closing with an abortive reset (RST) instead of the orderly FIN.
    void SetResetOnClose();

    // A blocking send gives up after `limit` in all, sending less than asked
    // (or -1 with EAGAIN when nothing went out).
    void SetSendTimeLimit(std::chrono::milliseconds limit);

    // One send without SIGPIPE; -1 on error (errno set).
    ssize_t Send(const void* data, size_t size);
    // One receive; 0 when the peer closed, -1 on error (errno set).
    ssize_t Receive(void* data, size_t size);

    int fd() const { return fd_; }

private:
    const int fd_;
};

// A dotted IPv4 text as it is, otherwise the first IPv4 address the name resolves to.
std::optional<in_addr> ResolveIPv4(const std::string& host);

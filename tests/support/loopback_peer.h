// A bare TCP peer on loopback for link faults the stand-in simulator does not
// play: it accepts connections, writes only what the test says and never reads.
#pragma once

#include <chrono>
#include <string_view>
#include <vector>

namespace orv::test {

class LoopbackPeer {
public:
    LoopbackPeer();  // listening on 127.0.0.1, on a free port
    ~LoopbackPeer();
    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    int Port() const { return port_; }
    // Takes the next connection; false when none comes in time.
    bool Accept(std::chrono::milliseconds timeout = std::chrono::seconds(10));
    // To the connection accepted last.
    bool Write(std::string_view bytes);

private:
    int listenFd_ = -1;
    int port_ = 0;
    std::vector<int> connections_;
};

}  // namespace orv::test

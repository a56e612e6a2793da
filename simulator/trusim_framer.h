// Zero-byte framing of the TruSim link: every message is one text ended by a
// single zero byte. Shared by the client and the stand-in simulator.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

class TruSimFramer {
public:
    // A message longer than this without its zero byte is a protocol error.
    static constexpr size_t kMaxMessageSize = 64 * 1024;

    enum class Result {
        kMore,      // every byte consumed; a message may be half read
        kStopped,   // the handler asked to stop; the rest of the bytes is dropped
        kOverflow,  // the pending message outgrew kMaxMessageSize
    };

    // Feeds received bytes; `onMessage(std::string text)` runs once per zero
    // byte (an empty text for two zero bytes in a row) and returns false to
    // stop at once.
    template <typename OnMessage>
    Result Feed(const char* data, size_t size, OnMessage&& onMessage);

    void Reset() { pending_.clear(); }
    size_t PendingSize() const { return pending_.size(); }

private:
    bool Append(const char* data, size_t size);

    std::string pending_;
};

template <typename OnMessage>
TruSimFramer::Result TruSimFramer::Feed(const char* data, size_t size, OnMessage&& onMessage) {
    const char* end = data + size;
    while (data < end) {
        const char* zero = static_cast<const char*>(std::memchr(data, 0, end - data));
        if (zero == nullptr) {
            return Append(data, end - data) ? Result::kMore : Result::kOverflow;
        }
        if (!Append(data, zero - data)) {
            return Result::kOverflow;
        }
        data = zero + 1;
        std::string message;
        message.swap(pending_);
        if (!onMessage(std::move(message))) {
            return Result::kStopped;
        }
    }
    return Result::kMore;
}

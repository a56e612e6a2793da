// One HTTPS GET with a verified peer, bounded in time and in size.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace orv {

// Ends a running HttpsGet from another thread at once, whatever it waits for.
class HttpsCancel {
public:
    void Cancel();
    bool Cancelled() const;

    // For HttpsGet: the transfer's multi handle while it runs. Attach is
    // false when the cancel came first.
    bool Attach(void* multi);
    void Detach();

private:
    mutable std::mutex mutex_;  // guards both; Cancel must not wake a freed handle
    void* multi_ = nullptr;
    bool cancelled_ = false;
};

struct HttpsRequest {
    std::string url;                   // "https://host:port/object"
    std::vector<std::string> headers;  // sent in this order after the Host line
    std::string caFile;                // PEM bundle to trust; empty: the system's CAs
    std::chrono::milliseconds connectTimeout{10000};  // TCP and TLS handshake
    std::chrono::milliseconds totalTimeout{30000};    // the whole exchange
    size_t maxBodyBytes = 64 * 1024;
};

struct HttpsResponse {
    bool ok = false;              // a response arrived completely within the limits
    long status = 0;              // HTTP status code, 0 when none arrived
    std::string body;             // what arrived (cut at the size limit)
    const char* failedCall = "";  // the library call that failed, when !ok
    int code = 0;                 // its result code
    std::string error;            // its explanation
    bool cancelled = false;       // ended by HttpsCancel
};

// `cancel`, when given, may end the transfer from any thread.
HttpsResponse HttpsGet(const HttpsRequest& request, HttpsCancel* cancel = nullptr);

}  // namespace orv

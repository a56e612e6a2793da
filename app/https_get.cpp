#include "app/https_get.h"

#include <curl/curl.h>

#include <memory>

namespace orv {

namespace {

struct BodySink {
    std::string* body;
    size_t limit;
    bool overflow = false;
};

size_t AppendBody(char* data, size_t size, size_t count, void* user) {
    auto* sink = static_cast<BodySink*>(user);
    const size_t bytes = size * count;
    if (sink->body->size() + bytes > sink->limit) {
        sink->overflow = true;
        return 0;  // makes the transfer fail with a write error
    }
    sink->body->append(data, bytes);
    return bytes;
}

struct CurlDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct SlistDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

struct Transfer {
    const char* failedCall = "";
    int code = 0;
    const char* text = "";
    bool cancelled = false;
};

// Runs the transfer on a multi handle, because only its wait can be woken
// by another thread; an easy perform would hold a closing program for up to
// the time limits.
Transfer Perform(CURL* easy, HttpsCancel* cancel) {
    const std::unique_ptr<CURLM, MultiDeleter> owner(curl_multi_init());
    CURLM* multi = owner.get();
    if (multi == nullptr) {
        return {"curl_multi_init", CURLM_OUT_OF_MEMORY, "no handle"};
    }
    CURLMcode code = curl_multi_add_handle(multi, easy);
    if (code != CURLM_OK) {
        return {"curl_multi_add_handle", code, curl_multi_strerror(code)};
    }
    Transfer transfer;
    transfer.cancelled = cancel != nullptr && !cancel->Attach(multi);
    int running = 1;
    while (!transfer.cancelled && running > 0) {
        const char* call = "curl_multi_perform";
        code = curl_multi_perform(multi, &running);
        if (code == CURLM_OK && running > 0) {
            call = "curl_multi_poll";
            code = curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
        }
        if (code != CURLM_OK) {
            transfer = {call, code, curl_multi_strerror(code)};
            break;
        }
        transfer.cancelled = cancel != nullptr && cancel->Cancelled();
    }
    if (cancel != nullptr) {
        cancel->Detach();
    }
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi, &left)) {
        if (message->msg == CURLMSG_DONE && message->data.result != CURLE_OK) {
            transfer = {"curl_multi_perform", message->data.result,
                        curl_easy_strerror(message->data.result)};
        }
    }
    curl_multi_remove_handle(multi, easy);
    return transfer;
}

}  // namespace

void HttpsCancel::Cancel() {
    std::lock_guard lock(mutex_);
    cancelled_ = true;
    if (multi_ != nullptr) {
        curl_multi_wakeup(multi_);
    }
}

bool HttpsCancel::Cancelled() const {
    std::lock_guard lock(mutex_);
    return cancelled_;
}

bool HttpsCancel::Attach(void* multi) {
    std::lock_guard lock(mutex_);
    multi_ = multi;
    return !cancelled_;
}

void HttpsCancel::Detach() {
    std::lock_guard lock(mutex_);
    multi_ = nullptr;
}

HttpsResponse HttpsGet(const HttpsRequest& request, HttpsCancel* cancel) {
    HttpsResponse response;
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    if (!curl) {
        response.failedCall = "curl_easy_init";
        response.error = "no handle";
        return response;
    }
    // No accept types are offered, so curl's default "Accept: */*" is dropped.
    std::vector<std::string> lines = request.headers;
    lines.emplace_back("Accept:");
    curl_slist* list = nullptr;
    for (const std::string& line : lines) {
        curl_slist* grown = curl_slist_append(list, line.c_str());
        if (grown == nullptr) {
            curl_slist_free_all(list);
            response.failedCall = "curl_slist_append";
            response.error = "out of memory";
            return response;
        }
        list = grown;
    }
    const std::unique_ptr<curl_slist, SlistDeleter> headers(list);

    BodySink sink{&response.body, request.maxBodyBytes};
    char errorText[CURL_ERROR_SIZE] = {};
    CURL* h = curl.get();
    curl_easy_setopt(h, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(h, CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(h, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(h, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(h, CURLOPT_SSL_VERIFYHOST, 2L);
    if (!request.caFile.empty()) {
        curl_easy_setopt(h, CURLOPT_CAINFO, request.caFile.c_str());
        curl_easy_setopt(h, CURLOPT_CAPATH, nullptr);
    }
    curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(request.connectTimeout.count()));
    curl_easy_setopt(h, CURLOPT_TIMEOUT_MS, static_cast<long>(request.totalTimeout.count()));
    // Worker threads must not get signals from the resolver's time-outs.
    curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(h, CURLOPT_WRITEFUNCTION, AppendBody);
    curl_easy_setopt(h, CURLOPT_WRITEDATA, &sink);
    curl_easy_setopt(h, CURLOPT_ERRORBUFFER, errorText);

    const Transfer transfer = Perform(h, cancel);
    curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &response.status);
    if (transfer.cancelled) {
        response.cancelled = true;
        response.error = "cancelled";
        return response;
    }
    if (transfer.failedCall[0] != '\0') {
        response.failedCall = transfer.failedCall;
        response.code = transfer.code;
        response.error = sink.overflow          ? "answer larger than the size limit"
                         : errorText[0] != '\0' ? errorText
                                                : transfer.text;
        return response;
    }
    response.ok = true;
    return response;
}

}  // namespace orv

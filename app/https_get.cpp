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

}  // namespace

HttpsResponse HttpsGet(const HttpsRequest& request) {
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

    const CURLcode result = curl_easy_perform(h);
    curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &response.status);
    if (result != CURLE_OK) {
        response.failedCall = "curl_easy_perform";
        response.code = static_cast<int>(result);
        response.error = sink.overflow          ? "answer larger than the size limit"
                         : errorText[0] != '\0' ? errorText
                                                : curl_easy_strerror(result);
        return response;
    }
    response.ok = true;
    return response;
}

}  // namespace orv

#include "simulator/hash_text.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include "common/debug_log.h"
#include "protocol/code_tables.h"

namespace {

const EVP_MD* DigestFor(int selector) {
    switch (selector) {
        case 0:
            return EVP_sha1();
        case 1:
            return EVP_md5();
        case 2:
            return EVP_sha256();
        default:
            return nullptr;
    }
}

}  // namespace

std::string GetHashText(const void* data, size_t length, int selector) {
    const EVP_MD* digest = DigestFor(selector);
    if (digest == nullptr || (data == nullptr && length > 0)) {
        return {};
    }
    unsigned char value[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (EVP_Digest(data, length, value, &size, digest, nullptr) != 1) {
        LOG_ERROR("EVP_Digest error:0x%x\n", static_cast<unsigned>(ERR_get_error()));
        return {};
    }
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    text.reserve(size * 2);
    for (unsigned int i = 0; i < size; ++i) {
        text.push_back(kHex[value[i] >> 4]);
        text.push_back(kHex[value[i] & 0x0F]);
    }
    return text;
}

bool IsTrueString(const std::string& text) {
    return SafeStringiCompare(text, "true");
}

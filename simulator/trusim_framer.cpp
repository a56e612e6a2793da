#include "simulator/trusim_framer.h"

bool TruSimFramer::Append(const char* data, size_t size) {
    if (pending_.size() + size > kMaxMessageSize) {
        pending_.clear();
        return false;
    }
    pending_.append(data, size);
    return true;
}

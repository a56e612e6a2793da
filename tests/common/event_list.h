// Short texts that stand-ins write down in the order things happened to them,
// safe against the threads that call them.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace orv::test {

class EventList {
public:
    // The events starting with `prefix`, in order.
    std::vector<std::string> Of(const std::string& prefix = "") const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> found;
        std::ranges::copy_if(events_, std::back_inserter(found),
                             [&](const std::string& event) { return event.starts_with(prefix); });
        return found;
    }
    std::vector<std::string> Events() const { return Of(); }
    // Events equal to `event`.
    int Count(const std::string& event) const {
        return static_cast<int>(std::ranges::count(Of(event), event));
    }
    bool Saw(const std::string& event) const { return Count(event) > 0; }
    void Clear() {
        const std::lock_guard lock(mutex_);
        events_.clear();
    }

protected:
    void Add(std::string event) {
        const std::lock_guard lock(mutex_);
        events_.push_back(std::move(event));
    }

private:
    mutable std::mutex mutex_;  // guards events_
    std::vector<std::string> events_;
};

}  // namespace orv::test

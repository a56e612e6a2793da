// A private X server for tests that open real windows: starts Xvfb on a free
// display, points this process's DISPLAY at it and stops it on destruction.
#pragma once

#include <sys/types.h>

#include <string>

namespace orv::test {

class XvfbDisplay {
public:
    explicit XvfbDisplay(const std::string& screen = "1280x1024x24");
    ~XvfbDisplay();
    XvfbDisplay(const XvfbDisplay&) = delete;
    XvfbDisplay& operator=(const XvfbDisplay&) = delete;

private:
    pid_t pid_ = -1;
};

}  // namespace orv::test

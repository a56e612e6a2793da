#include "video/idle_inhibitor.h"

#include <unistd.h>

#include <sdbus-c++/sdbus-c++.h>

#include "common/debug_log.h"

IdleInhibitor::IdleInhibitor(std::string busAddress) : busAddress_(std::move(busAddress)) {}

IdleInhibitor::~IdleInhibitor() {
    Release();
}

bool IdleInhibitor::Acquire(const std::string& why) {
    if (fd_ >= 0) {
        return true;
    }
    // sdbus-c++ reports failures by exceptions; they end here.
    try {
        auto connection = busAddress_.empty()
                              ? sdbus::createSystemBusConnection()
                              : sdbus::createSessionBusConnectionWithAddress(busAddress_);
        auto proxy =
            sdbus::createProxy(*connection, "org.freedesktop.login1", "/org/freedesktop/login1");
        sdbus::UnixFd lock;
        proxy->callMethod("Inhibit")
            .onInterface("org.freedesktop.login1.Manager")
            .withArguments(std::string("idle"), std::string("Orvane X"), why, std::string("block"))
            .storeResultsTo(lock);
        fd_ = lock.release();
    } catch (const sdbus::Error& error) {
        LOG_INFO("No idle inhibitor (%s): the screen may blank while recording\n",
                 error.getName().c_str());
    }
    return fd_ >= 0;
}

void IdleInhibitor::Release() {
    if (fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
}

// Keeps the desktop from going idle (screen blanking, suspend) while the
// camera is in use: a systemd-logind "idle" inhibitor lock, held as a file
// descriptor. Without logind it does nothing and says so once.
#pragma once

#include <string>

class IdleInhibitor {
public:
    // `busAddress` empty: the system bus.
    explicit IdleInhibitor(std::string busAddress = {});
    ~IdleInhibitor();
    IdleInhibitor(const IdleInhibitor&) = delete;
    IdleInhibitor& operator=(const IdleInhibitor&) = delete;

    // Takes the lock; true when logind granted it.
    bool Acquire(const std::string& why);
    void Release();
    bool Active() const { return fd_ >= 0; }

private:
    std::string busAddress_;
    int fd_ = -1;
};

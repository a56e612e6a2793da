// Keeps every shot of the session in the history file without ever holding
// a shot up: reports go through a queue to a thread of their own. A file that
// cannot be written is logged once and the program goes on without it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>

#include "history/history_store.h"
#include "session/shot_report.h"

namespace orv::history {

class HistoryWriter : public Orvane::ShotListener {
public:
    // Reports beyond this many waiting are dropped (with one log line).
    static constexpr size_t kMaxQueued = 4096;

    explicit HistoryWriter(std::filesystem::path file);
    ~HistoryWriter() override;
    HistoryWriter(const HistoryWriter&) = delete;
    HistoryWriter& operator=(const HistoryWriter&) = delete;

    // Opens the file and begins this run's session on the writer thread.
    void Start();
    // Writes what is queued, then closes the file.
    void Stop();

    void OnShotRecorded(const Orvane::ShotReport& shot) override;

    // This run's session in the file; 0 until it is written or when it cannot be.
    int64_t Session() const { return session_.load(); }
    const std::filesystem::path& File() const { return file_; }

private:
    void Run();
    bool OpenStore();
    void Write(const Orvane::ShotReport& shot);
    // One line per failure streak, not per shot.
    void Failed(const char* what, int code);

    const std::filesystem::path file_;
    std::unique_ptr<HistoryStore> store_;  // writer thread only
    bool failing_ = false;                 // writer thread only
    std::atomic<int64_t> session_{0};

    std::mutex mutex_;  // guards the queue and the flags below
    std::condition_variable wake_;
    std::deque<Orvane::ShotReport> queue_;
    bool stopping_ = false;
    bool overflowLogged_ = false;
    std::thread thread_;
};

}  // namespace orv::history

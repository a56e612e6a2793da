#include "history/history_writer.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>

#include "common/clock.h"
#include "common/debug_log.h"

namespace orv::history {

namespace {

constexpr int kWriterNice = 10;

}  // namespace

HistoryWriter::HistoryWriter(std::filesystem::path file) : file_(std::move(file)) {}

HistoryWriter::~HistoryWriter() {
    Stop();
}

void HistoryWriter::Start() {
    if (thread_.joinable()) {
        return;
    }
    stopping_ = false;
    thread_ = std::thread(&HistoryWriter::Run, this);
}

void HistoryWriter::Stop() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void HistoryWriter::OnShotRecorded(const Orvane::ShotReport& shot) {
    {
        std::lock_guard lock(mutex_);
        if (queue_.size() >= kMaxQueued) {
            if (!overflowLogged_) {
                overflowLogged_ = true;
                LOG_ERROR("History cannot keep up; shots are not kept\n");
            }
            return;
        }
        overflowLogged_ = false;
        queue_.push_back(shot);
    }
    wake_.notify_one();
}

bool HistoryWriter::OpenStore() {
    store_ = HistoryStore::Open(file_);
    if (!store_) {
        Failed("open", 0);
        return false;
    }
    const int64_t session = store_->BeginSession(WallClockMs());
    if (session < 0) {
        Failed("session", 0);
        return false;
    }
    session_ = session;
    return true;
}

void HistoryWriter::Failed(const char* what, int code) {
    if (!failing_) {
        failing_ = true;
        LOG_ERROR("History %s failed (%d): shots go on without being kept\n", what, code);
    }
}

void HistoryWriter::Write(const Orvane::ShotReport& shot) {
    if (!store_ || session_.load() <= 0) {
        return;
    }
    int rc = store_->Insert(session_.load(), shot);
    if (HistoryStore::IsCorruption(rc)) {
        // Damaged under us: keep the old file aside and go on in a new one.
        store_.reset();
        if (HistoryStore::MoveAside(file_) && OpenStore()) {
            rc = store_->Insert(session_.load(), shot);
        }
    }
    if (rc != 0) {
        Failed("write", rc);
        return;
    }
    failing_ = false;
}

void HistoryWriter::Run() {
    // Below the session's threads: on a busy machine the shot goes first, the row after.
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kWriterNice) != 0) {
        LOG_ERROR("setpriority error:0x%x\n", static_cast<unsigned>(errno));
    }
    OpenStore();
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
        if (queue_.empty()) {
            break;
        }
        const Orvane::ShotReport shot = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        Write(shot);
        lock.lock();
    }
    store_.reset();
}

}  // namespace orv::history

// A stand-in golf simulator speaking TruSim on TCP: it authenticates the
// program by challenge, sends player data, environment data and Arm/Disarm,
// answers pings, acknowledges shots and reports each shot in one line.
// Like a real simulator it is strict: a message that is not valid JSON in the
// exact form of its type, or shot data before authentication, is a protocol
// error, printed and counted, and never part of a shot.
// Tests drive it in-process to script the simulator's side, faults included.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tools/trusim-emulator/simulator_messages.h"

class TcpSocket;

namespace orv {

struct TruSimEmulatorOptions {
    std::string bindAddress = "0.0.0.0";
    int port = 2483;  // 0 picks a free port; Port() tells which
    // A shot disarms the simulator; it re-arms this much later with a new distance to the pin.
    std::chrono::milliseconds rearmDelay{3000};
};

class TruSimEmulator {
public:
    using Clock = std::chrono::steady_clock;

    explicit TruSimEmulator(TruSimEmulatorOptions options = {});
    ~TruSimEmulator();
    TruSimEmulator(const TruSimEmulator&) = delete;
    TruSimEmulator& operator=(const TruSimEmulator&) = delete;

    // Listens and serves one connection at a time; false when the address
    // cannot be bound. After Stop, Start listens on the same port again.
    bool Start();
    // Closes the connection and the listener and joins every thread.
    void Stop();
    int Port() const;

    // Readable lines about connections, authentication and shots.
    void SetReporter(std::function<void(const std::string&)> reporter);

    // Behaviour; each takes effect from the next message.
    void SetRefuseAuthentication(bool refuse);
    void SetAnswerHandshake(bool answer);
    void SetReplyDelay(std::chrono::milliseconds delay);
    void SetChallenge(const std::string& challenge);  // empty: a random one each time
    // After a successful authentication: player data, environment data, Arm.
    void SetGreeting(bool on);
    void SetRearmAfterShot(bool on);
    void SetClub(const std::string& name);
    void SetHanded(const std::string& handed);
    void SetDistanceToPin(double yards);

    // Towards the current connection; false without one or when the write fails.
    bool SendMessage(const std::string& json);  // the zero byte is added
    bool SendRaw(std::string_view bytes);       // exactly these bytes
    bool SendInPieces(std::string_view bytes, size_t pieceSize, std::chrono::milliseconds pause);
    bool SendPlayerData();
    bool SendEnvironmentData();
    bool Arm();
    bool Disarm();
    bool SendEnd();
    // Closes the connection with FIN, or with RST when `reset`.
    bool DropConnection(bool reset);

    // Every message received (without its zero byte), in order, across connections.
    std::vector<std::string> Received() const;
    std::vector<TruSimShot> Shots() const;
    int ProtocolErrors() const;  // messages refused so far, across connections
    std::string LastChallenge() const;
    int Connections() const;         // accepted so far
    bool IsClientConnected() const;  // a connection is open and being read
    bool IsClientAuthenticated() const;
    void ClearReceived();

    bool WaitForMessages(size_t count, std::chrono::milliseconds timeout) const;
    bool WaitForShots(size_t count, std::chrono::milliseconds timeout) const;
    bool WaitForConnections(int count, std::chrono::milliseconds timeout) const;
    bool WaitForClientGone(std::chrono::milliseconds timeout) const;
    bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) const;

private:
    struct Task {
        Clock::time_point due;
        uint64_t connection;
        std::function<void()> run;
    };

    void ServeLoop();
    void Serve(const std::shared_ptr<TcpSocket>& connection);
    void HandleMessage(const std::shared_ptr<TcpSocket>& connection, const std::string& text);
    void AnswerHandshake(const std::shared_ptr<TcpSocket>& connection);
    void CheckChallenge(const std::shared_ptr<TcpSocket>& connection, const std::string& developer,
                        const std::string& hash);
    void KeepShotPart(const ClientMessage& message);
    void ProtocolError(const std::string& reason, const std::string& text);
    void TakeShot(const std::shared_ptr<TcpSocket>& connection, const std::string& text);
    void TimerLoop();
    void Schedule(std::chrono::milliseconds delay, std::function<void()> run);
    // Sleeps up to `delay`; false when Stop came first.
    bool Pause(std::chrono::milliseconds delay);
    bool Write(const std::shared_ptr<TcpSocket>& connection, std::string_view bytes);
    bool Send(const std::shared_ptr<TcpSocket>& connection, const std::string& json);
    std::string PlayerDataJson() const;
    std::string EnvironmentDataJson() const;
    std::shared_ptr<TcpSocket> Current() const;
    void Report(const std::string& line) const;
    void ReportArmed() const;

    template <typename T, typename V>
    void SetGuarded(T& field, V&& value) {
        const std::lock_guard<std::mutex> lock(mutex_);
        field = std::forward<V>(value);
    }
    template <typename T>
    T GetGuarded(const T& field) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return field;
    }
    // `condition` runs with mutex_ held.
    template <typename Condition>
    bool WaitGuarded(std::chrono::milliseconds timeout, Condition condition) const {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, condition);
    }

    const TruSimEmulatorOptions options_;
    int listenFd_ = -1;
    int stopFd_ = -1;
    std::thread server_;
    std::thread timer_;

    // Guards everything below: settings, records, the current connection, tasks.
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    bool stopping_ = false;
    int port_ = 0;
    std::function<void(const std::string&)> reporter_;
    bool refuseAuthentication_ = false;
    bool answerHandshake_ = true;
    std::chrono::milliseconds replyDelay_{0};
    std::string fixedChallenge_;
    bool greeting_ = true;
    bool rearmAfterShot_ = true;
    std::string club_ = "Driver";
    std::string handed_ = "Right";
    double distanceToPin_ = 150.0;
    std::shared_ptr<TcpSocket> connection_;  // where the API's sends go; null once dropped
    bool serving_ = false;                   // a connection is being read
    uint64_t connectionId_ = 0;
    int connections_ = 0;
    bool authenticated_ = false;
    std::string challenge_;
    std::vector<std::string> received_;
    int protocolErrors_ = 0;
    // The parts of the shot to come; a shot needs all three.
    struct PendingShot {
        TruSimShot values;
        bool ball = false;
        bool club = false;
        bool misc = false;
    } pendingShot_;
    std::vector<TruSimShot> shots_;
    std::vector<Task> tasks_;
    std::mt19937 random_;

    // Keeps each write whole when the server, timer and caller threads write at once.
    std::mutex writeMutex_;
};

}  // namespace orv

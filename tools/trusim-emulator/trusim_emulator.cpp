#include "tools/trusim-emulator/trusim_emulator.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "common/c_format.h"
#include "simulator/tcp_socket.h"
#include "simulator/trusim_framer.h"

namespace orv {

namespace {

// A client that stops reading must not hold a writer forever.
constexpr std::chrono::seconds kSendTimeLimit{5};

}  // namespace

TruSimEmulator::TruSimEmulator(TruSimEmulatorOptions options)
    : options_(std::move(options)), random_(std::random_device{}()) {}

TruSimEmulator::~TruSimEmulator() {
    Stop();
}

bool TruSimEmulator::Start() {
    if (server_.joinable()) {
        return true;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    if (::inet_pton(AF_INET, options_.bindAddress.c_str(), &address.sin_addr) != 1) {
        Report("not an IPv4 address: " + options_.bindAddress);
        return false;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        // A restart listens on the port the first start got.
        address.sin_port = htons(static_cast<uint16_t>(port_ != 0 ? port_ : options_.port));
    }
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        Report(std::string("socket error: ") + std::strerror(errno));
        return false;
    }
    const int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    socklen_t length = sizeof address;
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(fd, 4) != 0 ||
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        Report(std::string("cannot listen: ") + std::strerror(errno));
        ::close(fd);
        return false;
    }
    const int stopFd = ::eventfd(0, EFD_CLOEXEC);
    if (stopFd < 0) {
        Report(std::string("eventfd error: ") + std::strerror(errno));
        ::close(fd);
        return false;
    }
    listenFd_ = fd;
    stopFd_ = stopFd;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        port_ = ntohs(address.sin_port);
        stopping_ = false;
    }
    server_ = std::thread([this] { ServeLoop(); });
    timer_ = std::thread([this] { TimerLoop(); });
    return true;
}

void TruSimEmulator::Stop() {
    if (!server_.joinable()) {
        return;
    }
    std::shared_ptr<TcpSocket> connection;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
        connection = connection_;
    }
    changed_.notify_all();
    const uint64_t one = 1;
    if (::write(stopFd_, &one, sizeof one) < 0) {
        Report(std::string("eventfd write error: ") + std::strerror(errno));
    }
    if (connection) {
        connection->Shutdown();
    }
    connection.reset();
    server_.join();
    timer_.join();
    ::close(listenFd_);
    ::close(stopFd_);
    listenFd_ = stopFd_ = -1;
    const std::lock_guard<std::mutex> lock(mutex_);
    tasks_.clear();
}

int TruSimEmulator::Port() const {
    return GetGuarded(port_);
}

void TruSimEmulator::ServeLoop() {
    while (true) {
        pollfd waits[2] = {{listenFd_, POLLIN, 0}, {stopFd_, POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            Report(std::string("poll error: ") + std::strerror(errno));
            return;
        }
        if (waits[1].revents != 0) {
            return;
        }
        sockaddr_in peer{};
        socklen_t length = sizeof peer;
        const int fd =
            ::accept4(listenFd_, reinterpret_cast<sockaddr*>(&peer), &length, SOCK_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        const int on = 1;
        ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        auto connection = std::make_shared<TcpSocket>(fd);
        connection->SetSendTimeLimit(kSendTimeLimit);
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (stopping_) {
                return;
            }
            connection_ = connection;
            serving_ = true;
            ++connectionId_;
            ++connections_;
            authenticated_ = false;
            challenge_.clear();
            pendingShot_ = PendingShot{};
        }
        changed_.notify_all();
        char from[INET_ADDRSTRLEN] = {};
        ::inet_ntop(AF_INET, &peer.sin_addr, from, sizeof from);
        Report(std::string("client connected from ") + from);
        Serve(connection);
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (connection_ == connection) {
                connection_.reset();
            }
            serving_ = false;
            authenticated_ = false;
        }
        changed_.notify_all();
        Report("client disconnected");
    }
}

void TruSimEmulator::Serve(const std::shared_ptr<TcpSocket>& connection) {
    TruSimFramer framer;
    char buffer[4096];
    while (true) {
        const ssize_t received = connection->Receive(buffer, sizeof buffer);
        if (received <= 0) {
            return;
        }
        const auto result =
            framer.Feed(buffer, static_cast<size_t>(received), [&](std::string text) {
                HandleMessage(connection, text);
                const std::lock_guard<std::mutex> lock(mutex_);
                return !stopping_;
            });
        if (result != TruSimFramer::Result::kMore) {
            return;
        }
    }
}

void TruSimEmulator::HandleMessage(const std::shared_ptr<TcpSocket>& connection,
                                   const std::string& text) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        received_.push_back(text);
    }
    changed_.notify_all();
    const ClientMessage message = ReadClientMessage(text);
    if (!message.error.empty()) {
        ProtocolError(message.error, text);
        return;
    }
    const std::string& type = message.type;
    const bool shotPart = type.starts_with("Set") || type == "SendShot";
    if (shotPart && !GetGuarded(authenticated_)) {
        ProtocolError(type + " before authentication", text);
        return;
    }
    if (type == "Handshake") {
        AnswerHandshake(connection);
    } else if (type == "Challenge") {
        CheckChallenge(connection, message.developer, message.hash);
    } else if (type == "Ping") {
        Send(connection, TypeOnlyMessage("Pong"));
    } else if (type == "SendShot") {
        TakeShot(connection, text);
    } else if (shotPart) {
        KeepShotPart(message);
        Send(connection, TypeOnlyMessage("ACK"));
    }
}

void TruSimEmulator::ProtocolError(const std::string& reason, const std::string& text) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++protocolErrors_;
    }
    changed_.notify_all();
    // Control bytes shown as escapes, so a stray tab or zero is seen.
    std::string shown;
    for (const char c : text.substr(0, 300)) {
        const auto byte = static_cast<unsigned char>(c);
        shown += byte < 0x20 || byte >= 0x7f ? CFormat("\\x%02x", byte) : std::string(1, c);
    }
    Report("protocol error: " + reason + ": " + shown);
}

void TruSimEmulator::KeepShotPart(const ClientMessage& message) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const TruSimShot& v = message.values;
    TruSimShot& shot = pendingShot_.values;
    if (message.type == "SetBallData") {
        shot.backSpin = v.backSpin;
        shot.ballSpeed = v.ballSpeed;
        shot.launchAngle = v.launchAngle;
        shot.launchDirection = v.launchDirection;
        shot.sideSpin = v.sideSpin;
        pendingShot_.ball = true;
    } else if (message.type == "SetClubData") {
        shot.clubAngleFace = v.clubAngleFace;
        shot.clubAnglePath = v.clubAnglePath;
        shot.clubHeadSpeed = v.clubHeadSpeed;
        pendingShot_.club = true;
    } else if (message.type == "SetMiscData") {
        pendingShot_.misc = true;
    } else if (message.type == "SetClubType") {
        club_ = message.clubType;
    }
}

void TruSimEmulator::AnswerHandshake(const std::shared_ptr<TcpSocket>& connection) {
    std::string challenge;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!answerHandshake_) {
            return;
        }
        challenge = fixedChallenge_;
        if (challenge.empty()) {
            static constexpr char kHex[] = "0123456789abcdef";
            std::uniform_int_distribution<int> digit(0, 15);
            for (int i = 0; i < 32; ++i) {
                challenge.push_back(kHex[digit(random_)]);
            }
        }
        challenge_ = challenge;
    }
    Send(connection, HandshakeReply(challenge));
}

void TruSimEmulator::CheckChallenge(const std::shared_ptr<TcpSocket>& connection,
                                    const std::string& developer, const std::string& hash) {
    std::string challenge;
    bool refuse;
    bool greeting;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        challenge = challenge_;
        refuse = refuseAuthentication_;
        greeting = greeting_;
    }
    const bool success = !refuse && IsRightChallengeAnswer(challenge, developer, hash);
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        authenticated_ = success;
    }
    changed_.notify_all();
    Send(connection, AuthenticationReply(success));
    Report(success ? "authenticated" : "authentication refused");
    if (success && greeting) {
        if (Send(connection, PlayerDataJson()) && Send(connection, EnvironmentDataJson()) &&
            Send(connection, SimCommandMessage("Arm"))) {
            ReportArmed();
        }
    }
}

void TruSimEmulator::TakeShot(const std::shared_ptr<TcpSocket>& connection,
                              const std::string& text) {
    TruSimShot shot;
    size_t number;
    bool rearm;
    {
        std::unique_lock<std::mutex> lock(mutex_);
        // Each shot starts from nothing: no value is ever carried over.
        const PendingShot taken = std::exchange(pendingShot_, PendingShot{});
        if (!taken.ball || !taken.club || !taken.misc) {
            lock.unlock();
            ProtocolError("SendShot without ball, club and misc data", text);
            return;
        }
        shot = taken.values;
        shot.club = club_;
        shots_.push_back(shot);
        number = shots_.size();
        rearm = rearmAfterShot_;
    }
    changed_.notify_all();
    Send(connection, TypeOnlyMessage("ACK"));
    Report("Shot " + std::to_string(number) + ": " + DescribeShot(shot));
    Send(connection, SimCommandMessage("Disarm"));
    if (rearm) {
        Schedule(options_.rearmDelay, [this] {
            {
                const std::lock_guard<std::mutex> lock(mutex_);
                std::uniform_int_distribution<int> yards(20, 250);
                distanceToPin_ = yards(random_);
            }
            if (SendEnvironmentData() && Arm()) {
                ReportArmed();
            }
        });
    }
}

void TruSimEmulator::Schedule(std::chrono::milliseconds delay, std::function<void()> run) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        tasks_.push_back(Task{Clock::now() + delay, connectionId_, std::move(run)});
    }
    changed_.notify_all();
}

void TruSimEmulator::TimerLoop() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!stopping_) {
        if (tasks_.empty()) {
            changed_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
            continue;
        }
        auto next = tasks_.begin();
        for (auto it = tasks_.begin(); it != tasks_.end(); ++it) {
            if (it->due < next->due) {
                next = it;
            }
        }
        if (next->due > Clock::now()) {
            // A copy: other threads add tasks while this one waits.
            const Clock::time_point due = next->due;
            changed_.wait_until(lock, due);
            continue;
        }
        Task task = std::move(*next);
        tasks_.erase(next);
        // A task belongs to the connection it was made for.
        if (task.connection != connectionId_ || !connection_) {
            continue;
        }
        lock.unlock();
        task.run();
        lock.lock();
    }
}

bool TruSimEmulator::Pause(std::chrono::milliseconds delay) {
    std::unique_lock<std::mutex> lock(mutex_);
    return !changed_.wait_for(lock, delay, [this] { return stopping_; });
}

bool TruSimEmulator::Write(const std::shared_ptr<TcpSocket>& connection, std::string_view bytes) {
    if (!connection) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(writeMutex_);
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t sent = connection->Send(bytes.data() + done, bytes.size() - done);
        if (sent <= 0) {
            return false;
        }
        done += static_cast<size_t>(sent);
    }
    return true;
}

bool TruSimEmulator::Send(const std::shared_ptr<TcpSocket>& connection, const std::string& json) {
    std::chrono::milliseconds delay;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        delay = replyDelay_;
    }
    if (delay.count() > 0 && !Pause(delay)) {
        return false;
    }
    return Write(connection, std::string_view(json.c_str(), json.size() + 1));
}

std::string TruSimEmulator::PlayerDataJson() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return PlayerDataMessage(club_, handed_);
}

std::string TruSimEmulator::EnvironmentDataJson() const {
    return EnvironmentDataMessage(GetGuarded(distanceToPin_));
}

std::shared_ptr<TcpSocket> TruSimEmulator::Current() const {
    return GetGuarded(connection_);
}

void TruSimEmulator::Report(const std::string& line) const {
    // Called without the lock: a reporter may take its time.
    const auto reporter = GetGuarded(reporter_);
    if (reporter) {
        reporter(line);
    }
}

void TruSimEmulator::ReportArmed() const {
    Report(CFormat("armed, %.1f yards to the pin", GetGuarded(distanceToPin_)));
}

void TruSimEmulator::SetReporter(std::function<void(const std::string&)> reporter) {
    SetGuarded(reporter_, std::move(reporter));
}

void TruSimEmulator::SetRefuseAuthentication(bool refuse) {
    SetGuarded(refuseAuthentication_, refuse);
}

void TruSimEmulator::SetAnswerHandshake(bool answer) {
    SetGuarded(answerHandshake_, answer);
}

void TruSimEmulator::SetReplyDelay(std::chrono::milliseconds delay) {
    SetGuarded(replyDelay_, delay);
}

void TruSimEmulator::SetChallenge(const std::string& challenge) {
    SetGuarded(fixedChallenge_, challenge);
}

void TruSimEmulator::SetGreeting(bool on) {
    SetGuarded(greeting_, on);
}

void TruSimEmulator::SetRearmAfterShot(bool on) {
    SetGuarded(rearmAfterShot_, on);
}

void TruSimEmulator::SetClub(const std::string& name) {
    SetGuarded(club_, name);
}

void TruSimEmulator::SetHanded(const std::string& handed) {
    SetGuarded(handed_, handed);
}

void TruSimEmulator::SetDistanceToPin(double yards) {
    SetGuarded(distanceToPin_, yards);
}

bool TruSimEmulator::SendMessage(const std::string& json) {
    return Send(Current(), json);
}

bool TruSimEmulator::SendRaw(std::string_view bytes) {
    return Write(Current(), bytes);
}

bool TruSimEmulator::SendInPieces(std::string_view bytes, size_t pieceSize,
                                  std::chrono::milliseconds pause) {
    const std::shared_ptr<TcpSocket> connection = Current();
    if (pieceSize == 0) {
        return false;
    }
    for (size_t at = 0; at < bytes.size(); at += pieceSize) {
        if (at > 0 && !Pause(pause)) {
            return false;
        }
        if (!Write(connection, bytes.substr(at, pieceSize))) {
            return false;
        }
    }
    return true;
}

bool TruSimEmulator::SendPlayerData() {
    return SendMessage(PlayerDataJson());
}

bool TruSimEmulator::SendEnvironmentData() {
    return SendMessage(EnvironmentDataJson());
}

bool TruSimEmulator::Arm() {
    return SendMessage(SimCommandMessage("Arm"));
}

bool TruSimEmulator::Disarm() {
    return SendMessage(SimCommandMessage("Disarm"));
}

bool TruSimEmulator::SendEnd() {
    return SendMessage(TypeOnlyMessage("End"));
}

bool TruSimEmulator::DropConnection(bool reset) {
    std::shared_ptr<TcpSocket> connection;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        connection.swap(connection_);
    }
    if (!connection) {
        return false;
    }
    if (reset) {
        // The serving thread lets go last, and its close then resets the link.
        connection->SetResetOnClose();
        connection->ShutdownReading();
    } else {
        connection->Shutdown();
    }
    changed_.notify_all();
    return true;
}

std::vector<std::string> TruSimEmulator::Received() const {
    return GetGuarded(received_);
}

std::vector<TruSimShot> TruSimEmulator::Shots() const {
    return GetGuarded(shots_);
}

int TruSimEmulator::ProtocolErrors() const {
    return GetGuarded(protocolErrors_);
}

std::string TruSimEmulator::LastChallenge() const {
    return GetGuarded(challenge_);
}

int TruSimEmulator::Connections() const {
    return GetGuarded(connections_);
}

bool TruSimEmulator::IsClientConnected() const {
    return GetGuarded(serving_);
}

bool TruSimEmulator::IsClientAuthenticated() const {
    return GetGuarded(authenticated_);
}

void TruSimEmulator::ClearReceived() {
    const std::lock_guard<std::mutex> lock(mutex_);
    received_.clear();
}

bool TruSimEmulator::WaitForMessages(size_t count, std::chrono::milliseconds timeout) const {
    return WaitGuarded(timeout, [&] { return received_.size() >= count; });
}

bool TruSimEmulator::WaitForShots(size_t count, std::chrono::milliseconds timeout) const {
    return WaitGuarded(timeout, [&] { return shots_.size() >= count; });
}

bool TruSimEmulator::WaitForConnections(int count, std::chrono::milliseconds timeout) const {
    return WaitGuarded(timeout, [&] { return connections_ >= count; });
}

bool TruSimEmulator::WaitForClientGone(std::chrono::milliseconds timeout) const {
    return WaitGuarded(timeout, [&] { return !serving_; });
}

bool TruSimEmulator::WaitUntil(const std::function<bool()>& condition,
                               std::chrono::milliseconds timeout) const {
    // The condition may call this object's accessors, so it runs without the lock.
    const auto deadline = Clock::now() + timeout;
    while (!condition()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace orv

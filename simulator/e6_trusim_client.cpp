#include "simulator/e6_trusim_client.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

#include "common/debug_log.h"
#include "simulator/tcp_socket.h"
#include "simulator/trusim_framer.h"
#include "simulator/trusim_messages.h"

struct E6TruSimClient::Control {
    std::thread thread;
    // Guards nothing but the pause between attempts, so that Stop can end it at once.
    std::mutex mutex;
    std::condition_variable wake;
};

namespace {

constexpr char kLoopbackAddress[] = "127.0.0.1";
// The address buffer holds 259 characters and its terminator.
constexpr size_t kMaxAddressLength = 259;

std::string AddressBufferText(const std::string& address) {
    std::string text = address.empty() ? kLoopbackAddress : address;
    // Too long for the buffer: nothing is copied, as a bounded copy refuses it whole.
    if (text.size() > kMaxAddressLength) {
        text.clear();
    }
    return text;
}

}  // namespace

E6TruSimClient::E6TruSimClient() = default;

E6TruSimClient::~E6TruSimClient() {
    // The listener may be gone already (it may go right after Stop), so the
    // final Stop notifies nobody.
    listener_.store(nullptr);
    Stop();
}

void E6TruSimClient::Init(const std::string& address, int port) {
    const std::string text = AddressBufferText(address);
    {
        const std::lock_guard<std::mutex> lock(stateMutex_);
        address_ = text;
        port_ = port;
    }
    LOG_INFO("Set addr:%s, port:%d\n", text.c_str(), port);
    Start();
}

void E6TruSimClient::ChangeAddress(const std::string& address) {
    const std::string text = AddressBufferText(address);
    int port;
    {
        const std::lock_guard<std::mutex> lock(stateMutex_);
        if (address_ == text) {
            return;
        }
        address_ = text;
        port = port_;
    }
    LOG_INFO("Set addr:%s, port:%d\n", text.c_str(), port);
    if (IsSocketOpen()) {
        Disconnect();
    }
}

void E6TruSimClient::Start() {
    running_.exchange(1);
    if (control_) {
        return;
    }
    control_ = std::make_unique<Control>();
    Control* control = control_.get();
    try {
        control->thread = std::thread([this, control] { ConnectionLoop(control); });
    } catch (const std::system_error& e) {
        LOG_ERROR("std::thread error:0x%x\n", static_cast<unsigned>(e.code().value()));
        control_.reset();
        running_.exchange(0);
    }
}

void E6TruSimClient::Stop() {
    running_.exchange(0);
    {
        // Releases a reception held back by the notification limit.
        const std::lock_guard<std::mutex> lock(notifyMutex_);
    }
    notifyDone_.notify_all();
    Disconnect();
    if (control_) {
        {
            // Taken so the wake-up cannot fall between the loop's check and its wait.
            const std::lock_guard<std::mutex> lock(control_->mutex);
        }
        control_->wake.notify_all();
        if (control_->thread.joinable()) {
            control_->thread.join();
        }
        control_.reset();
    }
    WaitForNotifications();
}

void E6TruSimClient::SetCallback(E6TruSimClientCallback* listener) {
    listener_.store(listener);
}

void E6TruSimClient::SetTiming(const E6TruSimTiming& timing) {
    const std::lock_guard<std::mutex> lock(stateMutex_);
    timing_ = timing;
}

E6TruSimTiming E6TruSimClient::Timing() const {
    const std::lock_guard<std::mutex> lock(stateMutex_);
    return timing_;
}

bool E6TruSimClient::IsSocketOpen() const {
    return CurrentSocket() != nullptr;
}

std::shared_ptr<TcpSocket> E6TruSimClient::CurrentSocket() const {
    const std::lock_guard<std::mutex> lock(socketMutex_);
    return socket_;
}

std::string E6TruSimClient::GetSurfaceCategory() const {
    const std::lock_guard<std::mutex> lock(stateMutex_);
    return surfaceCategory_;
}

E6BallPosition E6TruSimClient::GetBallPosition() const {
    const std::lock_guard<std::mutex> lock(stateMutex_);
    return ballPosition_;
}

void E6TruSimClient::ConnectionLoop(Control* control) {
    while (running_.load() != 0) {
        if (IsSocketOpen() && IsConnected()) {
            break;  // never expected: somebody else owns a live link
        }
        std::shared_ptr<TcpSocket> socket;
        if (Connect(&socket) && MarkConnected(socket)) {
            Notify([](E6TruSimClientCallback& listener) { listener.OnConnect(); });
            SendTruSimMessage(E6_GetHandShakeJson());
            RecvData(socket);
        }
        socket.reset();
        std::unique_lock<std::mutex> lock(control->mutex);
        control->wake.wait_for(lock, Timing().reconnectPause,
                               [this] { return running_.load() == 0; });
    }
}

bool E6TruSimClient::Connect(std::shared_ptr<TcpSocket>* opened) {
    std::shared_ptr<TcpSocket> socket = TcpSocket::Open();
    if (!socket) {
        LOG_INFO("socket() failed: %d\n", errno);
        return false;
    }
    {
        // Published at once, so that Disconnect can cut a connect in progress.
        const std::lock_guard<std::mutex> lock(socketMutex_);
        socket_ = socket;
    }
    auto drop = [this, &socket] {
        const std::lock_guard<std::mutex> lock(socketMutex_);
        if (socket_ == socket) {
            socket_.reset();
        }
    };
    // Read after the socket is published: a ChangeAddress from now on finds
    // the socket and cuts it, so no attempt goes to an address already left.
    std::string address;
    int port;
    {
        const std::lock_guard<std::mutex> lock(stateMutex_);
        address = address_;
        port = port_;
    }
    const std::optional<in_addr> ip = ResolveIPv4(address);
    if (!ip) {
        LOG_INFO("Unable to resolve server: %s\n", address.c_str());
        drop();
        return false;
    }
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(static_cast<uint16_t>(port));
    peer.sin_addr = *ip;
    const bool connected = socket->ConnectWithin(peer, Timing().connectTimeLimit, [&] {
        return running_.load() != 0 && CurrentSocket() == socket;
    });
    if (!connected) {
        drop();
        return false;
    }
    socket->SetSendTimeLimit(Timing().sendTimeLimit);
    *opened = std::move(socket);
    return true;
}

bool E6TruSimClient::MarkConnected(const std::shared_ptr<TcpSocket>& socket) {
    // Under the socket lock: a Disconnect that took this socket meanwhile wins.
    const std::lock_guard<std::mutex> lock(socketMutex_);
    if (socket_ != socket) {
        return false;
    }
    // A new link starts unauthenticated, whatever a late answer on the last one left behind.
    authenticated_.store(false);
    connected_.exchange(1);
    return true;
}

void E6TruSimClient::RecvData(const std::shared_ptr<TcpSocket>& socket) {
    TruSimFramer framer;
    char buffer[4096];
    while (IsConnected() && CurrentSocket() == socket) {
        const ssize_t received = socket->Receive(buffer, sizeof buffer);
        if (received <= 0) {
            // An error, or the peer closed the link (which would otherwise spin).
            Disconnect();
            return;
        }
        const auto result =
            framer.Feed(buffer, static_cast<size_t>(received), [this](std::string text) {
                if (!IsConnected()) {
                    return false;
                }
                if (!HandleRecvMsg(text)) {
                    LOG_INFO_AS("E6TruSimClient::RecvData", "Not Support.\n");
                }
                return IsConnected();
            });
        if (result == TruSimFramer::Result::kOverflow) {
            LOG_ERROR("Message longer than %zu bytes without its end; link dropped\n",
                      TruSimFramer::kMaxMessageSize);
            Disconnect();
            return;
        }
    }
}

bool E6TruSimClient::SendTruSimMessage(const std::string& text) {
    const std::shared_ptr<TcpSocket> socket = CurrentSocket();
    if (!socket || !IsConnected()) {
        return false;
    }
    // The message and its zero byte in a single send; a short write is not retried.
    const std::string frame(text.c_str(), text.size() + 1);
    const ssize_t sent = socket->Send(frame.data(), frame.size());
    if (sent != static_cast<ssize_t>(frame.size())) {
        // Out of time with the message cut short: the stream is lost either way.
        LOG_ERROR("send() failed: %d\n", sent < 0 ? errno : ETIMEDOUT);
        Disconnect();
        return false;
    }
    PrintRaw("[E6] >> %s\n", text.c_str());
    return true;
}

bool E6TruSimClient::SendClubType(int club) {
    return SendTruSimMessage(E6_GetClubTypeJson(club));
}

void E6TruSimClient::Disconnect() {
    currentClub_.store(0);
    distanceToPin_.store(0.0);
    {
        const std::lock_guard<std::mutex> lock(stateMutex_);
        surfaceCategory_.clear();
        ballPosition_ = E6BallPosition{};
    }
    LOG_INFO("Disconnect\n");
    std::shared_ptr<TcpSocket> socket;
    {
        const std::lock_guard<std::mutex> lock(socketMutex_);
        socket.swap(socket_);
    }
    if (socket) {
        // Wakes a receive blocked on the connection thread; the descriptor
        // closes when its last holder lets go.
        socket->Shutdown();
    }
    connected_.exchange(0);
    authenticated_.store(false);
    Notify([](E6TruSimClientCallback& listener) { listener.OnDisconnect(); });
}

void E6TruSimClient::Notify(std::function<void(E6TruSimClientCallback&)> call) {
    E6TruSimClientCallback* listener = listener_.load();
    if (listener == nullptr) {
        return;
    }
    {
        // A listener that stalls while the simulator keeps talking must not
        // pile up threads without end: past the limit, reception waits.
        std::unique_lock<std::mutex> lock(notifyMutex_);
        notifyDone_.wait(lock, [this] {
            return notificationsInFlight_ < kMaxNotificationsInFlight || running_.load() == 0;
        });
        ++notificationsInFlight_;
    }
    try {
        std::thread([this, listener, call = std::move(call)] {
            call(*listener);
            NotificationDone();
        }).detach();
    } catch (const std::system_error& e) {
        LOG_ERROR("std::thread error:0x%x\n", static_cast<unsigned>(e.code().value()));
        NotificationDone();
    }
}

void E6TruSimClient::NotificationDone() {
    // Nothing of this object is touched after the lock is released.
    const std::lock_guard<std::mutex> lock(notifyMutex_);
    --notificationsInFlight_;
    notifyDone_.notify_all();
}

void E6TruSimClient::WaitForNotifications() {
    std::unique_lock<std::mutex> lock(notifyMutex_);
    notifyDone_.wait(lock, [this] { return notificationsInFlight_ == 0; });
}

std::string E6TruSimClient::GetLocalIPAddress() {
    char name[256] = {};
    if (::gethostname(name, 255) != 0) {
        LOG_ERROR("gethostname error:0x%x\n", static_cast<unsigned>(errno));
        return kLoopbackAddress;
    }
    const std::optional<in_addr> address = ResolveIPv4(name);
    if (!address) {
        return kLoopbackAddress;
    }
    char text[INET_ADDRSTRLEN] = {};
    if (::inet_ntop(AF_INET, &*address, text, sizeof text) == nullptr) {
        return kLoopbackAddress;
    }
    return text;
}

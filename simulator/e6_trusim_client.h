// One TCP connection to the golf simulator's TruSim interface: connects,
// answers the challenge, passes the simulator's notifications to a listener
// and writes the program's messages. While started it reconnects a second
// after every loss of the link, for as long as it takes.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "simulator/e6_trusim_client_callback.h"

class TcpSocket;

// The link's intervals; tests may shorten them, the program keeps the defaults.
struct E6TruSimTiming {
    std::chrono::milliseconds reconnectPause{1000};  // between connection attempts
    std::chrono::milliseconds environmentThrottle{
        1000};  // environment data passed on at most this often
    std::chrono::milliseconds connectTimeLimit{3000};  // one attempt to open the connection
    // One message written whole; a simulator that stops reading must not hold
    // the shot path (and the sensor's records queued behind it) for good.
    std::chrono::milliseconds sendTimeLimit{5000};
};

class E6TruSimClient {
public:
    static constexpr int kDefaultPort = 2483;
    static constexpr int kArmed = 0;
    static constexpr int kDisarmed = 1;
    // Notifications running at once; reception waits beyond this.
    static constexpr int kMaxNotificationsInFlight = 64;

    E6TruSimClient();
    // Stops without notifying the listener.
    virtual ~E6TruSimClient();
    E6TruSimClient(const E6TruSimClient&) = delete;
    E6TruSimClient& operator=(const E6TruSimClient&) = delete;

    // Keeps at most 259 characters of `address` ("127.0.0.1" when empty), then Start.
    void Init(const std::string& address, int port = kDefaultPort);
    // Later connection attempts go to `address` (kept as Init keeps it); a
    // link to the old address is dropped, so the next attempt a pause later
    // reaches the new one.
    void ChangeAddress(const std::string& address);
    // Starting twice is harmless.
    void Start();
    // Ends the link and the connection thread, and waits until no notification
    // is running or about to run: after it returns the listener may go away.
    // Do not call it from a notification.
    void Stop();

    // Not owned; null for no notifications. Set before Start.
    void SetCallback(E6TruSimClientCallback* listener);
    void SetTiming(const E6TruSimTiming& timing);

    // Writes `text` and its zero byte in one send; false when not connected
    // or on a send error (which ends the link). A send that cannot complete
    // within the send time limit is a send error.
    bool SendTruSimMessage(const std::string& text);
    bool SendClubType(int club);

    // Resets the session values, closes the socket (once, whichever thread
    // gets there first), clears the connected flag and notifies OnDisconnect,
    // whether or not the link was up.
    void Disconnect();
    // One received message; false when it was not understood.
    bool HandleRecvMsg(const std::string& text);

    bool IsConnected() const { return connected_.load() != 0; }
    bool IsSocketOpen() const;
    bool IsAuthenticated() const { return authenticated_.load(); }
    int GetArmState() const { return armState_.load(); }
    uint32_t GetCurrentClub() const { return currentClub_.load(); }
    double GetDistanceToPin() const { return distanceToPin_.load(); }
    std::string GetSurfaceCategory() const;
    E6BallPosition GetBallPosition() const;

    // First IPv4 address of this host, "127.0.0.1" when there is none.
    static std::string GetLocalIPAddress();

private:
    struct Control;

    void ConnectionLoop(Control* control);
    bool Connect(std::shared_ptr<TcpSocket>* opened);
    bool MarkConnected(const std::shared_ptr<TcpSocket>& socket);
    void RecvData(const std::shared_ptr<TcpSocket>& socket);
    std::shared_ptr<TcpSocket> CurrentSocket() const;

    bool HandleHandshake(const nlohmann::json& message);
    bool HandleAuth(const nlohmann::json& message);
    bool HandleDataModified(const nlohmann::json& message);
    void HandlePlayerData(const nlohmann::json& object);
    void HandleEnvironmentData(const nlohmann::json& object);
    bool HandleSimCommand(const nlohmann::json& message);
    bool HandleWarning(const nlohmann::json& message);

    // Runs `call` on the listener on a new detached thread, counted so that
    // Stop can wait for it.
    void Notify(std::function<void(E6TruSimClientCallback&)> call);
    void NotificationDone();
    void WaitForNotifications();
    E6TruSimTiming Timing() const;

    std::string address_ = "127.0.0.1";
    int port_ = kDefaultPort;
    std::atomic<uint32_t> currentClub_{0};
    std::atomic<double> distanceToPin_{0.0};
    std::string surfaceCategory_;
    E6BallPosition ballPosition_;
    // Set by authentication and "SimCommand" only; kept when the link drops.
    std::atomic<int> armState_{kDisarmed};
    std::atomic<uint8_t> connected_{0};
    std::atomic<uint8_t> running_{0};
    std::atomic<bool> authenticated_{false};
    int64_t lastEnvironmentMs_ = 0;  // connection thread only
    std::atomic<E6TruSimClientCallback*> listener_{nullptr};
    E6TruSimTiming timing_;
    std::unique_ptr<Control> control_;

    // Guards address_, port_, timing_, surfaceCategory_ and ballPosition_.
    mutable std::mutex stateMutex_;
    // Guards which socket is current; held only to swap or copy the pointer,
    // never across a send or receive.
    mutable std::mutex socketMutex_;
    std::shared_ptr<TcpSocket> socket_;
    // Guards notificationsInFlight_.
    std::mutex notifyMutex_;
    std::condition_variable notifyDone_;
    int notificationsInFlight_ = 0;
};

// The session spine: owns the sensor link and the simulator link, queues
// commands to the sensor and notifications from it, turns swings into shots
// and reports to the user interface.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "ble/ble_stack.h"
#include "ble/btfr_gatt_wrapper.h"
#include "ble/bth_callback.h"
#include "protocol/byte_buffer.h"
#include "protocol/command_models.h"
#include "protocol/data_records.h"
#include "session/orv_device_state.h"
#include "session/orv_manager_callback.h"
#include "session/recording_control.h"
#include "session/session_timing.h"
#include "session/shot_report.h"
#include "session/worker_record.h"
#include "simulator/e6_trusim_client.h"
#include "simulator/shot_records.h"

namespace Orvane {

// How the manager reaches its two peers. The product uses the defaults;
// tests point it elsewhere.
struct OrvManagerConfig {
    // The sensor's stack, chosen by the program; null means no sensor link.
    std::function<std::unique_ptr<BleStack>()> makeBleStack;
    // Empty means this computer's own first IPv4 address.
    std::string simulatorAddress;
    int simulatorPort = 2483;
    SessionTiming timing;
    GattWrapperTiming gattTiming;
    E6TruSimTiming e6Timing;
    // Played when a swing becomes a shot; may be empty.
    std::function<void()> playShot;
};

struct LastShotInfo {
    int club = 0;
    E6BallData ball;
    E6ClubData clubData;
    // As known when the user interface is told: a refusal or a missing
    // simulator is known then; a shot that goes out reads kSent.
    ShotOutcome outcome = ShotOutcome::kSent;
};

class OrvManager : public BthCallback, public E6TruSimClientCallback {
public:
    static OrvManager* GetInstance();
    static void ReleaseInstance();

    OrvManager();
    ~OrvManager() override;
    OrvManager(const OrvManager&) = delete;
    OrvManager& operator=(const OrvManager&) = delete;

    // Before Start.
    void SetConfig(OrvManagerConfig config);
    void SetCallback(OrvManagerCallback* uiCallback) { callback.store(uiCallback); }
    void SetRecordingControl(RecordingControl* control) { recording.store(control); }
    // Told of every shot with its outcome; may be null.
    void SetShotListener(ShotListener* listener) { shotListener.store(listener); }

    void Start();
    void Stop();

    // The simulator now runs on `host` (empty: this computer); the link
    // moves there at its next attempt. UI thread, after Start.
    void ChangeSimulatorHost(const std::string& host);
    void ChangeClub(int club, bool wake);
    void ChangeSettings();
    std::string GetDeviceVersion() const { return state->GetFwVersion(); }

    // Command queue (any thread). Dropped while the sensor is not connected.
    void PushSendQ(OrvCmdBaseModel& command);
    void EnqueueCommand(OrvCmdBaseModel& command);
    void SendHands(int value);
    void SendSystemSetting(bool flag);

    // Sensor link.
    void OnBthConnectionState(int32_t connectionState) override;
    void OnBthData(const uint8_t* data, uint32_t size) override;

    // Simulator link.
    void OnConnect() override;
    void OnDisconnect() override;
    void OnE6Auth(bool ok) override;
    void OnE6PlayerData(E6PlayerData data) override;
    void OnE6EnvironmentData(E6EnvironmentData data) override;
    void OnE6ArmState(int armState) override;
    void OnE6Warning(std::string text) override;

    // Recording around a swing; no-ops without a recording control.
    bool StartRecording();
    void StopRecording(int delaySeconds);
    void ShowRecordingFile();

    // The last shot as the simulator got it (or would have), for display.
    LastShotInfo GetLastShot() const;

    const OrvDeviceState& GetState() const { return *state; }
    BtfrGattWrapper* GetGatt() const { return gatt.load(); }
    E6TruSimClient* GetE6() const { return e6.load(); }
    bool IsRunning() const { return running.load(); }

private:
    void StartOrvane();
    void StartE6();
    // The configured simulator address, or this computer's first IPv4 address.
    std::string SimulatorAddress() const;
    void StopOrvane();
    void StopE6();

    void HandleSendQ();
    void HandleRecvQ();
    // The send and receive threads' loop: `handle` runs on each queued buffer
    // with the queue's lock held, until the manager stops.
    void ServeQueue(WorkerRecord& worker, std::deque<bb*>& queue,
                    const std::function<void(bb*)>& handle);
    void SendCommand(bb* buffer);
    void ClearSendQ();
    void ClearRecvQ();
    static int FreeAll(std::deque<bb*>& queue);
    void ParsePacket(bb* buffer);
    bool IsSensorConnected() const;
    bool IsSimulatorReady() const;  // connected and authenticated
    // Tells the UI the simulator link's state; "up" only while it is.
    bool ReportE6Connection(bool connected);

    // Sensor records (receive thread, receive lock held).
    void HandleEcho(const OrvDataEchoModel& record);
    void HandleClubInfo(const OrvDataClubInfoModel& record);
    void HandleSwingInfo(const OrvDataSwingInfoModel& record);
    void HandleBatteryState(const OrvDataBatteryStateModel& record);
    void HandleFWVersion(const OrvDataFWVersionModel& record);
    void HandleRaw(const OrvDataRawModel& record);
    void HandleSimRaw(const OrvDataSimRawModel& record);
    void HandleSwingAbort(const OrvDataSwingAbort* record);
    void HandleLRSig(const OrvDataLRSig& record);
    void SendClubSelect(int club, bool wake);
    void SendClubToSimulator(int sensorClub);
    ShotOutcome SendShotMessages(E6TruSimClient* client, const E6BallData& ball,
                                 const E6ClubData& clubData);
    void PublishShot(const ShotReport& report);

    // Supervision threads.
    void StartConnCheckThread();
    void StartPingThread();
    void StartBackSwingTimeoutThread();
    void StopConnCheckThread();
    void StopPingThread();
    void StopBackSwingTimeoutThread();
    void ConnCheckThreadFunc();
    void PingThreadFunc();
    void LRSigThreadFunc();
    void BackSwingTimeoutThreadFunc();
    void WaitForLRSigThread();

    static void StopWorker(std::unique_ptr<WorkerRecord>& worker);

    std::atomic<bool> running{false};
    std::atomic<bool> backSwingTimeoutActive{false};
    std::atomic<bool> lrSigThreadActive{false};
    std::unique_ptr<OrvDeviceState> state;
    std::deque<bb*> sendQ;  // guarded by sendWorker->mutex
    std::deque<bb*> recvQ;  // guarded by recvWorker->mutex
    std::unique_ptr<WorkerRecord> sendWorker;
    std::unique_ptr<WorkerRecord> recvWorker;
    std::unique_ptr<WorkerRecord> pingWorker;
    std::unique_ptr<WorkerRecord> connCheckWorker;
    std::unique_ptr<WorkerRecord> backSwingWorker;
    // Read by every thread; replaced only by Start and Stop. A stopped link is
    // kept alive until Stop has joined every thread that may still hold it.
    std::atomic<BtfrGattWrapper*> gatt{nullptr};
    std::atomic<E6TruSimClient*> e6{nullptr};
    std::unique_ptr<BtfrGattWrapper> ownedGatt;
    std::unique_ptr<E6TruSimClient> ownedE6;
    std::unique_ptr<BtfrGattWrapper> retiredGatt;
    std::unique_ptr<E6TruSimClient> retiredE6;
    std::mutex lrSigDoneMutex;  // guards the end of the detached left/right-signal thread
    std::condition_variable lrSigDone;
    std::atomic<OrvManagerCallback*> callback{nullptr};
    std::atomic<RecordingControl*> recording{nullptr};
    std::mutex e6ReportMutex;          // guards checking and reporting the simulator link to the UI
    std::atomic<ShotListener*> shotListener{nullptr};
    mutable std::mutex lastShotMutex;  // guards lastShot (receive thread writes, UI reads)
    LastShotInfo lastShot;
    FILE* rawFile = nullptr;  // raw-data transfer target; receive thread only
    OrvManagerConfig config;
};

}  // namespace Orvane

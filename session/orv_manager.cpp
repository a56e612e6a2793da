#include "session/orv_manager.h"

#include "common/clock.h"
#include "common/debug_log.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "protocol/code_tables.h"
#include "protocol/record_dispatch.h"

namespace Orvane {

namespace {

OrvManager* g_pOrvManager = nullptr;

// The sensor's serial-like GATT service and its write and notify characteristics.
constexpr const char* kDeviceNameFilter = "orvane";
constexpr const char* kServiceUuid = "{6e400001-b5a3-f393-e0a9-e50e24dcca9e}";
constexpr const char* kWriteUuid = "{6e400002-b5a3-f393-e0a9-e50e24dcca9e}";
constexpr const char* kNotifyUuid = "{6e400003-b5a3-f393-e0a9-e50e24dcca9e}";

}  // namespace

OrvManager* OrvManager::GetInstance() {
    if (g_pOrvManager == nullptr) {
        g_pOrvManager = new OrvManager();
    }
    return g_pOrvManager;
}

void OrvManager::ReleaseInstance() {
    delete g_pOrvManager;
    g_pOrvManager = nullptr;
}

OrvManager::OrvManager() : state(std::make_unique<OrvDeviceState>()) {}

OrvManager::~OrvManager() {
    if (rawFile != nullptr) {
        std::fclose(rawFile);
        rawFile = nullptr;
    }
    Stop();
}

void OrvManager::SetConfig(OrvManagerConfig newConfig) {
    config = std::move(newConfig);
}

void OrvManager::Start() {
    LOG_INFO("Start\n");
    running = true;
    StartOrvane();
    StartE6();
    StartPingThread();
    StartConnCheckThread();
}

void OrvManager::Stop() {
    StopRecording(0);
    running = false;
    StopOrvane();
    StopE6();
    StopPingThread();
    StopConnCheckThread();
    StopBackSwingTimeoutThread();
    WaitForLRSigThread();
    // Nothing that could still hold the old links or queue records runs any
    // more (the simulator's callback threads ended with its Stop).
    retiredGatt.reset();
    retiredE6.reset();
    if (sendWorker) {
        FreeAll(sendQ);
        sendWorker.reset();
    }
    if (recvWorker) {
        FreeAll(recvQ);
        recvWorker.reset();
    }
    LOG_INFO("Stop\n");
}

void OrvManager::StartOrvane() {
    state->lastSendMs = 0;
    state->linkAlive = false;
    if (!sendWorker) {
        sendWorker = std::make_unique<WorkerRecord>();
        sendWorker->thread = std::make_unique<std::thread>(&OrvManager::HandleSendQ, this);
    }
    if (!recvWorker) {
        recvWorker = std::make_unique<WorkerRecord>();
        recvWorker->thread = std::make_unique<std::thread>(&OrvManager::HandleRecvQ, this);
    }
    if (gatt.load() == nullptr && config.makeBleStack) {
        ownedGatt = std::make_unique<BtfrGattWrapper>(config.makeBleStack());
        ownedGatt->SetOwner(this);
        ownedGatt->SetDeviceNameFilter(kDeviceNameFilter);
        ownedGatt->SetServiceUuid(GattUuid::Parse(kServiceUuid));
        ownedGatt->SetCharacteristicUuids(GattUuid::Parse(kWriteUuid),
                                          GattUuid::Parse(kNotifyUuid));
        ownedGatt->SetTiming(config.gattTiming);
        gatt = ownedGatt.get();
        ownedGatt->Start();
    }
}

void OrvManager::StartE6() {
    if (e6.load() != nullptr) {
        return;
    }
    ownedE6 = std::make_unique<E6TruSimClient>();
    ownedE6->SetCallback(this);
    ownedE6->SetTiming(config.e6Timing);
    e6 = ownedE6.get();
    ownedE6->Init(SimulatorAddress(), config.simulatorPort);
}

std::string OrvManager::SimulatorAddress() const {
    const std::string address = config.simulatorAddress.empty()
                                    ? E6TruSimClient::GetLocalIPAddress()
                                    : config.simulatorAddress;
    return address.empty() ? "127.0.0.1" : address;
}

void OrvManager::ChangeSimulatorHost(const std::string& host) {
    config.simulatorAddress = host;
    if (E6TruSimClient* client = e6.load()) {
        client->ChangeAddress(SimulatorAddress());
    }
}

void OrvManager::StopOrvane() {
    if (ownedGatt) {
        ownedGatt->SetOwner(nullptr);
        ownedGatt->Stop();
        gatt = nullptr;
        retiredGatt = std::move(ownedGatt);
        // The link is gone without a disconnect report reaching us: forget its club,
        // or a restart would think the sensor already holds it.
        state->clubCode = 0;
    }
    // The records stay until Stop ends: simulator callbacks may still queue.
    if (recvWorker && recvWorker->thread) {
        recvWorker->Broadcast();
        recvWorker->Join();
        recvWorker->thread.reset();
        LOG_INFO("Orv Recv joined\n");
    }
    if (sendWorker && sendWorker->thread) {
        sendWorker->Broadcast();
        sendWorker->Join();
        sendWorker->thread.reset();
        LOG_INFO("Orv Send joined\n");
    }
}

void OrvManager::StopE6() {
    LOG_INFO("StopE6 start\n");
    if (ownedE6) {
        ownedE6->SetCallback(nullptr);
        ownedE6->Stop();
        e6 = nullptr;
        retiredE6 = std::move(ownedE6);
    }
    LOG_INFO("StopE6 end\n");
}

bool OrvManager::IsSensorConnected() const {
    BtfrGattWrapper* link = gatt.load();
    return link != nullptr && link->GetState() == 3;
}

bool OrvManager::IsSimulatorReady() const {
    E6TruSimClient* client = e6.load();
    return client != nullptr && client->IsConnected() && client->IsAuthenticated();
}

void OrvManager::PushSendQ(OrvCmdBaseModel& command) {
    if (!IsSensorConnected() || !sendWorker) {
        return;
    }
    std::lock_guard<std::mutex> lock(sendWorker->mutex);
    bb* frame = command.MakeSendPacket();
    sendQ.push_back(bb_new_copy(frame->data, frame->size));
}

void OrvManager::EnqueueCommand(OrvCmdBaseModel& command) {
    if (!IsSensorConnected() || !sendWorker) {
        return;
    }
    PushSendQ(command);
    sendWorker->cv.notify_one();
}

void OrvManager::HandleSendQ() {
    LOG_INFO("HandleSendQ thread start\n");
    ServeQueue(*sendWorker, sendQ, [this](bb* buffer) {
        SendCommand(buffer);  // drops it when the link is down
        bb_free(&buffer);
    });
    ClearSendQ();
    LOG_INFO("HandleSendQ thread end\n");
}

void OrvManager::HandleRecvQ() {
    // Handlers run with the receive lock held; they may take the send lock.
    ServeQueue(*recvWorker, recvQ, [this](bb* buffer) { ParsePacket(buffer); });
    ClearRecvQ();
    LOG_INFO("HandleRecvQ thread end\n");
}

void OrvManager::ServeQueue(WorkerRecord& worker, std::deque<bb*>& queue,
                            const std::function<void(bb*)>& handle) {
    while (running) {
        std::unique_lock<std::mutex> lock(worker.mutex);
        if (queue.empty() && running) {
            worker.cv.wait(lock);
        }
        if (!running) {
            break;
        }
        if (!queue.empty()) {
            bb* buffer = queue.front();
            queue.pop_front();
            handle(buffer);
        }
    }
}

int OrvManager::FreeAll(std::deque<bb*>& queue) {
    while (!queue.empty()) {
        bb* buffer = queue.front();
        queue.pop_front();
        bb_free(&buffer);
    }
    return static_cast<int>(queue.size());
}

void OrvManager::ClearSendQ() {
    std::lock_guard<std::mutex> lock(sendWorker->mutex);
    LOG_INFO("ClearSendQ end: %d\n", FreeAll(sendQ));
}

void OrvManager::ClearRecvQ() {
    std::lock_guard<std::mutex> lock(recvWorker->mutex);
    LOG_INFO("ClearRecvQ end: %d\n", FreeAll(recvQ));
}

void OrvManager::SendCommand(bb* buffer) {
    BtfrGattWrapper* link = gatt.load();
    if (link == nullptr || link->GetState() != 3) {
        return;
    }
    if (IsShowLog()) {
        const __code_tag* tag = OrvGetCommandCodeDef(bb_get_at(buffer, 0));
        PrintRaw("Send Command: %s\n", tag != nullptr ? tag->name : "Unknown");
    }
    if (IsShowDump()) {
        PrintRaw("[D] >> %s\n", bytesToHexString(buffer->data, buffer->size).c_str());
    }
    state->lastSendMs = WallClockMs();
    link->WriteCharacteristic(buffer->data, buffer->size);
}

void OrvManager::OnBthData(const uint8_t* data, uint32_t size) {
    WorkerRecord* worker = recvWorker.get();
    if (worker == nullptr) {
        return;
    }
    std::lock_guard<std::mutex> lock(worker->mutex);
    if (IsShowDump()) {
        PrintRaw("[D] << %s, size: %d\n", bytesToHexString(data, size).c_str(),
                 static_cast<int>(size));
    }
    // Any notification, even an empty one, answers the last command and shows life.
    state->lastSendMs = 0;
    state->linkAlive = true;
    if (data != nullptr && size != 0) {
        recvQ.push_back(bb_new_copy(data, size));
        worker->cv.notify_one();
    }
}

void OrvManager::ParsePacket(bb* buffer) {
    const uint8_t type = bb_get_at(buffer, 0);
    const __code_tag* tag = OrvGetDataCodeDef(type);
    if (tag == nullptr) {
        LOG_INFO("Unknown data type: %d\n", type);
        bb_free(&buffer);
        return;
    }
    PrintRaw("Recv Data: %s\n", tag->name);
    orv::VisitDataRecord(buffer,
                         orv::Overloaded{
                             [this](OrvDataEchoModel& r) { HandleEcho(r); },
                             [this](OrvDataClubInfoModel& r) { HandleClubInfo(r); },
                             [this](OrvDataSwingInfoModel& r) { HandleSwingInfo(r); },
                             [this](OrvDataBatteryStateModel& r) { HandleBatteryState(r); },
                             [this](OrvDataFWVersionModel& r) { HandleFWVersion(r); },
                             [this](OrvDataRawModel& r) { HandleRaw(r); },
                             [this](OrvDataSimRawModel& r) { HandleSimRaw(r); },
                             [this](OrvDataSwingAbort& r) { HandleSwingAbort(&r); },
                             [this](OrvDataLRSig& r) { HandleLRSig(r); },
                             // Simulator-result and impact-raw records carry nothing we act on.
                             [](auto&) {},
                         });
    bb_free(&buffer);
}

void OrvManager::OnBthConnectionState(int32_t connectionState) {
    OrvManagerCallback* ui = callback.load();
    switch (connectionState) {
        case 0: {
            LOG_INFO("Ble disconnected\n");
            state->clubCode = 0;
            if (state->linkAlive.load()) {
                TTS_Speak(GetStringRes(165));
            }
            state->lastSendMs = 0;
            state->linkAlive = false;
            if (ui != nullptr) {
                ui->OnOrvOrvaneConnectionChanged(0);
            }
            break;
        }
        case 1:
        case 2:
            if (ui != nullptr) {
                ui->OnOrvOrvaneConnectionChanged(connectionState);
            }
            break;
        case 3: {
            LOG_INFO("Ble connected\n");
            // The firmware version goes first: its answer is what tells the user "connected".
            OrvCmdFWVersionReqModel version;
            PushSendQ(version);
            E6TruSimClient* client = e6.load();
            if (IsSimulatorReady() && client->GetCurrentClub() != 0) {
                ChangeClub(static_cast<int>(client->GetCurrentClub()), true);
                // ChangeClub sends nothing when the club already matches; the
                // firmware request must go out all the same.
                if (WorkerRecord* worker = sendWorker.get()) {
                    worker->cv.notify_one();
                }
            } else {
                OrvCmdClubInfoReqModel clubInfo;
                EnqueueCommand(clubInfo);
            }
            break;
        }
        default:
            break;
    }
}

void OrvManager::ChangeSettings() {
    state->clubCode = 0;
    OrvCmdClubInfoReqModel clubInfo;
    EnqueueCommand(clubInfo);
}

}  // namespace Orvane

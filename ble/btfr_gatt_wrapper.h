// Finds the swing sensor over Bluetooth LE, connects to it as a GATT client,
// subscribes to its notify characteristic and keeps the link up by itself:
// a supervision tick rescans and reconnects after every loss.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ble/ble_stack.h"
#include "ble/bth_callback.h"
#include "ble/gatt_uuid.h"
#include "ble/worker_thread.h"

struct GattWrapperTiming {
    // Supervision pass: how soon a lost link leads to a new scan or connect.
    std::chrono::milliseconds tick{1000};
    // One LE scan; a sensor advertising about once a second is seen in it.
    std::chrono::milliseconds discovery{3000};
};

class BtfrGattWrapper : private WorkerThread, private BleStackEvents {
public:
    explicit BtfrGattWrapper(std::unique_ptr<BleStack> stack);
    ~BtfrGattWrapper() override;

    // Null means no callbacks.
    void SetOwner(BthCallback* owner);
    // Set before Start: a case-sensitive substring of the advertised name.
    void SetDeviceNameFilter(const std::string& filter);
    void SetServiceUuid(const GattUuid& uuid);
    void SetCharacteristicUuids(const GattUuid& write, const GattUuid& notify);
    void SetTiming(const GattWrapperTiming& timing);

    void Start();
    // Joins every thread; afterwards no callback runs. Not from a callback.
    void Stop();
    int32_t GetState() const { return state_.load(); }
    // Any thread. A failed write disconnects the link.
    bool WriteCharacteristic(const uint8_t* data, uint32_t size);
    // Any thread.
    void Disconnect();

private:
    enum : uint32_t { kMsgFindDevice = 1, kMsgConnect = 2, kMsgGetServices = 3 };

    struct FoundDevice {
        uint64_t address = 0;
        std::string addressText;  // "%.4x%.8x"
        std::string name;
        BleRadio* radio = nullptr;
    };

    // The 1-second tick and its early end in Stop.
    struct Supervision {
        std::thread thread;
        std::mutex mutex;  // guards the wait of the tick against Stop's wake-up
        std::condition_variable cv;
    };

    void OnThreadInit() override;
    void OnThreadMessage(uint32_t message) override;
    void OnThreadTerminate() override;

    void OnDiscoveringStarted(BleRadio* radio) override;
    void OnDeviceFound(BleRadio* radio, uint64_t address) override;
    void OnDiscoveringCompleted(BleRadio* radio, BleResult result) override;
    bool OnNumericComparison(BleRadio* radio, uint64_t address, uint32_t number) override;
    bool OnPasskeyRequest(BleRadio* radio, uint64_t address, uint32_t& passkey) override;
    bool OnPinRequest(BleRadio* radio, uint64_t address, std::string& pin) override;
    bool OnPairingNotice(BleRadio* radio, uint64_t address, BlePairingNotice notice) override;
    void OnGattConnect(BleResult result) override;
    void OnGattDisconnect(BleResult reason) override;
    void OnCharacteristicChanged(uint16_t handle, const uint8_t* data, uint32_t size) override;

    BleRadio* GetRadio();
    void DoFindDevice();
    void DoConnect();
    void DoGetServices();
    bool GetDescriptor(const BleGattCharacteristic& characteristic);
    void SupervisionLoop();
    void ReportState(int32_t state);
    // True when `address` is the device being connected and the request is
    // `grantable`; anything else is refused, one log line each.
    bool IsPairingTarget(const char* tag, const char* request, uint64_t address,
                         bool grantable = true);

    std::atomic<BthCallback*> owner_{nullptr};
    std::unique_ptr<BleStack> stack_;  // the manager and the GATT client

    std::mutex devicesMutex_;  // guards foundDevices_
    std::vector<FoundDevice> foundDevices_;
    FoundDevice target_;  // worker thread only
    // The address pairing is answered for: the target from Connect until its
    // link ends; 0 for none.
    std::atomic<uint64_t> pairingTarget_{0};

    std::string nameFilter_;
    GattUuid serviceUuid_;
    GattUuid writeUuid_;
    GattUuid notifyUuid_;

    std::mutex characteristicsMutex_;  // guards writeCharacteristic_, notifyCharacteristic_
    BleGattCharacteristic writeCharacteristic_;
    BleGattCharacteristic notifyCharacteristic_;

    std::atomic<int32_t> state_{0};
    std::unique_ptr<Supervision> supervision_;
    std::atomic<bool> running_{false};
    GattWrapperTiming timing_;
};

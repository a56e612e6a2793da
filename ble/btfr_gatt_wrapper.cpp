#include "ble/btfr_gatt_wrapper.h"

#include <cstdio>
#include <exception>

#include "common/debug_log.h"

namespace {

// Tags of the stack event handlers, named after the handler.
constexpr const char* kTagDiscoveringStarted = "BtfrGattWrapper::wclBthDiscoveringStarted";
constexpr const char* kTagDeviceFound = "BtfrGattWrapper::wclBthDeviceFound";
constexpr const char* kTagDiscoveringCompleted = "BtfrGattWrapper::wclBthDiscoveringCompleted";
constexpr const char* kTagPasskeyRequest = "BtfrGattWrapper::wclBthPasskeyRequest";
constexpr const char* kTagPinRequest = "BtfrGattWrapper::wclBthPinRequest";
constexpr const char* kTagNumericComparison = "BtfrGattWrapper::wclBthNumericComparison";
constexpr const char* kTagPairingNotice = "BtfrGattWrapper::wclBthPairingNotice";
constexpr const char* kTagGattConnect = "BtfrGattWrapper::wclGattClientConnect";
constexpr const char* kTagGattDisconnect = "BtfrGattWrapper::wclGattClientDisconnect";

// Fixed pairing answers the sensor firmware expects.
constexpr uint32_t kPasskey = 482913;
constexpr const char* kPin = "7316";

// Retries of the notification set-up: the sensor sometimes refuses the first
// attempts right after the link comes up.
constexpr int kDescriptorAttempts = 5;

// The filter is held in a 260-character field.
constexpr size_t kNameFilterCharacters = 260;

std::string AddressText(uint64_t address) {
    char text[20];
    std::snprintf(text, sizeof text, "%.4x%.8x", static_cast<unsigned>((address >> 32) & 0xFFFF),
                  static_cast<unsigned>(address & 0xFFFFFFFF));
    return text;
}

// The first `characters` UTF-8 characters of `text`.
std::string FirstCharacters(const std::string& text, size_t characters) {
    size_t count = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool startsCharacter = (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
        if (startsCharacter && count++ == characters) {
            return text.substr(0, i);
        }
    }
    return text;
}

}  // namespace

BtfrGattWrapper::BtfrGattWrapper(std::unique_ptr<BleStack> stack) : stack_(std::move(stack)) {}

BtfrGattWrapper::~BtfrGattWrapper() {
    Stop();
    Terminate();
    std::lock_guard lock(devicesMutex_);
    foundDevices_.clear();
}

void BtfrGattWrapper::SetOwner(BthCallback* owner) {
    owner_.store(owner);
}

void BtfrGattWrapper::SetDeviceNameFilter(const std::string& filter) {
    nameFilter_ = FirstCharacters(filter, kNameFilterCharacters);
}

void BtfrGattWrapper::SetServiceUuid(const GattUuid& uuid) {
    serviceUuid_ = uuid;
}

void BtfrGattWrapper::SetCharacteristicUuids(const GattUuid& write, const GattUuid& notify) {
    writeUuid_ = write;
    notifyUuid_ = notify;
}

void BtfrGattWrapper::SetTiming(const GattWrapperTiming& timing) {
    timing_ = timing;
}

void BtfrGattWrapper::Start() {
    LOG_INFO("Start\n");
    state_.exchange(0);
    running_.store(true);
    Run();
    if (!supervision_) {
        supervision_ = std::make_unique<Supervision>();
        supervision_->thread = std::thread(&BtfrGattWrapper::SupervisionLoop, this);
    }
    LOG_INFO("End\n");
}

void BtfrGattWrapper::Stop() {
    LOG_INFO("Start\n");
    if (!running_.load()) {
        return;
    }
    running_.store(false);
    Disconnect();
    stack_->Close();
    Terminate();
    if (supervision_) {
        {
            std::lock_guard lock(supervision_->mutex);
            supervision_->cv.notify_all();
        }
        supervision_->thread.join();
        supervision_.reset();
    }
    // Nothing is under way any more; a disconnect event that the closed stack
    // can no longer deliver must not leave a stale state behind.
    state_.exchange(0);
    pairingTarget_.store(0);
    LOG_INFO("End\n");
}

void BtfrGattWrapper::OnThreadInit() {
    stack_->SetEvents(this);
    stack_->Open();
}

void BtfrGattWrapper::OnThreadMessage(uint32_t message) {
    switch (message) {
        case kMsgFindDevice:
            DoFindDevice();
            break;
        case kMsgConnect:
            DoConnect();
            break;
        case kMsgGetServices:
            DoGetServices();
            break;
        default:
            break;
    }
}

void BtfrGattWrapper::OnThreadTerminate() {
    stack_->SetEvents(nullptr);
}

void BtfrGattWrapper::ReportState(int32_t state) {
    BthCallback* owner = owner_.load();
    if (owner != nullptr && running_.load()) {
        owner->OnBthConnectionState(state);
    }
}

void BtfrGattWrapper::SupervisionLoop() {
    Supervision& supervision = *supervision_;
    while (running_.load()) {
        std::unique_lock lock(supervision.mutex);
        if (!running_.load()) {
            break;
        }
        if (stack_->IsOpen() && state_.load() == 0) {
            bool haveDevices = false;
            {
                std::lock_guard devices(devicesMutex_);
                haveDevices = !foundDevices_.empty();
            }
            const int32_t next = haveDevices ? 2 : 1;
            int32_t idle = 0;
            if (state_.compare_exchange_strong(idle, next)) {
                ReportState(next);
                PostMessage(haveDevices ? kMsgConnect : kMsgFindDevice);
            }
        }
        supervision.cv.wait_for(lock, timing_.tick, [this] { return !running_.load(); });
    }
}

BleRadio* BtfrGattWrapper::GetRadio() {
    const int count = stack_->RadioCount();
    for (int i = 0; i < count; ++i) {
        BleRadio* radio = stack_->GetRadioByIndex(i);
        if (radio != nullptr && stack_->IsRadioUsable(radio)) {
            return radio;
        }
    }
    LOG_ERROR("No one Bluetooth Radio found.\n");
    return nullptr;
}

void BtfrGattWrapper::DoFindDevice() {
    LOG_INFO("FindDevice\n");
    {
        std::lock_guard lock(devicesMutex_);
        foundDevices_.clear();
    }
    BleRadio* radio = GetRadio();
    if (radio == nullptr) {
        return;
    }
    const BleResult result = stack_->Discover(radio, timing_.discovery);
    if (result != BLE_OK) {
        state_.exchange(0);
        LOG_ERROR("Error starting discovering: %08x\n", static_cast<unsigned>(result));
    }
}

void BtfrGattWrapper::OnDiscoveringStarted(BleRadio* /*radio*/) {
    LOG_INFO_AS(kTagDiscoveringStarted, "wclBthDiscoveringStarted()\n");
}

void BtfrGattWrapper::OnDeviceFound(BleRadio* radio, uint64_t address) {
    std::string name;
    BleDeviceType type = BleDeviceType::Unknown;
    if (stack_->GetRemoteName(radio, address, name) != BLE_OK ||
        stack_->GetRemoteDeviceType(radio, address, type) != BLE_OK || type != BleDeviceType::Le) {
        return;
    }
    if (name.find(nameFilter_) == std::string::npos) {
        return;
    }
    FoundDevice device{address, AddressText(address), name, radio};
    LOG_INFO_AS(kTagDeviceFound, "wclBthDeviceFound() name:%s, address:%s\n", device.name.c_str(),
                device.addressText.c_str());
    std::lock_guard lock(devicesMutex_);
    foundDevices_.push_back(std::move(device));
}

void BtfrGattWrapper::OnDiscoveringCompleted(BleRadio* /*radio*/, BleResult /*result*/) {
    LOG_INFO_AS(kTagDiscoveringCompleted, "wclBthDiscoveringCompleted()\n");
    state_.exchange(0);
}

void BtfrGattWrapper::DoConnect() {
    if (!running_.load()) {
        return;
    }
    {
        std::lock_guard lock(devicesMutex_);
        if (foundDevices_.empty()) {
            state_.exchange(0);
            return;
        }
        target_ = foundDevices_.back();
        foundDevices_.pop_back();
    }
    {
        std::lock_guard lock(characteristicsMutex_);
        writeCharacteristic_ = {};
        notifyCharacteristic_ = {};
    }
    stack_->GattSetAddress(target_.address);
    // Before the connect: the peer may ask for pairing while it is made.
    pairingTarget_.store(target_.address);
    LOG_INFO("Connecting device:%s\n", target_.addressText.c_str());
    const BleResult result = stack_->GattConnect(target_.radio);
    if (result != BLE_OK) {
        LOG_INFO("Connect error:%08x\n", static_cast<unsigned>(result));
        pairingTarget_.store(0);
        state_.exchange(0);
    }
}

void BtfrGattWrapper::OnGattConnect(BleResult result) {
    LOG_INFO_AS(kTagGattConnect, "wclGattClientConnect ret:%08x\n", static_cast<unsigned>(result));
    if (result != BLE_OK) {
        pairingTarget_.store(0);
        state_.exchange(0);
        return;
    }
    PostMessage(kMsgGetServices);
}

void BtfrGattWrapper::DoGetServices() {
    std::vector<BleGattService> services;
    const BleGattService* service = nullptr;
    if (stack_->GattReadServices(services) == BLE_OK) {
        for (const BleGattService& candidate : services) {
            if (!candidate.uuid.IsShort() && candidate.uuid == serviceUuid_) {
                service = &candidate;
                break;
            }
        }
    }
    if (service == nullptr) {
        LOG_INFO("GetService return false\n");
        Disconnect();
        return;
    }

    std::vector<BleGattCharacteristic> characteristics;
    bool haveWrite = false;
    bool haveNotify = false;
    bool subscribeTried = false;
    bool subscribed = false;
    if (stack_->GattReadCharacteristics(*service, characteristics) == BLE_OK) {
        for (const BleGattCharacteristic& characteristic : characteristics) {
            if (characteristic.uuid.IsShort()) {
                continue;
            }
            if (!haveWrite && characteristic.uuid == writeUuid_) {
                std::lock_guard lock(characteristicsMutex_);
                writeCharacteristic_ = characteristic;
                haveWrite = true;
            }
            if (!haveNotify && characteristic.uuid == notifyUuid_) {
                std::lock_guard lock(characteristicsMutex_);
                notifyCharacteristic_ = characteristic;
                haveNotify = true;
            }
            if (!subscribeTried && characteristic.canNotify) {
                subscribeTried = true;
                subscribed = GetDescriptor(characteristic);
            }
        }
    }
    if (!haveWrite || !haveNotify || !subscribed) {
        Disconnect();
        return;
    }
    state_.exchange(3);
    {
        std::lock_guard lock(devicesMutex_);
        foundDevices_.clear();
    }
    ReportState(3);
}

bool BtfrGattWrapper::GetDescriptor(const BleGattCharacteristic& characteristic) {
    bool configured = false;
    for (int attempt = 0; attempt < kDescriptorAttempts && !configured; ++attempt) {
        const BleResult result = stack_->GattWriteClientConfiguration(characteristic, true);
        configured = result == BLE_OK;
        if (!configured) {
            LOG_INFO("WriteClientConfiguration fail. error:%08x\n", static_cast<unsigned>(result));
        }
    }
    if (!configured) {
        return false;
    }
    for (int attempt = 0; attempt < kDescriptorAttempts; ++attempt) {
        const BleResult result = stack_->GattSubscribe(characteristic);
        if (result == BLE_OK) {
            return true;
        }
        LOG_INFO("Subscribe fail. error:%08x\n", static_cast<unsigned>(result));
    }
    return false;
}

void BtfrGattWrapper::OnCharacteristicChanged(uint16_t /*handle*/, const uint8_t* data,
                                              uint32_t size) {
    BthCallback* owner = owner_.load();
    if (size == 0 || owner == nullptr) {
        return;
    }
    // The owner gets its own copy: the stack's buffer may be reused meanwhile.
    const std::vector<uint8_t> copy(data, data + size);
    owner->OnBthData(copy.data(), size);
}

bool BtfrGattWrapper::WriteCharacteristic(const uint8_t* data, uint32_t size) {
    const std::vector<uint8_t> bytes(data, data + size);
    BleGattCharacteristic characteristic;
    {
        std::lock_guard lock(characteristicsMutex_);
        characteristic = writeCharacteristic_;
    }
    if (stack_->GattWriteValue(characteristic, bytes) != BLE_OK) {
        if (running_.load()) {
            LOG_INFO("Call disconnect(WriteCharacteristicValue)\n");
            Disconnect();
        }
        return false;
    }
    return true;
}

void BtfrGattWrapper::Disconnect() {
    if (state_.load() == 0) {
        return;
    }
    LOG_INFO("Disconnect()\n");
    try {
        bool connected = false;
        if (stack_->GattGetState(connected) == BLE_OK && connected) {
            BleGattCharacteristic notify;
            {
                std::lock_guard lock(characteristicsMutex_);
                notify = notifyCharacteristic_;
            }
            stack_->GattUnsubscribe(notify);
            stack_->GattDisconnect();
        }
    } catch (const std::exception&) {
        state_.exchange(0);
        ReportState(0);
    }
}

void BtfrGattWrapper::OnGattDisconnect(BleResult reason) {
    LOG_INFO_AS(kTagGattDisconnect, "wclGattClientDisconnect reson:%08x\n",
                static_cast<unsigned>(reason));
    pairingTarget_.store(0);
    state_.exchange(0);
    ReportState(0);
}

bool BtfrGattWrapper::IsPairingTarget(const char* tag, const char* request, uint64_t address,
                                      bool grantable) {
    if (grantable && address != 0 && address == pairingTarget_.load()) {
        return true;
    }
    LOG_INFO_AS(tag, "%s refused, device:%s\n", request, AddressText(address).c_str());
    return false;
}

bool BtfrGattWrapper::OnNumericComparison(BleRadio* /*radio*/, uint64_t address,
                                          uint32_t /*number*/) {
    return IsPairingTarget(kTagNumericComparison, "Numeric comparison", address);
}

bool BtfrGattWrapper::OnPasskeyRequest(BleRadio* /*radio*/, uint64_t address, uint32_t& passkey) {
    if (!IsPairingTarget(kTagPasskeyRequest, "Passkey request", address)) {
        return false;
    }
    LOG_INFO_AS(kTagPasskeyRequest, "wclBthPasskeyRequest Pass key: %u\n", kPasskey);
    passkey = kPasskey;
    return true;
}

bool BtfrGattWrapper::OnPinRequest(BleRadio* /*radio*/, uint64_t address, std::string& pin) {
    if (!IsPairingTarget(kTagPinRequest, "PIN request", address)) {
        return false;
    }
    LOG_INFO_AS(kTagPinRequest, "wclBthPinRequest Pin: %s\n", kPin);
    pin = kPin;
    return true;
}

// The sensor may ask for a just-works pairing or show a key while we connect
// it. It never needs a service of this computer (it is only a GATT server),
// so a service authorisation is refused even for it.
bool BtfrGattWrapper::OnPairingNotice(BleRadio* /*radio*/, uint64_t address,
                                      BlePairingNotice notice) {
    static constexpr const char* kRequests[] = {"Pairing authorization", "Service authorization",
                                                "Passkey display", "PIN display"};
    return IsPairingTarget(kTagPairingNotice, kRequests[static_cast<int>(notice)], address,
                           notice != BlePairingNotice::ServiceAuthorization);
}

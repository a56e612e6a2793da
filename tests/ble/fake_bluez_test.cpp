// The fake bluetoothd keeps the quirks a central must handle, so that the
// backend is tested against them (and the session tests can rely on them).
#include <gtest/gtest.h>

#include <sdbus-c++/sdbus-c++.h>

#include "ble/bluez/bluez_names.h"
#include "tests/ble/ble_test_helpers.h"
#include "tests/ble/fake_bluez/fake_bluez.h"
#include "tests/ble/fake_bluez/private_system_bus.h"

namespace {

using orv::test::Eventually;
using orv::test::FakeBluez;
using orv::test::FakeDeviceConfig;
using orv::test::VariantMap;

std::string ErrorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const sdbus::Error& error) {
        return error.getName();
    }
    return "";
}

TEST(FakeBluez, BehavesLikeBluetoothdWhereCentralsTripUp) {
    orv::test::PrivateSystemBus bus;
    ASSERT_TRUE(bus.ok());
    FakeBluez bluez;
    bluez.AddAdapter();
    FakeDeviceConfig config;
    config.address = "C0:DE:5E:45:00:01";
    config.name = "orvane-demo";
    config.known = true;
    auto& device = bluez.AddDevice(config);
    ASSERT_TRUE(bluez.Start());

    auto connection = sdbus::createSystemBusConnection();
    auto adapter = sdbus::createProxy(*connection, bluez::kService, "/org/bluez/hci0");
    auto call = [&](const char* method, const VariantMap& filter) {
        adapter->callMethod(method).onInterface(bluez::kAdapterInterface).withArguments(filter);
    };
    // RSSI must be int16.
    EXPECT_EQ(ErrorOf([&] {
                  call("SetDiscoveryFilter", {{"RSSI", sdbus::Variant(int32_t{-70})}});
              }),
              "org.bluez.Error.InvalidArguments");
    EXPECT_EQ(ErrorOf([&] {
                  call("SetDiscoveryFilter", {{"RSSI", sdbus::Variant(int16_t{-70})}});
              }),
              "");
    EXPECT_EQ(ErrorOf([&] {
                  adapter->callMethod("StopDiscovery").onInterface(bluez::kAdapterInterface);
              }),
              "org.bluez.Error.Failed");

    // A known device is in the managed objects without RSSI; its GATT
    // objects come only with a connection.
    auto root = sdbus::createProxy(*connection, bluez::kService, "/");
    std::map<sdbus::ObjectPath, std::map<std::string, VariantMap>> objects;
    root->callMethod("GetManagedObjects")
        .onInterface(bluez::kObjectManagerInterface)
        .storeResultsTo(objects);
    ASSERT_EQ(objects.count(sdbus::ObjectPath(device.Path())), 1u);
    const VariantMap& properties =
        objects[sdbus::ObjectPath(device.Path())][bluez::kDeviceInterface];
    EXPECT_EQ(properties.count("RSSI"), 0u);
    EXPECT_EQ(properties.at("Name").get<std::string>(), "orvane-demo");
    EXPECT_EQ(objects.size(), 3u);  // /org/bluez, hci0, the device

    // WriteValue needs its options dictionary; the link must be up.
    auto characteristic =
        sdbus::createProxy(*connection, bluez::kService, device.Path() + "/service0004/char0005");
    auto proxy = sdbus::createProxy(*connection, bluez::kService, device.Path());
    proxy->callMethod("Connect").onInterface(bluez::kDeviceInterface);
    EXPECT_TRUE(device.Connected());
    ASSERT_TRUE(Eventually([&] { return device.ServicesResolved(); }));
    EXPECT_NE(ErrorOf([&] {
                  characteristic->callMethod("WriteValue")
                      .onInterface(bluez::kCharacteristicInterface)
                      .withArguments(std::vector<uint8_t>{1});
              }),
              "");
    EXPECT_EQ(ErrorOf([&] {
                  characteristic->callMethod("WriteValue")
                      .onInterface(bluez::kCharacteristicInterface)
                      .withArguments(std::vector<uint8_t>{1}, VariantMap{});
              }),
              "");
    auto notify =
        sdbus::createProxy(*connection, bluez::kService, device.Path() + "/service0004/char0007");
    auto start = [&] {
        notify->callMethod("StartNotify").onInterface(bluez::kCharacteristicInterface);
    };
    EXPECT_EQ(ErrorOf(start), "");
    EXPECT_EQ(ErrorOf(start), "org.bluez.Error.Failed");  // "Already notifying"
    proxy->callMethod("Disconnect").onInterface(bluez::kDeviceInterface);
    EXPECT_TRUE(Eventually([&] { return !device.Connected(); }));  // after the reply
    EXPECT_TRUE(device.Notifying());                               // kept across the link's end
    connection.reset();
    bluez.Stop();
}

}  // namespace

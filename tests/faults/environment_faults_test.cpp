// Faults around the session: a corrupt or unwritable settings file, and
// bluetoothd restarting under the BlueZ backend.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "common/settings.h"
#include "common/user_depends_data.h"
#include "tests/ble/bluez_rig.h"
#include "tests/session/session_fixture.h"
#include "tests/support/file_text.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// Makes a folder refuse new entries for its lifetime: no write permission,
// and for root (who ignores permissions) the immutable flag as well.
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(fs::path folder) : folder_(std::move(folder)) {
        fs::permissions(folder_, fs::perms::owner_read | fs::perms::owner_exec);
        SetImmutable(true);
    }
    ~ReadOnlyFolder() {
        SetImmutable(false);
        fs::permissions(folder_, fs::perms::owner_all);
    }
    // Whether the folder really refuses a new file here.
    bool Refuses() const { return ::access(folder_.c_str(), W_OK) != 0; }

private:
    void SetImmutable(bool on) {
        const int fd = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY);
        int flags = 0;
        if (fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            ::ioctl(fd, FS_IOC_SETFLAGS, &flags);
        }
        ::close(fd);
    }
    fs::path folder_;
};

// A save that fails leaves the old file whole.
TEST(CorruptSettings, GiveDefaultsAndAFailedSaveKeepsTheOldFile) {
    TempDir dir;
    const fs::path ini = dir.path() / "settings.ini";
    const std::string garbage("[Golf]\nSwingLevel=2\n\0\x01\xff\xfe garbage", 30);
    WriteFileText(ini, garbage);
    gUserDependsData.swingLevel = 2;

    LogCapture log;
    OrvSettings settings(dir.path());
    EXPECT_EQ(settings.GetDifficulty(), 1);  // the default, not the 2 in the garbage
    EXPECT_EQ(CountOf(log.Text(), "settings.ini: not a text file\n"), 1u) << log.Text();
    {
        ReadOnlyFolder readOnly(dir.path());
        if (!readOnly.Refuses()) {
            GTEST_SKIP() << "this file system lets the folder be written all the same";
        }
        const std::string before = log.Text();
        settings.SetDifficulty(0);
        settings.SaveSetting();
        const std::string during = log.Text().substr(before.size());
        EXPECT_EQ(CountOf(during, "mkostemp error:"), 1u) << during;
    }
    EXPECT_EQ(ReadFileText(ini), garbage);
    // Writable again, the next save goes through.
    settings.SaveSetting();
    EXPECT_NE(ReadFileText(ini).find("SwingLevel=0"), std::string::npos);
}

class BluetoothdFaults : public SessionTest, protected BluezDaemon {};

// The whole program over the BlueZ backend (a fake bluetoothd on a private
// system bus, whose one device carries the virtual sensor), first as it is,
// then through a restart of bluetoothd.
TEST_F(BluetoothdFaults, OneShotOverBluezThenARestartIsLivedThrough) {
    ASSERT_TRUE(bus.ok());
    bluez.AddAdapter();
    bluez.AddDevice({.address = "C0:DE:5E:45:00:01", .name = "orvane-demo", .sensor = sensor});
    config.makeBleStack = [] { return MakeBluezStack(BluezRig::Timing()); };
    ASSERT_TRUE(bluez.Start());
    LogCapture log;
    StartManager();
    ASSERT_TRUE(SwingBecomesOneShot());

    ui.Clear();
    bluez.Stop();
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:0"); }));
    EXPECT_EQ(CountOf(log.Text(), "Ble disconnected\n"), 1u) << log.Text();
    ASSERT_TRUE(bluez.Start());
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:3"); }, 15s));
    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_EQ(emulator->Shots().size(), 2u);

    manager->Stop();
    manager.reset();
}

}  // namespace
}  // namespace orv::test

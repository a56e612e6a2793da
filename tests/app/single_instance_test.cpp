#include "app/single_instance.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QFileInfo>
#include <QProcess>

#include "tests/ui/gui_test_app.h"

namespace {

using orv::test::ProcessEventsUntil;

// Another process killed while it held the guard leaves its socket and lock
// behind; the next instance takes over, and a start after that activates it.
TEST(SingleInstance, SecondStartActivatesTheFirstEvenAfterACrashedOne) {
    orv::test::GuiTestApp();
    const QString title = QString("OrvaneWinTest-%1").arg(getpid());
    QProcess crashed;
    crashed.start(SINGLE_INSTANCE_PROBE, {title});
    ASSERT_TRUE(crashed.waitForReadyRead(10000));
    EXPECT_EQ(crashed.readAllStandardOutput(), "first\n");
    crashed.kill();  // SIGKILL: no clean-up of socket or lock file
    ASSERT_TRUE(crashed.waitForFinished(5000));

    orv::SingleInstance guard(title);
    ASSERT_TRUE(QFileInfo::exists(guard.ServerName()));
    ASSERT_TRUE(QFileInfo::exists(guard.ServerName() + ".lock"));
    ASSERT_TRUE(guard.Claim());
    int activations = 0;
    QObject::connect(&guard, &orv::SingleInstance::ActivationRequested, [&] { ++activations; });
    QProcess later;
    later.start(SINGLE_INSTANCE_PROBE, {title});
    // The guard answers from this thread's event loop, which must run meanwhile.
    ASSERT_TRUE(ProcessEventsUntil([&] { return later.state() == QProcess::NotRunning; }));
    EXPECT_EQ(later.exitCode(), 3);
    EXPECT_EQ(later.readAllStandardOutput(), "second\n");
    EXPECT_TRUE(ProcessEventsUntil([&] { return activations == 1; }));
}

}  // namespace

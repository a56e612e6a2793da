#include "app/single_instance.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QFileInfo>
#include <QProcess>

#include "tests/ui/gui_test_app.h"

namespace {

using orv::test::ProcessEventsUntil;

QString UniqueTitle(const char* test) {
    return QString("OrvaneWinTest-%1-%2").arg(getpid()).arg(test);
}

// A probe process with its output collected as it comes.
struct Probe {
    explicit Probe(const QString& title) { process.start(SINGLE_INSTANCE_PROBE, {title}); }
    ~Probe() {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(5000);
        }
    }
    bool Says(const QString& word) {
        return ProcessEventsUntil([&] {
            output += process.readAllStandardOutput();
            return output.contains(word);
        });
    }
    bool Exits(int code) {
        // waitForFinished() is false for a process that has already ended.
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(10000)) {
            return false;
        }
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == code;
    }
    QProcess process;
    QString output;
};

TEST(SingleInstance, SecondStartBringsTheFirstToTheFront) {
    orv::test::GuiTestApp();
    const QString title = UniqueTitle("second");
    Probe first(title);
    ASSERT_TRUE(first.Says("first")) << first.output.toStdString();

    Probe second(title);
    EXPECT_TRUE(second.Exits(3));
    EXPECT_TRUE(second.Says("second"));
    EXPECT_TRUE(first.Says("activated")) << first.output.toStdString();
    EXPECT_TRUE(first.Exits(0));
}

TEST(SingleInstance, CrashedFirstInstanceDoesNotBlockTheNext) {
    orv::test::GuiTestApp();
    const QString title = UniqueTitle("crash");
    QString socketPath;
    {
        Probe crashed(title);
        ASSERT_TRUE(crashed.Says("first"));
        crashed.process.kill();  // SIGKILL: no clean-up of socket or lock file
        ASSERT_TRUE(crashed.process.waitForFinished(5000));
    }
    orv::SingleInstance guard(title);
    ASSERT_TRUE(QFileInfo::exists(guard.ServerName()));  // the stale socket file
    ASSERT_TRUE(QFileInfo::exists(guard.ServerName() + ".lock"));
    ASSERT_TRUE(guard.Claim());

    int activations = 0;
    QObject::connect(&guard, &orv::SingleInstance::ActivationRequested, [&] { ++activations; });
    Probe later(title);
    EXPECT_TRUE(later.Exits(3));
    EXPECT_TRUE(ProcessEventsUntil([&] { return activations == 1; }));
}

}  // namespace

// Starts like the program does as far as the single-instance guard goes:
// prints "first" and waits to be activated ("activated", exit 0), or prints
// "second" and exits 3 when another instance runs.
#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

#include "app/single_instance.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        return 2;
    }
    orv::SingleInstance guard(QString::fromLocal8Bit(argv[1]));
    if (!guard.Claim()) {
        std::puts("second");
        return 3;
    }
    QObject::connect(&guard, &orv::SingleInstance::ActivationRequested, &app, [] {
        std::puts("activated");
        std::fflush(stdout);
        QCoreApplication::exit(0);
    });
    // A probe the test forgot must not outlive it.
    QTimer::singleShot(30000, &app, [] { QCoreApplication::exit(4); });
    std::puts("first");
    std::fflush(stdout);
    return app.exec();
}

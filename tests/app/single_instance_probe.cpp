// Starts like the program does as far as the single-instance guard goes:
// prints "first" and runs until killed, or prints "second" and exits 3 when
// another instance runs.
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
    const bool first = guard.Claim();
    std::puts(first ? "first" : "second");
    std::fflush(stdout);
    if (!first) {
        return 3;
    }
    // A probe the test forgot must not outlive it.
    QTimer::singleShot(30000, &app, [] { QCoreApplication::exit(4); });
    return app.exec();
}

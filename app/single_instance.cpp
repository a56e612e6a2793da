#include "app/single_instance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include "common/debug_log.h"

namespace orv {

namespace {

constexpr char kActivate[] = "activate\n";
constexpr int kSocketWaitMs = 1000;

QString RuntimeFolder() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        folder = QDir::tempPath();
    }
    return folder;
}

}  // namespace

SingleInstance::SingleInstance(const QString& windowTitle, SingleInstanceTiming timing,
                               QObject* parent)
    : QObject(parent),
      serverName_(RuntimeFolder() + "/" + windowTitle),
      timing_(timing),
      lock_(serverName_ + ".lock") {
    // Only a dead owner makes the lock stale, never its age: the first
    // instance may run for days.
    lock_.setStaleLockTime(0);
}

SingleInstance::~SingleInstance() {
    if (server_) {
        server_->close();
    }
}

bool SingleInstance::Claim() {
    if (lock_.tryLock(0)) {
        Listen();
        return true;
    }
    if (lock_.error() != QLockFile::LockFailedError) {
        // The folder is unusable; better a second window than none.
        LOG_ERROR("QLockFile::tryLock error:0x%x\n", static_cast<unsigned>(lock_.error()));
        return true;
    }
    AskFirstToActivate();
    return false;
}

void SingleInstance::Listen() {
    // A crashed first instance leaves its socket file behind; the lock says
    // nobody serves it any more.
    QLocalServer::removeServer(serverName_);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server_.get(), &QLocalServer::newConnection, this, &SingleInstance::OnConnection);
    if (!server_->listen(serverName_)) {
        LOG_ERROR("QLocalServer::listen error:0x%x\n",
                  static_cast<unsigned>(server_->serverError()));
    }
}

bool SingleInstance::AskFirstToActivate() {
    QElapsedTimer elapsed;
    elapsed.start();
    while (true) {
        QLocalSocket socket;
        socket.connectToServer(serverName_);
        if (socket.waitForConnected(kSocketWaitMs)) {
            socket.write(kActivate);
            const bool sent = socket.waitForBytesWritten(kSocketWaitMs);
            socket.disconnectFromServer();
            return sent;
        }
        if (elapsed.elapsed() >= timing_.reachFirst.count()) {
            LOG_ERROR("QLocalSocket::connectToServer error:0x%x\n",
                      static_cast<unsigned>(socket.error()));
            return false;
        }
        // The first instance holds the lock but is not listening yet.
        QThread::msleep(50);
    }
}

void SingleInstance::OnConnection() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { OnMessage(socket); });
        OnMessage(socket);
    }
}

void SingleInstance::OnMessage(QLocalSocket* socket) {
    while (socket->canReadLine()) {
        if (socket->readLine() == kActivate) {
            LOG_INFO("Activation requested\n");
            emit ActivationRequested();
        }
    }
}

}  // namespace orv

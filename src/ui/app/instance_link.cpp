#include "ui/app/instance_link.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>
#include <set>
#include <vector>

namespace lomarin::ui {
namespace {

constexpr char kSocketPrefix[] = "instance-";

// Waits for one whole frame read by read(stream); false when the time runs out or the peer goes.
template <typename Read>
bool readFrame(QLocalSocket& socket, QDeadlineTimer deadline, Read read) {
  QDataStream stream(&socket);
  for (;;) {
    stream.startTransaction();
    read(stream);
    if (stream.commitTransaction()) return true;
    if (socket.state() != QLocalSocket::ConnectedState) return false;
    if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) return false;
  }
}

}  // namespace

QString instance::socketFolder() {
  const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
  if (!runtime.isEmpty()) return QDir(QString::fromLocal8Bit(runtime)).filePath("lomarin");
  return QDir(QDir::tempPath()).filePath(QString("lomarin-%1").arg(::getuid()));
}

InstanceServer::InstanceServer(QObject* parent) : QObject(parent), server_(new QLocalServer(this)) {
  server_->setSocketOptions(QLocalServer::UserAccessOption);
  connect(server_, &QLocalServer::newConnection, this, [this] {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
      connect(socket, &QLocalSocket::readyRead, this, [this, socket] { serve(socket); });
      connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
      serve(socket);
    }
  });
}

InstanceServer::~InstanceServer() { server_->close(); }

bool InstanceServer::listen(const QString& folder, QString* error) {
  if (!QDir().mkpath(folder) ||
      !QFile::setPermissions(folder,
                             QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner)) {
    *error = QObject::tr("Cannot create the folder %1").arg(folder);
    return false;
  }
  const QString path =
      QDir(folder).filePath(kSocketPrefix + QString::number(QCoreApplication::applicationPid()));
  QLocalServer::removeServer(path);
  if (!server_->listen(path)) {
    *error = server_->errorString();
    return false;
  }
  return true;
}

void InstanceServer::serve(QLocalSocket* socket) {
  QDataStream stream(socket);
  for (;;) {
    stream.startTransaction();
    quint32 message = 0;
    stream >> message;
    QString text;
    if (message != instance::kWakeMessage) stream >> text;
    if (!stream.commitTransaction()) return;
    if (message == instance::kOpenFileMessage) {
      emit openFileRequested(text);
      stream << instance::kOpenFileMessage;
      socket->flush();
    } else if (message == 0 && text == QLatin1String(instance::kFindMessage)) {
      stream << instance::kInstanceReply;
      socket->flush();
    }
    // The wake message only wakes this thread: nothing is done for it.
  }
}

RunningInstance::RunningInstance(std::unique_ptr<QLocalSocket> socket, qint64 pid)
    : socket_(std::move(socket)), pid_(pid) {}

RunningInstance::~RunningInstance() = default;

RunningInstance::HandOff RunningInstance::openFile(const QString& fileName, QDeadlineTimer deadline) {
  QDataStream stream(socket_.get());
  stream << instance::kWakeMessage;
  stream << instance::kOpenFileMessage << fileName;
  socket_->flush();
  quint32 done = 0;
  // Like a synchronous send, the reply comes once the file is open; but an instance held by a
  // question in its window must not hold this process too.
  if (readFrame(*socket_, deadline, [&](QDataStream& in) { in >> done; }))
    return done == instance::kOpenFileMessage ? HandOff::Opened : HandOff::Gone;
  return socket_->state() == QLocalSocket::ConnectedState ? HandOff::NotConfirmed : HandOff::Gone;
}

std::unique_ptr<RunningInstance> findRunningInstance(const QString& folder, int timeoutMs) {
  const QStringList names = QDir(folder).entryList({QString(kSocketPrefix) + "*"}, QDir::System, QDir::Name);
  std::vector<std::unique_ptr<QLocalSocket>> sockets;
  std::set<QLocalSocket*> answered;
  QLocalSocket* found = nullptr;
  QEventLoop loop;
  // A listener that hangs must not delay the others: all are asked at once, under one deadline.
  const auto finished = [&](QLocalSocket* socket) {
    answered.insert(socket);
    if (answered.size() == sockets.size()) loop.quit();
  };
  for (const QString& name : names) {
    const QString path = QDir(folder).filePath(name);
    QLocalSocket* socket = sockets.emplace_back(std::make_unique<QLocalSocket>()).get();
    QObject::connect(socket, &QLocalSocket::connected, socket, [socket] {
      QDataStream(socket) << quint32(0) << QString::fromLatin1(instance::kFindMessage);
    });
    QObject::connect(socket, &QLocalSocket::readyRead, socket, [&, socket] {
      QDataStream stream(socket);
      stream.startTransaction();
      quint32 reply = 0;
      stream >> reply;
      if (!stream.commitTransaction() || found) return;
      if (reply != instance::kInstanceReply) return finished(socket);
      found = socket;
      loop.quit();
    });
    QObject::connect(socket, &QLocalSocket::errorOccurred, socket,
                     [&, socket, path](QLocalSocket::LocalSocketError error) {
                       if (error == QLocalSocket::ConnectionRefusedError) QFile::remove(path);
                       finished(socket);
                     });
    socket->connectToServer(path);
  }
  if (!found && answered.size() < sockets.size()) {
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
  }
  for (auto& socket : sockets) {
    if (socket.get() != found) continue;
    QObject::disconnect(found, nullptr, nullptr, nullptr);
    const qint64 pid =
        QFileInfo(found->fullServerName()).fileName().mid(int(sizeof(kSocketPrefix)) - 1).toLongLong();
    return std::make_unique<RunningInstance>(std::move(socket), pid);
  }
  return nullptr;
}

}  // namespace lomarin::ui

#include "ui/app/instance_link.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>

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
      !QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner)) {
    *error = QObject::tr("Cannot create the folder %1").arg(folder);
    return false;
  }
  const QString path = QDir(folder).filePath(kSocketPrefix + QString::number(QCoreApplication::applicationPid()));
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

RunningInstance::RunningInstance(std::unique_ptr<QLocalSocket> socket) : socket_(std::move(socket)) {}

RunningInstance::~RunningInstance() = default;

bool RunningInstance::openFile(const QString& fileName) {
  QDataStream stream(socket_.get());
  stream << instance::kWakeMessage;
  stream << instance::kOpenFileMessage << fileName;
  socket_->flush();
  quint32 done = 0;
  // Like a synchronous send: the file is open when the reply comes, however long that takes.
  return readFrame(*socket_, QDeadlineTimer::Forever, [&](QDataStream& in) { in >> done; }) &&
         done == instance::kOpenFileMessage;
}

std::unique_ptr<RunningInstance> findRunningInstance(const QString& folder, int timeoutMs) {
  const QStringList names = QDir(folder).entryList({QString(kSocketPrefix) + "*"}, QDir::System, QDir::Name);
  for (const QString& name : names) {
    const QString path = QDir(folder).filePath(name);
    auto socket = std::make_unique<QLocalSocket>();
    socket->connectToServer(path);
    QDeadlineTimer deadline(timeoutMs);
    if (!socket->waitForConnected(timeoutMs)) {
      if (socket->error() == QLocalSocket::ConnectionRefusedError) QFile::remove(path);
      continue;
    }
    QDataStream stream(socket.get());
    stream << quint32(0) << QString::fromLatin1(instance::kFindMessage);
    socket->flush();
    quint32 reply = 0;
    if (readFrame(*socket, deadline, [&](QDataStream& in) { in >> reply; }) && reply == instance::kInstanceReply)
      return std::make_unique<RunningInstance>(std::move(socket));
  }
  return nullptr;
}

}  // namespace lomarin::ui

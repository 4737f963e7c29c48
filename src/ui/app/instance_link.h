#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <memory>

class QLocalServer;
class QLocalSocket;

namespace lomarin::ui {

// The single-instance hand-off. Every running instance listens on a socket of its own in a
// per-user folder; a starting process asks each of them the find question and takes the first
// that answers with the instance reply for a running instance.
namespace instance {
inline constexpr char kFindMessage[] = "lomarin_mysql : find previous instance";
inline constexpr quint32 kInstanceReply = 0x108888;
inline constexpr quint32 kOpenFileMessage = 0x401;
inline constexpr quint32 kWakeMessage = 0x403;
inline constexpr int kFindTimeoutMs = 5000;

// $XDG_RUNTIME_DIR/lomarin, else a folder of the user's own under the temporary folder.
QString socketFolder();
}  // namespace instance

// The running instance's side: answers the find question and opens the files it is handed.
class InstanceServer : public QObject {
  Q_OBJECT
 public:
  explicit InstanceServer(QObject* parent = nullptr);
  ~InstanceServer() override;

  // False with *error set when the socket cannot be created.
  bool listen(const QString& folder, QString* error);

 signals:
  // The sender waits until every slot of this signal has returned.
  void openFileRequested(const QString& fileName);

 private:
  void serve(QLocalSocket* socket);

  QLocalServer* server_;
};

// A running instance found by findRunningInstance, connected and ready for the hand-off.
class RunningInstance {
 public:
  RunningInstance(std::unique_ptr<QLocalSocket> socket, qint64 pid);
  ~RunningInstance();

  enum class HandOff { Opened, NotConfirmed, Gone };
  // Wakes the instance and has it open the file; returns once it has, or at the deadline (the
  // instance may be waiting for an answer in its window), or when it went away.
  HandOff openFile(const QString& fileName, QDeadlineTimer deadline);

  qint64 pid() const { return pid_; }

 private:
  std::unique_ptr<QLocalSocket> socket_;
  qint64 pid_;
};

// Asks every listener in the folder at once and takes the first that answers the find question
// with the instance reply. Nothing when none has within the time-out, however many there are;
// listeners of processes that have ended are cleared away.
std::unique_ptr<RunningInstance> findRunningInstance(const QString& folder,
                                                     int timeoutMs = instance::kFindTimeoutMs);

}  // namespace lomarin::ui

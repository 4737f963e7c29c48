#pragma once

#include <QDialog>
#include <QString>
#include <filesystem>
#include <functional>

class QTimer;

namespace lomarin {
class TMyConnection;
class TSshTunnel;
struct TAccount;
}  // namespace lomarin

namespace lomarin::ui {

// Connects the session while this thread stays free to paint and to take clicks. A connect that
// lasts beyond a moment shows TformConnectWait, whose "&Cancel" gives the attempt up at once.
// Returns false when the user cancelled; a failed connect throws its ServerError (the session's
// error event has seen it first).
bool ConnectWithWait(TMyConnection& session, QWidget* parent);
// The same through the account's SSH tunnel when it asks for one (opened first, closed again
// unless the session connected), the SSH login behind the same wait box. Throws TSshError or
// ServerError.
bool ConnectAccountWithWait(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                            const std::filesystem::path& keyStoreFolder, QWidget* parent);

// The wait box over a connect under way: it ends by itself (accepted) once ended() is true, or
// rejected when the user cancels or presses Escape.
class TformConnectWait : public QDialog {
  Q_OBJECT
 public:
  TformConnectWait(std::function<bool()> ended, const QString& target, QWidget* parent);

 private:
  std::function<bool()> ended_;
  QTimer* poll_;
};

}  // namespace lomarin::ui

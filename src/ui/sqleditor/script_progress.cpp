#include "ui/sqleditor/script_progress.h"

#include <chrono>

#include "engine/sqleditor/my_script.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

constexpr auto kProgressEvery = std::chrono::milliseconds(50);

// Restores the script's handlers however the run ends.
struct HandlerSwap {
  explicit HandlerSwap(TMyScript& script)
      : script(script), onError(script.OnError), onProgress(script.OnProgress) {}
  ~HandlerSwap() {
    script.OnError = onError;
    script.OnProgress = onProgress;
  }
  TMyScript& script;
  TMyScript::ErrorHandler onError;
  TMyScript::ProgressHandler onProgress;
};

}  // namespace

void RunScriptWithProgress(TSessionActivity& activity, TMyScript& script, TWaitPanel* panel,
                           const QString& what) {
  HandlerSwap saved(script);
  QObject guiThread;

  if (saved.onError) {
    script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
      QMetaObject::invokeMethod(
          &guiThread, [&] { saved.onError(error, statement, action); }, Qt::BlockingQueuedConnection);
    };
  }
  auto lastProgress = std::chrono::steady_clock::time_point{};
  script.OnProgress = [&](uint64_t done, uint64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastProgress < kProgressEvery && done != total) return;
    lastProgress = now;
    QMetaObject::invokeMethod(&guiThread, [&, done, total] {
      if (panel) panel->setProgress(done, total);
      if (saved.onProgress) saved.onProgress(done, total);
    });
  };

  script.PrepareBreak();
  activity.run(
      what, [&] { script.Execute(); }, [&] { script.BreakExec(); }, panel);
}

}  // namespace lomarin::ui

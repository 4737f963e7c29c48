#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "engine/connect/my_connection.h"
#include "engine/sqleditor/my_script.h"

namespace lomarin {

// Runs a script with the ";" delimiter and no error handler: the first failing statement ends
// it. The failure goes to reportError (when given) and gives false.
bool ExecScriptText(TMyConnection& session, std::string_view text,
                    const std::function<void(const ServerError&)>& reportError = {});

// The editor's handler: appends statement, "\r", message, "\n" to scriptErrors and continues.
void ScriptError(std::string& scriptErrors, const ServerError& error, const std::string& statement,
                 TErrorAction& action);
// The routine editors' handler: scriptErrors becomes the message alone; the run continues.
void CompileError(std::string& scriptErrors, const ServerError& error, const std::string& statement,
                  TErrorAction& action);
// An OnError handler for TMyScript that collects into scriptErrors with ScriptError.
TMyScript::ErrorHandler CollectScriptErrors(std::string& scriptErrors);

// The session's usual error handler: remembers the error, shows its message, and fails unless
// the main window's flag says to go on.
struct TMainErrorState {
  std::optional<ServerError> LastError;
  bool Flag = false;
};
void orseMainError(TMainErrorState& state, const ServerError& error, bool& fail,
                   const std::function<void(const std::string&)>& showServerError);

// What "Explain" sends for a text: the word, one blank, the text unchanged.
std::string ExplainText(std::string_view text);

}  // namespace lomarin

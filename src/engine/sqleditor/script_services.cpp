#include "engine/sqleditor/script_services.h"

namespace lomarin {

bool ExecScriptText(TMyConnection& session, std::string_view text,
                    const std::function<void(const ServerError&)>& reportError) {
  try {
    TMyScript script(session);
    script.SQL = std::string(text);
    script.Execute();
    return true;
  } catch (const ServerError& error) {
    if (reportError) reportError(error);
    return false;
  }
}

void ScriptError(std::string& scriptErrors, const ServerError& error, const std::string& statement,
                 TErrorAction& action) {
  scriptErrors += statement;
  scriptErrors += '\r';
  scriptErrors += error.message();
  scriptErrors += '\n';
  action = TErrorAction::eaContinue;
}

void CompileError(std::string& scriptErrors, const ServerError& error, const std::string&, TErrorAction& action) {
  scriptErrors = error.message();
  action = TErrorAction::eaContinue;
}

TMyScript::ErrorHandler CollectScriptErrors(std::string& scriptErrors) {
  return [&scriptErrors](const ServerError& error, const std::string& statement, TErrorAction& action) {
    ScriptError(scriptErrors, error, statement, action);
  };
}

void orseMainError(TMainErrorState& state, const ServerError& error, bool& fail,
                   const std::function<void(const std::string&)>& showServerError) {
  state.LastError = error;
  if (showServerError) showServerError(error.message());
  fail = !state.Flag;
}

std::string ExplainText(std::string_view text) { return "Explain " + std::string(text); }

}  // namespace lomarin

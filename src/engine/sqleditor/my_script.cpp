#include "engine/sqleditor/my_script.h"

#include <strings.h>

#include <cctype>
#include <cstring>
#include <map>
#include <streambuf>

#include "engine/connect/my_query.h"
#include "engine/sqleditor/insert_fold.h"
#include "engine/sqleditor/statement_splitter.h"

namespace lomarin {

namespace {

constexpr unsigned kQueryInterrupted = 1317;
constexpr size_t kBatchBytes = size_t{1} << 20;

// Lets the splitter read SQL in place.
class ViewBuf : public std::streambuf {
 public:
  explicit ViewBuf(std::string& text) { setg(text.data(), text.data(), text.data() + text.size()); }
};

// Skips blanks and comments at the start of a statement.
std::string_view leadingCode(std::string_view s) {
  for (;;) {
    while (!s.empty() && static_cast<unsigned char>(s.front()) <= ' ') s.remove_prefix(1);
    if (s.starts_with("#") || (s.starts_with("--") && (s.size() == 2 || static_cast<unsigned char>(s[2]) <= ' '))) {
      const size_t nl = s.find('\n');
      s = nl == std::string_view::npos ? std::string_view{} : s.substr(nl + 1);
    } else if (s.starts_with("/*") && !s.starts_with("/*!") && !s.starts_with("/*M!")) {
      const size_t close = s.find("*/", 2);
      s = close == std::string_view::npos ? std::string_view{} : s.substr(close + 2);
    } else {
      return s;
    }
  }
}

bool startsWithWord(std::string_view s, std::string_view word) {
  return s.size() >= word.size() && strncasecmp(s.data(), word.data(), word.size()) == 0 &&
         (s.size() == word.size() || !std::isalnum(static_cast<unsigned char>(s[word.size()])));
}

// A SET statement, in a version comment or not, naming sql_mode.
bool setsSqlMode(std::string_view statement) {
  std::string_view code = leadingCode(statement);
  if (code.starts_with("/*!") || code.starts_with("/*M!")) {
    code.remove_prefix(code.find('!') + 1);
    while (!code.empty() && (std::isdigit(static_cast<unsigned char>(code.front())) ||
                             static_cast<unsigned char>(code.front()) <= ' '))
      code.remove_prefix(1);
  }
  if (!startsWithWord(code, "SET")) return false;
  for (size_t at = 0; at + 8 <= statement.size(); ++at)
    if (strncasecmp(statement.data() + at, "sql_mode", 8) == 0) return true;
  return false;
}

// A statement may share a multi-statement request when the server cannot read past its end
// differently from the splitter: a line comment on its last line would swallow the separator,
// and a CALL answers with a number of results that cannot be told in advance. A change of
// sql_mode runs alone, so that the statements after it are split under the mode it sets.
bool batchable(std::string_view statement, std::string_view delimiter) {
  if (delimiter != ";" || setsSqlMode(statement)) return false;
  const size_t lastLine = statement.rfind('\n');
  const std::string_view tail = lastLine == std::string_view::npos ? statement : statement.substr(lastLine + 1);
  if (std::memchr(tail.data(), '#', tail.size()) || tail.find("--") != std::string_view::npos) return false;
  return !startsWithWord(leadingCode(statement), "CALL");
}

bool isSyntaxError(const ServerError& error) { return error.number() == 1064 || error.number() == 1149; }

}  // namespace

// One run: splits, batches, sends and reports.
class TMyScript::Runner {
 public:
  Runner(TMyScript& script, std::istream& in, uint64_t total)
      : script_(script), splitter_(in, script.Delimiter), total_(total) {}

  void run() {
    std::string statement;
    for (;;) {
      // Whether a backslash escapes in quoted text depends on the sql_mode the script set last.
      splitter_.setBackslashEscapes(!script_.session_.NoBackslashEscapes());
      if (script_.stopped_ || !splitter_.next(statement)) break;
      if (!script_.Macros.empty()) statement = ExpandMacros(statement, script_.Macros);
      if (script_.UseOptimization && batchable(statement, splitter_.delimiter())) {
        if (!fold(statement)) {
          if (batchBytes_ + statement.size() > kBatchBytes) flushBatch();
          batchBytes_ += statement.size() + 2;
          batch_.push_back({std::move(statement), 0, {}, {splitter_.statementLine()}});
          statement.clear();
        }
      } else {
        flushBatch();
        if (!script_.stopped_) runSingle(statement, splitter_.statementLine());
      }
      progress();
    }
    flushBatch();
    progress();
  }

 private:
  void progress() {
    if (script_.OnProgress) script_.OnProgress(splitter_.position(), total_);
  }

  // A statement of the batch, or one-row INSERTs of the same head folded into one multi-row
  // INSERT: the head, then the tuples joined by ",".
  struct Entry {
    std::string text;
    size_t head = 0;
    std::vector<size_t> tupleStarts;
    std::vector<uint64_t> lines;

    size_t rows() const { return tupleStarts.size(); }
    bool folded() const { return rows() > 1; }
    std::string row(size_t i) const {
      const size_t end = i + 1 < rows() ? tupleStarts[i + 1] - 1 : text.size();
      return text.substr(0, head) + text.substr(tupleStarts[i], end - tupleStarts[i]);
    }
  };

  // Adds a one-row INSERT to the batch's last entry when they share the head and the target
  // allows it; false leaves the statement to go as it is.
  bool fold(const std::string& statement) {
    if (!script_.FoldInserts) return false;
    const size_t head = OneRowInsertHead(statement);
    if (head == 0) return false;
    const std::string_view tuple = std::string_view(statement).substr(head);
    const uint64_t line = splitter_.statementLine();
    if (!batch_.empty() && batch_.back().head == head && batchBytes_ + tuple.size() < kBatchBytes &&
        batch_.back().text.compare(0, head, statement, 0, head) == 0) {
      Entry& last = batch_.back();
      last.text += ',';
      last.tupleStarts.push_back(last.text.size());
      last.text += tuple;
      last.lines.push_back(line);
      batchBytes_ += tuple.size() + 1;
      return true;
    }
    if (!foldAllowed(statement.substr(0, head))) return false;
    if (batchBytes_ + statement.size() > kBatchBytes) flushBatch();
    batchBytes_ += statement.size() + 2;
    batch_.push_back({statement, head, {head}, {line}});
    return true;
  }

  // Asked once per head, after what came before it (its CREATE TABLE) has reached the server.
  bool foldAllowed(const std::string& head) {
    const auto known = foldable_.find(head);
    if (known != foldable_.end()) return known->second;
    flushBatch();
    const bool allowed = !script_.stopped_ && script_.FoldInserts(head);
    foldable_.emplace(head, allowed);
    return allowed;
  }

  template <typename OnFailure>
  void send(const std::string& sql, OnFailure failed) {
    if (!script_.beginStatement()) return;
    try {
      TMyQuery query(script_.session_);
      query.SQL = sql;
      query.Execute();
    } catch (const ServerError& error) {
      script_.endStatement();
      failed(error);
      return;
    }
    script_.endStatement();
  }

  void runSingle(const std::string& statement, uint64_t line) {
    send(statement, [&](const ServerError& error) { report(statement, line, error); });
  }

  // A folded INSERT that failed left nothing behind: its rows go again as their own statements,
  // so each refused one is reported alone and the others arrive.
  void runRows(const Entry& entry) {
    for (size_t i = 0; i < entry.rows() && !script_.stopped_; ++i) runSingle(entry.row(i), entry.lines[i]);
  }

  void runEntry(const Entry& entry) {
    if (entry.folded())
      send(entry.text, [&](const ServerError&) { runRows(entry); });
    else
      runSingle(entry.text, entry.lines[0]);
  }

  // Sends the batch; when statement k fails the server stops there, so k is reported and the
  // statements after it are sent again.
  void flushBatch() {
    size_t first = 0;
    while (first < batch_.size() && !script_.stopped_) {
      if (batch_.size() - first == 1) {
        runEntry(batch_[first]);
        break;
      }
      if (!script_.beginStatement()) break;
      size_t done = 0;
      try {
        TMyQuery query(script_.session_);
        // Fetching each result whole hands the connection back cleanly after the last one.
        query.UniDirectional = false;
        query.FetchAll = true;
        query.SQL = joined(first);
        query.Open();
        for (done = 1; query.NextResult();) ++done;
        script_.endStatement();
        break;
      } catch (const ServerError& error) {
        script_.endStatement();
        if (first + done >= batch_.size()) done = batch_.size() - first - 1;
        const Entry& failed = batch_[first + done];
        // A syntax error quotes the text after the error point, which in a batch runs into the
        // next statements; the statement alone has no effect and gives its own message.
        if (failed.folded())
          runRows(failed);
        else if (isSyntaxError(error) && !script_.stopped_)
          runSingle(failed.text, failed.lines[0]);
        else
          report(failed.text, failed.lines[0], error);
        first += done + 1;
      }
    }
    batch_.clear();
    batchBytes_ = 0;
  }

  std::string joined(size_t first) const {
    std::string request;
    request.reserve(batchBytes_);
    for (size_t i = first; i < batch_.size(); ++i) {
      if (i > first) request += ";\n";
      request += batch_[i].text;
    }
    return request;
  }

  void report(const std::string& statement, uint64_t line, const ServerError& error) {
    if (script_.stopRequested()) {
      script_.stopped_ = true;
      if (error.number() == kQueryInterrupted) return;
    }
    TErrorAction action = TErrorAction::eaFail;
    script_.statementLine_ = line;
    if (script_.OnError) script_.OnError(error, statement, action);
    if (action == TErrorAction::eaFail) throw error;
  }

  TMyScript& script_;
  TStatementSplitter splitter_;
  uint64_t total_;
  std::vector<Entry> batch_;
  size_t batchBytes_ = 0;
  std::map<std::string, bool, std::less<>> foldable_;
};

TMyScript::TMyScript(TMyConnection& session) : session_(session) {}

void TMyScript::Execute() {
  ViewBuf buf(SQL);
  std::istream in(&buf);
  Execute(in, SQL.size());
}

void TMyScript::Execute(std::istream& in, uint64_t total) {
  if (!breakPrepared_.exchange(false)) stop_.reset();
  stopped_ = false;
  Runner runner(*this, in, total);
  if (!UseOptimization) {
    runner.run();
    return;
  }
  TMyConnection::MultiStatements batches(session_);
  runner.run();
}

bool TMyScript::beginStatement() {
  if (stop_.begin(session_.Settings, session_.ThreadId())) return true;
  stopped_ = true;
  return false;
}

void TMyScript::endStatement() { stop_.end(); }

bool TMyScript::stopRequested() { return stop_.stopped(); }

void TMyScript::PrepareBreak() {
  stop_.reset();
  breakPrepared_ = true;
}

void TMyScript::BreakExec() { stop_.stop(); }

}  // namespace lomarin

#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "engine/connect/lost_connection.h"
#include "engine/connect/server_error.h"
#include "engine/connect/session_settings.h"

namespace lomarin {

class TMySQLMonitor;
class TMyQuery;

struct TMySessionEvents {
  std::function<void()> BeforeConnect;
  std::function<void()> AfterConnect;
  std::function<void()> BeforeDisconnect;
  std::function<void()> AfterDisconnect;
  // Sees every server error before it is thrown to the caller.
  std::function<void(const ServerError&)> OnError;
  // Asked when a statement finds the connection gone; no handler means the error is raised.
  std::function<RetryMode()> OnConnectionLost;
  // Called on a thread that needs the session while it is lent to another thread, with what the
  // borrower runs; true once it has waited (it is asked again while the loan lasts), false to
  // block the thread until the loan ends. None: the thread blocks.
  std::function<bool(const std::string& what)> OnBusy;
};

// One server session. Every statement goes through it, so the monitor sees them all.
class TMyConnection {
 public:
  TMyConnection();
  ~TMyConnection();
  TMyConnection(const TMyConnection&) = delete;
  TMyConnection& operator=(const TMyConnection&) = delete;

  TMySessionSettings Settings;
  TMySessionEvents Events;

  void setMonitor(TMySQLMonitor* monitor);

  // Connects and waits for the server, however long it takes.
  void Connect();
  // The same connect in halves, so the caller's thread stays free: StartConnect hands the network
  // work to a thread of its own and returns; FinishConnect waits for it and ends as Connect does
  // (the connection taken, or its error thrown). AbandonConnect gives the attempt up at once: the
  // thread ends on its own and closes what it opened.
  void StartConnect();
  // True once the attempt has ended (or none is under way).
  bool WaitConnect(std::chrono::milliseconds timeout);
  void FinishConnect();
  void AbandonConnect();
  void Disconnect();
  bool Connected() const;

  // The version text as the server's handshake gave it ("5.5.5-10.11.6-MariaDB..." for MariaDB).
  const std::string& ServerVersion() const;
  int ServerMajorVersion() const;
  int ServerVersionNumber() const;
  std::string ClientVersion() const;
  std::string CharsetName() const;
  std::string CurrentDatabase() const;
  unsigned long ThreadId() const;
  // Reads into its query whatever an open result still holds on the connection, so that the
  // session can be handed to another thread without that thread touching the query's rows.
  void ReleasePending();
  // Connect time-out the client library holds, in seconds (0: the library's default).
  unsigned AppliedConnectTimeout() const;
  // Empty when the connection is not encrypted.
  std::string SslCipher() const;
  bool InTransaction() const;
  // As the server last reported it.
  bool AutoCommit() const;
  // The session's sql_mode holds NO_BACKSLASH_ESCAPES, as the server last reported it.
  bool NoBackslashEscapes() const;

  std::string GetMySQLinfo() const;
  const std::optional<ServerError>& LastError() const;

  // Lends the session to one worker thread until Return() or destruction. Meanwhile a statement,
  // connect or disconnect of any other thread first waits through Events.OnBusy, and errors of
  // the borrower's statements skip OnError and OnConnectionLost: its lender reports them.
  class Loan {
   public:
    Loan(TMyConnection& connection, std::thread::id borrower, std::string what);
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;
    // Ends the loan; callable from the borrower's thread.
    void Return();

   private:
    TMyConnection& connection_;
    std::atomic<bool> returned_ = false;
  };
  // What the session is lent for; empty when it is not lent.
  std::string LentFor() const;

  // Multi-statement requests stay off except while one of these is alive.
  class MultiStatements {
   public:
    explicit MultiStatements(TMyConnection& connection);
    ~MultiStatements();
    MultiStatements(const MultiStatements&) = delete;
    MultiStatements& operator=(const MultiStatements&) = delete;

   private:
    TMyConnection& connection_;
  };

  struct Impl;

 private:
  friend class TMyQuery;
  friend void AppendEscapedString(TMyConnection&, std::string_view, std::string&);
  std::unique_ptr<Impl> d;
};

// Runs one statement as a command. A failure goes to reportError (when given) and gives false.
bool ExecSQLText(TMyConnection& session, std::string_view text,
                 const std::function<void(const ServerError&)>& reportError = {});
// The same, with the monitor showing traced instead of text (a password masked).
bool ExecSQLText(TMyConnection& session, std::string_view text, std::string_view traced,
                 const std::function<void(const ServerError&)>& reportError = {});

}  // namespace lomarin

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

TEST(SessionLoan, OtherThreadsWaitForTheBorrowerWhoseErrorsStayWithIt) {
  auto session = test::connect();
  test::SentStatements traced(*session);
  int errorsSeen = 0;
  session->Events.OnError = [&](const ServerError&) { ++errorsSeen; };
  std::vector<std::string> busyWith;
  session->Events.OnBusy = [&](const std::string& what) {
    busyWith.push_back(what);
    return false;  // block until the loan ends
  };
  EXPECT_EQ(session->LentFor(), "");

  std::promise<void> lent;
  std::promise<void> borrowed;
  std::optional<TMyConnection::Loan> loan;
  bool borrowerFailed = false;
  std::thread worker([&, ready = lent.get_future()] {
    ready.wait();
    borrowed.set_value();
    ExecSQLText(*session, "SELECT SLEEP(0.3)");
    borrowerFailed = !ExecSQLText(*session, "SELECT * FROM no_such_table");
    loan->Return();
  });
  loan.emplace(*session, worker.get_id(), "Run SQL: SELECT SLEEP(0.3)");
  lent.set_value();
  borrowed.get_future().wait();
  EXPECT_EQ(session->LentFor(), "Run SQL: SELECT SLEEP(0.3)");
  // Sent only once the borrower has given the session back.
  EXPECT_TRUE(ExecSQLText(*session, "SELECT 'mine'"));
  worker.join();

  EXPECT_EQ(busyWith, std::vector<std::string>{"Run SQL: SELECT SLEEP(0.3)"});
  EXPECT_EQ(traced.sent,
            (std::vector<std::string>{"SELECT SLEEP(0.3)", "SELECT * FROM no_such_table", "SELECT 'mine'"}));
  EXPECT_TRUE(borrowerFailed);
  EXPECT_EQ(errorsSeen, 0);
  EXPECT_EQ(session->LentFor(), "");
  // Returned twice (by the worker, then by its end): the next loan is not touched.
  TMyConnection::Loan next(*session, worker.get_id(), "next");
  loan.reset();
  EXPECT_EQ(session->LentFor(), "next");
  next.Return();
  EXPECT_FALSE(ExecSQLText(*session, "SELECT * FROM no_such_table"));
  EXPECT_EQ(errorsSeen, 1);
}

TEST(SessionLoan, BusyHandlerThatWaitedIsAskedAgainWhileTheLoanLasts) {
  auto session = test::connect();
  std::optional<TMyConnection::Loan> loan;
  loan.emplace(*session, std::thread::id(), "held");
  int asked = 0;
  session->Events.OnBusy = [&](const std::string&) {
    if (++asked == 2) loan.reset();
    return true;
  };
  EXPECT_EQ(test::scalar(*session, "SELECT 7"), "7");
  EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace lomarin

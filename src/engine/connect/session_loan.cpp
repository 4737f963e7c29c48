#include "engine/connect/session_impl.h"

namespace lomarin {

bool TMyConnection::Impl::onBorrower() const {
  std::lock_guard lock(loanMutex);
  return borrower && *borrower == std::this_thread::get_id();
}

void TMyConnection::Impl::awaitTurn() {
  std::unique_lock lock(loanMutex);
  while (borrower && *borrower != std::this_thread::get_id()) {
    bool waited = false;
    if (owner.Events.OnBusy) {
      const std::string what = lentFor;
      lock.unlock();
      waited = owner.Events.OnBusy(what);
      lock.lock();
    }
    if (!waited) loanEnded.wait(lock, [this] { return !borrower; });
  }
}

TMyConnection::Loan::Loan(TMyConnection& connection, std::thread::id borrower, std::string what)
    : connection_(connection) {
  TMyConnection::Impl& d = *connection_.d;
  std::lock_guard lock(d.loanMutex);
  d.borrower = borrower;
  d.lentFor = std::move(what);
}

TMyConnection::Loan::~Loan() { Return(); }

void TMyConnection::Loan::Return() {
  if (returned_.exchange(true)) return;
  TMyConnection::Impl& d = *connection_.d;
  {
    std::lock_guard lock(d.loanMutex);
    d.borrower.reset();
    d.lentFor.clear();
  }
  d.loanEnded.notify_all();
}

std::string TMyConnection::LentFor() const {
  std::lock_guard lock(d->loanMutex);
  return d->borrower ? d->lentFor : std::string();
}

}  // namespace lomarin

#pragma once

#include <atomic>

namespace lomarin {

// A Stop asked for from any thread. It holds until the run that reads it ends, so a Stop that
// comes just before the run has got going still counts, and the next run starts afresh.
struct TStopFlag {
  std::atomic<bool> requested = false;

  struct RunScope {
    TStopFlag& flag;
    ~RunScope() { flag.requested = false; }
  };
};

}  // namespace lomarin

#pragma once

#include <stdexcept>

namespace lomarin {

// A comparison component refused to run (a property missing, nothing to do) or was stopped;
// server failures stay ServerError.
class CompareError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace lomarin

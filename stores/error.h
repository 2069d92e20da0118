// The failures of the system: each carries a Spanish message (Windows-1252 text, like
// every text of the core) that names what failed, ready for a box or for standard error.
#pragma once

#include <stdexcept>

namespace valdor {

class ErrorValdor : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace valdor

// The failure of a check under libFuzzer: libFuzzer keeps the input itself.
#include <cstdlib>
#include <iostream>

#include "tests/fuzz/objetivo.h"

namespace valdor::fuzz {

void fallaFuzz(const std::string& que) {
  std::cerr << NOMBREOBJETIVO << ": " << que << "\n";
  std::abort();
}

}  // namespace valdor::fuzz

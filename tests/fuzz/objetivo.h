// The seam between the bounded random driver and each fuzz target. A target defines the
// libFuzzer entry point (so that the same file also links with -fsanitize=fuzzer when
// the build uses Clang), its name and a few inputs to start from; it checks what it
// reads and calls `fallaFuzz` on anything wrong, so that a wrong answer is caught as
// surely as a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t tamano);

namespace valdor::fuzz {

// The target's name: the name of its folder of cases.
extern const char* const NOMBREOBJETIVO;

// Inputs to start from, beside the files of the target's folder of cases.
std::vector<std::string> semillas();

// Reports `que`, keeps the input at hand as a file of cases and ends the process.
[[noreturn]] void fallaFuzz(const std::string& que);

}  // namespace valdor::fuzz

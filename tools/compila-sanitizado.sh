#!/usr/bin/env bash
# Configures and builds VALDOR+ once more in build-san, every piece of it under
# AddressSanitizer and UndefinedBehaviorSanitizer, for one run of the whole test suite.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$raiz" -B "$raiz/build-san" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
  -DVALDOR_SANITIZAR=ON -DVALDOR_AVISOS_COMO_ERRORES=ON >/dev/null
cmake --build "$raiz/build-san" -j"$(nproc)"

#!/usr/bin/env bash
# Configures and builds VALDOR+ in build/ (the core, the command line, the desktop program and the tests).
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$raiz" -B "$raiz/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVALDOR_AVISOS_COMO_ERRORES=ON >/dev/null
cmake --build "$raiz/build" -j"$(nproc)"

#!/usr/bin/env bash
# Configures and builds VALDOR+ in build/: with no argument everything (the core, the
# command line, the desktop program and the tests); with target names, only those and
# what they need (tools/compila.sh valdor-cli). The build shows its progress as it goes.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$raiz" -B "$raiz/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVALDOR_AVISOS_COMO_ERRORES=ON >/dev/null
objetivos=()
for objetivo in "$@"; do objetivos+=(--target "$objetivo"); done
cmake --build "$raiz/build" -j"$(nproc)" "${objetivos[@]}"

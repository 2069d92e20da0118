#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
"$raiz/tools/instala-dependencias.sh"
"$raiz/tools/compila.sh"
ctest --test-dir "$raiz/build" --output-on-failure -j"$(nproc)"

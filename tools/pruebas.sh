#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test; then builds everything once
# more under AddressSanitizer and UndefinedBehaviorSanitizer (build-san) and runs the
# whole suite there. The fuzz targets run in the first suite, each for
# VALDOR_FUZZ_SEGUNDOS seconds (60 unless set), with their kept cases replayed; they
# and the damaged Jet files test carry their own sanitizers, so the second suite leaves
# them out. Each step's time is printed at the end.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
tiempos=()
paso() {
  local nombre=$1
  shift
  local desde=$SECONDS
  "$@"
  tiempos+=("$(printf '%-32s %4d s' "$nombre" $((SECONDS - desde)))")
}

paso "Dependencias" "$raiz/tools/instala-dependencias.sh"
paso "Compilación" "$raiz/tools/compila.sh"
paso "Pruebas (con fuzz)" ctest --test-dir "$raiz/build" --output-on-failure -j"$(nproc)"
paso "Compilación con sanitizadores" "$raiz/tools/compila-sanitizado.sh"
# Qt's offscreen platform runs the form tests; the sanitizers stop at the first report.
paso "Pruebas con sanitizadores" env QT_QPA_PLATFORM=offscreen \
  UBSAN_OPTIONS=print_stacktrace=1 ctest --test-dir "$raiz/build-san" --output-on-failure -j"$(nproc)"

printf '%s\n' "${tiempos[@]}"

#!/usr/bin/env bash
# Times `valdor-cli fan` over a large generated office, at two sizes: N companies of M
# workers, then 2N companies. Prints, for each size, the seconds, the workers per second
# and the peak memory; beside it the floor of the run (build/valdor-suelo: every value of
# the month's NOMIN read as text through the bare SQLite API and through the store layer,
# and a file of the FAN file's size written) and the ratio run time / floor time; at the
# end the ratio of the two sizes' times.
#
#   bench/mide.sh [EMPRESAS [TRABAJADORES]]      (2000 and 25 by default)
#
# The program must be built (tools/compila.sh). The offices are written under
# build/bench and left there for a look at their files.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cli="$raiz/build/valdor-cli"
empresas=${1:-2000}
trabajadores=${2:-25}
suelo="$raiz/build/valdor-suelo"
[[ -x "$cli" ]] || { echo "Falta $cli: compile antes con tools/compila.sh" >&2; exit 1; }
[[ -x "$suelo" ]] || { echo "Falta $suelo: compile antes con tools/compila.sh" >&2; exit 1; }
[[ -x /usr/bin/time ]] || { echo "Falta /usr/bin/time (paquete time)" >&2; exit 1; }

# One size: the office written fresh, then the FAN file of the whole month timed.
# Sets SEGUNDOS and MEMORIA (peak resident set, KiB).
mide() {
  local n=$1 oficina="$raiz/build/bench/oficina-$1x$trabajadores"
  rm -rf "$oficina"
  mkdir -p "$oficina"
  export WINEPREFIX="$oficina/wine"
  local valdor=("$cli" --programa "$oficina/programa" --trabajo "$oficina/trabajo" --ahora "2026-11-15 07:30")
  "${valdor[@]}" muestra --mes 10 --ano 2026 --empresas "$n" --trabajadores "$trabajadores" > /dev/null
  local medida="$oficina/medida.txt"
  /usr/bin/time -f "%e %M" -o "$medida" "${valdor[@]}" fan --mes 10 --ano 2026 --nombre bench > "$oficina/fan.txt" 2>&1
  read -r SEGUNDOS MEMORIA < "$medida"
  local fichero lineas
  fichero=$(tail -n 1 "$oficina/fan.txt")
  lineas=$(wc -l < "$fichero")
  local total=$((n * trabajadores))
  awk -v n="$n" -v m="$trabajadores" -v t="$total" -v s="$SEGUNDOS" -v k="$MEMORIA" -v l="$lineas" 'BEGIN {
    printf "%6d empresas x %d = %7d trabajadores: %7.2f s, %8.0f trabajadores/s, memoria máxima %6.1f MiB, %d líneas\n",
           n, m, t, s, (s > 0 ? t / s : 0), k / 1024, l }'
  # The floor, in the same run, over the same month and for a file of the same size.
  "$suelo" "$oficina/programa/PX202610.MDB" "$(stat -c %s "$fichero")" "$oficina/suelo.txt" > "$oficina/suelo-medida.txt"
  awk -v s="$SEGUNDOS" '
    $1 == "almacen" { a = $2 } $1 == "sqlite" { q = $2 } $1 == "escritura" { e = $2 }
    END { printf "        suelo: SQLite %.2f s, capa de almacenes %.2f s, escritura %.2f s; razón ejecución / suelo: %.2f\n",
                 q, a, e, (q + e > 0 ? s / (q + e) : 0) }' "$oficina/suelo-medida.txt"
}

mide "$empresas"
t1=$SEGUNDOS
mide $((empresas * 2))
t2=$SEGUNDOS
awk -v a="$t1" -v b="$t2" 'BEGIN { printf "Razón de tiempos (doble de empresas / sencillo): %.2f\n", (a > 0 ? b / a : 0) }'

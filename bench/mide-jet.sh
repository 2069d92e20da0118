#!/usr/bin/env bash
# Times `valdor-cli fan` on the large office kept twice, as a payroll product keeps it
# (Jet files, bench/grande-jet.tar.xz) and as VALDOR+ writes it (SQLite stores,
# bench/grande-sqlite.tar.xz): 2,000 companies of 25 workers, October 2026. The two runs
# alternate, RONDAS times each (3 by default); it prints each time and peak memory, the
# medians and their ratio, and compares the FAN files.
#
#   bench/mide-jet.sh [RONDAS]
#
# The Jet copy keeps B126 as a Long Integer, which holds 355 where the SQLite copy has
# 355.21 (1,982 of the 50,000 payroll rows): the script also makes a third office, the
# SQLite one with B126 as the Jet file holds it, whose FAN file must equal the Jet
# office's byte for byte. The offices are unpacked under build/bench/jet.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cli="$raiz/build/valdor-cli"
rondas=${1:-3}
base="$raiz/build/bench/jet"
[[ -x "$cli" ]] || { echo "Falta $cli: compile antes con tools/compila.sh" >&2; exit 1; }
[[ -x /usr/bin/time ]] || { echo "Falta /usr/bin/time (paquete time)" >&2; exit 1; }

prepara() {
  local cual=$1
  [[ -d "$base/$cual/programa" ]] && return
  mkdir -p "$base/$cual"
  tar -xJf "$raiz/bench/grande-$cual.tar.xz" -C "$base/$cual"
}
prepara jet
prepara sqlite
if [[ ! -d "$base/sqlite-b126/programa" ]]; then
  cp -r "$base/sqlite" "$base/sqlite-b126"
  sqlite3 -cmd ".load $raiz/build/libvaldor_espanol" "$base/sqlite-b126/programa/PX202610.MDB" \
    "UPDATE NOMIN SET B126 = round(B126) WHERE B126 <> CAST(B126 AS INTEGER)"
fi

# One run of the whole month's FAN file; appends "segundos memoria" to $base/$1.tiempos.
corre() {
  local cual=$1 oficina="$base/$1"
  export WINEPREFIX="$oficina/wine"
  /usr/bin/time -f "%e %M" -a -o "$base/$cual.tiempos" \
    "$cli" --programa "$oficina/programa" --trabajo "$oficina/trabajo" --ahora "2026-11-15 07:30" \
    fan --mes 10 --ano 2026 --nombre GRANDE > "$oficina/fan.txt" 2>&1
}

rm -f "$base"/*.tiempos
for ((i = 1; i <= rondas; i++)); do
  corre sqlite
  corre jet
done
corre sqlite-b126

mediana() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
for cual in sqlite jet; do
  printf '%-7s' "$cual:"
  awk '{ printf " %6.2f s (%5.1f MiB)", $1, $2 / 1024 }' "$base/$cual.tiempos"
  echo
done
ts=$(cut -d' ' -f1 "$base/sqlite.tiempos" | mediana)
tj=$(cut -d' ' -f1 "$base/jet.tiempos" | mediana)
awk -v s="$ts" -v j="$tj" 'BEGIN { printf "Medianas: SQLite %.2f s, Jet %.2f s; razón Jet / SQLite: %.2f\n", s, j, j / s }'

fan() { tail -n 1 "$base/$1/fan.txt"; }
if cmp -s "$(fan jet)" "$(fan sqlite-b126)"; then
  echo "FAN de Jet = FAN de SQLite con B126 como lo guarda Jet: idénticos byte a byte ($(wc -l < "$(fan jet)") líneas)."
else
  echo "FAN de Jet y de SQLite con B126 como lo guarda Jet: DISTINTOS" >&2
  exit 1
fi
echo "FAN de Jet frente al de SQLite original: $(diff <(tr -d '\r' < "$(fan jet)") <(tr -d '\r' < "$(fan sqlite)") | grep -c '^<') líneas distintas (las de B126)."

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
# Beside each FAN run it times the TC1 run of every company of the same month
# (build/valdor-tc1, the core call behind the statement form's "Todas."), and for the
# default sizes it checks the FAN file against the checksum it must keep: a faster run
# that changes one byte is a wrong run.
#
# The program must be built (tools/compila.sh). The offices are written under
# build/bench and left there for a look at their files.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
cli="$raiz/build/valdor-cli"
empresas=${1:-2000}
trabajadores=${2:-25}
suelo="$raiz/build/valdor-suelo"
tc1="$raiz/build/valdor-tc1"
[[ -x "$cli" ]] || { echo "Falta $cli: compile antes con tools/compila.sh" >&2; exit 1; }
[[ -x "$suelo" ]] || { echo "Falta $suelo: compile antes con tools/compila.sh" >&2; exit 1; }
[[ -x "$tc1" ]] || { echo "Falta $tc1: compile antes con tools/compila.sh" >&2; exit 1; }

# The MD5 of the FAN file of the default sizes (2.000 and 4.000 companies of 25 workers,
# October 2026, written at 2026-11-15 07:30 under the name "bench").
declare -A SUMA=([2000x25]=a25a8d655f8200e8f8a1b7c3519315dd [4000x25]=f9015dd4dceecec13a4d2f3b0ae0018d)
# The same for the sample office (October 2026, "muestra", every company, --dev-cta).
SUMAMUESTRA=dfdd8761344247c7cb4c8ee0c8c7f3d8
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
  local suma
  suma=$(md5sum < "$fichero" | cut -d' ' -f1)
  if [[ -n "${SUMA[$n"x"$trabajadores]:-}" ]]; then
    if [[ "$suma" == "${SUMA[$n"x"$trabajadores]}" ]]; then
      echo "        fichero: el de siempre (md5 $suma)"
    else
      echo "        fichero: DISTINTO del de siempre (md5 $suma, debía ser ${SUMA[$n"x"$trabajadores]})"
      DISTINTOS=1
    fi
  fi
  # The TC1 run of every company of the same month, timed the same way.
  /usr/bin/time -f "%e %M" -o "$oficina/tc1-medida.txt" "$tc1" "$oficina/programa" "$oficina/trabajo" 10 2026 \
    > "$oficina/tc1.txt" 2> "$oficina/tc1-mensajes.txt"
  local tc1s tc1m
  read -r tc1s tc1m < "$oficina/tc1-medida.txt"
  awk -v t="$tc1s" -v k="$tc1m" -v s="$SEGUNDOS" 'BEGIN {
    printf "        TC1 de todas las empresas: %.2f s, memoria máxima %.1f MiB; razón TC1 / fichero: %.2f\n",
           t, k / 1024, (s > 0 ? t / s : 0) }'
  # The floor, in the same run, over the same month and for a file of the same size.
  "$suelo" "$oficina/programa/PX202610.MDB" "$(stat -c %s "$fichero")" "$oficina/suelo.txt" > "$oficina/suelo-medida.txt"
  awk -v s="$SEGUNDOS" '
    $1 == "almacen" { a = $2 } $1 == "sqlite" { q = $2 } $1 == "escritura" { e = $2 }
    END { printf "        suelo: SQLite %.2f s, capa de almacenes %.2f s, escritura %.2f s; razón ejecución / suelo: %.2f\n",
                 q, a, e, (q + e > 0 ? s / (q + e) : 0) }' "$oficina/suelo-medida.txt"
}

DISTINTOS=0

# The sample office's file of October 2026, every company with the refund lines, against
# its checksum.
muestra="$raiz/build/bench/muestra"
rm -rf "$muestra"
mkdir -p "$muestra"
(
  export WINEPREFIX="$muestra/wine"
  valdor=("$cli" --programa "$muestra/programa" --trabajo "$muestra/trabajo" --ahora "2026-11-15 07:30")
  "${valdor[@]}" muestra --mes 10 --ano 2026 > /dev/null
  "${valdor[@]}" fan --mes 10 --ano 2026 --nombre muestra --dev-cta > "$muestra/fan.txt" 2>&1
)
suma=$(md5sum < "$(tail -n 1 "$muestra/fan.txt")" | cut -d' ' -f1)
if [[ "$suma" == "$SUMAMUESTRA" ]]; then
  echo "Oficina de muestra: el fichero de siempre (md5 $suma)"
else
  echo "Oficina de muestra: fichero DISTINTO del de siempre (md5 $suma, debía ser $SUMAMUESTRA)"
  DISTINTOS=1
fi

mide "$empresas"
t1=$SEGUNDOS

# The same month's runs as the desktop makes them (statement window, statement form),
# against the same runs without a screen, under a virtual X server when there is one.
escritorio="$raiz/build/valdor-escritorio"
if [[ -x "$escritorio" ]]; then
  oficina="$raiz/build/bench/oficina-${empresas}x$trabajadores"
  pantalla=(env QT_QPA_PLATFORM=offscreen)
  command -v xvfb-run > /dev/null && pantalla=(xvfb-run -a -s "-screen 0 1280x1024x24")
  WINEPREFIX="$oficina/wine" "${pantalla[@]}" "$escritorio" "$oficina/programa" "$oficina/trabajo" 10 2026 \
    2> "$oficina/escritorio-mensajes.txt" | awk '{ t[$1] = $2 } END {
      printf "        escritorio: fichero %.2f s frente a %.2f s sin pantalla (%+.1f %%); TC1 del formulario %.2f s frente a %.2f s (%+.1f %%)\n",
             t["fan-escritorio"], t["fan-consola"], 100 * (t["fan-escritorio"] / t["fan-consola"] - 1),
             t["tc1-formulario"], t["tc1-nucleo"], 100 * (t["tc1-formulario"] / t["tc1-nucleo"] - 1) }'
fi
mide $((empresas * 2))
t2=$SEGUNDOS
awk -v a="$t1" -v b="$t2" 'BEGIN { printf "Razón de tiempos (doble de empresas / sencillo): %.2f\n", (a > 0 ? b / a : 0) }'
exit "$DISTINTOS"

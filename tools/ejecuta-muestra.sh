#!/usr/bin/env bash
# The main job on the sample office: installs what is missing, builds the command line
# (only it: the desktop program and the tests are tools/pruebas.sh's), writes a new
# sample office into build/oficina and runs the command line on it.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
"$raiz/tools/instala-dependencias.sh"
echo "Compilando valdor-cli..."
"$raiz/tools/compila.sh" valdor-cli

cli="$raiz/build/valdor-cli"
oficina="$raiz/build/oficina"
rm -rf "$oficina"
valdor() { "$cli" --programa "$oficina/programa" --trabajo "$oficina/trabajo" "$@"; }
# The transmission tool's drive C: of the sample, instead of the user's own Wine prefix.
export WINEPREFIX="$oficina/wine"

valdor muestra
echo
valdor ajustes
echo
valdor empresas
echo
fichero=$(valdor fan | tail -n 1)
echo "Fichero de cotización: $fichero"
# Each line of the exchange file is a record of 70 characters ended by CR LF, shown
# here in UTF-8 with its number and its length. The company names and surnames carry
# the DOS accent table's bytes and read right as CP850; the other fields (a given name)
# are Windows-1252, which only the editor shows field by field.
paste -d'|' <(tr -d '\r' < "$fichero" | LC_ALL=C awk '{ printf "%4d %3d \n", NR, length($0) }') \
             <(iconv -f CP850 -t UTF-8 "$fichero" | tr -d '\r') /dev/null
echo
# The editor's checks of the file: every line of 70, every segment of its kind, and the
# trailer's counts against the file.
valdor revisar "$fichero"

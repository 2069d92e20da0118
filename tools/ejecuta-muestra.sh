#!/usr/bin/env bash
# The main job on the sample office: installs what is missing, builds, writes a new
# sample office into build/oficina and runs the command line on it.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
"$raiz/tools/instala-dependencias.sh"
"$raiz/tools/compila.sh"

cli="$raiz/build/valdor-cli"
oficina="$raiz/build/oficina"
rm -rf "$oficina"
valdor() { "$cli" --programa "$oficina/programa" --trabajo "$oficina/trabajo" "$@"; }

valdor muestra
echo
valdor ajustes
echo
valdor empresas

#!/usr/bin/env bash
# Installs the Debian packages that VALDOR+ needs to build and to run its tests,
# only those that are missing. qt6-base-dev carries Qt's print support as well;
# poppler-utils gives pdftotext, which the test of the statement's PDF reads it with.
set -euo pipefail

paquetes=(cmake make g++ pkg-config libsqlite3-dev sqlite3 mdbtools-dev libgtest-dev qt6-base-dev libgl-dev fonts-dejavu-core poppler-utils)
faltan=()
for p in "${paquetes[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || faltan+=("$p")
done

if ((${#faltan[@]})); then
  echo "Instalando: ${faltan[*]}"
  sudo_=""
  [ "$(id -u)" -eq 0 ] || sudo_="sudo"
  $sudo_ apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_ apt-get install -y -qq --no-install-recommends "${faltan[@]}"
fi

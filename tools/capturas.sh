#!/usr/bin/env bash
# Draws the README's pictures into docs/capturas/, with the desktop's own forms on a
# virtual X screen: the month's FAN run (the company selection with its count and
# filter, the long run with its progress and "Cancelar", the message after it), and the
# main window as the program opens it (the wizard, the TC1 statement form after
# "Calcular", the statement's print preview).
#
#   tools/capturas.sh          (needs xvfb-run; builds valdor-capturas first)
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
command -v xvfb-run > /dev/null || { echo "Falta xvfb-run (paquete xvfb)" >&2; exit 1; }
"$raiz/tools/compila.sh" valdor-capturas
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" "$raiz/build/valdor-capturas" "$raiz/docs/capturas"
ls -l "$raiz/docs/capturas"

#!/usr/bin/env bash
# The picture of the editor with its field checks (docs/capturas/editor-revision.png):
# the form test of the marks draws the editor on a small file with two findings, one of
# them opened from the panel, on a virtual X screen, and saves it. Needs the form tests
# built (tools/compila.sh pruebas_formularios) and xvfb-run.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
destino=${1:-$raiz/docs/capturas/editor-revision.png}
rm -f "$destino"
# The test runner hands the name to each class of form tests; only the editor's has it,
# so the others' "not found" is no failure here: the picture is the result.
QT_QPA_PLATFORM=xcb VALDOR_CAPTURA=$destino xvfb-run -a -s "-screen 0 1280x800x24" \
  "$raiz/build/tests/forms/pruebas_formularios" losHallazgosDeCampoSeMarcanSeListanYLlevanAlCampo \
  | grep -a "PruebaEditorFicheros::losHallazgos" || true
test -s "$destino"
echo "$destino"

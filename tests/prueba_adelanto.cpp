// The companies' TC1 worked out ahead on a second thread: the FAN file must be the one
// that the file's own thread writes alone, byte for byte, and the second thread hands a
// result only for the company the file asks for next.

#include <gtest/gtest.h>

#include <string>

#include "engine/adelanto.h"
#include "engine/motor.h"
#include "fan/comando.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "muestra/oficina_muestra.h"
#include "tests/apoyo.h"
#include "tests/trabajo_prueba.h"

namespace valdor {
namespace {


// A generated office of October 2026 and the FAN job of all its companies, with the
// refund line asked for, so that the TC1 lines and entry 19 both reach the file.
struct MesGenerado : pruebas::TrabajoDePrueba {
  explicit MesGenerado(int empresas) {
    escribeOficinaMuestra(carpetas, {10, 2026, empresas, 4});
    programa.arranca();
    programa.g.RUTAWS = "C:\\WINSUITE\\WINSUITE.EXE";
    paginaDe("FAN");
    sel.eligeMes(9);
    sel.eligeAno(2026 - 1901);
    PRESIONBOTON(programa, pagina, sel);
    marcaTodas(sel, true);
    sel.devEnCta = true;
  }
  // The file written under `nombre` by `motor`, as its bytes.
  std::string fichero(const std::string& nombre, MotorCalculo& motor) {
    pagina.Text8 = nombre;
    programa.g.LINEAETI = LINEAETI(pagina, {"00000123", "SILCON01", "", ""});
    const auto ruta = comando(programa, pagina, sel, motor);
    EXPECT_TRUE(ruta) << (dialogos.mensajes.empty() ? "" : dialogos.mensajes.back().texto);
    return pruebas::leeBytes(c / "wine/drive_c/WINSUITE/VIPTC2/FAN" / (nombre + ".FAN"));
  }

  COTIZACION sel;
};

TEST(AdelantoTC1, ElFicheroEsElDelHiloDelFicheroSoloByteAByte) {
  MesGenerado mes(9);
  ASSERT_EQ(empresasDelTC1(mes.sel).size(), 9u);

  MotorCalculo solo;
  solo.adelantar = false;
  const std::string esperado = mes.fichero("PRUEBA01", solo);
  EXPECT_EQ(solo.adelantadas, 0);

  MotorCalculo conDos;
  const std::string adelantado = mes.fichero("PRUEBA02", conDos);
  EXPECT_EQ(conDos.adelantadas, 9);
  // The header and the trailer name their file; every byte between them is the same.
  ASSERT_GT(esperado.size(), 2 * 72u);
  EXPECT_EQ(adelantado.substr(72, adelantado.size() - 2 * 72), esperado.substr(72, esperado.size() - 2 * 72));
  EXPECT_NE(esperado.find("\r\nDBA "), std::string::npos);
  EXPECT_TRUE(mes.dialogos.mensajes.empty());
}

TEST(AdelantoTC1, SoloEntregaLaEmpresaQueTocaYDespuesNinguna) {
  MesGenerado mes(3);
  const auto empresas = empresasDelTC1(mes.sel);
  ASSERT_EQ(empresas.size(), 3u);
  AdelantoTC1 adelanto(mes.programa, mes.sel);
  const auto primera = adelanto.toma(empresas[0]);
  ASSERT_TRUE(primera);
  EXPECT_EQ(primera->empresa, empresas[0]);
  EXPECT_FALSE(primera->lineas[1].empty());
  // Asked out of order (the third before the second): nothing, now or later.
  EXPECT_FALSE(adelanto.toma(empresas[2]));
  EXPECT_FALSE(adelanto.toma(empresas[1]));
}

}  // namespace
}  // namespace valdor

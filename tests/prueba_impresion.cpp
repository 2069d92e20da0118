// The statement printed on the pre-printed form: the cleaners, the heading, the body with
// the worker's sheet, the closing lines, the port and the retry box.

#include <gtest/gtest.h>

#include "shell/ajustes.h"
#include "statement/impresion.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

using pruebas::CarpetaTemporal;
using pruebas::DialogosGrabador;
using pruebas::leeBytes;

std::string b_(std::size_t n) { return std::string(n, ' '); }

struct Boletin {
  Boletin() {
    BLANQUEABOLETIN(b);
    b.BOLNOMBRE = "OBRAS DEL SUR, S.L.";
    b.BOLCP = "41700";
    b.BOLNIF = "B41234567";
    b.BOLCCC = "41 1234098 76";
    b.BOLTRABAJADORES = "1";
    b.BOLPERDESDE = "1026";
    b.BOLPERHASTA = "1026";
    b.CCBASE = "2000";
    b.CCTIPO = "  28.30";
    b.CCCUOTA = "566";
    b.HEBASE = "0";
    b.OTTIPO = "7.95";
    b.FPTIPO = "0.7";
    b.AINGRESAR = "596";
    g.escribe(1, 1, "281234567890");
    g.escribe(1, 4, "30");
    g.escribe(1, 5, "05");
    g.escribe(1, 6, "100");
    g.escribe(1, 34, "20");
    g.escribe(1, 35, "0");
    g.escribe(1, 20, "1400");
  }
  BOLETIN b;
  TablaTrabajo g;
};

TEST(Impresion, LasCifrasQueValenCeroSalenEnBlancoTiposIncluidos) {
  Boletin m;
  EXPECT_EQ(LIMPIAIMPORTE(m.b.CCBASE), b_(15) + "2000");
  EXPECT_EQ(LIMPIAIMPORTE(m.b.HEBASE), b_(19));
  EXPECT_EQ(LIMPIAIMPORTE(m.b.APERCIBIR), b_(17));
  EXPECT_EQ(LIMPIATIPO(m.b.CCTIPO), "28,30" + b_(6));
  EXPECT_EQ(LIMPIATIPO(m.b.OTTIPO), " 7,95" + b_(6));
  EXPECT_EQ(LIMPIATIPO(m.b.FPTIPO), "0,7" + b_(8));
  EXPECT_EQ(LIMPIATIPO(m.b.HETIPO), b_(11));
}

TEST(Impresion, CabeceraCuerpoConLaHojaDelTrabajadorYCierre) {
  Boletin m;
  const std::vector<std::string> l = lineasBoletin(m.b, m.g, leerred({}, false));
  ASSERT_EQ(l.size(), 7u + 15u + 18u);
  EXPECT_EQ(l[0], b_(32) + ajusta("OBRAS DEL SUR, S.L.", 65));
  EXPECT_EQ(l[2], b_(32) + b_(29) + "   " + "41700   " + "    " + b_(21));
  EXPECT_EQ(l[5], "");  // not sent by R.E.D.: the line stays blank
  EXPECT_EQ(l[6], b_(25) + "B41234567   " + b_(5) + "41 1234098 76      " + "  " + "1" + b_(10) + " " + "1026    " +
                      " " + "1026   ");
  // Each row: the sheet's 38 columns, base, 3 blanks, rate, 2 blanks, quota.
  EXPECT_EQ(l[7], ajusta("  28 12345678", 38) + b_(15) + "2000" + "   " + "28,30" + b_(6) + "  " + b_(14) + "566");
  EXPECT_EQ(l[8], "");
  EXPECT_EQ(l[9], ajusta("             90", 38) + b_(19) + "   " + b_(11) + "  " + b_(17));
  EXPECT_EQ(l[11].substr(0, 38), ajusta("  30   05   100", 38));
  EXPECT_EQ(l[13].substr(0, 38), ajusta("  20", 38));  // 20 days of leave, no maternity
  EXPECT_EQ(l[15].substr(0, 38), ajusta("  1400  126", 38));
  EXPECT_EQ(l[17].substr(0, 38), ajusta("  __/__/____", 38));
  EXPECT_EQ(l[19].substr(0, 38), b_(38));
  EXPECT_EQ(l.back(), b_(42) + b_(17) + b_(14) + b_(14) + "596");
}

TEST(Impresion, EnviadoPorRedLlevaLaAutorizacion) {
  REGINTERCAMBIO r{"20731542", "SLC48213", "", "15/03/2021"};
  const TextosRed red = leerred(r, true);
  EXPECT_EQ(red.noAcompana, QUITAACENTOS("NO ACOMPAÑA TC-2"_cp));
  EXPECT_EQ(red.noAcompana[9], '\xA5');  // the printer's Ñ
  EXPECT_EQ(red.autorizacion, "AUTORIZACION TGSS");
  EXPECT_EQ(red.numero, "15/03/2021 20731542");
  Boletin m;
  EXPECT_EQ(lineasBoletin(m.b, m.g, red)[5], b_(25) + red.noAcompana + "   AUTORIZACION TGSS 15/03/2021 20731542");
}

TEST(Impresion, ElPuertoYElReintentoTrasUnError) {
  CarpetaTemporal c;
  EXPECT_EQ(nombrePuerto(""), "LPT1");
  EXPECT_EQ(nombrePuerto(std::string(1, '\0') + "X"), "LPT1");
  EXPECT_EQ(nombrePuerto(" PRN"), "LPT1");
  EXPECT_EQ(rutaPuerto("lpt2", c.ruta()), "/dev/lp1");
  EXPECT_EQ(rutaPuerto("boletin.txt", c.ruta()), c / "boletin.txt");

  Boletin m;
  DialogosGrabador d;
  ASSERT_TRUE(IMPRIMEBOLETIN(m.b, m.g, {}, c / "boletin.txt", d));
  const std::string impreso = leeBytes(c / "boletin.txt");
  const std::vector<std::string> l = lineasBoletin(m.b, m.g, {});
  EXPECT_TRUE(impreso.starts_with(l[0] + "\r\n" + l[1] + "\r\n"));
  EXPECT_TRUE(impreso.ends_with(l.back() + "\r\n"));
  EXPECT_TRUE(d.preguntas.empty());

  // A port that cannot be opened: asked again and again until the user gives up.
  d.respuestas = {true, false};
  EXPECT_FALSE(IMPRIMEBOLETIN(m.b, m.g, {}, c / "no/hay/puerto", d));
  ASSERT_EQ(d.preguntas.size(), 2u);
  EXPECT_EQ(d.preguntas[0].titulo, "ERROR DE IMPRESION");
  // The box names the port and says why it failed.
  EXPECT_EQ(d.preguntas[0].texto, std::string("No se ha podido imprimir el boletín en \""_cp)
                                      .append((c / "no/hay/puerto").string())
                                      .append("\": no existe el fichero o la carpeta.\n")
                                      .append("¿Desea intentar de nuevo la impresión?"_cp));
}

}  // namespace
}  // namespace valdor

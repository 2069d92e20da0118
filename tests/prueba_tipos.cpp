// The reading of the yearly rate file: records, the choice of file, LEETIPOS and the
// share-by-share rates of LEETIPOSLIQ.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "apoyo.h"
#include "statement/ficherotipos.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using pruebas::CarpetaTemporal;
using pruebas::escribeBytes;
using pruebas::leeBytes;
using Registro = std::array<std::string, 4>;

const std::string B7(7, ' ');
const Registro BLANCO{B7, B7, B7, B7};

// Records 1 to 28 of a year, with `cambios` at their record numbers.
std::vector<Registro> registros(const std::vector<std::pair<int, Registro>>& cambios) {
  std::vector<Registro> r(28, Registro{"", "", "", ""});
  for (const auto& [n, reg] : cambios) r[static_cast<std::size_t>(n - 1)] = reg;
  return r;
}

// A year of rates with figures of the kind the offices load. c = a + b as in practice;
// t2 and t3 are 0 (the rate a), t4 is its own; g1 has three decimals.
std::vector<Registro> anoDeMuestra() {
  return registros({
      {12, {"", "23.60", "4.70", "28.30"}},
      {13, {"", "0.60", "0.10", "0.70"}},
      {15, {"", "12.00", "2.00", "14.00"}},
      {16, {"", "20.00", "3.00", "23.00"}},
      {19, {"0", "5.50", "1.55", "7.05"}},
      {20, {"", "1.00", "3.50", "0.20"}},
      {21, {"", "0.60", "0.15", "0.70"}},
      {22, {"9.99", "9.99", "9.99", "9.99"}},
      {23, {"1.005", "2.00", "3.00", "4.00"}},
      {24, {"0.50", "9.00", "0.25", "9.00"}},
      {26, {"6.00", "7.00", "8.00", ""}},
      {27, {"9.00", "13.00", "", ""}},
      {28, {"0.10", "0.20", "0.30", ""}},
  });
}

// ---- Records and the choice of file --------------------------------------------------

TEST(FicheroTiposLectura, RegistroPorPosicionYBlancosDondeNoLlegaElFichero) {
  CarpetaTemporal dir;
  const fs::path ruta = dir / "N-SS2024.MDB";
  // Two whole records and 10 bytes of a third; the fields are taken as they stand.
  const std::string bytes = std::string("1111111222222233333334444444") + "  5.50   7.05 -0.10  12     " +
                            "  9.99   9.";
  escribeBytes(ruta, bytes);
  EXPECT_EQ(leeRegistroTipos(ruta, 1), (Registro{"1111111", "2222222", "3333333", "4444444"}));
  EXPECT_EQ(leeRegistroTipos(ruta, 2), (Registro{"  5.50 ", "  7.05 ", "-0.10  ", "12     "}));
  EXPECT_EQ(leeRegistroTipos(ruta, 3), BLANCO);
  EXPECT_EQ(leeRegistroTipos(ruta, 40), BLANCO);
  EXPECT_EQ(leeRegistroTipos(ruta, 0), BLANCO);
  EXPECT_EQ(leeBytes(ruta), bytes);

  EXPECT_EQ(leeRegistroTipos(dir / "N-SS2025.MDB", 1), std::nullopt);
  EXPECT_FALSE(fs::exists(dir / "N-SS2025.MDB"));
}

TEST(FicheroTiposLectura, FicheroPropioSoloSiTieneContenido) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", registros({{12, {"", "", "", "28.30"}}}));
  const std::string codigo = " 28012345678 ";

  // Without its own file the employer reads the general one.
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 6, codigo), dir / "N-SS2024.MDB");

  // An own file of length 0 counts as missing and stays as it is.
  escribeBytes(dir / "N-SS202428012345678.MDB", "");
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 6, codigo), dir / "N-SS2024.MDB");
  EXPECT_EQ(fs::file_size(dir / "N-SS202428012345678.MDB"), 0u);

  // With content it is preferred, found under another case too.
  fs::remove(dir / "N-SS202428012345678.MDB");
  escribeFicheroTipos(dir / "n-ss202428012345678.mdb", registros({{12, {"", "", "", "30.00"}}}));
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 6, codigo), dir / "n-ss202428012345678.mdb");
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 6, codigo, t));
  EXPECT_EQ(t.CCTIPO, "  30.00");
  // Another employer, and a blank code, read the general file.
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 6, "28099999999", t));
  EXPECT_EQ(t.CCTIPO, "  28.30");
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 6, "   "), dir / "N-SS2024.MDB");
}

TEST(FicheroTiposLectura, FicheroGeneralQueFaltaOVacioRecibe32RegistrosEnBlanco) {
  CarpetaTemporal dir;
  const std::string blancos(32 * 28, ' ');
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 1, ""), dir / "N-SS2024.MDB");
  EXPECT_EQ(leeBytes(dir / "N-SS2024.MDB"), blancos);

  escribeBytes(dir / "N-SS2023.MDB", "");
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2023, 1, ""), dir / "N-SS2023.MDB");
  EXPECT_EQ(leeBytes(dir / "N-SS2023.MDB"), blancos);

  // A short file with content is never filled out.
  const std::string corto = std::string(11 * 28, ' ') + "                       28.30";
  escribeBytes(dir / "N-SS2022.MDB", corto);
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2022, 1, "", t));
  EXPECT_EQ(t.CCTIPO, "  28.30");
  EXPECT_EQ(t.FPTIPO, B7);
  EXPECT_EQ(leeBytes(dir / "N-SS2022.MDB"), corto);
}

TEST(FicheroTiposLectura, CarpetaQueNoSePuedeEscribirLeeBlancosSinError) {
  CarpetaTemporal dir;
  escribeBytes(dir / "fichero", "x");
  const fs::path carpeta = dir / "fichero" / "tipos";  // under a plain file: never a folder
  TiposLeidos t;
  t.CCTIPO = "x";
  t.a = 5;
  ASSERT_TRUE(LEETIPOS(carpeta, 2024, 1, "28012345678", t));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_EQ(t.a, 0);
  EXPECT_EQ(t.OTTIPO, "0");
  EXPECT_EQ(t.CCTIPO45, "      0");
}

TEST(FicheroTiposLectura, RegistroBloqueadoPorOtraAperturaEsperaYDaBlancos) {
  CarpetaTemporal dir;
  const fs::path ruta = dir / "N-SS2024.MDB";
  escribeFicheroTipos(ruta, anoDeMuestra());
  const int otro = ::open(ruta.c_str(), O_RDWR);
  ASSERT_GE(otro, 0);
  struct flock c {};
  c.l_type = F_WRLCK;
  c.l_whence = SEEK_SET;
  c.l_start = 11 * 28;  // record 12 only
  c.l_len = 28;
  ASSERT_EQ(::fcntl(otro, F_OFD_SETLK, &c), 0);

  TiposLeidos t;
  const auto t0 = std::chrono::steady_clock::now();
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));
  const auto espera = std::chrono::steady_clock::now() - t0;
  EXPECT_GT(espera, std::chrono::milliseconds(1500));
  EXPECT_LT(espera, std::chrono::seconds(5));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_EQ(t.e1, 0);
  EXPECT_EQ(t.CCTIPO45, "      0");
  EXPECT_EQ(t.FPTIPO, "   0.70");  // the records around it read as usual
  EXPECT_DOUBLE_EQ(t.a, 1.55);

  c.l_type = F_UNLCK;
  ASSERT_EQ(::fcntl(otro, F_OFD_SETLK, &c), 0);
  ::close(otro);
  EXPECT_EQ(leeRegistroTipos(ruta, 12), (Registro{B7, "  23.60", "   4.70", "  28.30"}));
}

TEST(FicheroTiposLectura, FicheroDeSoloLecturaSeLee) {
  CarpetaTemporal dir;
  const fs::path ruta = dir / "N-SS2024.MDB";
  escribeFicheroTipos(ruta, anoDeMuestra());
  fs::permissions(ruta, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  EXPECT_EQ(leeRegistroTipos(ruta, 13), (Registro{B7, "   0.60", "   0.10", "   0.70"}));
  fs::permissions(ruta, fs::perms::owner_write, fs::perm_options::add);
}

// ---- LEETIPOS -----------------------------------------------------------------------

TEST(LEETIPOSPrueba, TiposYValoresDeUnAnoCompleto) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", anoDeMuestra());
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));

  // The rate boxes keep their fields as they stand.
  EXPECT_EQ(t.CCTIPO, "  28.30");
  EXPECT_EQ(t.FPTIPO, "   0.70");
  EXPECT_EQ(t.HETIPO, "  14.00");
  EXPECT_EQ(t.HNTIPO, "  23.00");
  // 28.30 x 0.45 = 12.735 and x 0.55 = 15.565: five characters of each.
  EXPECT_EQ(t.CCTIPO45, "      12.73");
  EXPECT_EQ(t.CCTIPO55, "      15.56");

  EXPECT_DOUBLE_EQ(t.e1, 23.60);
  EXPECT_DOUBLE_EQ(t.b, 5.50);
  EXPECT_DOUBLE_EQ(t.a, 1.55);
  EXPECT_DOUBLE_EQ(t.c, 7.05);
  EXPECT_DOUBLE_EQ(t.e2, 1.00);
  EXPECT_DOUBLE_EQ(t.f, 0.20);
  EXPECT_DOUBLE_EQ(t.q, 0.60);
  EXPECT_DOUBLE_EQ(t.p, 0.70);
  // t2 and t3 stand at 0, so they take a; t4 keeps its own rate.
  EXPECT_DOUBLE_EQ(t.t2, 1.55);
  EXPECT_DOUBLE_EQ(t.t3, 1.55);
  EXPECT_DOUBLE_EQ(t.t4, 3.50);
  // 1.005 goes through REDONDEA2 to 1.01.
  EXPECT_DOUBLE_EQ(t.g1, 1.01);
  EXPECT_DOUBLE_EQ(t.g2, 2.00);
  EXPECT_DOUBLE_EQ(t.g3, 3.00);
  EXPECT_DOUBLE_EQ(t.g4, 4.00);
  EXPECT_DOUBLE_EQ(t.h1, 0.50);
  EXPECT_DOUBLE_EQ(t.h3, 0.25);
  EXPECT_DOUBLE_EQ(t.k1, 6.00);
  EXPECT_DOUBLE_EQ(t.k2, 7.00);
  EXPECT_DOUBLE_EQ(t.PRECIOHORADIST, 9.00);
  EXPECT_DOUBLE_EQ(t.PRECIOHORAPRES, 13.00);
  EXPECT_DOUBLE_EQ(t.r2, 0.10);
  EXPECT_DOUBLE_EQ(t.r3, 0.20);
  EXPECT_DOUBLE_EQ(t.r4, 0.30);

  // a+b+f+p = 1.55+5.50+0.20+0.70; c+f+p = 7.05+0.20+0.70; c-a+f+q = 7.05-1.55+0.20+0.60.
  EXPECT_NEAR(t.OTTIPOS[1], 7.95, 1e-9);
  EXPECT_EQ(t.OTTIPO, "7.95");
  EXPECT_EQ(t.OT2TIPO, "6.3");
  // t2+r2+f+p = 1.55+0.10+0.20+0.70, t3+r3+f+p = 1.55+0.20+0.20+0.70, t4+r4+f+p = 3.50+0.30+0.20+0.70.
  EXPECT_NEAR(t.OTTIPOS[2], 2.55, 1e-9);
  EXPECT_NEAR(t.OTTIPOS[3], 2.65, 1e-9);
  EXPECT_NEAR(t.OTTIPOS[4], 4.70, 1e-9);
  // f+b+q = 0.20+5.50+0.60, then f+r+q with r2, r3, r4.
  EXPECT_NEAR(t.OT2TIPOS[1], 6.30, 1e-9);
  EXPECT_NEAR(t.OT2TIPOS[2], 0.90, 1e-9);
  EXPECT_NEAR(t.OT2TIPOS[3], 1.00, 1e-9);
  EXPECT_NEAR(t.OT2TIPOS[4], 1.10, 1e-9);
}

TEST(LEETIPOSPrueba, OtrosTiposTomanLaFilaCYNoLaSumaDeAYB) {
  // c apart from a + b, so that c + f + p and c - a + f + q tell the rows apart.
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", registros({
                                                 {19, {"2.00", "5.50", "1.55", "7.25"}},
                                                 {20, {"", "", "", "0.20"}},
                                                 {21, {"", "0.60", "", "0.70"}},
                                             }));
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));
  EXPECT_EQ(t.OTTIPO, "8.15");     // 7.25 + 0.20 + 0.70
  EXPECT_EQ(t.OT2TIPO, "6.5");     // 7.25 - 1.55 + 0.20 + 0.60
  EXPECT_NEAR(t.OTTIPOS[1], 7.95, 1e-9);   // 1.55 + 5.50 + 0.20 + 0.70
  EXPECT_NEAR(t.OT2TIPOS[1], 6.30, 1e-9);  // 0.20 + 5.50 + 0.60
  EXPECT_NEAR(t.OTTIPOS[2], 2.90, 1e-9);   // t2 2.00 + 0 + 0.20 + 0.70
  EXPECT_DOUBLE_EQ(t.t2, 2.00);
}

TEST(LEETIPOSPrueba, PrimerTrimestreDe1997LeeNSA) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SA1997.MDB", registros({{12, {"", "", "", "28.30"}}}));
  escribeFicheroTipos(dir / "N-SS1997.MDB", registros({{12, {"", "", "", "28.80"}}}));
  TiposLeidos t;
  for (int mes : {1, 3}) {
    ASSERT_TRUE(LEETIPOS(dir.ruta(), 1997, mes, "", t));
    EXPECT_EQ(t.CCTIPO, "  28.30") << mes;
  }
  for (int mes : {4, 12}) {
    ASSERT_TRUE(LEETIPOS(dir.ruta(), 1997, mes, "", t));
    EXPECT_EQ(t.CCTIPO, "  28.80") << mes;
  }
  // Another year's first quarter reads N-SS.
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 1998, 2, ""), dir / "N-SS1998.MDB");
}

TEST(LEETIPOSPrueba, AnosFueraDeRangoNoLeenNiCambianNada) {
  CarpetaTemporal dir;
  for (int ano : {1900, 2050}) {
    escribeFicheroTipos(dir / nombreFicheroTipos(ano, 1), anoDeMuestra());
  }
  TiposLeidos t;
  t.CCTIPO = "  99.99";
  t.OTTIPO = "x";
  t.a = 4;
  t.OTTIPOS[1] = 8;
  t.PRECIOHORADIST = 3;
  t.campo2[12] = "y";
  for (int ano : {1900, 1850, 2050, 2100}) {
    EXPECT_FALSE(LEETIPOS(dir.ruta(), ano, 1, "", t)) << ano;
    EXPECT_EQ(t.CCTIPO, "  99.99");
    EXPECT_EQ(t.OTTIPO, "x");
    EXPECT_EQ(t.a, 4);
    EXPECT_EQ(t.OTTIPOS[1], 8);
    EXPECT_EQ(t.PRECIOHORADIST, 3);
    EXPECT_EQ(t.campo2[12], "y");
  }
  EXPECT_FALSE(fs::exists(dir / "N-SS1850.MDB"));
  EXPECT_FALSE(fs::exists(dir / "N-SS2100.MDB"));
  // The years just inside read.
  EXPECT_TRUE(LEETIPOS(dir.ruta(), 1901, 1, "", t));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_TRUE(LEETIPOS(dir.ruta(), 2049, 1, "", t));
  EXPECT_TRUE(fs::exists(dir / "N-SS2049.MDB"));
}

TEST(LEETIPOSPrueba, FicheroQueFaltaDaTiposEnBlanco) {
  CarpetaTemporal dir;
  TiposLeidos t;
  t.CCTIPO = "  28.30";
  t.a = 1.55;
  t.OTTIPOS[4] = 9;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "28012345678", t));
  EXPECT_EQ(leeBytes(dir / "N-SS2024.MDB"), std::string(32 * 28, ' '));
  EXPECT_FALSE(fs::exists(dir / "N-SS202428012345678.MDB"));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_EQ(t.FPTIPO, B7);
  EXPECT_EQ(t.HETIPO, B7);
  EXPECT_EQ(t.HNTIPO, B7);
  EXPECT_EQ(t.OTTIPO, "0");
  EXPECT_EQ(t.OT2TIPO, "0");
  EXPECT_EQ(t.CCTIPO45, "      0");
  EXPECT_EQ(t.CCTIPO55, "      0");
  EXPECT_EQ(t.a, 0);
  EXPECT_EQ(t.t4, 0);
  EXPECT_EQ(t.OTTIPOS[4], 0);
  EXPECT_EQ(t.campo2[19], B7);
}

TEST(LEETIPOSPrueba, TiposPorCuotaPatronalYObrera) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", anoDeMuestra());
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));
  std::string cc, he, hn, fp, ot;

  LEETIPOSLIQ(t, true, cc, he, hn, fp, ot);
  EXPECT_EQ(cc, "  23.60");
  EXPECT_EQ(he, "  12.00");
  EXPECT_EQ(hn, "  20.00");
  EXPECT_EQ(fp, "   0.60");
  EXPECT_EQ(ot, "7.1");  // 5.50 + 1.00 + 0.60 of records 19, 20, 21

  LEETIPOSLIQ(t, false, cc, he, hn, fp, ot);
  EXPECT_EQ(cc, "   4.70");
  EXPECT_EQ(he, "   2.00");
  EXPECT_EQ(hn, "   3.00");
  EXPECT_EQ(fp, "   0.10");
  EXPECT_EQ(ot, "1.7");  // 1.55 + 0.15 of records 19 and 21; record 20's 3.50 stays out
}

}  // namespace
}  // namespace valdor

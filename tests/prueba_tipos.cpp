// The reading of the yearly rate file: records, the choice of file, LEETIPOS and the
// share-by-share rates of LEETIPOSLIQ.
#include <fcntl.h>
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
using Textos = std::vector<std::string>;

const std::string B7(7, ' ');
const Registro BLANCO{B7, B7, B7, B7};

// Records 1 to 28 of a year, with `cambios` at their record numbers.
std::vector<Registro> registros(const std::vector<std::pair<int, Registro>>& cambios) {
  std::vector<Registro> r(28, Registro{"", "", "", ""});
  for (const auto& [n, reg] : cambios) r[static_cast<std::size_t>(n - 1)] = reg;
  return r;
}

// A year of rates. c (7.25) is not a + b (1.55 + 5.50), so the sums built on c and on a
// and b tell the rows apart; t2 is 0 and t3 blank (both stand for a), t4 is its own; g1
// has three decimals.
std::vector<Registro> anoDeMuestra() {
  return registros({
      {12, {"", "23.60", "4.70", "28.30"}},
      {13, {"", "0.60", "0.10", "0.70"}},
      {15, {"", "12.00", "2.00", "14.00"}},
      {16, {"", "20.00", "3.00", "23.00"}},
      {19, {"0", "5.50", "1.55", "7.25"}},
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

void casiIguales(const std::vector<double>& obtenidos, const std::vector<double>& esperados) {
  ASSERT_EQ(obtenidos.size(), esperados.size());
  for (std::size_t i = 0; i < esperados.size(); ++i) EXPECT_NEAR(obtenidos[i], esperados[i], 1e-9) << i;
}

// ---- Records and the choice of file --------------------------------------------------

TEST(FicheroTiposLectura, RegistroPorPosicionYBlancosDondeNoLlegaElFichero) {
  CarpetaTemporal dir;
  const fs::path ruta = dir / "N-SS2024.MDB";
  // Two whole records and 11 bytes of a third; the fields are taken as they stand. The
  // file can only be read.
  const std::string bytes = std::string("1111111222222233333334444444") + "  5.50   7.05 -0.10  12     " +
                            "  9.99   9.";
  escribeBytes(ruta, bytes);
  fs::permissions(ruta, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  EXPECT_EQ(leeRegistroTipos(ruta, 1), (Registro{"1111111", "2222222", "3333333", "4444444"}));
  EXPECT_EQ(leeRegistroTipos(ruta, 2), (Registro{"  5.50 ", "  7.05 ", "-0.10  ", "12     "}));
  EXPECT_EQ(leeRegistroTipos(ruta, 3), BLANCO);
  EXPECT_EQ(leeRegistroTipos(ruta, 0), BLANCO);
  EXPECT_EQ(leeBytes(ruta), bytes);
  fs::permissions(ruta, fs::perms::owner_write, fs::perm_options::add);

  EXPECT_EQ(leeRegistroTipos(dir / "N-SS2025.MDB", 1), std::nullopt);
  EXPECT_FALSE(fs::exists(dir / "N-SS2025.MDB"));
}

TEST(FicheroTiposLectura, FicheroPropioSoloSiTieneContenidoYNSAEnElPrimerTrimestreDe1997) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", registros({{12, {"", "", "", "28.30"}}}));
  const std::string codigo = " 28012345678 ";
  // An own file of length 0 counts as missing and stays as it is.
  escribeBytes(dir / "N-SS202428012345678.MDB", "");
  EXPECT_EQ(ficheroTiposDe(dir.ruta(), 2024, 6, codigo), dir / "N-SS2024.MDB");
  EXPECT_EQ(fs::file_size(dir / "N-SS202428012345678.MDB"), 0u);
  // With content it is preferred, found under another case too; another employer reads
  // the general file.
  fs::remove(dir / "N-SS202428012345678.MDB");
  escribeFicheroTipos(dir / "n-ss202428012345678.mdb", registros({{12, {"", "", "", "30.00"}}}));
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 6, codigo, t));
  EXPECT_EQ(t.CCTIPO, "  30.00");
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 6, "28099999999", t));
  EXPECT_EQ(t.CCTIPO, "  28.30");

  escribeFicheroTipos(dir / "N-SA1997.MDB", registros({{12, {"", "", "", "28.30"}}}));
  escribeFicheroTipos(dir / "N-SS1997.MDB", registros({{12, {"", "", "", "28.80"}}}));
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 1997, 3, "", t));
  EXPECT_EQ(t.CCTIPO, "  28.30");
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 1997, 4, "", t));
  EXPECT_EQ(t.CCTIPO, "  28.80");
  EXPECT_EQ(nombreFicheroTipos(1998, 2), "N-SS1998.MDB");
}

TEST(FicheroTiposLectura, FicheroGeneralQueFaltaRecibe32RegistrosEnBlanco) {
  CarpetaTemporal dir;
  const std::string blancos(32 * 28, ' ');
  TiposLeidos t;
  t.CCTIPO = "  28.30";
  t.a = 1.55;
  t.OTTIPOS[4] = 9;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "28012345678", t));
  EXPECT_EQ(leeBytes(dir / "N-SS2024.MDB"), blancos);
  EXPECT_FALSE(fs::exists(dir / "N-SS202428012345678.MDB"));
  EXPECT_EQ((Textos{t.CCTIPO, t.FPTIPO, t.HETIPO, t.HNTIPO, t.campo2[19]}), Textos(5, B7));
  EXPECT_EQ((Textos{t.OTTIPO, t.OT2TIPO, t.CCTIPO45, t.CCTIPO55}), (Textos{"0", "0", "      0", "      0"}));
  casiIguales({t.a, t.OTTIPOS[4]}, {0, 0});

  // A folder that cannot be written (under a plain file) is no error: blanks.
  escribeBytes(dir / "fichero", "x");
  ASSERT_TRUE(LEETIPOS(dir / "fichero" / "tipos", 2024, 1, "", t));
  EXPECT_EQ(t.CCTIPO, B7);
}

// A rate file that is there but empty, cut short, or holding something other than rates
// stops the reading with a message naming the file, instead of giving blank rates; the
// file is left as it was and the rates read before stay.
TEST(FicheroTiposLectura, FicheroVacioCortoODanadoEsUnErrorQueLoNombra) {
  CarpetaTemporal dir;
  const fs::path ruta = dir / "N-SS2022.MDB";
  std::string sano = std::string(11 * 28, ' ') + "                       28.30" + std::string(20 * 28, ' ');
  // The file with record `numero` made of four fields, each filled to 7 on the right.
  auto conRegistro = [&](int numero, const Registro& campos) {
    std::string registro;
    for (const std::string& c : campos) registro += c + std::string(7 - c.size(), ' ');
    std::string r = sano;
    r.replace(static_cast<std::size_t>(numero - 1) * 28, 28, registro);
    return r;
  };
  const std::vector<std::pair<std::string, std::string>> casos{
      {"", "est\xE1 vac\xEDo"},
      // 12 records: record 12 is there, but the file ends before record 28.
      {sano.substr(0, 12 * 28), "est\xE1 da\xF1" "ado: mide 336 bytes y no llega al registro 28 (784 bytes)"},
      {sano.substr(0, 28 * 28 - 1), "mide 783 bytes"},
      {std::string(32 * 28, '\0'), "el campo 1 del registro 12 no es un tipo (\"       \")"},
      {conRegistro(19, {"  4.70", "28,30", "  1.55", " 23.60"}), "el campo 2 del registro 19 no es un tipo (\"28,30  \")"},
      {conRegistro(28, {"   .5", "-1", "1.2.3", ""}), "el campo 3 del registro 28"},
      {conRegistro(20, {"   5.5\t", "-", "", "1e3"}), "el campo 1 del registro 20 no es un tipo (\"   5.5 \")"},
  };
  TiposLeidos t;
  t.CCTIPO = "  99.00";
  for (const auto& [contenido, motivo] : casos) {
    escribeBytes(ruta, contenido);
    const std::string texto = pruebas::mensajeDe<ErrorFichero>([&] { LEETIPOS(dir.ruta(), 2022, 1, "", t); });
    EXPECT_EQ(texto.rfind("El fichero de tipos \"" + ruta.string() + "\" ", 0), 0u) << texto;
    EXPECT_NE(texto.find(motivo), std::string::npos) << texto;
    EXPECT_EQ(leeBytes(ruta), contenido);
    EXPECT_EQ(t.CCTIPO, "  99.00");
  }
  // What a sound file may hold: blanks, figures with a point or none, a minus, blanks
  // around; bytes after record 28 and records the rates do not come from are not looked at.
  const std::string control(7, '\x01');
  escribeBytes(ruta, conRegistro(22, {control, control, control, control}) + "\x1A");
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2022, 1, "", t));
  EXPECT_EQ(t.CCTIPO, "  28.30");
  escribeBytes(ruta, conRegistro(21, {"  -.5", "7.", "0.5", "12"}).substr(0, 28 * 28));
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2022, 1, "", t));
  casiIguales({t.q, t.p}, {7, 12});

  // A folder under the file's name says so.
  fs::remove(ruta);
  fs::create_directory(ruta);
  EXPECT_THROW(LEETIPOS(dir.ruta(), 2022, 1, "", t), ErrorFicheroTipos);
}

TEST(FicheroTiposLectura, RegistroBloqueadoPorOtraAperturaEsperaYDaBlancos) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", anoDeMuestra());
  const int otro = ::open((dir / "N-SS2024.MDB").c_str(), O_RDWR);
  struct flock c {};
  c.l_type = F_WRLCK;
  c.l_start = 11 * 28;  // record 12 only
  c.l_len = 28;
  ASSERT_EQ(::fcntl(otro, F_OFD_SETLK, &c), 0);
  TiposLeidos t;
  const auto t0 = std::chrono::steady_clock::now();
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));
  const auto espera = std::chrono::steady_clock::now() - t0;
  ::close(otro);
  EXPECT_GT(espera, std::chrono::milliseconds(1500));
  EXPECT_LT(espera, std::chrono::seconds(5));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_EQ(t.FPTIPO, "   0.70");  // the records around it read as usual
}

// ---- LEETIPOS -----------------------------------------------------------------------

TEST(LEETIPOSPrueba, TiposValoresYCuotasDeUnAnoCompleto) {
  CarpetaTemporal dir;
  escribeFicheroTipos(dir / "N-SS2024.MDB", anoDeMuestra());
  TiposLeidos t;
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));

  // The rate boxes keep their fields as they stand; 28.30 x 0.45 = 12.735 and x 0.55 =
  // 15.565, five characters of each after 6 blanks.
  EXPECT_EQ((Textos{t.CCTIPO, t.FPTIPO, t.HETIPO, t.HNTIPO, t.CCTIPO45, t.CCTIPO55}),
            (Textos{"  28.30", "   0.70", "  14.00", "  23.00", "      12.73", "      15.56"}));
  // t2 and t3 take a (1.55); 1.005 goes through REDONDEA2 to 1.01.
  casiIguales({t.e1, t.t2, t.b, t.a, t.c, t.t3, t.e2, t.t4, t.f, t.q, t.p},
              {23.60, 1.55, 5.50, 1.55, 7.25, 1.55, 1.00, 3.50, 0.20, 0.60, 0.70});
  casiIguales({t.g1, t.g2, t.g3, t.g4, t.h1, t.h3, t.k1, t.k2, t.PRECIOHORADIST, t.PRECIOHORAPRES, t.r2, t.r3, t.r4},
              {1.01, 2.00, 3.00, 4.00, 0.50, 0.25, 6.00, 7.00, 9.00, 13.00, 0.10, 0.20, 0.30});

  // c+f+p = 7.25+0.20+0.70; c-a+f+q = 7.25-1.55+0.20+0.60.
  EXPECT_EQ(t.OTTIPO, "8.15");
  EXPECT_EQ(t.OT2TIPO, "6.5");
  // a+b+f+p = 1.55+5.50+0.20+0.70, then t+r+f+p with 1.55+0.10, 1.55+0.20 and 3.50+0.30.
  casiIguales({t.OTTIPOS[1], t.OTTIPOS[2], t.OTTIPOS[3], t.OTTIPOS[4]}, {7.95, 2.55, 2.65, 4.70});
  // f+b+q = 0.20+5.50+0.60, then f+r+q with r2, r3, r4.
  casiIguales({t.OT2TIPOS[1], t.OT2TIPOS[2], t.OT2TIPOS[3], t.OT2TIPOS[4]}, {6.30, 0.90, 1.00, 1.10});

  // Share by share: fields 2, then fields 3, of records 12, 15, 16 and 13; the others
  // are 5.50 + 1.00 + 0.60 of records 19, 20, 21, and 1.55 + 0.15 of records 19 and 21.
  std::string cc, he, hn, fp, ot;
  LEETIPOSLIQ(t, true, cc, he, hn, fp, ot);
  EXPECT_EQ((Textos{cc, he, hn, fp, ot}), (Textos{"  23.60", "  12.00", "  20.00", "   0.60", "7.1"}));
  LEETIPOSLIQ(t, false, cc, he, hn, fp, ot);
  EXPECT_EQ((Textos{cc, he, hn, fp, ot}), (Textos{"   4.70", "   2.00", "   3.00", "   0.10", "1.7"}));

  // Now t2 is its own and t4 is 0: t2+r2+f+p = 2.00+0+0.20+0.70, t4 = a.
  escribeFicheroTipos(dir / "N-SS2024.MDB", registros({{19, {"2.00", "5.50", "1.55", "7.25"}},
                                                        {20, {"", "", "0", "0.20"}},
                                                        {21, {"", "", "", "0.70"}}}));
  ASSERT_TRUE(LEETIPOS(dir.ruta(), 2024, 5, "", t));
  casiIguales({t.t2, t.t4, t.OTTIPOS[2]}, {2.00, 1.55, 2.90});
}

TEST(LEETIPOSPrueba, AnosFueraDeRangoNoLeenNiCambianNada) {
  CarpetaTemporal dir;
  for (int ano : {1900, 2050}) escribeFicheroTipos(dir / nombreFicheroTipos(ano, 1), anoDeMuestra());
  TiposLeidos t;
  t.CCTIPO = "  99.99";
  t.a = 4;
  t.campo2[12] = "y";
  for (int ano : {1900, 2050}) {
    EXPECT_FALSE(LEETIPOS(dir.ruta(), ano, 1, "", t)) << ano;
    EXPECT_EQ((Textos{t.CCTIPO, t.campo2[12]}), (Textos{"  99.99", "y"})) << ano;
    EXPECT_EQ(t.a, 4) << ano;
  }
  // The years just inside read, and the missing general file is made.
  EXPECT_TRUE(LEETIPOS(dir.ruta(), 1901, 1, "", t));
  EXPECT_EQ(t.CCTIPO, B7);
  EXPECT_TRUE(LEETIPOS(dir.ruta(), 2049, 1, "", t));
  EXPECT_TRUE(fs::exists(dir / "N-SS2049.MDB"));
}

}  // namespace
}  // namespace valdor

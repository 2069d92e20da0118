// The sample office (the files it writes, the refusal to write over an office, the data
// each exchange needs) and the yearly rate file.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "fan/empleador.h"
#include "statement/ficherotipos.h"
#include "stores/almacen.h"
#include "stores/ficheros.h"
#include "muestra/oficina_muestra.h"
#include "tests/apoyo.h"

namespace valdor {
namespace {

namespace fs = std::filesystem;
using Filas = std::vector<std::vector<std::string>>;

std::string bytes(const fs::path& f) { return pruebas::leeBytes(f); }

// Every row of a query, each value as text.
Filas filas(const fs::path& almacen, const std::string& sql) {
  Almacen a;
  a.abre(almacen);
  Consulta c = a.consulta(sql);
  Filas r;
  while (c.siguiente()) {
    r.emplace_back();
    for (int i = 0; i < c.columnas(); ++i) r.back().push_back(c.campo(i).texto());
  }
  return r;
}

std::set<std::string> columna(const fs::path& almacen, const std::string& sql) {
  std::set<std::string> r;
  for (const auto& f : filas(almacen, sql)) r.insert(f.at(0));
  return r;
}

// A contribution account: 11 digits, the last two the first nine modulo 97.
bool cuentaValida(const std::string& a1) {
  return a1.size() == 11 && a1.find_first_not_of("0123456789") == std::string::npos &&
         std::stoll(a1.substr(0, 9)) % 97 == std::stoll(a1.substr(9));
}

// The message of the refusal to write the office; "sin error" when it is written.
std::string errorDe(const Carpetas& c, const OpcionesMuestra& o) {
  return pruebas::mensajeDe<ErrorMuestra>([&] { escribeOficinaMuestra(c, o); });
}

class Muestra : public ::testing::Test {
 protected:
  // Every file under the test folder with its bytes.
  std::map<std::string, std::string> instantanea() const {
    std::map<std::string, std::string> r;
    for (const auto& f : fs::recursive_directory_iterator(dir))
      if (f.is_regular_file()) r[f.path().string()] = bytes(f.path());
    return r;
  }
  fs::path P(const std::string& n) const { return c.programa / n; }
  fs::path T(const std::string& n) const { return c.trabajo / n; }

  pruebas::CarpetaTemporal carpeta;
  fs::path dir = carpeta.ruta();
  Carpetas c{dir / "programa", dir / "trabajo"};
};

TEST_F(Muestra, EscribeCadaFicheroYNuncaPisaUnaOficinaExistente) {
  const ResumenMuestra r = escribeOficinaMuestra(c, {3, 2024});
  EXPECT_EQ(r.empresas, 5);
  EXPECT_EQ(r.trabajadores, 16);
  const std::vector<fs::path> esperados = {
      P("CONVENIO.MDB"), P("EMPRESAS.MDB"), P("PRODUCTO.MDB"), P("CONSTANT.MDB"), P("BONIFICA.MDB"),
      P("DESEMPLEO.MDB"), P("PX20243.MDB"), T("ACUVALDOR.MDB"), T("ILTS.MDB"), T("FORMACION.MDB"),
      T("TIPO DE DOCUMENTO.MDB"), T("CUENTAS BANCARIAS EMPRESAS.MDB"), T("N-SS2024.MDB"), T("VALDOR.MDB"),
      T("EMISOR.TXT")};
  EXPECT_EQ(r.ficheros, esperados);
  for (const auto& f : esperados) EXPECT_TRUE(fs::exists(f)) << f;
  EXPECT_FALSE(fs::exists(T("TEMPORAL VALDOR.MDB")));

  // A second run into the same folders changes no byte.
  const auto antes = instantanea();
  EXPECT_NE(errorDe(c, {4, 2024}).find("CONVENIO.MDB"), std::string::npos);
  EXPECT_EQ(instantanea(), antes);
}

TEST_F(Muestra, UnSoloFicheroPrevioOUnasOpcionesMalasNoDejanNadaEscrito) {
  // The settings file of a real office, named in another case, is enough to refuse.
  fs::create_directories(c.trabajo);
  std::ofstream(T("valdor.mdb")) << "de otra oficina";
  EXPECT_THROW(escribeOficinaMuestra(c, {3, 2024}), ErrorMuestra);
  EXPECT_EQ(bytes(T("valdor.mdb")), "de otra oficina");
  EXPECT_TRUE(fs::is_empty(c.programa));

  // A failure part-way (here the rate file cannot be made) takes back every store made.
  fs::remove_all(dir);
  for (int i = 0; i < INTENTOSTEMPORAL; ++i) fs::create_directories(nombreTemporal(T("N-SS2024.MDB"), i));
  EXPECT_NE(errorDe(c, {3, 2024}).find("N-SS2024.MDB"), std::string::npos);
  EXPECT_TRUE(fs::is_empty(c.programa));
  EXPECT_EQ(std::distance(fs::directory_iterator(c.trabajo), fs::directory_iterator()), INTENTOSTEMPORAL);

  fs::remove_all(dir);
  for (const OpcionesMuestra o : {OpcionesMuestra{13, 2024}, OpcionesMuestra{3, 1900}, OpcionesMuestra{3, 2024, 3, 0},
                                  OpcionesMuestra{3, 2024, 0, 4}, OpcionesMuestra{3, 2024, -1, -1}})
    EXPECT_THROW(escribeOficinaMuestra(c, o), ErrorMuestra) << o.mes << " " << o.ano << " " << o.empresas;
  EXPECT_FALSE(fs::exists(dir / "programa" / "CONVENIO.MDB"));
}

TEST_F(Muestra, LaOficinaRicaTieneLoQueCadaIntercambioNecesita) {
  escribeOficinaMuestra(c, {3, 2024});
  const fs::path mes = P("PX20243.MDB");

  // Companies: valid accounts; the four kinds of tax code, the foreign one with the
  // second kind of employer line (which four have payroll is the listings' tests').
  const Filas esa = filas(P("EMPRESAS.MDB"), "SELECT A1, A8, EB12, EB11 FROM ESA ORDER BY A1");
  std::set<std::string> tiposNIF;
  for (const auto& f : esa) {
    EXPECT_TRUE(cuentaValida(f[0])) << f[0];
    tiposNIF.insert(claseEmpresa(f[1]));
    if (claseEmpresa(f[1]) == "4") {
      EXPECT_EQ(cabeceraEMP(f[2]), "EMP0132") << f[0];
    }
  }
  EXPECT_EQ(tiposNIF, (std::set<std::string>{"1", "2", "3", "4"}));

  // Every payroll row finds its worker, contract, unemployment class and epigraph; every
  // company its agreement with a code.
  std::set<std::string> fichas;
  for (const auto& f : filas(P("PRODUCTO.MDB"), "SELECT WKEMP, TRA1 FROM WK")) fichas.insert(f[0] + f[1]);
  const auto contratos = columna(P("CONSTANT.MDB"), "SELECT tra21 FROM CONTRA");
  const auto clases = columna(P("DESEMPLEO.MDB"), "SELECT DESCONT FROM DESEMPLEO");
  const auto epigrafes = columna(P("CONSTANT.MDB"), "SELECT EPIGRAFE FROM EPIGRA WHERE ILT > 0 AND IMS > 0");
  for (const auto& f : filas(mes, "SELECT BSSE, BMATRI, BCONT, BEPIG FROM NOMIN")) {
    EXPECT_TRUE(fichas.count(f[0] + f[1])) << f[0] << f[1];
    if (f[2] == "N") continue;
    EXPECT_TRUE(contratos.count(f[2]) && clases.count(f[2])) << f[2];
    EXPECT_TRUE(epigrafes.count(f[3])) << f[3];
  }
  for (const char* e : {"113", "114", "126"}) EXPECT_TRUE(epigrafes.count(e)) << e;
  const auto convenios = columna(P("CONVENIO.MDB"), "SELECT EB11 FROM CONVEN WHERE TRIM(CTC2) <> ''");
  for (const auto& f : esa) EXPECT_TRUE(convenios.count(f[3])) << f[3];

  // Training contracts 85, 87, 97, with hours of the month for 85 and 97.
  const auto bcont = columna(mes, "SELECT BCONT FROM NOMIN");
  for (const char* k : {"085", "087", "097"}) EXPECT_TRUE(bcont.count(k)) << k;
  EXPECT_EQ(columna(T("FORMACION.MDB"),
                    "SELECT FORMANUMATRI FROM FORMACION WHERE FORMAPATEMP = '50104532166' AND FORMAMES = '03' "
                    "AND FORMAANO = '2024' AND FORMAHORASDISTAN > 0 AND FORMAHORASPRESEN > 0"),
            (std::set<std::string>{"00001", "00002"}));

  // Incidents: the deduction, and the stand-in's bonus with its dates.
  EXPECT_EQ(filas(mes, "SELECT I27 FROM INCIDEN WHERE ITIP = '01'"), (Filas{{"45.3"}}));
  EXPECT_EQ(filas(mes, "SELECT MATERBONI, DIAINICIOMATERBON, DIAFINCIOMATERBON, I02 FROM INCIDEN WHERE ITIP = '04'"),
            (Filas{{"1", "15/03/2024", "04/07/2024", "1"}}));

  // Days of leave of the month, the month in two digits: sickness and accident in one
  // row, maternity in another.
  EXPECT_FALSE(filas(T("ILTS.MDB"), "SELECT 1 FROM ILTS WHERE ILTSMES = '03' AND ILTSANO = '2024' "
                                    "AND ENFSDIAS > 0 AND ACCSDIAS > 0").empty());
  EXPECT_FALSE(filas(T("ILTS.MDB"), "SELECT 1 FROM ILTS WHERE ILTSMES = '03' AND MATSDIAS > 0").empty());

  // Documents: DNI, NIE and a passport mark. Bank account check digits, by hand.
  EXPECT_EQ(columna(T("TIPO DE DOCUMENTO.MDB"), "SELECT TIPDOIDE || TIPDOPAS FROM TDOCUMENTO"),
            (std::set<std::string>{"1.0", "6.0", "2.0P"}));
  EXPECT_EQ(filas(T("CUENTAS BANCARIAS EMPRESAS.MDB"),
                  "SELECT CUENTENTIDAD, CUENTSUCURSAL, CUENTDIGITO, CUENTCUENTA FROM CUENTASTAB "
                  "WHERE CUENTCOTIZA = '28107654331'"),
            (Filas{{"2100", "1234", "58", "0200123456"}}));

  // Pending workers (four, of three companies: the AFI file's tests): a removal, a row
  // with every column filled, and every one in the worker file, so that the whole list
  // goes into the AFI file. One is a new hire with no payroll row yet.
  const Filas pendientes = filas(T("ACUVALDOR.MDB"), "SELECT * FROM VALDORTA");
  const auto nomina = columna(mes, "SELECT BSSE || BMATRI FROM NOMIN");
  std::set<std::string> tipos;
  bool completa = false, sinNomina = false;
  for (const auto& f : pendientes) {
    tipos.insert(f[2]);
    completa |= f.size() == 23 && std::all_of(f.begin(), f.end(), [](const std::string& v) {
                  return v.find_first_not_of(' ') != std::string::npos;
                });
    EXPECT_TRUE(fichas.count(f[0] + f[1])) << f[0] << " " << f[1];
    sinNomina |= !nomina.count(f[0] + f[1]);
  }
  EXPECT_EQ(tipos, (std::set<std::string>{"AL", "MB"}));
  EXPECT_TRUE(completa);
  EXPECT_TRUE(sinNomina);

  // Settings: 176 bytes, the route at offset 16; the sender in Windows-1252.
  const std::string ajustes = bytes(T("VALDOR.MDB"));
  ASSERT_EQ(ajustes.size(), 176u);
  EXPECT_EQ(ajustes.substr(16, 25), "C:\\WINSUITE\\Winsuite.exe ");
  EXPECT_EQ(bytes(T("EMISOR.TXT")), "GESTOR\xCD" "A LABORAL DEL VALLE, S.L.\n");

  // The rate file: 32 records; record 12 field 4 at 11 * 28 + 21; the employer's and the
  // worker's share add up to the total in the records that have both.
  const std::string tasas = bytes(T("N-SS2024.MDB"));
  ASSERT_EQ(tasas.size(), 32u * 28);
  EXPECT_EQ(tasas.substr(11 * 28 + 21, 7), "  28.30");
  auto campo = [&](int registro, int n) { return std::stod(tasas.substr((registro - 1) * 28 + (n - 1) * 7, 7)); };
  for (int reg : {12, 13, 15, 16, 21}) EXPECT_NEAR(campo(reg, 2) + campo(reg, 3), campo(reg, 4), 1e-9) << reg;
}

TEST_F(Muestra, UnaOficinaGeneradaTieneElTamanoPedido) {
  const ResumenMuestra r = escribeOficinaMuestra(c, {12, 2023, 3, 4});
  EXPECT_EQ(r.empresas, 3);
  EXPECT_EQ(r.trabajadores, 12);
  const fs::path mes = P("PX202312.MDB");
  EXPECT_EQ(filas(mes, "SELECT count(*), count(DISTINCT BSSE) FROM NOMIN WHERE BCONT <> 'N'"),
            (Filas{{"12", "3"}}));
  const auto cuentas = columna(P("EMPRESAS.MDB"), "SELECT A1 FROM ESA");
  ASSERT_EQ(cuentas.size(), 3u);
  for (const auto& a1 : cuentas) EXPECT_TRUE(cuentaValida(a1)) << a1;
  EXPECT_EQ(filas(mes, "SELECT count(*) FROM NOMIN n WHERE n.BSSE IN ('" + *cuentas.begin() + "')")[0][0], "4");
  EXPECT_EQ(columna(P("PRODUCTO.MDB"), "SELECT count(*) FROM WK"), std::set<std::string>{"12"});
}

TEST_F(Muestra, FicheroDeTiposNombreRelleno_YValoresQueNoCaben) {
  EXPECT_EQ(nombreFicheroTipos(2024, 5, " 28107654331 "), "N-SS202428107654331.MDB");

  fs::create_directories(dir);
  const fs::path f = dir / "N-SS2024.MDB";
  escribeFicheroTipos(f, {{"1.5", "", " -0.25 ", ""}});
  const std::string b = bytes(f);
  ASSERT_EQ(b.size(), 32u * 28);
  EXPECT_EQ(b.substr(0, 28), "    1.5         -0.25       ");
  EXPECT_EQ(b.find_first_not_of(' ', 28), std::string::npos);

  escribeFicheroTipos(f, std::vector<std::array<std::string, 4>>(40, {"1", "2", "3", "4"}));
  EXPECT_EQ(fs::file_size(f), 40u * 28);

  // A comma or a field of 8 characters is refused, and the file keeps its bytes.
  const std::string antes = bytes(f);
  EXPECT_THROW(escribeFicheroTipos(f, {{"28,30", "", "", ""}}), ErrorFicheroTipos);
  EXPECT_THROW(escribeFicheroTipos(f, {{"", "", "", "12345.67"}}), ErrorFicheroTipos);
  EXPECT_EQ(bytes(f), antes);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace valdor

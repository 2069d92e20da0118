// The sample office: invented companies, workers and one month of payroll, written into
// the stores with the same table definitions the program reads.
//
// The hand-made office is small and has one case of every situation the exchanges
// handle (see `oficinaRica`); the generated office is large and plain, for timing.
// Either way every store is written in one transaction, each table through one prepared
// INSERT reused for all its rows.
#include "muestra/oficina_muestra.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "shell/ajustes.h"
#include "statement/ficherotipos.h"
#include "stores/almacen.h"
#include "stores/esquemas.h"
#include "stores/fechas.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

namespace fs = std::filesystem;


std::string cifras(long long numero, int ancho) {
  char b[32];
  std::snprintf(b, sizeof b, "%0*lld", ancho, numero);
  return b;
}

// ---- Identifiers with their check characters ------------------------------------------

// Contribution account: province (2 digits), number (7 digits), and as check the first
// nine digits taken as a number, modulo 97.
std::string cuentaCotizacion(int provincia, long long numero) {
  const long long nueve = provincia * 10000000LL + numero;
  return cifras(provincia, 2) + cifras(numero, 7) + cifras(nueve % 97, 2);
}

// Social Security affiliation number: province (2), number (8), and as check modulo 97
// the province times 10^7 plus the number when the number is below 10^7, otherwise the
// province and the number written one after the other.
std::string numeroAfiliacion(int provincia, long long numero) {
  const long long base = numero < 10000000LL ? provincia * 10000000LL + numero : provincia * 100000000LL + numero;
  return cifras(provincia, 2) + cifras(numero, 8) + cifras(base % 97, 2);
}

char letraDNI(long long numero) { return "TRWAGMYFPDXBNJZSQVHLCKE"[numero % 23]; }

// DNI: eight digits and the letter of the number modulo 23.
std::string dni(long long numero) { return cifras(numero, 8) + letraDNI(numero); }

// NIE: X, Y or Z (standing for 0, 1, 2 in the check), seven digits and the letter.
std::string nie(char inicial, long long numero) {
  return inicial + cifras(numero, 7) + letraDNI((inicial - 'X') * 10000000LL + numero);
}

// Tax code of a company: the letter of its form (A limited company, B limited liability
// company, G association), seven digits and a check digit: the digits in even places
// are added, those in odd places doubled and their digits added, and the check is what
// takes the total to the next ten.
std::string cif(char letra, long long numero) {
  const std::string d = cifras(numero, 7);
  int suma = 0;
  for (int i = 0; i < 7; ++i) {
    const int c = d[static_cast<std::size_t>(i)] - '0';
    suma += i % 2 == 1 ? c : (2 * c) / 10 + (2 * c) % 10;
  }
  return letra + d + static_cast<char>('0' + (10 - suma % 10) % 10);
}

// The two check digits of a bank account: one for "00" + bank + branch, one for the
// ten-digit account, each by the weights 1, 2, 4, 8, 5, 10, 9, 7, 3, 6 modulo 11.
std::string digitosControl(std::string_view entidad, std::string_view sucursal, std::string_view cuenta) {
  auto digito = [](std::string_view diez) {
    static constexpr int pesos[10] = {1, 2, 4, 8, 5, 10, 9, 7, 3, 6};
    int suma = 0;
    for (std::size_t i = 0; i < 10; ++i) suma += (diez[i] - '0') * pesos[i];
    const int d = 11 - suma % 11;
    return static_cast<char>('0' + (d == 11 ? 0 : d == 10 ? 1 : d));
  };
  return {digito("00" + std::string(entidad) + std::string(sucursal)), digito(cuenta)};
}

// ---- The month of the sample -----------------------------------------------------------

struct Periodo {
  int mes = 1;
  int ano = 2000;

  // Day `dia` of the month `desplazamiento` months from the period, as "dd/mm/yyyy"; a
  // day beyond the month's length (February has 28) is its last day.
  std::string fecha(int dia, int desplazamiento = 0) const {
    const int total = ano * 12 + (mes - 1) + desplazamiento;
    const int m = total % 12 + 1;
    return textoDMA({std::min(dia, DIASMES(m)), m, total / 12});
  }
  std::string ultimoDia() const { return fecha(DIASMES(mes)); }
  std::string mes2() const { return cifras(mes, 2); }
  std::string ano4() const { return cifras(ano, 4); }
  Periodo anterior() const { return mes == 1 ? Periodo{12, ano - 1} : Periodo{mes - 1, ano}; }
  std::string nombreMes() const {
    static constexpr std::array<const char*, 12> nombres = {"ENERO",  "FEBRERO", "MARZO",      "ABRIL",
                                                            "MAYO",   "JUNIO",   "JULIO",      "AGOSTO",
                                                            "SEPTIEMBRE", "OCTUBRE", "NOVIEMBRE", "DICIEMBRE"};
    return nombres[static_cast<std::size_t>(mes - 1)];
  }
};

// ---- The office in memory ----------------------------------------------------------------

struct Centro {
  std::string CENCOD, DCE;
};

struct Empresa {
  std::string A1, A2, A3, A4, A5, A6, A8, CPE, EB11, EB12, EB14;
  std::vector<Centro> centros;
  std::string entidad, sucursal, cuenta;  // the bank account; the check digits are computed
};

struct Incidencia {
  std::string ILIN, ITIP, IDES;
  double I02 = 0, I27 = 0;
  std::string MATERBONI, DIAINICIOMATERBON, DIAFINCIOMATERBON;  // "dd/mm/yyyy" or ""
};

struct DiasBaja {
  Periodo periodo;
  double ENFSDIAS = 0, ACCSDIAS = 0, MATSDIAS = 0;
};

struct HorasFormacion {
  double FORMAHORASDISTAN = 0, FORMAHORASPRESEN = 0;
};

// A worker waiting for the affiliation file, with every column filled.
struct Pendiente {
  std::string VALDORTIPO, SITU;
  double VALDDES = 0, VALHORAS = 40, VALDIAS = 30, COEF = 0;
  std::string VALDNACIONALIDAD = "724", VALDCONDIDESEM = "1", VALDMUJERSUBRE = "0", VALDSEXO = "1",
              VALDCATEGORIA, VALDINCAPACITADO = "N", VALDPRIMERTRABAJ = "N", VALDGRADOMINUSVA = "0",
              VALDFECHACONTROL, VALDFECHAINICIO, VALDINDISUBPARCIAL = "N", VALDRELAEXPECIAL = "0000",
              VALDNUSSTRABSUST = "0", VALDCAUSASUSTITU = "0", VALDEXLUSIONSOCIAL = "N";
};

struct Trabajador {
  std::string TRA1;  // worker number, 5 digits
  bool enNomina = true;  // has a payroll row this month

  // WK
  std::string TRA2, TRA3, TRA4, TRA5, TRA9, TRA14, TRA15, tra21, TRA35 = "0", TRA36, TRA37, TRA38, TRA39, TRA51;
  std::string TRA1110, TRA1710, TRA1910, TRA4010, TRA4110, BAJ10, INICIALES;
  double TRA20 = 0, TRA22 = 0, TRA23 = 0, TRA28 = 0, TRA42 = 0, DMG = 0, HAB = 0, Lib3 = 0;
  std::array<double, 6> semana{};  // LUN, MAR, MIE, JUE, VIE, SAB

  // NOMIN (BCONT is tra21 unless set)
  std::string BCEN = "001", BSEC = "001", BCONT, BDIAS = "30", BDIAL = "30", BHCON = "0", A20, B20, BCAT;
  double BB6 = 0, BB8 = 0, BHOES = 0, BHONS = 0, BENFE = 0, BHOIL = 0, BACCI = 0, B126 = 0;
  double COZ1 = 0, COZ2 = 0, COZ3 = 0;

  // TDOCUMENTO
  double TIPDOIDE = 1;
  std::string TIPDOPAS;

  std::vector<Incidencia> incidencias;
  std::vector<DiasBaja> bajas;
  std::optional<HorasFormacion> formacion;
  std::optional<Pendiente> pendiente;
};

struct Lote {
  Empresa empresa;
  std::vector<Trabajador> trabajadores;
};

// ---- Writing rows ------------------------------------------------------------------------

const DefTabla& definicion(std::string_view tabla) {
  const DefTabla* d = esquemas::busca(tabla);
  if (!d) throw ErrorMuestra("No hay definici\xF3n de la tabla " + std::string(tabla) + ".");
  return *d;
}

// One prepared INSERT of every column of a table, reused for each row. A row starts
// with 0 in every number, "" in every text and no date; `pon` sets a column by name.
class Insercion {
 public:
  Insercion(const Almacen& almacen, const DefTabla& tabla) : tabla_(tabla) {
    std::string columnas, marcas;
    for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
      const DefColumna& c = tabla.columnas[i];
      columnas += (i ? ", \"" : "\"") + c.nombre + "\"";
      marcas += i ? ", ?" : "?";
      posiciones_.emplace(c.nombre, i);
      plantilla_.push_back(c.tipo == TipoColumna::Doble   ? Valor(0.0)
                           : c.tipo == TipoColumna::Texto ? Valor("")
                                                          : Valor());
    }
    sentencia_ = Sentencia(almacen, "INSERT INTO \"" + tabla.nombre + "\" (" + columnas + ") VALUES (" + marcas + ")");
    fila_ = plantilla_;
  }

  // A date column takes "dd/mm/yyyy" (stored in ISO form) or "" for no date. A text wider
  // than its column is a fault of the sample's data and stops the writing.
  void pon(std::string_view columna, Valor valor) {
    const auto it = posiciones_.find(columna);
    if (it == posiciones_.end())
      throw ErrorMuestra("La tabla " + tabla_.nombre + " no tiene la columna " + std::string(columna) + ".");
    const DefColumna& c = tabla_.columnas[it->second];
    if (c.tipo == TipoColumna::Fecha && valor.esTexto()) {
      const std::string dma = valor.texto();
      valor = dma.empty() ? Valor() : Valor(dmaAISO(dma));
    } else if (c.tipo == TipoColumna::Texto && valor.esTexto() && c.ancho > 0 &&
               valor.texto().size() > static_cast<std::size_t>(c.ancho)) {
      throw ErrorMuestra("El valor \"" + valor.texto() + "\" no cabe en la columna " + c.nombre + " de la tabla " +
                         tabla_.nombre + ".");
    }
    fila_[it->second] = std::move(valor);
  }

  void inserta() {
    for (std::size_t i = 0; i < fila_.size(); ++i) sentencia_.vincula(static_cast<int>(i) + 1, fila_[i]);
    sentencia_.paso();
    sentencia_.reinicia();
    fila_ = plantilla_;
  }

 private:
  const DefTabla& tabla_;
  Sentencia sentencia_;
  std::map<std::string, std::size_t, std::less<>> posiciones_;
  std::vector<Valor> plantilla_, fila_;
};

// A store open for writing, with its one transaction. Until `confirma` nothing is kept:
// the transaction is rolled back when the object goes.
class Destino {
 public:
  explicit Destino(const fs::path& ruta) {
    almacen_.abre(ruta);
    transaccion_.emplace(almacen_);
  }
  ~Destino() {
    inserciones_.clear();
    transaccion_.reset();
    almacen_.cierra();
  }
  Destino(const Destino&) = delete;
  Destino& operator=(const Destino&) = delete;

  Insercion& tabla(std::string_view nombre) {
    auto it = inserciones_.find(nombre);
    if (it == inserciones_.end())
      it = inserciones_.emplace(std::string(nombre), std::make_unique<Insercion>(almacen_, definicion(nombre))).first;
    return *it->second;
  }

  void confirma() {
    inserciones_.clear();
    transaccion_->confirma();
    transaccion_.reset();
    almacen_.cierra();
  }

 private:
  Almacen almacen_;
  std::optional<Transaccion> transaccion_;
  std::map<std::string, std::unique_ptr<Insercion>, std::less<>> inserciones_;
};

// The stores of the office, all open while the rows go in.
struct Destinos {
  Destino convenio, empresas, producto, constant, bonifica, desempleo, periodo;
  Destino acuvaldor, ilts, formacion, tipodoc, cuentas;
};

// ---- Master data shared by both offices --------------------------------------------------

struct Convenio {
  const char* EB11;
  const char* CTC2;
};

// Collective agreements of the office's companies (key of the company, agreement code).
constexpr std::array<Convenio, 5> CONVENIOS = {{
    {"00210", "2800245"},  // construction, Madrid
    {"00330", "4100915"},  // bakeries, Seville
    {"00515", "0800365"},  // catering, Barcelona
    {"00740", "9900555"},  // workshop schools, national
    {"00110", "2300125"},  // metal industry, Jaén
}};

struct Contrato {
  const char* codigo;      // the payroll's own contract code (tra21, BCONT)
  const char* CONTSEGSOC;  // the Social Security contract key
  double CONTIPO;          // 1 indefinite, 2 temporary full time, 3 temporary part time, 4 no unemployment
};

constexpr std::array<Contrato, 12> CONTRATOS = {{
    {"001", "100", 1},  // indefinite, full time
    {"002", "200", 1},  // indefinite, part time
    {"003", "300", 1},  // indefinite, seasonal
    {"009", "150", 1},  // indefinite with hiring bonus
    {"020", "401", 2},  // for a work or service, full time
    {"021", "402", 2},  // eventual, full time
    {"022", "410", 2},  // stand-in for an absent worker, full time
    {"030", "501", 3},  // for a work or service, part time
    {"031", "502", 3},  // eventual, part time
    {"085", "421", 2},  // training (workshop school)
    {"087", "421", 4},  // training without unemployment contribution
    {"097", "421", 2},  // training with bonus
}};

// Accident tariff rates by epigraph. Office work, commercial travellers, drivers,
// cleaning, construction, catering and education carry the figures of the tariff in
// force; the others are this office's own.
struct Epigrafe {
  const char* EPIGRAFE;
  double ILT, IMS;
};

constexpr std::array<Epigrafe, 12> EPIGRAFES = {{
    {"001", 1.50, 1.10},  // agriculture and livestock
    {"016", 3.35, 3.35},  // construction
    {"033", 1.60, 1.40},  // bread and pastry making
    {"047", 0.95, 0.75},  // retail trade
    {"072", 0.70, 0.60},  // catering
    {"093", 0.65, 0.35},  // education and training
    {"101", 0.65, 0.35},  // associations
    {"113", 0.80, 0.70},  // office work only
    {"114", 1.00, 1.00},  // commercial travellers
    {"117", 3.35, 3.35},  // drivers of goods vehicles over 3.5 t
    {"118", 2.10, 1.50},  // cleaning of premises
    {"126", 0.65, 0.35},  // the part of a base that pays accidents apart (leave, maternity)
}};

// Bonus percentages of a contract in three periods, with the length of each in years
// (7 is no limit).
struct Bonificacion {
  const char* BONCONT;
  std::array<double, 7> tramos[3];  // CC, AT, DE, FO, FP, TR, DU
  const char* BONBR;
  double BONCS, BONNEWTIP;
};

const std::array<Bonificacion, 4> BONIFICACIONES = {{
    // Hiring bonus: half of common contingencies, unemployment, wage fund and training in
    // the first year, 40% of common contingencies and unemployment for two more, 30% in
    // the fourth.
    {"009", {{{50, 0, 50, 50, 50, 0, 1}}, {{40, 0, 40, 0, 0, 0, 2}}, {{30, 0, 0, 0, 0, 0, 1}}}, "B", 601, 13},
    // Stand-in for a worker on maternity leave: everything, for as long as it lasts.
    {"022", {{{100, 100, 100, 100, 100, 0, 7}}, {{0, 0, 0, 0, 0, 0, 0}}, {{0, 0, 0, 0, 0, 0, 0}}}, "B", 601, 0},
    // Eventual part time: a reduction of a quarter of common contingencies, first year.
    {"031", {{{25, 0, 0, 0, 0, 0, 1}}, {{0, 0, 0, 0, 0, 0, 0}}, {{0, 0, 0, 0, 0, 0, 0}}}, "R", 209, 0},
    // Training with bonus: all of it for two years, three quarters in the third.
    {"097", {{{100, 100, 100, 100, 100, 0, 2}}, {{75, 75, 75, 75, 75, 0, 1}}, {{0, 0, 0, 0, 0, 0, 0}}}, "B", 601, 0},
}};

void escribeMaestros(Destinos& d) {
  for (const Convenio& c : CONVENIOS) {
    Insercion& t = d.convenio.tabla("CONVEN");
    t.pon("EB11", c.EB11);
    t.pon("CTC2", c.CTC2);
    t.inserta();
  }
  for (const Contrato& c : CONTRATOS) {
    Insercion& t = d.constant.tabla("CONTRA");
    t.pon("tra21", c.codigo);
    t.pon("CONTSEGSOC", c.CONTSEGSOC);
    t.inserta();
    Insercion& u = d.desempleo.tabla("DESEMPLEO");
    u.pon("DESCONT", c.codigo);
    u.pon("CONTIPO", c.CONTIPO);
    u.inserta();
  }
  for (const Epigrafe& e : EPIGRAFES) {
    Insercion& t = d.constant.tabla("EPIGRA");
    t.pon("EPIGRAFE", e.EPIGRAFE);
    t.pon("ILT", e.ILT);
    t.pon("IMS", e.IMS);
    t.inserta();
  }
  static constexpr std::array<const char*, 7> conceptos = {"BONCC", "BONAT", "BONDE", "BONFO",
                                                           "BONFP", "BONTR", "BONDU"};
  static constexpr std::array<const char*, 3> sufijos = {"", "1", "2"};
  for (const Bonificacion& b : BONIFICACIONES) {
    Insercion& t = d.bonifica.tabla("BONIFI");
    t.pon("BONCONT", b.BONCONT);
    for (std::size_t s = 0; s < 3; ++s)
      for (std::size_t k = 0; k < conceptos.size(); ++k)
        t.pon(std::string(conceptos[k]) + sufijos[s], b.tramos[s][k]);
    t.pon("BONBR", b.BONBR);
    t.pon("BONCS", b.BONCS);
    t.pon("BONNEWTIP", b.BONNEWTIP);
    t.inserta();
  }
}

// ---- The rows of a company and its workers -----------------------------------------------

void escribeEmpresa(Destinos& d, const Empresa& e) {
  Insercion& esa = d.empresas.tabla("ESA");
  esa.pon("A1", e.A1);
  esa.pon("A2", e.A2);
  esa.pon("A3", e.A3);
  esa.pon("A4", e.A4);
  esa.pon("A5", e.A5);
  esa.pon("A6", e.A6);
  esa.pon("A8", e.A8);
  esa.pon("CPE", e.CPE);
  esa.pon("EB11", e.EB11);
  esa.pon("EB12", e.EB12);
  esa.pon("EB14", e.EB14);
  esa.inserta();
  for (const Centro& c : e.centros) {
    Insercion& cent = d.empresas.tabla("CENT");
    cent.pon("CENEMP", e.A1);
    cent.pon("CENCOD", c.CENCOD);
    cent.pon("DCE", c.DCE);
    cent.inserta();
  }
  Insercion& cta = d.cuentas.tabla("CUENTASTAB");
  cta.pon("CUENTCOTIZA", e.A1);
  cta.pon("CUENTENTIDAD", e.entidad);
  cta.pon("CUENTSUCURSAL", e.sucursal);
  cta.pon("CUENTDIGITO", digitosControl(e.entidad, e.sucursal, e.cuenta));
  cta.pon("CUENTCUENTA", e.cuenta);
  cta.pon("CUENTTIPO", "1");
  cta.inserta();
}

void escribeFicha(Insercion& t, const Empresa& e, const Trabajador& w) {
  t.pon("WKEMP", e.A1);
  t.pon("TRA1", w.TRA1);
  t.pon("TRA2", w.TRA2);
  t.pon("TRA3", w.TRA3);
  t.pon("TRA4", w.TRA4);
  t.pon("TRA5", w.TRA5);
  t.pon("TRA9", w.TRA9);
  t.pon("TRA14", w.TRA14);
  t.pon("TRA15", w.TRA15);
  t.pon("TRA20", w.TRA20);
  t.pon("tra21", w.tra21);
  t.pon("TRA22", w.TRA22);
  t.pon("TRA23", w.TRA23);
  t.pon("TRA28", w.TRA28);
  t.pon("TRA35", w.TRA35);
  t.pon("TRA36", w.TRA36);
  t.pon("TRA37", w.TRA37);
  t.pon("TRA38", w.TRA38);
  t.pon("TRA39", w.TRA39);
  t.pon("TRA42", w.TRA42);
  t.pon("TRA51", w.TRA51);
  t.pon("TRA1110", w.TRA1110);
  t.pon("TRA1710", w.TRA1710);
  t.pon("TRA1910", w.TRA1910);
  t.pon("TRA4010", w.TRA4010);
  t.pon("TRA4110", w.TRA4110);
  t.pon("BAJ10", w.BAJ10);
  t.pon("DMG", w.DMG);
  t.pon("HAB", w.HAB);
  t.pon("INICIALES", w.INICIALES);
  t.pon("Lib3", w.Lib3);
  static constexpr std::array<const char*, 6> dias = {"LUN", "MAR", "MIE", "JUE", "VIE", "SAB"};
  for (std::size_t i = 0; i < dias.size(); ++i) t.pon(dias[i], w.semana[i]);
  t.inserta();
}

void escribeNomina(Insercion& t, const Empresa& e, const Trabajador& w, const Periodo& p) {
  t.pon("BSSE", e.A1);
  t.pon("BMATRI", w.TRA1);
  t.pon("BCEN", w.BCEN);
  t.pon("BSEC", w.BSEC);
  t.pon("BNOMBRE", izquierda(e.A2, 35));
  t.pon("BTRABA", w.TRA3);
  t.pon("BDOMI", izquierda(w.TRA4, 35));
  t.pon("BCAT", w.BCAT);
  // Seniority as dd/mm/yy.
  t.pon("BANTI", w.TRA1710.size() == 10 ? w.TRA1710.substr(0, 6) + w.TRA1710.substr(8, 2) : std::string());
  t.pon("BAFI", w.TRA2);
  t.pon("BDEL", "01");
  t.pon("BMESI", p.nombreMes());
  t.pon("BDAL", std::to_string(DIASMES(p.mes)));
  t.pon("BANI", p.ano4().substr(2, 2));
  t.pon("BDIAS", w.BDIAS);
  t.pon("BCONT", w.BCONT.empty() ? w.tra21 : w.BCONT);
  t.pon("BDIAC", w.BDIAS);
  t.pon("BDIAL", w.BDIAL);
  t.pon("BHCON", w.BHCON);
  t.pon("BEPIG", w.TRA14);
  t.pon("BHOES", w.BHOES);
  t.pon("BHONS", w.BHONS);
  t.pon("BENFE", w.BENFE);
  t.pon("BHOIL", w.BHOIL);
  t.pon("BACCI", w.BACCI);
  t.pon("A20", w.A20);
  t.pon("B20", w.B20);
  // The payroll's concept lines: the wage of the days, then the overtime.
  const double salario = REDONDEA2(w.BB6 - w.BHONS - w.BHOES);
  const double dias = valorNumerico(w.BDIAS);
  if (salario > 0 && dias > 0) {
    t.pon("LW1", "SALARIO BASE");
    t.pon("CB1", salario);
    t.pon("UN01", dias);
    t.pon("PRE01", REDONDEA2(salario / dias));
  }
  if (w.BHOES != 0) {
    t.pon("LW2", "HORAS EXTRA ESTRUCTURALES");
    t.pon("CB2", w.BHOES);
  }
  if (w.BHONS != 0) {
    t.pon("LW3", "HORAS EXTRAORDINARIAS");
    t.pon("CB3", w.BHONS);
  }
  t.pon("BB5", valorNumerico(w.TRA15));
  t.pon("BB6", w.BB6);
  t.pon("BB7", w.BB8);
  t.pon("BB8", w.BB8);
  t.pon("COZ1", w.COZ1);
  t.pon("COZ2", w.COZ2);
  t.pon("COZ3", w.COZ3);
  t.pon("BNIFCU", w.TRA9);
  t.pon("B126", w.B126);
  t.inserta();
}

void escribePendiente(Insercion& t, const Empresa& e, const Trabajador& w, const Pendiente& p) {
  t.pon("VALDEMP", e.A1);
  t.pon("VALDTRA", w.TRA1);
  t.pon("VALDORTIPO", p.VALDORTIPO);
  t.pon("VALDDES", p.VALDDES);
  t.pon("SITU", p.SITU);
  t.pon("VALHORAS", p.VALHORAS);
  t.pon("VALDIAS", p.VALDIAS);
  t.pon("COEF", p.COEF);
  t.pon("VALDNACIONALIDAD", p.VALDNACIONALIDAD);
  t.pon("VALDCONDIDESEM", p.VALDCONDIDESEM);
  t.pon("VALDMUJERSUBRE", p.VALDMUJERSUBRE);
  t.pon("VALDSEXO", p.VALDSEXO);
  t.pon("VALDCATEGORIA", p.VALDCATEGORIA);
  t.pon("VALDINCAPACITADO", p.VALDINCAPACITADO);
  t.pon("VALDPRIMERTRABAJ", p.VALDPRIMERTRABAJ);
  t.pon("VALDGRADOMINUSVA", p.VALDGRADOMINUSVA);
  t.pon("VALDFECHACONTROL", p.VALDFECHACONTROL);
  t.pon("VALDFECHAINICIO", p.VALDFECHAINICIO);
  t.pon("VALDINDISUBPARCIAL", p.VALDINDISUBPARCIAL);
  t.pon("VALDRELAEXPECIAL", p.VALDRELAEXPECIAL);
  t.pon("VALDNUSSTRABSUST", p.VALDNUSSTRABSUST);
  t.pon("VALDCAUSASUSTITU", p.VALDCAUSASUSTITU);
  t.pon("VALDEXLUSIONSOCIAL", p.VALDEXLUSIONSOCIAL);
  t.inserta();
}

// Every row of one worker, in each store it belongs to. Returns 1 for a payroll row.
int escribeTrabajador(Destinos& d, const Empresa& e, const Trabajador& w, const Periodo& p) {
  escribeFicha(d.producto.tabla("WK"), e, w);
  {
    Insercion& doc = d.tipodoc.tabla("TDOCUMENTO");
    doc.pon("TIPDOPAT", e.A1);
    doc.pon("TIPDOTRA", w.TRA1);
    doc.pon("TIPDOIDE", w.TIPDOIDE);
    doc.pon("TIPDOPAS", w.TIPDOPAS);
    doc.inserta();
  }
  if (w.enNomina) escribeNomina(d.periodo.tabla("NOMIN"), e, w, p);
  for (const Incidencia& i : w.incidencias) {
    Insercion& t = d.periodo.tabla("INCIDEN");
    t.pon("IEMP", e.A1);
    t.pon("ITRA", w.TRA1);
    t.pon("IDES", i.IDES);
    t.pon("ILIN", i.ILIN);
    t.pon("ITIP", i.ITIP);
    t.pon("I02", i.I02);
    t.pon("I27", i.I27);
    t.pon("MATERBONI", i.MATERBONI);
    t.pon("DIAINICIOMATERBON", i.DIAINICIOMATERBON);
    t.pon("DIAFINCIOMATERBON", i.DIAFINCIOMATERBON);
    t.inserta();
  }
  for (const DiasBaja& b : w.bajas) {
    Insercion& t = d.ilts.tabla("ILTS");
    t.pon("ILTSPATEMP", e.A1);
    t.pon("ILTSNUMATRI", w.TRA1);
    t.pon("ILTSMES", b.periodo.mes2());
    t.pon("ILTSANO", b.periodo.ano4());
    t.pon("ENFSDIAS", b.ENFSDIAS);
    t.pon("ACCSDIAS", b.ACCSDIAS);
    t.pon("MATSDIAS", b.MATSDIAS);
    t.inserta();
  }
  if (w.formacion) {
    Insercion& t = d.formacion.tabla("FORMACION");
    t.pon("FORMAPATEMP", e.A1);
    t.pon("FORMANUMATRI", w.TRA1);
    t.pon("FORMAMES", p.mes2());
    t.pon("FORMAANO", p.ano4());
    t.pon("FORMAHORASDISTAN", w.formacion->FORMAHORASDISTAN);
    t.pon("FORMAHORASPRESEN", w.formacion->FORMAHORASPRESEN);
    t.inserta();
  }
  if (w.pendiente) escribePendiente(d.acuvaldor.tabla("VALDORTA"), e, w, *w.pendiente);
  return w.enNomina ? 1 : 0;
}

// ---- The hand-made office ------------------------------------------------------------------

std::string cp(std::string_view texto) { return std::string(texto); }

// A worker with the columns every worker has; the cases below add what sets each apart.
Trabajador trabajador(std::string TRA1, std::string_view TRA3, std::string TRA2, std::string TRA9,
                      std::string_view TRA4, std::string TRA5, std::string_view TRA51, std::string TRA14,
                      std::string TRA15, std::string tra21, std::string TRA1710, std::string INICIALES) {
  Trabajador w;
  w.TRA1 = std::move(TRA1);
  w.TRA3 = TRA3;
  w.TRA2 = std::move(TRA2);
  w.TRA9 = std::move(TRA9);
  w.TRA4 = TRA4;
  w.TRA5 = std::move(TRA5);
  w.TRA51 = TRA51;
  w.TRA14 = std::move(TRA14);
  w.TRA15 = std::move(TRA15);
  w.tra21 = std::move(tra21);
  w.TRA1710 = std::move(TRA1710);
  w.TRA1110 = w.TRA1710;
  w.INICIALES = std::move(INICIALES);
  return w;
}

Pendiente pendiente(std::string tipo, std::string situ, const Trabajador& w, std::string_view categoria) {
  Pendiente p;
  p.VALDORTIPO = std::move(tipo);
  p.SITU = std::move(situ);
  p.VALDCATEGORIA = categoria;
  p.VALDFECHAINICIO = w.TRA1710;
  p.VALDFECHACONTROL = w.TRA1710;
  return p;
}

// The office of the Gestoría Laboral del Valle: five companies, seventeen workers, sixteen
// of them with a payroll row. What each one is there to show is said where it is made.
std::vector<Lote> oficinaRica(const Periodo& p) {
  std::vector<Lote> oficina;

  // A limited liability company (tax code B) of two centres, in construction.
  {
    Lote l;
    l.empresa = {cuentaCotizacion(28, 1076543), cp("Construcciones Peñalara, S.L."_cp),
                 cp("Calle de la Sierra de Guadarrama, 14"), "Collado Villalba", "MADRID", "FREMAP",
                 cif('B', 2845671), "28400", "00210", "1", "45",
                 {{"001", "Oficinas de Collado Villalba"}, {"002", cp("Obra Navacerrada, Los Peñascales"_cp)}},
                 "2100", "1234", "0200123456"};

    // Office chief: structural overtime, a deduction incident (I27), Lib3 = 1.
    Trabajador a = trabajador("00001", "GARCÍA PEÑA, JOSÉ MARÍA"_cp, numeroAfiliacion(28, 12345678), dni(50123456),
                              "CALLE REAL, 45, 2º B"_cp, "28400", "Collado Villalba", "113", "03", "001",
                              p.fecha(1, -98), "JMGP");
    a.Lib3 = 1;
    a.BCAT = "JEFE ADMINISTRATIVO";
    a.BHOES = 150.00;
    a.BB6 = 2850.00;
    a.BB8 = 3000.00;
    a.incidencias.push_back({"01", "01", "Descuento por falta injustificada", 0, 45.30, "", "", ""});
    l.trabajadores.push_back(a);

    // Hiring bonus in its second year (second set), non-structural overtime, twenty days
    // of sickness with their base under epigraph 126; a sick row of the month before too.
    Trabajador b = trabajador("00002", "MUÑOZ ÁLVAREZ, FRANCISCO"_cp, numeroAfiliacion(28, 23456789), dni(2345671),
                              "CALLE DEL PINAR, 3", "28470", "Cercedilla", "016", "08", "009", p.fecha(10, -14),
                              "FMA");
    b.BCEN = "002";
    b.TRA36 = "B";
    b.TRA4010 = b.TRA1710;
    b.TRA4110 = p.fecha(9, 34);
    b.BCAT = "OFICIAL DE PRIMERA";
    b.BHONS = 180.00;
    b.BB6 = 2280.00;
    b.BB8 = 2280.00;
    b.BENFE = 262.50;
    b.BHOIL = 20;
    b.B126 = 1400.00;
    b.bajas.push_back({p, 20, 0, 0});
    b.bajas.push_back({p.anterior(), 5, 0, 0});
    l.trabajadores.push_back(b);

    // Five-day contract for a work (401): the short-contract mark; starts and leaves in
    // the month; pending registration.
    Trabajador c = trabajador("00003", "LÓPEZ IBÁÑEZ, ANTONIO"_cp, numeroAfiliacion(28, 34567890), dni(51234987),
                              "PLAZA DE ESPAÑA, 7, 1º A"_cp, "28491", "Navacerrada", "016", "09", "020", p.fecha(3),
                              "ALI");
    c.BCEN = "002";
    c.TRA1910 = p.fecha(7);
    c.BAJ10 = p.fecha(7);
    c.BCAT = cp("PEÓN ESPECIALISTA"_cp);
    c.BDIAS = "05";
    c.BDIAL = "05";
    c.A20 = "1";
    c.B20 = "1";
    c.BB6 = 312.50;
    c.BB8 = 312.50;
    c.pendiente = pendiente("AL", "01", c, "PEÓN ESPECIALISTA"_cp);
    c.pendiente->VALDIAS = 5;
    l.trabajadores.push_back(c);

    // Eventual full time (unemployment class 2) with both sickness and accident days in
    // the month, which share the base under epigraph 126.
    Trabajador d = trabajador("00004", "SÁNCHEZ NÚÑEZ, DAVID"_cp, numeroAfiliacion(28, 45678901), dni(47890123),
                              "CALLE MAYOR, 18, 3º IZDA."_cp, "28400", "Collado Villalba", "016", "10", "021",
                              p.fecha(1, -3), "DSN");
    d.BCEN = "002";
    d.TRA1910 = p.fecha(28, 3);
    d.BCAT = cp("PEÓN"_cp);
    d.BB6 = 1980.00;
    d.BB8 = 1980.00;
    d.BHOIL = 6;
    d.BACCI = 396.00;
    d.B126 = 990.00;
    d.bajas.push_back({p, 6, 9, 0});
    l.trabajadores.push_back(d);

    // Indefinite part time, hours a week (working-time class 3); compound surname.
    Trabajador e = trabajador("00005", "FERNÁNDEZ DE LA TORRE, LUCÍA"_cp, numeroAfiliacion(28, 56789012),
                              dni(53456789), "AVENIDA DE LA CONSTITUCIÓN, 101"_cp, "28400", "Collado Villalba",
                              "113", "05", "002", p.fecha(15, -40), "LFT");
    e.TRA35 = "1";
    e.TRA20 = 500;
    e.TRA22 = 20;
    e.BHCON = "4";
    e.BCAT = "AUXILIAR ADMINISTRATIVA";
    e.BB6 = 1025.00;
    e.BB8 = 1025.00;
    l.trabajadores.push_back(e);

    // On leave of absence: a payroll row marked "N", left out of the statement.
    Trabajador f = trabajador("00006", "TORRES VEGA, MANUEL", numeroAfiliacion(28, 67890123), dni(5678123),
                              "CALLE ANCHA, 2", "28400", "Collado Villalba", "016", "08", "001", p.fecha(1, -60),
                              "MTV");
    f.BCEN = "002";
    f.BCONT = "N";
    f.BDIAS = "00";
    f.BDIAL = "00";
    f.BCAT = "OFICIAL DE PRIMERA";
    l.trabajadores.push_back(f);

    // A new hire who starts on the first of next month: in the worker file and pending
    // registration, with no payroll row yet.
    Trabajador g = trabajador("00007", "RUIZ CALVO, ALBERTO", numeroAfiliacion(28, 78901234), dni(50987654),
                              "CALLE DEL CARMEN, 9", "28400", "Collado Villalba", "016", "08", "001", p.fecha(1, 1),
                              "ARC");
    g.enNomina = false;
    g.BCAT = "OFICIAL DE SEGUNDA";
    g.pendiente = pendiente("AL", "01", g, "OFICIAL DE SEGUNDA");
    l.trabajadores.push_back(g);
    oficina.push_back(std::move(l));
  }

  // A sole trader with a DNI: a bakery with maternity and its stand-in.
  {
    Lote l;
    l.empresa = {cuentaCotizacion(41, 1234098), cp("Panadería Ángel Muñoz Ortega"_cp),
                 cp("Avenida de Andalucía, 27"_cp), "Dos Hermanas", "SEVILLA", "ASEPEYO", dni(28471593), "41700",
                 "00330", "1", "12", {{"001", "Obrador y despacho de pan"}}, "0049", "5721", "2710456789"};

    // Maternity leave from the 15th: 14 days worked and 16 of maternity (COZ1 4), and the
    // incident of type 04 that carries her stand-in's bonus.
    Trabajador a = trabajador("00001", "ORTEGA RÍOS, MARÍA DEL CARMEN"_cp, numeroAfiliacion(41, 10234567),
                              dni(28765123), "CALLE BETIS, 12, BAJO", "41700", "Dos Hermanas", "033", "07", "001",
                              p.fecha(1, -70), "MCOR");
    a.BCAT = "DEPENDIENTA";
    a.BDIAS = "14";
    a.BDIAL = "14";
    a.COZ1 = 4;
    a.COZ2 = 16;
    a.COZ3 = 58.00;
    a.BHOIL = 16;  // the days of leave of the month, maternity included
    a.BB6 = 812.00;
    a.BB8 = 812.00;
    a.bajas.push_back({p, 0, 0, 16});
    a.incidencias.push_back({"01", "04", cp("Sustituida por Jiménez Cano, Rocío"_cp), 1, 0, "1", p.fecha(15),
                             p.fecha(4, 4)});
    l.trabajadores.push_back(a);

    // The stand-in (410) with the bonus of no time limit; starts on the 15th; pending
    // registration naming the worker she stands in for.
    Trabajador b = trabajador("00002", "JIMÉNEZ CANO, ROCÍO"_cp, numeroAfiliacion(41, 20345678), dni(30987456),
                              "CALLE REAL DE UTRERA, 8", "41700", "Dos Hermanas", "033", "07", "022", p.fecha(15),
                              "RJC");
    b.TRA36 = "B";
    b.TRA4010 = b.TRA1710;
    b.TRA4110 = p.fecha(4, 4);
    b.BCAT = "DEPENDIENTA";
    b.A20 = "1";
    b.BDIAS = "16";
    b.BDIAL = "16";
    b.BB6 = 928.00;
    b.BB8 = 928.00;
    b.pendiente = pendiente("AL", "01", b, "DEPENDIENTA");
    b.pendiente->VALDSEXO = "2";
    b.pendiente->VALDMUJERSUBRE = "1";
    b.pendiente->VALDIAS = 16;
    b.pendiente->VALDNUSSTRABSUST = a.TRA2;
    b.pendiente->VALDCAUSASUSTITU = "3";
    l.trabajadores.push_back(b);

    // Eventual part time, hours a day (class 1), with a reduction (209) whose start is
    // the empty date mask, so the contract's start date counts.
    Trabajador c = trabajador("00003", "BENÍTEZ ROMERO, JUAN"_cp, numeroAfiliacion(41, 30456789), dni(29345612),
                              "CALLE SEVILLA, 40", "41700", "Dos Hermanas", "033", "09", "031", p.fecha(1, -5),
                              "JBR");
    c.TRA35 = "1";
    c.TRA20 = 500;
    c.TRA28 = 4;
    c.BHCON = "4";
    c.TRA36 = "R";
    c.TRA4010 = std::string(MASCARAFECHA);
    c.TRA1910 = p.fecha(28, 1);
    c.BCAT = "AYUDANTE DE OBRADOR";
    c.BB6 = 690.00;
    c.BB8 = 690.00;
    l.trabajadores.push_back(c);
    oficina.push_back(std::move(l));
  }

  // A foreign employer with an NIE, second kind of employer line (EB12 6), in catering.
  {
    Lote l;
    l.empresa = {cuentaCotizacion(8, 1987654), cp("Café Nórdico Lars Hansen"_cp), "Passeig de la Ribera, 33",
                 "Sitges", "BARCELONA", "MUTUA UNIVERSAL", nie('X', 4567812), "08870", "00515", "6", "7",
                 {{"001", cp("Cafetería del Paseo Marítimo"_cp)}}, "0182", "6013", "0201587643"};

    // Foreign worker with an NIE and no second surname; a reduced-percentage key (TRA39 3)
    // with the bonus mark.
    Trabajador a = trabajador("00001", "HANSEN, ERIK", numeroAfiliacion(8, 40567890), nie('X', 3456789),
                              "CARRER DE SANT PAU, 5", "08870", "Sitges", "072", "08", "001", p.fecha(1, -130), "EH");
    a.TIPDOIDE = 6;
    a.TRA36 = "B";
    a.TRA39 = "3";
    a.BCAT = "JEFE DE COCINA";
    a.BB6 = 2450.00;
    a.BB8 = 2450.00;
    l.trabajadores.push_back(a);

    // Part time on set days of the week (class 2, hours of the month), a subsidy (TRA42),
    // and a postal code stored short.
    Trabajador b = trabajador("00002", "PRIETO ALCÁNTARA, INÉS"_cp, numeroAfiliacion(8, 50678901), dni(46789123),
                              "PASSEIG MARÍTIM, 21, 4º 2ª"_cp, "0887", "Sitges", "072", "10", "002",
                              p.fecha(1, -20), "IPA");
    b.TRA35 = "1";
    b.TRA20 = 400;
    b.semana = {1, 0, 1, 0, 1, 0};
    b.BHCON = "064";
    b.TRA42 = 75.50;
    b.BCAT = "CAMARERA";
    b.BB6 = 820.00;
    b.BB8 = 820.00;
    l.trabajadores.push_back(b);

    // Passport holder who leaves on the 20th: pending removal ("MB").
    Trabajador c = trabajador("00003", "SILVA COSTA, JOÃO"_cp, numeroAfiliacion(8, 60789012), "CB4417723",
                              "CARRER MAJOR, 14", "08870", "Sitges", "072", "10", "021", p.fecha(1, -4), "JSC");
    c.TIPDOIDE = 2;
    c.TIPDOPAS = "P";
    c.TRA1910 = p.fecha(20);
    c.BAJ10 = p.fecha(20);
    c.B20 = "1";
    c.BDIAS = "20";
    c.BDIAL = "20";
    c.BCAT = "AYUDANTE DE COCINA";
    c.BB6 = 1180.00;
    c.BB8 = 1180.00;
    c.pendiente = pendiente("MB", "93", c, "AYUDANTE DE COCINA");
    c.pendiente->VALDNACIONALIDAD = "620";
    c.pendiente->VALDIAS = 20;
    c.pendiente->VALDFECHACONTROL = c.BAJ10;
    l.trabajadores.push_back(c);
    oficina.push_back(std::move(l));
  }

  // An association (tax code G) running a workshop school: training contracts only, so
  // its statement is the one of quotas per head.
  {
    Lote l;
    l.empresa = {cuentaCotizacion(50, 1045321), cp("Asociación Cultural Río Ebro"_cp),
                 cp("Calle de los Almogávares, 9"_cp), "Zaragoza", "ZARAGOZA", "MUTUA MAZ", cif('G', 5012345),
                 "50004", "00740", "1", "3",
                 {{"001", "Escuela taller Ribera del Ebro"}, {"002", cp("Sede social y administración"_cp)}},
                 "2085", "0103", "0330123987"};

    // Training (85) with hours at a distance and on site this month.
    Trabajador a = trabajador("00001", "AZNAR GIMÉNEZ, PABLO"_cp, numeroAfiliacion(50, 10987654), dni(73012345),
                              "CALLE DE PREDICADORES, 60", "50003", "Zaragoza", "093", "10", "085", p.fecha(1, -6),
                              "PAG");
    a.TRA1910 = p.fecha(28, 18);
    a.BCAT = "ALUMNO TRABAJADOR";
    a.BB6 = 1323.00;
    a.BB8 = 1323.00;
    a.formacion = HorasFormacion{10, 25};
    l.trabajadores.push_back(a);

    // Training with bonus (97), with training hours.
    Trabajador b = trabajador("00002", "LAFUENTE BLASCO, SARA", numeroAfiliacion(50, 21098765), dni(72987456),
                              "AVENIDA DE GOYA, 12, 5º C"_cp, "50006", "Zaragoza", "093", "10", "097",
                              p.fecha(1, -6), "SLB");
    b.TRA36 = "B";
    b.TRA4010 = b.TRA1710;
    b.TRA4110 = p.fecha(28, 18);
    b.TRA1910 = p.fecha(28, 18);
    b.BCAT = "ALUMNA TRABAJADORA";
    b.BB6 = 1323.00;
    b.BB8 = 1323.00;
    b.formacion = HorasFormacion{8, 30};
    l.trabajadores.push_back(b);

    // Training without unemployment contribution (87, class 4), in the second centre.
    Trabajador c = trabajador("00003", "CASAS MARÍN, JORGE"_cp, numeroAfiliacion(50, 32109876), dni(25476189),
                              "CALLE DEL COSO, 88", "50001", "Zaragoza", "093", "11", "087", p.fecha(1, -3), "JCM");
    c.BCEN = "002";
    c.TRA1910 = p.fecha(28, 9);
    c.BCAT = "ALUMNO TRABAJADOR";
    c.BB6 = 1323.00;
    c.BB8 = 1323.00;
    l.trabajadores.push_back(c);
    oficina.push_back(std::move(l));
  }

  // A limited company (tax code A) whose only payroll row is marked "N": it has no
  // statement this month and stays out of the company list.
  {
    Lote l;
    l.empresa = {cuentaCotizacion(23, 1009876), cp("Talleres Úbeda, S.A."_cp),
                 cp("Polígono Los Olivares, parcela 12"_cp),
                 cp("Jaén"_cp), cp("JAÉN"_cp), "FRATERNIDAD-MUPRESPA", cif('A', 2300871), "23009", "00110", "1", "21",
                 {{"001", cp("Taller de calderería"_cp)}}, "3058", "0840", "2720018364"};
    Trabajador a = trabajador("00001", "MORENO QUESADA, RAFAEL", numeroAfiliacion(23, 10456732), dni(26012345),
                              "CALLE MAESTRA, 3", "23002", cp("Jaén"_cp), "016", "08", "001", p.fecha(1, -30), "RMQ");
    a.BCONT = "N";
    a.BDIAS = "00";
    a.BDIAL = "00";
    a.BCAT = "CALDERERO";
    l.trabajadores.push_back(a);
    oficina.push_back(std::move(l));
  }
  return oficina;
}

// ---- The generated office ------------------------------------------------------------------

struct Provincia {
  int codigo;
  const char* nombre;
  const char* capital;
};

constexpr std::array<Provincia, 8> PROVINCIAS = {{
    {28, "MADRID", "Madrid"},
    {8, "BARCELONA", "Barcelona"},
    {41, "SEVILLA", "Sevilla"},
    {46, "VALENCIA", "Valencia"},
    {50, "ZARAGOZA", "Zaragoza"},
    {33, "ASTURIAS", "Oviedo"},
    {15, "A CORUÑA", "A Coruña"},
    {48, "BIZKAIA", "Bilbao"},
}};

constexpr std::array<std::string_view, 24> APELLIDOS = {
    "GARCÍA", "MARTÍNEZ", "LÓPEZ",  "SÁNCHEZ", "PÉREZ",   "GÓMEZ",   "MARTÍN",    "JIMÉNEZ",
    "RUIZ",   "HERNÁNDEZ", "DÍAZ",  "MORENO",  "MUÑOZ",   "ÁLVAREZ", "ROMERO",    "NAVARRO",
    "TORRES", "DOMÍNGUEZ", "RAMOS", "GIL",     "SERRANO", "MOLINA",  "CASTAÑEDA", "IBÁÑEZ"};
constexpr std::array<std::string_view, 16> NOMBRES = {"JOSÉ",   "MARÍA",  "ANTONIO", "CARMEN", "MANUEL", "ANA",
                                                      "FRANCISCO", "LUCÍA", "DAVID",  "PAULA",  "JESÚS",  "ELENA",
                                                      "ÁNGEL",  "NURIA",  "RAÚL",    "INÉS"};

// The epigraph of a company's trade, and the contracts its workers cycle through.
constexpr std::array<const char*, 6> EPIGRAFESGENERADOS = {"113", "016", "072", "047", "033", "118"};
constexpr std::array<const char*, 8> CONTRATOSGENERADOS = {"001", "001", "001", "002", "021", "009", "031", "020"};

Lote loteGenerado(int i, int trabajadores, const Periodo& p) {
  const Provincia& pr = PROVINCIAS[static_cast<std::size_t>(i) % PROVINCIAS.size()];
  const std::string codigo = cifras(i, 5);
  Lote l;
  Empresa& e = l.empresa;
  e.A1 = cuentaCotizacion(pr.codigo, 1000000 + i);
  e.A2 = "EMPRESA DE MUESTRA " + codigo + ", S.L.";
  e.A3 = "Calle de la Muestra, " + std::to_string(i % 200 + 1);
  e.A4 = utf8ACp1252(pr.capital);
  e.A5 = utf8ACp1252(pr.nombre);
  e.A6 = "FREMAP";
  e.A8 = cif('B', pr.codigo * 100000LL + i % 100000);
  e.CPE = cifras(pr.codigo * 1000 + i % 50, 5);
  e.EB11 = CONVENIOS[static_cast<std::size_t>(i) % CONVENIOS.size()].EB11;
  e.EB12 = "1";
  e.EB14 = std::to_string(i % 100);
  e.centros = {{"001", "Centro de trabajo principal"}};
  e.entidad = "2100";
  e.sucursal = cifras(i % 10000, 4);
  e.cuenta = cifras(i, 10);
  const std::string epigrafe = EPIGRAFESGENERADOS[static_cast<std::size_t>(i) % EPIGRAFESGENERADOS.size()];

  l.trabajadores.reserve(static_cast<std::size_t>(trabajadores));
  for (int j = 1; j <= trabajadores; ++j) {
    const long long serie = (static_cast<long long>(i - 1) * trabajadores + j) % 100000000LL;
    Trabajador w;
    w.TRA1 = cifras(j, 5);
    const auto apellido = [](long long k) {
      return utf8ACp1252(APELLIDOS[static_cast<std::size_t>(k) % APELLIDOS.size()]);
    };
    w.TRA3 = apellido(i * 7LL + j * 3LL) + " " + apellido(i * 11LL + j * 5LL + 1) + ", " +
             utf8ACp1252(NOMBRES[static_cast<std::size_t>(i + j * 13LL) % NOMBRES.size()]);
    w.TRA2 = numeroAfiliacion(pr.codigo, serie);
    const bool extranjero = j % 20 == 0;
    w.TRA9 = extranjero ? nie('Y', serie % 10000000) : dni(10000000 + serie % 90000000);
    w.TIPDOIDE = extranjero ? 6 : 1;
    w.TRA4 = "CALLE NUMERO " + std::to_string(j % 150 + 1);
    w.TRA5 = e.CPE;
    w.TRA51 = e.A4;
    w.TRA14 = j == 1 ? "113" : epigrafe;
    w.TRA15 = cifras(1 + (i * 3 + j) % 10, 2);
    w.tra21 = CONTRATOSGENERADOS[static_cast<std::size_t>(i + j) % CONTRATOSGENERADOS.size()];
    w.TRA1710 = p.fecha(1 + j % 28, -(1 + (i + j) % 60));
    w.TRA1110 = w.TRA1710;
    w.INICIALES = "W" + cifras(j % 10000, 4);
    w.BCAT = "GRUPO " + w.TRA15;
    if (w.tra21 == "002" || w.tra21 == "031") {
      w.TRA35 = "1";
      w.TRA20 = 500;
      if (w.tra21 == "002") {
        w.TRA22 = 20;  // hours a week
      } else {
        w.TRA28 = 4;  // hours a day
      }
      w.BHCON = "4";
    }
    if (w.tra21 == "009") {
      w.TRA36 = "B";
      w.TRA4010 = w.TRA1710;
      w.TRA4110 = p.fecha(1, 36);
    }
    if (w.tra21 == "031") w.TRA4010 = std::string(MASCARAFECHA);
    if (w.tra21 == "021" || w.tra21 == "031" || w.tra21 == "020") w.TRA1910 = p.fecha(28, 6);

    // Bases from 1,500.00 to 3,500.00, half for part time; some overtime.
    const long long centimos = 150000 + (i * 7919LL + j * 104729LL) % 200001;
    w.BB6 = static_cast<double>(w.TRA35 == "1" ? centimos / 2 : centimos) / 100.0;
    if (j % 7 == 0) w.BHOES = 60.00;
    if (j % 11 == 0) w.BHONS = 90.00;
    w.BB6 = REDONDEA2(w.BB6 + w.BHONS);
    w.BB8 = REDONDEA2(w.BB6 + w.BHOES);

    if (j == trabajadores && i % 5 == 0 && j > 1) {  // a starter on the 16th
      w.TRA1710 = p.fecha(16);
      w.TRA1110 = w.TRA1710;
      w.A20 = "1";
      w.BDIAS = w.BDIAL = "15";
    } else if (j == trabajadores - 1 && i % 7 == 0) {  // a leaver on the 20th
      w.BAJ10 = p.fecha(20);
      w.B20 = "1";
      w.BDIAS = w.BDIAL = "20";
    }
    if (j % 20 == 10) {  // some sickness
      w.BHOIL = 5;
      w.B126 = REDONDEA2(w.BB6 / 30 * 5);
      w.bajas.push_back({p, 5, 0, 0});
    }
    if (j == trabajadores && i <= 40) {
      w.pendiente = pendiente("AL", "01", w, w.BCAT);
      w.pendiente->VALDIAS = valorNumerico(w.BDIAS);
    }
    l.trabajadores.push_back(std::move(w));
  }
  return l;
}

// ---- The rate file of the year --------------------------------------------------------------

// The general rates of recent years (the per-head quotas are those of the training
// contract in the last published order, that of 2024):
//   12  common contingencies: employer 23.60, worker 4.70, total 28.30
//   13  vocational training: employer 0.60, worker 0.10, total 0.70
//   15  overtime for force majeure: 12.00 + 2.00 = 14.00
//   16  other overtime: 23.60 + 4.70 = 28.30
//   19  t2 1.60 worker's unemployment of a temporary contract; b 5.50 employer's and
//       a 1.55 worker's unemployment of an indefinite one; c 7.05 their total
//   20  t3 1.60 (temporary part time); e2 0.20 wage guarantee fund, employer; t4 0 (the
//       same as a); f 0.20 wage guarantee fund
//   21  q 0.60 employer's vocational training; worker's 0.10; p 0.70 total
//   23  per head: g1 53.61 and g2 10.69 common contingencies (employer, worker), g3 7.38
//       accidents, g4 2.00 the employer's vocational training
//   24  per head: h1 4.07 wage guarantee fund, h3 2.26 vocational training
//   26  per head of the contracts 85 and 97: k1 53.61 and k2 10.69 common contingencies
//   27  the hour prices of the training of the contracts 85 and 97: 4.00 at a distance,
//       8.00 on site
//   28  employer's unemployment by unemployment class: r2 6.70, r3 6.70, r4 0
std::vector<std::array<std::string, 4>> tiposDelAno() {
  std::vector<std::array<std::string, 4>> r(28);
  r[11] = {"", "23.60", "4.70", "28.30"};
  r[12] = {"", "0.60", "0.10", "0.70"};
  r[14] = {"", "12.00", "2.00", "14.00"};
  r[15] = {"", "23.60", "4.70", "28.30"};
  r[18] = {"1.60", "5.50", "1.55", "7.05"};
  r[19] = {"1.60", "0.20", "0", "0.20"};
  r[20] = {"", "0.60", "0.10", "0.70"};
  r[22] = {"53.61", "10.69", "7.38", "2.00"};
  r[23] = {"4.07", "", "2.26", ""};
  r[25] = {"53.61", "10.69", "", ""};
  r[26] = {"4.00", "8.00", "", ""};
  r[27] = {"6.70", "6.70", "0", ""};
  return r;
}

// ---- The whole office ------------------------------------------------------------------------

// Files made by this call, removed again unless the office is finished.
class Deshacer {
 public:
  ~Deshacer() {
    if (terminado_) return;
    std::error_code ec;
    for (const fs::path& f : creados_) {
      fs::remove(f, ec);
      fs::remove(f.string() + "-journal", ec);
    }
  }
  void anota(const fs::path& f) { creados_.push_back(f); }
  void termina() { terminado_ = true; }

 private:
  std::vector<fs::path> creados_;
  bool terminado_ = false;
};

void compruebaOpciones(const OpcionesMuestra& o) {
  if (o.mes < 1 || o.mes > 12)
    throw ErrorMuestra("El mes " + std::to_string(o.mes) + " no es v\xE1lido: ha de estar entre 1 y 12.");
  if (o.ano < 1901 || o.ano > 2100)
    throw ErrorMuestra("El a\xF1o " + std::to_string(o.ano) + " no es v\xE1lido: ha de estar entre 1901 y 2100.");
  const bool generada = o.empresas > 0 || o.trabajadores > 0;
  if (o.empresas < 0 || o.trabajadores < 0 || (generada && (o.empresas < 1 || o.trabajadores < 1)))
    throw ErrorMuestra(
        "Una oficina generada necesita un n\xFAmero de empresas y uno de trabajadores, ambos mayores que 0.");
  if (o.empresas > 99999 || o.trabajadores > 99999)
    throw ErrorMuestra("Una oficina generada tiene como mucho 99999 empresas de 99999 trabajadores.");
}

void creaCarpeta(const fs::path& carpeta) {
  std::error_code ec;
  fs::create_directories(carpeta, ec);
  if (ec || !fs::is_directory(carpeta))
    throw ErrorMuestra("No se puede crear la carpeta " + entreComillas(carpeta) + ": " +
                       razonDelSistema(ec ? ec.value() : ENOTDIR) + ".");
}

}  // namespace

ResumenMuestra escribeOficinaMuestra(const Carpetas& carpetas, const OpcionesMuestra& opciones) {
  compruebaOpciones(opciones);
  const Periodo periodo{opciones.mes, opciones.ano};
  creaCarpeta(carpetas.programa);
  creaCarpeta(carpetas.trabajo);

  // Every file the office consists of, and the tables of each store.
  struct Almacenado {
    fs::path ruta;
    std::vector<DefTabla> tablas;
  };
  auto enPrograma = [&](std::string_view n) { return carpetas.programa / std::string(n); };
  auto enTrabajo = [&](std::string_view n) { return carpetas.trabajo / std::string(n); };
  auto lista = [](std::span<const DefTabla> t) { return std::vector<DefTabla>(t.begin(), t.end()); };
  const std::array<Almacenado, 12> almacenes = {{
      {enPrograma(NOMBRECONVENIO), lista(esquemas::tablasCONVENIO())},
      {enPrograma(NOMBREEMPRESAS), lista(esquemas::tablasEMPRESAS())},
      {enPrograma(NOMBREPRODUCTO), lista(esquemas::tablasPRODUCTO())},
      {enPrograma(NOMBRECONSTANT), lista(esquemas::tablasCONSTANT())},
      {enPrograma(NOMBREBONIFICA), lista(esquemas::tablasBONIFICA())},
      {enPrograma(NOMBREDESEMPLEO), lista(esquemas::tablasDESEMPLEO())},
      {enPrograma(nombrePeriodo(textoAnoPeriodo(opciones.ano), textoMesPeriodo(opciones.mes))),
       {esquemas::NOMIN(), esquemas::INCIDEN(true)}},
      {enTrabajo(NOMBREACUVALDOR), {esquemas::VALDORTA()}},
      {enTrabajo(NOMBREILTS), {esquemas::ILTS()}},
      {enTrabajo(NOMBREFORMACION), {esquemas::FORMACION()}},
      {enTrabajo(NOMBRETIPODOC), {esquemas::TDOCUMENTO()}},
      {enTrabajo(NOMBRECUENTAS), {esquemas::CUENTASTAB()}},
  }};
  const fs::path tipos = enTrabajo(nombreFicheroTipos(opciones.ano, opciones.mes));
  const fs::path ajustes = enTrabajo(FICHEROAJUSTES);
  const fs::path emisor = enTrabajo(FICHEROEMISOR);

  // A real office is never written over: any of the files already there, under any case
  // of its name, stops everything before the first byte.
  std::vector<fs::path> ficheros;
  for (const Almacenado& a : almacenes) ficheros.push_back(a.ruta);
  for (const fs::path& f : {tipos, ajustes, emisor}) ficheros.push_back(f);
  for (const fs::path& f : ficheros) {
    const fs::path existente = resuelveFichero(f.parent_path(), f.filename().string());
    std::error_code ec;
    if (fs::exists(existente, ec))
      throw ErrorMuestra("Ya existe el fichero " + entreComillas(existente) +
                         ": la oficina de muestra no se escribe sobre una oficina existente. "
                         "No se ha modificado nada.");
  }

  Deshacer deshacer;
  ResumenMuestra resumen;
  for (const Almacenado& a : almacenes) {
    // A file that appeared since the check is someone else's: not ours to take back.
    if (!Almacen::crea(a.ruta, a.tablas))
      throw ErrorMuestra("Ya existe el fichero " + entreComillas(a.ruta) +
                         ": la oficina de muestra no se escribe sobre una oficina existente.");
    deshacer.anota(a.ruta);
  }
  {
    Destinos d{Destino(almacenes[0].ruta), Destino(almacenes[1].ruta), Destino(almacenes[2].ruta),
               Destino(almacenes[3].ruta), Destino(almacenes[4].ruta), Destino(almacenes[5].ruta),
               Destino(almacenes[6].ruta), Destino(almacenes[7].ruta), Destino(almacenes[8].ruta),
               Destino(almacenes[9].ruta), Destino(almacenes[10].ruta), Destino(almacenes[11].ruta)};
    escribeMaestros(d);
    auto escribeLote = [&](const Lote& l) {
      escribeEmpresa(d, l.empresa);
      ++resumen.empresas;
      for (const Trabajador& w : l.trabajadores) resumen.trabajadores += escribeTrabajador(d, l.empresa, w, periodo);
    };
    if (opciones.empresas == 0) {
      for (const Lote& l : oficinaRica(periodo)) escribeLote(l);
    } else {
      for (int i = 1; i <= opciones.empresas; ++i) escribeLote(loteGenerado(i, opciones.trabajadores, periodo));
    }
    for (Destino* x : {&d.convenio, &d.empresas, &d.producto, &d.constant, &d.bonifica, &d.desempleo, &d.periodo,
                       &d.acuvaldor, &d.ilts, &d.formacion, &d.tipodoc, &d.cuentas})
      x->confirma();
  }

  try {
    deshacer.anota(tipos);
    escribeFicheroTipos(tipos, tiposDelAno());
    deshacer.anota(ajustes);
    FicheroAjustes fichero(carpetas.trabajo);
    // The route as the office picked it with the file dialog, in the file's own spelling:
    // the file selector finds the tool's folders under it.
    fichero.escribe({"20731542", "SLC48213", "C:\\WINSUITE\\Winsuite.exe", "15/03/2021"});
    deshacer.anota(emisor);
    guardaEmisor(carpetas.trabajo, "GESTORÍA LABORAL DEL VALLE, S.L."_cp);
  } catch (const ErrorFicheroTipos& e) {
    throw ErrorMuestra(e.what());
  } catch (const ErrorAjustes& e) {
    throw ErrorMuestra(e.what());
  }

  deshacer.termina();
  resumen.ficheros = std::move(ficheros);
  return resumen;
}

}  // namespace valdor

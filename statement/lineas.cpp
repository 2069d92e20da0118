#include "statement/lineas.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "shell/programa.h"
#include "statement/estado.h"
#include "stores/almacen.h"
#include "stores/fechas.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

void GUARDATEMPORAL(Almacen& temporal, std::string_view empresa, std::string_view trabajador, std::string_view tipo,
                    std::string_view linea, double& LINEALARGA) {
  // A line longer than 70 is kept whole, so that the writer of the file refuses it by
  // its company, worker and kind; the statement window only warns.
  if (linea.size() > 70) LINEALARGA = 1;
  // The key is unique: a second line of the same kind replaces the first.
  Sentencia& s = temporal.preparada(
      "INSERT INTO TMPVALDOR (TMPEMP, TMPTRA, TMPTIPO, TMPLINEA) VALUES (?, ?, ?, ?) "
      "ON CONFLICT DO UPDATE SET TMPLINEA = excluded.TMPLINEA");
  s.vincula(1, empresa);
  s.vincula(2, trabajador);
  s.vincula(3, tipo);
  s.vincula(4, linea);
  s.paso();
  s.reinicia();
}

std::string Z(std::string_view numero, std::size_t n) { return llenaIzq(recortaIzq(numero), n, '0'); }

std::string I(double importe) { return campoDeLinea("un importe", importe, 7, "0", true); }

std::string lineaImporte(std::string_view clave, double importe) {
  return std::string(clave) + I(importe) + " " + std::string(26, '0') + std::string(26, ' ');
}

std::string lineaImporteDias(std::string_view clave, double dias, double importe, std::string_view marca) {
  return std::string(clave) + Z(textoGeneral(dias), 3) + I(importe) + std::string(marca) + std::string(24, '0') +
         std::string(26, ' ');
}

std::string lineaImporteFecha(std::string_view clave, std::string_view dias, double importe, std::string_view marca,
                              std::string_view fecha, std::string_view segundaFecha) {
  const std::size_t ceros = segundaFecha.empty() ? 16 : 8;
  return std::string(clave) + Z(dias, 3) + I(importe) + std::string(marca) + amdPorPosiciones(fecha) +
         (segundaFecha.empty() ? "" : amdPorPosiciones(segundaFecha)) + std::string(ceros, '0') +
         std::string(26, ' ');
}

NombreTrabajador partesNombre(std::string_view columna3) {
  const std::string nombre = mayusculas(recorta(columna3));
  NombreTrabajador n;
  std::string apellidos = nombre;
  if (const auto coma = nombre.find(','); coma != std::string::npos) {
    apellidos = recorta(nombre.substr(0, coma));
    n.nombre = recorta(nombre.substr(coma + 1));
  }
  if (const auto blanco = apellidos.find(' '); blanco != std::string::npos) {
    n.apellido1 = apellidos.substr(0, blanco);
    n.apellido2 = recorta(apellidos.substr(blanco + 1));
  } else {
    n.apellido1 = apellidos;
  }
  return n;
}

std::string lineaTRA(std::string_view afiliacion, std::string_view TIPDOIDE, std::string_view documento,
                     std::string_view centro, std::string_view DCE) {
  const std::string naf = recorta(afiliacion);
  return "TRA" + llenaDer(izquierda(naf, 2), 2, ' ') + Z(textoGeneral(valorNumerico(medio(naf, 3, 10))), 10) +
         std::string(TIPDOIDE) + "   " + llenaIzq(mayusculas(documento), 14, '0') + Z(centro, 3) +
         std::string(DCE) + "000" + std::string(6, ' ');
}

std::string lineaAYN(const NombreTrabajador& n, std::string_view INICIALES, std::string& TEXTOPLANO) {
  QUITAACENTOS(llenaDer(n.apellido1, 20, ' '), TEXTOPLANO);
  const std::string apellido1 = izquierda(TEXTOPLANO, 20);
  QUITAACENTOS(llenaDer(n.apellido2, 20, ' '), TEXTOPLANO);
  const std::string apellido2 = izquierda(TEXTOPLANO, 20);
  // The given name's mapping is made and not used: the line keeps its accents.
  QUITAACENTOS(llenaDer(n.nombre, 15, ' '), TEXTOPLANO);
  const std::string nombre = izquierda(llenaDer(n.nombre, 15, ' '), 15);
  return izquierda("AYN" + apellido1 + apellido2 + nombre + llenaDer(recorta(INICIALES), 5, ' ') + std::string(7, ' '),
                   70);
}

std::string lineaDAT(const DatosDAT& d, bool completa) {
  std::string l = "DAT0" + Z(textoGeneral(d.mes), 4) + " " + (d.parcial ? "P" : " ") + std::string(4, ' ') +
                  (completa && d.corto ? "C" : " ") + Z(textoGeneral(d.figura), 3) + "00" +
                  (completa && d.horas ? "H" : " ") + "  0000  " + Z(d.grupo, 2) + std::string(4, ' ') +
                  Z(d.CONTSEGSOC, 3) + d.epigrafe1 + d.epigrafe2 + "000";
  if (!completa) return l + std::string(23, ' ');
  return l + std::string(15, ' ') + d.CTC2 + " ";
}

namespace {

// The Social Security keys of the contracts that a stay of up to 7 days marks as short.
constexpr std::array<int, 17> CONTRATOSCORTOS = {401, 402, 403, 408, 421, 430, 441, 451, 501,
                                                 502, 503, 508, 520, 530, 540, 541, 551};

struct DiasBaja {
  double ENFSDIAS = 0, ACCSDIAS = 0, MATSDIAS = 0;
};

// The worker's lines, with the lookups they need.
class EscrituraLineas {
 public:
  EscrituraLineas(EstadoCalculo& calculo, Programa& programa)
      : c_(calculo), p_(programa), a_(programa.almacenes), grid_(calculo.GRID1), v_(calculo.v) {}

  void escribe(double REDUCTOTAL);

 private:
  void guarda(std::string_view tipo, std::string_view linea) {
    GUARDATEMPORAL(a_.temporal, v_.EMPACT, grid_.texto(1, 0), tipo, linea, p_.g.LINEALARGA);
  }
  DiasBaja leeBajas();
  std::string CONTSEGSOC();
  std::string CTC2();
  std::string descripcionCentro();
  bool contratoCorto(double contseg);
  std::string claveED9();

  EstadoCalculo& c_;
  Programa& p_;
  Almacenes& a_;
  TablaTrabajo& grid_;
  VariablesCalculo& v_;
};

// The days of illness, accident and maternity of the month: the month sought with two
// digits, then as a number. None found: 0 days.
DiasBaja EscrituraLineas::leeBajas() {
  Tabla& t = a_.ILTS;
  t.indice("ILTSNUM");
  const std::string mes = textoGeneral(v_.MESCOT);
  const std::string ano = recortaIzq(textoGeneral(v_.ANOCOT));
  if (!t.busca("=", {v_.EMPACT, grid_.texto(1, 0), llenaIzq(mes, 2, '0'), ano}) &&
      !t.busca("=", {v_.EMPACT, grid_.texto(1, 0), mes, ano}))
    return {};
  return {t.numero("ENFSDIAS"), t.numero("ACCSDIAS"), t.numero("MATSDIAS")};
}

std::string EscrituraLineas::CONTSEGSOC() {
  Tabla& t = a_.CONTRA;
  t.indice("CNNU");
  if (!t.busca("=", {recorta(grid_.texto(1, 6))})) return "0";
  return recorta(t.texto("CONTSEGSOC"));
}

// The key of the employer's collective agreement, 7 characters.
std::string EscrituraLineas::CTC2() {
  Tabla& esa = a_.ESA;
  Tabla& conven = a_.CONVEN;
  std::string ctc2;
  if (esa.indice("EMNU") && esa.busca("=", {v_.EMPACT}) && conven.indice("INUM") &&
      conven.busca("=", {esa.texto("EB11")}))
    ctc2 = recorta(conven.texto("CTC2"));
  return llenaDer(ctc2, 7, ' ');
}

std::string EscrituraLineas::descripcionCentro() {
  Tabla& t = a_.CENT;
  std::string dce;
  if (t.indice("CENU") && t.busca("=", {v_.EMPACT, grid_.texto(1, 17)})) dce = mayusculas(t.texto("DCE"));
  if (dce.empty()) return std::string(25, ' ');
  return llenaDer(recorta(izquierda(QUITAACENTOS(dce), 25)), 25, ' ');
}

// A contract of 1 to 7 days, from its start to its end in WK, under one of the short keys.
bool EscrituraLineas::contratoCorto(double contseg) {
  Tabla& wk = a_.WK;
  wk.indice("WKNU");
  if (!wk.busca("=", {v_.EMPACT, grid_.texto(1, 0)})) return false;
  const std::string fin = wk.texto("TRA1910");
  if (REDONDEA2(fin) <= 0) return false;
  const auto hasta = leeFechaDMA(recorta(fin));
  const auto desde = leeFechaDMA(recorta(wk.texto("TRA1710")));
  if (!hasta || !desde) return false;
  const int dias = diferenciaDias(*desde, *hasta) + 1;
  if (dias < 1 || dias > 7) return false;
  for (int clave : CONTRATOSCORTOS)
    if (contseg == clave) return true;
  return false;
}

// The key of the bonus line: "13" of the contract's new bonus type, else by BONMODO.
std::string EscrituraLineas::claveED9() {
  Tabla& t = a_.BONIFI;
  t.indice("BNNU");
  if (t.busca("=", {claveBonifica(v_.CODCONT)}) && llenaIzq(recorta(t.texto("BONNEWTIP")), 2, '0') == "13")
    return "EDLCD13";
  if (v_.BONMODO <= 0) return "EDLCD07";
  if (v_.BONMODO == 1) return "EDLCD16";
  return "EDLCD17";
}

void EscrituraLineas::escribe(double REDUCTOTAL) {
  // The identity document and its type; the passport mark goes after the number.
  std::string TIPDOIDE = "1", TIPDOPAS;
  Tabla& doc = a_.TDOCUMENTO;
  if (doc.indice("TIPDOCUnum") && doc.busca("=", {v_.EMPACT, grid_.texto(1, 0)})) {
    TIPDOIDE = recorta(doc.texto("TIPDOIDE"));
    TIPDOPAS = doc.texto("TIPDOPAS");
    if (TIPDOIDE.empty() || TIPDOIDE == "0") TIPDOIDE = "1";
  }
  grid_.escribe(1, 2, recorta(grid_.texto(1, 2)) + TIPDOPAS);

  guarda("TRA", lineaTRA(grid_.texto(1, 1), TIPDOIDE, grid_.texto(1, 2), grid_.texto(1, 17), descripcionCentro()));
  std::string iniciales;
  {
    Tabla& wk = a_.WK;
    wk.indice("WKNU");
    if (wk.busca("=", {v_.EMPACT, grid_.texto(1, 0)})) iniciales = wk.texto("INICIALES");
  }
  guarda("AYN", lineaAYN(partesNombre(grid_.texto(1, 3)), iniciales, p_.g.TEXTOPLANO));

  c_.LEETRABAJADOR();
  // The days of leave of the month. The lines of each kind of leave take them from this
  // one reading: the run holds the store still, so a reading before each would find the
  // same row.
  const DiasBaja bajas = leeBajas();
  const double ENF = bajas.ENFSDIAS, ACC = bajas.ACCSDIAS, MAT = bajas.MATSDIAS;

  DatosDAT d;
  d.mes = v_.MESCOT;
  d.parcial = REDONDEA2(v_.TIPOTRA) != 0;
  d.grupo = grid_.texto(1, 5);
  d.CONTSEGSOC = CONTSEGSOC();
  d.corto = contratoCorto(REDONDEA2(d.CONTSEGSOC));
  double epigrafe = grid_.valor(1, 10);
  if (epigrafe >= 500) epigrafe -= 500;
  const std::string epi = Z(textoGeneral(epigrafe), 3);
  const bool claveDelante = REDONDEA2(v_.EPICLAVE) > 0;
  d.epigrafe1 = claveDelante ? v_.EPICLAVE : epi;
  d.epigrafe2 = claveDelante ? epi : v_.EPICLAVE;
  d.CTC2 = CTC2();
  // The figure of the month by the working-time class: days, or hours.
  const double clase = grid_.valor(1, 43);
  const double D = std::max(0.0, grid_.valor(1, 4) - ENF - ACC - MAT);
  d.horas = clase != 0;
  if (clase == 0) d.figura = D;
  else if (clase == 1) d.figura = std::floor(REDONDEA2(grid_.valor(1, 8) * D));
  else if (clase == 3) d.figura = std::floor(REDONDEA2((grid_.valor(1, 7) - ENF - ACC - MAT) * grid_.valor(1, 8)));
  else d.figura = grid_.valor(1, 8);
  guarda("DAT", lineaDAT(d, true));

  if (const double cc = grid_.valor(1, 9); cc != 0) guarda("ED1", lineaImporte("EDLBA01000", cc));
  if (const double at = grid_.valor(1, 11) - grid_.valor(1, 20); at != 0)
    guarda("ED2", lineaImporte("EDLBA02000", std::fabs(at)));
  if (const double he = grid_.valor(1, 12); he != 0) guarda("ED3", lineaImporte("EDLBA10000", he));

  // The base of leave (column 20) shared between illness and accident by their days.
  const double base126 = grid_.valor(1, 20);
  auto parte = [&](double dias) { return std::fabs(REDONDEA2(base126 / (ENF + ACC) * dias)); };
  DatosDAT baja = d;
  baja.epigrafe1 = "126";
  baja.epigrafe2 = v_.EPICLAVE;
  if (bajas.ENFSDIAS > 0) {
    baja.figura = std::max(0.0, bajas.ENFSDIAS);
    guarda("DAE", lineaDAT(baja, false));
    if (const double e = parte(bajas.ENFSDIAS); e != 0) guarda("EDE", lineaImporte("EDLBA02000", e));
  }
  if (bajas.ACCSDIAS > 0) {
    baja.figura = std::max(0.0, bajas.ACCSDIAS);
    guarda("DAA", lineaDAT(baja, false));
    if (const double e = parte(bajas.ACCSDIAS); e != 0) guarda("EDA", lineaImporte("EDLBA02000", e));
  }
  if (const double diasMat = grid_.valor(1, 35); diasMat > 0) {
    baja.figura = diasMat;
    guarda("DAM", lineaDAT(baja, false));
    if (const double m = grid_.valor(1, 37); m != 0) guarda("EDM", lineaImporte("EDLBA20000", m));
  }
  if (const double hn = grid_.valor(1, 13); hn != 0) guarda("ED4", lineaImporte("EDLBA11000", hn));

  const BOLETIN& b = c_.boletin;
  if (b.COMPIT.valor() != 0)
    guarda("ED5", lineaImporteDias("EDLCD01", bajas.ENFSDIAS, b.COMPIT.valor(), " 01"));
  if (b.ATCOMPENSA.valor() != 0)
    guarda("ED6", lineaImporteDias("EDLCD03", bajas.ACCSDIAS, b.ATCOMPENSA.valor(), " 03"));

  // The dated lines: an empty day count is written "000" and an empty start date
  // "00/00/0000" into the table first.
  if (recorta(grid_.texto(1, 4)).empty()) grid_.escribe(1, 4, "000");
  const std::string dias = recorta(grid_.texto(1, 4));
  auto fechaInicio = [&] {
    if (recorta(grid_.texto(1, 30)).empty() || grid_.texto(1, 30) == MASCARAFECHA) grid_.escribe(1, 30, "00/00/0000");
    return grid_.texto(1, 30);
  };
  if (REDUCTOTAL != 0) guarda("ED8", lineaImporteFecha("EDLCD06", dias, REDUCTOTAL, " 02", fechaInicio()));

  const double distancia = grid_.valor(1, 38), presencial = grid_.valor(1, 39);
  const double bonificacion = b.OTBONRED.valor();
  if (bonificacion - (distancia + presencial) != 0 && bonificacion != 0 && distancia == 0 && presencial == 0) {
    std::string fin = grid_.texto(1, 31);
    if (recorta(fin).empty() || fin == MASCARAFECHA) fin = "00/00/0000";
    guarda("ED9", lineaImporteFecha(claveED9(), dias, bonificacion - (distancia + presencial), " 03", fechaInicio(),
                                    fin));
  }
  if (distancia != 0) guarda("EDD", lineaImporteFecha("EDLCD10", dias, distancia, " 03", fechaInicio()));
  if (presencial != 0) guarda("EDO", lineaImporteFecha("EDLCD11", dias, presencial, " 03", fechaInicio()));
  grid_.escribe(1, 38, 0.0);
  grid_.escribe(1, 39, 0.0);
}

}  // namespace

void ESCRIBELINEAS(EstadoCalculo& calculo, Programa& programa, double REDUCTOTAL) {
  EscrituraLineas(calculo, programa).escribe(REDUCTOTAL);
}

}  // namespace valdor

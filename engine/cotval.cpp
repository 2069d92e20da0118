#include "engine/cotval.h"

#include <optional>
#include <unordered_set>

#include "engine/bonificaciones.h"
#include "fan/seleccion.h"
#include "shell/programa.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

std::string claveContrato(std::string_view BCONT) {
  const double valor = REDONDEA2(BCONT);
  if (valor == 0) return std::string(BCONT);
  return llenaIzq(recortaIzq(textoGeneral(valor)), 3, '0');
}

COTVAL::COTVAL(Programa& programa) : programa_(programa) {}

void COTVAL::CARGAEMPRESA(std::string_view clave) {
  BLANQUEABOLETIN(boletin);
  Tabla& esa = programa_.almacenes.ESA;
  if (!esa.indice("EMNU") || !esa.busca("=", {std::string(clave)})) return;
  VACIABOLETIN(cajas, v.empresaPublica);
  v.empresaPublica = esa.texto("A1");
  // The fields in the order of the load, each shown in its box.
  const std::pair<CampoFijo BOLETIN::*, const char*> campos[] = {
      {&BOLETIN::BOLNOMBRE, "A2"}, {&BOLETIN::BOLDOMICILIO, "A3"}, {&BOLETIN::BOLLOCALIDAD, "A4"},
      {&BOLETIN::BOLENTIDAD, "A6"}, {&BOLETIN::BOLCP, "CPE"},        {&BOLETIN::BOLCLAVE, "EB14"},
      {&BOLETIN::BOLPROV, "A5"},    {&BOLETIN::BOLNIF, "A8"},        {&BOLETIN::BOLCCC, "A1"}};
  for (const auto& [campo, columna] : campos) muestraFigura(boletin, cajas, campo, esa.texto(columna));
}

void COTVAL::LEETRABAJADOR() {
  Tabla& wk = programa_.almacenes.WK;
  wk.indice("WKNU");
  v.TIPOTRA = "";
  if (!wk.busca("=", {v.EMPACT, v.TRAACT})) return;
  v.TIPOTRA = wk.texto("TRA35");
  v.CLASEBON = izquierda(recortaIzq(wk.texto("TRA36")), 1);
  v.TRA37V = wk.texto("TRA37");
  v.TRA38V = wk.texto("TRA38");
  v.TRA39V = wk.texto("TRA39");
  v.TRA42V = wk.texto("TRA42");  // a Null reads ""
  v.TRA4010V = wk.texto("TRA4010");
  v.TRA4110V = wk.texto("TRA4110");
  const int fila = GRID1.filaActual;
  GRID1.blanqueaYEscribe(fila, 29, v.TRA42V);
  GRID1.blanqueaYEscribe(fila, 30, v.TRA4010V);
  GRID1.blanqueaYEscribe(fila, 31, v.TRA4110V);
  if (modo == ModoCalculo::PorTrabajador) v.EPICLAVE = REDONDEA2(wk.numero("Lib3")) == 1 ? "114" : "000";
}

void COTVAL::LEEEPIGRAFE() {
  auto [sitio, nuevo] = epigrafes_.try_emplace(v.EPIBUSCA);
  RatesEpigrafe& r = sitio->second;
  if (nuevo) {
    Tabla& epigra = programa_.almacenes.EPIGRA;
    r.hallado = epigra.indice("EGNU") && epigra.busca("=", {v.EPIBUSCA});
    if (r.hallado) {
      r.ILT = epigra.numero("ILT");
      r.IMS = epigra.numero("IMS");
    }
  }
  if (!r.hallado) return;
  v.TIPOILT = v.FLAGDECIMAL != 0 ? r.ILT : REDONDEA2(r.ILT);
  v.TIPOIMS = v.FLAGDECIMAL != 0 ? r.IMS : REDONDEA2(r.IMS);
}

double COTVAL::claseJornada(std::string_view empresa, std::string_view trabajador) {
  Tabla& wk = programa_.almacenes.WK;
  wk.indice("WKNU");
  double clase = 0;
  if (!wk.busca("=", {recorta(empresa), recorta(trabajador)})) return clase;
  // Each test overrides the one before.
  if (wk.numero("TRA22") != 0) clase = 3;
  if (wk.numero("TRA23") != 0) clase = 3;
  if (wk.numero("TRA28") != 0) clase = 1;
  if (wk.numero("HAB") != 0) clase = 2;
  for (const char* dia : {"LUN", "MAR", "MIE", "JUE", "VIE", "SAB", "DMG"})
    if (wk.numero(dia) != 0) clase = 2;
  return clase;
}

double COTVAL::CONTIPO(std::string_view BCONT) {
  Tabla& desempleo = programa_.almacenes.DESEMPLEO;
  if (!desempleo.indice("TIPOINDEX") || !desempleo.busca("=", {claveContrato(BCONT)})) return 1;
  const double tipo = desempleo.numero("CONTIPO");
  return tipo == 0 ? 1 : tipo;
}

void COTVAL::diasYBases(const FilaNomina& f) {
  const int r = GRID1.filaActual;
  GRID1.escribe(r, 7, f.BDIAL.texto());
  GRID1.escribe(r, 8, f.BHCON.texto());
  GRID1.escribe(r, 5, f.BB5.texto());

  // The non-structural overtime and the deduction of the worker's incident "01" come
  // off the base of common contingencies; only the deduction off the accidents base.
  const double NOESTR = REDONDEA2(f.BHONS.numero());
  double DEDUCCION = 0;
  try {
    Sentencia& q = programa_.almacenes.periodo.preparada(
        "SELECT I27 FROM INCIDEN WHERE IEMP = ? COLLATE ESPANOL AND ITRA = ? COLLATE ESPANOL AND ITIP = ? "
        "COLLATE ESPANOL ORDER BY rowid");
    q.vincula(1, v.EMPACT);
    q.vincula(2, v.TRAACT);
    q.vincula(3, "01");
    if (q.paso()) {
      const Valor i27 = q.valor(0);
      if (!i27.esNulo() && i27.numero() != 0) DEDUCCION = i27.numero();
    }
    q.reinicia();
  } catch (const ErrorAlmacen&) {
    // No incidents to read: no deduction.
  }
  GRID1.escribe(r, 9, REDONDEA2(f.BB6.numero()) - (NOESTR + DEDUCCION));
  GRID1.escribe(r, 11, f.BB8.numero() - DEDUCCION);
  GRID1.escribe(r, 2, f.BNIFCU.texto());
  GRID1.escribe(r, 12, f.BHOES.texto());
  GRID1.escribe(r, 13, f.BHONS.texto());
  GRID1.escribe(r, 14, f.BENFE.texto());
  if (f.COZ1.numero() == 4) GRID1.escribe(r, 36, "M");
  GRID1.escribe(r, 15, f.BHOIL.texto());
  GRID1.escribe(r, 16, f.BACCI.texto());
  GRID1.escribe(r, 18, f.A20.texto());
  GRID1.escribe(r, 19, f.B20.texto());
  GRID1.escribe(r, 34, f.BHOIL.texto());
  const double b126 = f.B126.numero();
  GRID1.blanqueaYEscribe(r, 20, textoGeneral(b126 < 0 ? 0 : b126));
  // The all-companies TC1 run has no maternity and no training columns.
  if (modo == ModoCalculo::TodasLasEmpresas) return;

  // Maternity: a partial month adds its days to the registered ones; from 30 upward the
  // contribution days stand alone.
  const double DIASM = f.COZ2.numero();
  if (DIASM > 0) {
    GRID1.escribe(r, 4, f.BDIAL.texto());
    if (DIASM < 30) GRID1.escribe(r, 4, REDONDEA2(f.BDIAS.texto()) + DIASM);
  }
  const double BASEM = DIASM * f.COZ3.numero();
  GRID1.escribe(r, 37, "");
  if (BASEM != 0) GRID1.escribe(r, 37, BASEM);
  GRID1.blanqueaYEscribe(r, 35, f.COZ2.texto());

  // Training contracts: the hours of the month at their prices.
  const double contrato = REDONDEA2(v.CODCONT);
  if (contrato == 85 || contrato == 97) {
    Tabla& formacion = programa_.almacenes.FORMACION;
    if (formacion.indice("FORMANUM") &&
        formacion.busca("=", {f.BSSE.texto(), f.BMATRI.texto(), textoGeneral(v.MESCOT), textoGeneral(v.ANOCOT)})) {
      GRID1.escribe(r, 39, PRECIOHORAPRES * formacion.numero("FORMAHORASPRESEN"));
      GRID1.escribe(r, 38, PRECIOHORADIST * formacion.numero("FORMAHORASDISTAN"));
    }
  }
}

void COTVAL::filaDeTrabajo(const FilaNomina& f) {
  const int r = GRID1.filaActual;
  GRID1.escribe(r, 0, f.BMATRI.texto());
  GRID1.escribe(r, 17, f.BCEN.texto());
  GRID1.escribe(r, 3, f.BTRABA.texto());
  GRID1.escribe(r, 1, f.BAFI.texto());
  GRID1.escribe(r, 4, f.BDIAS.texto());
  GRID1.escribe(r, 10, f.BEPIG.texto());
  if (modo == ModoCalculo::PorTrabajador)
    GRID1.escribe(r, 43, REDONDEA2(claseJornada(f.BSSE.texto(), GRID1.texto(r, 0))));

  GRID1.escribe(r, 6, f.BCONT.texto());
  GRID1.escribe(r, 40, CONTIPO(GRID1.texto(r, 6)));

  LEETRABAJADOR();
  // The bonus gate: a bonus or reduction class, or a subsidy.
  const std::string clase = mayusculas(v.CLASEBON);
  if (clase == "B" || clase == "R" || REDONDEA2(v.TRA42V) != 0) {
    v.CODCONT = f.BCONT.texto();
    if (REDONDEA2(v.CODCONT) != 0) v.CODCONT = claveContrato(v.CODCONT);
    if (!recorta(v.CODCONT).empty()) {
      Tabla& wk = programa_.almacenes.WK;
      BONIFICACIONES(programa_.almacenes.BONIFI, wk.texto("TRA4010"), wk.texto("TRA1710"), v, GRID1);
      // The TC1 keeps the contract's statement line of the row for its bonus.
      if (modo != ModoCalculo::PorTrabajador) GRID1.escribe(r, 41, GRID1.texto(r, 28));
      if (modo != ModoCalculo::TodasLasEmpresas) reglaTRA39(v, GRID1);
      // The TC1 reads each row's own mode of the fixed percentages.
      if (modo == ModoCalculo::UnaEmpresa && valorNumerico(v.TRA39V) > 0) GRID1.escribe(r, 43, v.BONMODO);
    }
  }
  diasYBases(f);
}

void COTVAL::CALCULAEMPRESAS(const COTIZACION& sel) {
  Almacenes& a = programa_.almacenes;
  GRID1.LIMPIAGRID();
  std::vector<Valor> codigos;
  std::string marcas;
  for (const FilaEmpresa& fila : sel.grid)
    if (fila.marcada) {
      codigos.emplace_back(recorta(fila.BSSE));
      marcas += marcas.empty() ? "?" : ", ?";
    }
  // With no company ticked the list is empty and there is nothing to run.
  if (codigos.empty() || !a.periodo.abierto()) return;

  // The rows are counted first, so that the progress is exact, then read one by one:
  // the month is never held in memory whole.
  const std::string donde = " FROM NOMIN WHERE BCONT <> 'N' AND BSSE IN (" + marcas + ")";
  double total = 0;
  std::optional<Consulta> q;
  try {
    auto cuenta = a.periodo.consulta("SELECT COUNT(*) AS N" + donde, codigos);
    if (cuenta.siguiente()) total = cuenta.numero("N");
    if (total > 0) q.emplace(a.periodo.consulta("SELECT *" + donde + " ORDER BY rowid", codigos));
  } catch (const ErrorAlmacen&) {
    return;  // a month that cannot be read: the run ends without a word
  }
  if (!q) return;
  // The companies met so far, for "empresa n de N": a month's rows come company by company.
  std::unordered_set<std::string> empresasVistas;
  std::string empresaAnterior;
  for (double n = 1; q->siguiente(); ++n) {
    const FilaNomina f = leeFilaNomina(*q);
    const int porcentaje = static_cast<int>(std::min(100.0, REDONDEA2R(n * 100.0 / total)));
    // A row with neither company nor worker is no worker.
    if (REDONDEA2(f.BSSE.texto()) == 0 && REDONDEA2(f.BMATRI.texto()) == 0) continue;
    v.EMPACT = f.BSSE.texto();
    v.TRAACT = f.BMATRI.texto();
    if (v.EMPACT != empresaAnterior) {
      empresaAnterior = v.EMPACT;
      empresasVistas.insert(recorta(v.EMPACT));
    }
    GRID1.filaActual = 1;
    CARGAEMPRESA("");
    programa_.dialogos().progreso(
        porcentaje, textoEmpresaDe("Calculando", empresasVistas.size(), codigos.size(), f.BNOMBRE.texto()),
        f.BTRABA.texto());
    // A stop asked while the last worker was shown ends the run before the next one.
    programa_.atiendeParada();
    GRID1.LIMPIAGRID();
    filaDeTrabajo(f);
    try {
      if (CALCULATRABAJADOR) CALCULATRABAJADOR(*this);
    } catch (const ErrorCampo& e) {
      // A figure too wide for its line: the job stops, and the user learns whose it is.
      throw ErrorCampo("Empresa " + recorta(v.EMPACT) + ", trabajador " + recorta(v.TRAACT) + " (" +
                       recorta(f.BTRABA.texto()) + "): " + e.what());
    }
    if (trabajadorCalculado) trabajadorCalculado(*this);
  }
}

}  // namespace valdor

#include "statement/liquidacion.h"

#include <cmath>
#include <initializer_list>

#include "shell/programa.h"
#include "statement/lineas.h"
#include "stores/fechas.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

double R(double x) { return REDONDEA2(x); }

bool esUno(double contrato, std::initializer_list<double> codigos) {
  for (double c : codigos)
    if (contrato == c) return true;
  return false;
}

// The number of a text as the bonus work fields hold it: right-aligned in 9 characters.
// A text longer than 9 does not fit, and the field keeps what it held.
void ponEn9(std::string& campo, std::string_view texto) {
  if (auto t = campoIzq(texto, 9, ' ')) campo = *t;
}
void ponEn9(std::string& campo, double numero) { ponEn9(campo, recortaIzq(textoGeneral(numero))); }

// The day of a "dd/mm/yyyy" text: its first two characters read as a number.
double diaDe(std::string_view fecha) { return REDONDEA2(izquierda(fecha, 2)); }

}  // namespace

Liquidacion::Liquidacion(EstadoCalculo& calculo, Programa& programa, TiposDeLaEjecucion& tiposEjecucion)
    : calculo_(calculo),
      programa_(programa),
      b_(calculo.boletin),
      grid_(calculo.GRID1),
      v_(calculo.v),
      tiposEjecucion_(tiposEjecucion) {}

// ---- The rates ------------------------------------------------------------------------------

bool Liquidacion::LEETIPOS() {
  const TiposLeidos* leidos = tiposEjecucion_.lee(programa_.carpetas().trabajo, static_cast<int>(v_.ANOCOT),
                                                  static_cast<int>(v_.MESCOT), recorta(v_.empresaPublica));
  if (!leidos) return false;
  tipos = *leidos;  // afresh: a contract of class 2 to 4 changes `b` for its worker
  b_.CCTIPO = tipos.CCTIPO;
  b_.FPTIPO = tipos.FPTIPO;
  b_.HETIPO = tipos.HETIPO;
  b_.HNTIPO = tipos.HNTIPO;
  b_.OTTIPO = tipos.OTTIPO;
  b_.OT2TIPO = tipos.OT2TIPO;
  // The rate boxes show the rates with two decimals until the statement shows its figures.
  const Separadores sep = programa_.separadores();
  for (auto campo : {&BOLETIN::CCTIPO, &BOLETIN::HETIPO, &BOLETIN::HNTIPO, &BOLETIN::FPTIPO, &BOLETIN::OTTIPO})
    calculo_.cajas[static_cast<std::size_t>(cajaDe(campo))] = formatea((b_.*campo).valor(), "##,##.00", sep);
  return true;
}

// ---- The worker's statement -----------------------------------------------------------------

void Liquidacion::CALCULATRABAJADOR(bool conLineas) {
  b_.ATCUOTAIT = "";
  b_.ATCUOTAIMS = "";
  if (grid_.valor(1, 0) == 0) return;

  LEETIPOS();
  acumulados = {};
  deducciones = {};
  for (int fila = 1; fila < grid_.filas(); ++fila) sumaFila(fila);

  const AcumuladoresBoletin& a = acumulados;
  b_.HEBASE = a.SUMHE;
  b_.HNBASE = a.SUMHN;
  b_.COMPIT = a.SUMIT;  // 10 characters: a longer figure is cut here
  b_.ATCOMPENSA = a.SUMATIT;

  const InterruptoresBoletin& s = interruptores;
  if (!a.HAYFIJA) {
    b_.ATBASE = a.SUMAT + a.SUMMAT;
    b_.OTBASE = a.SUMAT;
    b_.OT2BASE = a.SUMMAT;
    b_.CCBASE = a.SUMCC;
    b_.FPBASE = a.SUMMAT;
    if (s.MODOTRES == 1 && ((s.CUOTAOBRERA == 0 && s.Check3) || (s.CUOTAOBRERA == 1 && !s.Check2))) {
      b_.ATBASE = "";
      b_.ATCUOTAIT = "";
      b_.ATCUOTAIMS = "";
    }
    const bool sinBonificar = (s.MODOUNO == 1 && s.MODODOS == 1) || (s.CUOTAOBRERA == 1 && s.MODOTRES == 1);
    if (!sinBonificar) {
      BONIFICATRABAJADOR();
      b_.OTBONRED = BONIFTOTAL;
      b_.REDUCCIONES = REDUCTOTAL;
    }
  }
  if (a.HAYFIJA && a.HAY97) {
    BONIFICATRABAJADOR();
    b_.OTBONRED = BONIFTOTAL;
    b_.REDUCCIONES = REDUCTOTAL;
    b_.OTSUMA = R(b_.OTCOMPDES.valor() + b_.OTBONRED.valor());
  }
  if (a.HAY8597) {
    CALRAROS();
    b_.OTBONRED = BONIFTOTAL;
    b_.REDUCCIONES = REDUCTOTAL;
    b_.OTSUMA = R(b_.OTCOMPDES.valor() + b_.OTBONRED.valor());
  }

  b_.BOLTRABAJADORES = a.NUMTRAB;
  b_.BOLPERHASTA = llenaIzq(textoGeneral(v_.MESCOT), 2, '0') + medio(textoGeneral(v_.ANOCOT), 3, 2);
  b_.BOLPERDESDE = b_.BOLPERHASTA.texto();
  LIQUIDABOLETIN();
  for (auto campo : {&BOLETIN::BOLTRABAJADORES, &BOLETIN::BOLPERDESDE, &BOLETIN::BOLPERHASTA})
    muestraFigura(b_, calculo_.cajas, campo, (b_.*campo).texto());

  if (conLineas) ESCRIBELINEAS(calculo_, programa_, REDUCTOTAL);
}

// One row of the working table into the sums and the accidents quotas. Empty rows read
// as 0 and still look up the default epigraph, as the table's every row does.
void Liquidacion::sumaFila(int r) {
  AcumuladoresBoletin& a = acumulados;
  if (grid_.valor(r, 0) > 0) ++a.NUMTRAB;
  if (grid_.valor(r, 18) > 0) ++a.NUMALTAS;
  if (grid_.valor(r, 19) > 0) ++a.NUMBAJAS;

  const double contrato = grid_.valor(r, 6);
  const double cc = grid_.valor(r, 9);
  a.SUMCC += cc;
  if (contrato == 65) {
    a.HAY65 = true;
    ++a.NUM65;
    a.BASE65 += cc;
  }
  if (contrato == 64) {
    a.HAY64 = true;
    ++a.NUM64;
    a.BASE64 += cc;
  }
  if (esUno(contrato, {85, 87, 97})) a.HAYFIJA = true;
  if (contrato == 97) a.HAY97 = true;
  if (esUno(contrato, {85, 97})) {
    a.HAY8597 = true;
    ++a.NUM8597;
  }
  if (contrato == 87) ++a.NUM87;

  a.SUMAT += grid_.valor(r, 11);
  if (porEmpresa) {
    // The unemployment class of the contract picks the row of "OTRAS COTIZACIONES".
    const double clase = grid_.valor(r, 40);
    const std::size_t i = clase == 2 ? 2 : clase == 3 ? 3 : clase == 4 ? 4 : 1;
    a.OTBASETIPO[i] += grid_.valor(r, 11);
    a.OT2BASETIPO[i] += grid_.valor(r, 37);
  }
  a.SUMHE += grid_.valor(r, 12);
  a.SUMHN += grid_.valor(r, 13);
  a.SUMIT += grid_.valor(r, 14);
  a.SUMATIT += grid_.valor(r, 16);
  a.SUMMAT += grid_.valor(r, 37);
  if (izquierda(recortaIzq(grid_.texto(r, 36)), 1) == "M") {
    (esUno(contrato, {36, 37, 57, 67, 77}) ? a.BASEMATB : a.BASEMATA) += grid_.valor(r, 37);
  }

  // The epigraph: none is office work (113); from 500 up the code stands for 30% of the
  // epigraph 500 below it.
  double epigrafe = REDONDEA2(grid_.texto(r, 10));
  if (epigrafe == 0) epigrafe = 113;
  const bool reducida = epigrafe >= 500;
  if (reducida) epigrafe -= 500;
  v_.EPIBUSCA = llenaIzq(textoGeneral(epigrafe), 3, '0');
  calculo_.LEEEPIGRAFE();
  sumaCuotasAT(grid_.valor(r, 11) - grid_.valor(r, 20), reducida);

  // The base of leave and maternity pays accidents under epigraph 126.
  const double mat = grid_.valor(r, 37);
  const double aparte = grid_.valor(r, 20) + (mat > 0 ? mat : 0);
  if (aparte > 0) {
    v_.EPIBUSCA = "126";
    calculo_.LEEEPIGRAFE();
    sumaCuotasAT(aparte, false);
  }
}

// The two accidents quotas of a base at the epigraph rates in force, added to the quotas
// through their fixed-width text.
void Liquidacion::sumaCuotasAT(double base, bool reducida) {
  double IT = R(base * v_.TIPOILT / 100);
  double IMS = R(base * v_.TIPOIMS / 100);
  if (reducida) {
    IT = R(IT * 30 / 100);
    IMS = R(IMS * 30 / 100);
  }
  b_.ATCUOTAIT = b_.ATCUOTAIT.valor() + IT;
  b_.ATCUOTAIMS = b_.ATCUOTAIMS.valor() + IMS;
}

// ---- The figures of the statement -------------------------------------------------------------

void Liquidacion::interruptoresAlLiquidar() {
  const InterruptoresBoletin& s = interruptores;
  if (s.MODOTRES == 1) {
    std::string cc, he, hn, fp, ot;
    LEETIPOSLIQ(tipos, s.CUOTAPATRONAL == 1, cc, he, hn, fp, ot);
    if (s.CUOTAPATRONAL == 1 || s.CUOTAOBRERA == 1) {
      b_.CCTIPO = cc;
      b_.HETIPO = he;
      b_.HNTIPO = hn;
      b_.FPTIPO = fp;
      b_.OTTIPO = ot;
    }
    if (s.CUOTAPATRONAL == 1) b_.RECARGOPCT = s.Option1 == 1 ? "5" : s.Option1 == 2 ? "20" : "";
  }
  if (s.MODODOS == 1) b_.RECARGOPCT = textoGeneral(s.RECARGOFIJO);
  if (s.CUOTAOBRERA == 1)
    for (auto campo : {&BOLETIN::REDUCCIONES, &BOLETIN::COMPIT, &BOLETIN::CGTOTAL, &BOLETIN::ATCOMPENSA,
                       &BOLETIN::OTSUMA, &BOLETIN::OTCOMPDES, &BOLETIN::OTBONRED})
      (b_.*campo).blanquea();
}

void Liquidacion::LIQUIDABOLETIN() {
  interruptoresAlLiquidar();
  const AcumuladoresBoletin& a = acumulados;
  if (a.HAYFIJA) {
    b_.HECUOTA = R(b_.HETIPO.valor() * b_.HEBASE.valor() / 100);
    b_.HNCUOTA = R(b_.HNTIPO.valor() * b_.HNBASE.valor() / 100);
    LIQUIDAFIJA();
    muestraFiguras();
    return;
  }

  // A rate without a base is not shown.
  const std::pair<CampoFijo BOLETIN::*, CampoFijo BOLETIN::*> pares[] = {
      {&BOLETIN::CCBASE, &BOLETIN::CCTIPO}, {&BOLETIN::HEBASE, &BOLETIN::HETIPO},
      {&BOLETIN::HNBASE, &BOLETIN::HNTIPO}, {&BOLETIN::ASBASE, &BOLETIN::ASTIPO},
      {&BOLETIN::FPBASE, &BOLETIN::FPTIPO}, {&BOLETIN::OCBASE, &BOLETIN::OCTIPO},
      {&BOLETIN::DXBASE, &BOLETIN::DXTIPO}, {&BOLETIN::DEBASE, &BOLETIN::DETIPO}};
  for (const auto& [base, tipo] : pares)
    if ((b_.*base).valor() == 0) b_.*tipo = "";

  // Common contingencies: the contracts 65 and 64 pay 45% and 55% of the rate; both in
  // one statement pay each share on its own base.
  if (a.HAY65) b_.CCTIPO = tipoPartido(b_.CCTIPO.valor() * 0.45);
  if (a.HAY64) b_.CCTIPO = tipoPartido(b_.CCTIPO.valor() * 0.55);
  if (!(a.HAY65 && a.HAY64)) {
    b_.CCCUOTA = R(b_.CCTIPO.valor() * b_.CCBASE.valor() / 100);
  } else {
    b_.CCTIPO.blanquea();
    b_.CCBASE = a.BASE65 + a.BASE64;
    b_.CCCUOTA = R(REDONDEA2(tipos.CCTIPO55) * a.BASE64 / 100) + R(REDONDEA2(tipos.CCTIPO45) * a.BASE65 / 100);
  }
  b_.HECUOTA = R(b_.HETIPO.valor() * b_.HEBASE.valor() / 100);
  b_.HNCUOTA = R(b_.HNTIPO.valor() * b_.HNBASE.valor() / 100);

  LEEDES();
  b_.ASBASE = deducciones.c114.base;
  b_.ASTIPO = deducciones.c114.porcentaje;
  b_.ASCUOTA = deducciones.c114.cuota;
  b_.FPCUOTA = R(b_.FPTIPO.valor() * b_.FPBASE.valor() / 100);
  b_.OCBASE = "0";
  b_.OCTIPO = "0";
  b_.OCCUOTA = "0";
  b_.DXBASE = deducciones.c131.base;
  b_.DXTIPO = deducciones.c131.porcentaje;
  b_.DXCUOTA = deducciones.c131.cuota;
  b_.DEBASE = deducciones.c132.base;
  b_.DETIPO = deducciones.c132.porcentaje;
  b_.DECUOTA = deducciones.c132.cuota;

  bonificacionMaternidad();
  if (BONIFMATER != 0) b_.OTBONRED = b_.OTBONRED.valor() + BONIFMATER;

  b_.CGTOTAL = b_.REDUCCIONES.valor() + b_.COMPIT.valor();
  b_.CGLIQUIDO = b_.CCCUOTA.valor() + b_.HECUOTA.valor() + b_.HNCUOTA.valor() + b_.ASCUOTA.valor() +
                 b_.FPCUOTA.valor() + b_.OCCUOTA.valor() - b_.DXCUOTA.valor() - b_.DECUOTA.valor() -
                 b_.CGTOTAL.valor();
  b_.ATTOTAL = b_.ATCUOTAIMS.valor() + b_.ATCUOTAIT.valor();
  b_.ATLIQUIDO = R(b_.ATTOTAL.valor() - b_.ATCOMPENSA.valor());

  otrasCotizaciones();
  b_.OTSUMA = R(b_.OTCOMPDES.valor() + b_.OTBONRED.valor());
  b_.OTLIQUIDO = R(b_.OTCUOTA.valor() + b_.OT2CUOTA.valor() - b_.OTSUMA.valor());
  liquidoFinal(false);
  muestraFiguras();
}

// "OTRAS COTIZACIONES": the quotas of the two rows, then the bases by class. One class
// with a base gives that class's base and rate; none or several give the sum of the
// bases, no rate and the sum of the quotas. Each row counts its own classes.
void Liquidacion::otrasCotizaciones() {
  b_.OTCUOTA = R(b_.OTBASE.valor() * b_.OTTIPO.valor() / 100);
  b_.OT2CUOTA = R(b_.OT2BASE.valor() * b_.OT2TIPO.valor() / 100);
  auto fila = [](const std::array<double, 5>& bases, const std::array<double, 5>& tasas, CampoFijo& base,
                 CampoFijo& tipo, CampoFijo& cuota) {
    int cuantas = 0;
    std::size_t unica = 0;
    double sumaBases = 0, sumaCuotas = 0;
    for (std::size_t i = 1; i <= 4; ++i) {
      const double bi = bases[i] < 0 ? 0 : bases[i];
      if (bi != 0) {
        ++cuantas;
        unica = i;
      }
      sumaBases += bi;
      sumaCuotas += R(tasas[i] * bi / 100);
    }
    if (cuantas == 1) {
      base = bases[unica];
      tipo = tasas[unica];
      cuota = R(tasas[unica] * bases[unica] / 100);
    } else {
      base = sumaBases;
      tipo = "";
      cuota = sumaCuotas;
    }
  };
  fila(acumulados.OTBASETIPO, tipos.OTTIPOS, b_.OTBASE, b_.OTTIPO, b_.OTCUOTA);
  fila(acumulados.OT2BASETIPO, tipos.OT2TIPOS, b_.OT2BASE, b_.OT2TIPO, b_.OT2CUOTA);
}

// The surcharge and the result: a positive figure is to be paid ("A INGRESAR"), a
// negative one to be received ("A PERCIBIR"), and exactly 0 leaves both blank.
void Liquidacion::liquidoFinal(bool blancoSinRecargo) {
  const double total = b_.CGLIQUIDO.valor() + b_.ATLIQUIDO.valor() + b_.OTLIQUIDO.valor();
  b_.TOTALRECARGO = total;
  b_.RECARGO = R(b_.TOTALRECARGO.valor() * b_.RECARGOPCT.valor() / 100);
  if (blancoSinRecargo && b_.RECARGO.valor() == 0) b_.TOTALRECARGO = "";
  const double final = b_.CGLIQUIDO.valor() + b_.ATLIQUIDO.valor() + b_.OTLIQUIDO.valor() + b_.RECARGO.valor();
  b_.AINGRESAR = "";
  b_.APERCIBIR = "";
  if (final > 0) b_.AINGRESAR = final;
  if (final < 0) b_.APERCIBIR = -1 * final;
}

void Liquidacion::muestraFiguras() {
  bool dentro = false;
  for (const auto& d : BOLETIN::campos()) {
    if (d.nombre == "CCBASE") dentro = true;
    if (dentro && d.caja > 0) calculo_.cajas[static_cast<std::size_t>(d.caja)] = (b_.*d.campo).texto();
    if (d.nombre == "AINGRESAR") break;
  }
}

// The statement of the training contracts 85, 87 and 97, which pay per head.
void Liquidacion::LIQUIDAFIJA() {
  const AcumuladoresBoletin& a = acumulados;
  const TiposLeidos& t = tipos;
  LEETIPOS();
  b_.CCBASE = "";
  b_.CCTIPO = "";
  b_.CCCUOTA = (t.g1 + t.g2) * a.NUM87 + (t.k1 + t.k2) * a.NUM8597;
  for (auto campo : {&BOLETIN::ASBASE, &BOLETIN::ASTIPO, &BOLETIN::ASCUOTA, &BOLETIN::FPBASE, &BOLETIN::FPTIPO,
                     &BOLETIN::FPCUOTA, &BOLETIN::OCBASE, &BOLETIN::OCTIPO, &BOLETIN::OCCUOTA, &BOLETIN::DXBASE,
                     &BOLETIN::DXTIPO, &BOLETIN::DXCUOTA, &BOLETIN::DEBASE, &BOLETIN::DETIPO, &BOLETIN::DECUOTA,
                     &BOLETIN::REDCLAVE})
    b_.*campo = "";
  const bool bonificada = a.HAY8597 || a.HAY97;
  if (bonificada) {
    b_.CGTOTAL = b_.REDUCCIONES.valor() + b_.COMPIT.valor();
  } else {
    for (auto campo : {&BOLETIN::REDUCCIONES, &BOLETIN::OTBONRED, &BOLETIN::CGTOTAL, &BOLETIN::OTBONAUX1,
                       &BOLETIN::OTBONAUX2})
      b_.*campo = "";
  }
  b_.CGLIQUIDO = R(b_.CCCUOTA.valor() + b_.FPCUOTA.valor() + b_.HECUOTA.valor() + b_.HNCUOTA.valor() -
                   b_.CGTOTAL.valor());

  // The accidents quotas per head are the program's own constants, not the rate file's.
  const double cabezas = b_.BOLTRABAJADORES.valor();
  b_.ATBASE = "";
  b_.ATCUOTAIT = cabezas * 310;
  b_.ATCUOTAIMS = cabezas * 247;
  b_.ATTOTAL = cabezas * t.g3;
  b_.ATLIQUIDO = R(b_.ATTOTAL.valor() - b_.ATCOMPENSA.valor());

  b_.OTBASE = "";
  b_.OTTIPO = "";
  b_.OTCUOTA = (t.h1 + t.h3) * cabezas;
  if (!bonificada) {
    b_.OTCOMPDES = "";
    b_.OTSUMA = "";
  }
  b_.OTLIQUIDO = R(b_.OTCUOTA.valor() - b_.OTSUMA.valor());
  liquidoFinal(true);
}

// ---- The substitute of a maternity leave ------------------------------------------------------

void Liquidacion::bonificacionMaternidad() {
  BONIFMATER = 0;
  const AcumuladoresBoletin& a = acumulados;
  if (a.BASEMATA == 0 && a.BASEMATB == 0) return;
  // A statement with a maternity base carries no bonus of its own for it (the quotas the
  // maternity rates would give are not used): the bonus that counts is the substitute's.

  const std::string trabajador = recorta(grid_.texto(1, 0));
  if (trabajador.empty()) return;
  Valor MATERBONI, inicio, fin, I02;
  try {
    Sentencia& q = programa_.almacenes.periodo.preparada(
        "SELECT IEMP, ITRA, MATERBONI, DIAINICIOMATERBON, DIAFINCIOMATERBON, I02 FROM INCIDEN WHERE IEMP = ? COLLATE "
        "ESPANOL AND ITRA = ? COLLATE ESPANOL AND ITIP = ? COLLATE ESPANOL ORDER BY rowid");
    q.vincula(1, recorta(v_.EMPACT));
    q.vincula(2, trabajador);
    q.vincula(3, "04");
    const bool hay = q.paso();
    if (hay) {
      MATERBONI = q.valor(2);
      inicio = q.valor(3);
      fin = q.valor(4);
      I02 = q.valor(5);
    }
    q.reinicia();
    if (!hay) return;
  } catch (const ErrorAlmacen&) {
    return;  // no incidents to read: no bonus
  }
  if (MATERBONI.esNulo() || REDONDEA2(MATERBONI.texto()) != 1) return;

  // The leave clipped to the month of the statement.
  const int M = static_cast<int>(v_.MESCOT), Y = static_cast<int>(v_.ANOCOT);
  const std::string desdeTexto = recorta(inicio.texto());
  std::optional<Fecha> desde = leeFechaDMA(desdeTexto);
  if (REDONDEA2(izquierda(desdeTexto, 2)) != 0 && desde) {
    const int m = desde->mes, y = desde->ano;
    if (M > m) {
      desde = Fecha{1, M, Y};
    } else if (M == m) {
      desde = Fecha{desde->dia, M, Y};
    } else if (Y > y) {
      desde = Fecha{1, M, Y};
    } else if (Y < y) {
      return;
    }
  }
  Fecha hasta{DIASMES(M), M, Y};
  if (!fin.esNulo()) {
    const auto f = leeFechaDMA(recorta(fin.texto()));
    if (!f) return;
    if (M == f->mes) hasta = Fecha{f->dia, M, Y};
    if (M > f->mes) return;
  }
  if (!desde || !esFechaValida(*desde) || !esFechaValida(hasta)) return;
  double dias = diferenciaDias(*desde, hasta) + 1;
  if (!I02.esNulo() && I02.numero() == 1 && dias == 31) dias = 30;
  if (dias <= 0) return;

  // The base of the substitute's days at the employer's rates, less the bonus already
  // given for those days.
  const double diasMat = grid_.valor(1, 35);
  const double d = diasMat != 0 ? grid_.valor(1, 37) / diasMat * dias : 0;
  v_.EPIBUSCA = "126";
  calculo_.LEEEPIGRAFE();
  const double s = tipos.e1 + tipos.e2 + tipos.q + v_.TIPOILT + v_.TIPOIMS;
  const double clase = grid_.valor(1, 40);
  const double tipo = clase == 1 ? s + tipos.b : clase == 2 ? s + tipos.r2 : clase == 3 ? s + tipos.r3 : 0;
  const double diasCot = grid_.valor(1, 4);
  const double e = diasCot != 0 ? grid_.valor(1, 44) / diasCot * dias : 0;
  const double importe = R(R(d * tipo / 100) - e);
  BONIFMATER = R(importe + BONIFMATER);
}

// ---- Deductions and rare concepts -------------------------------------------------------------

void Liquidacion::LEEDES() {
  Tabla& t = programa_.almacenes.DESCUENTOS;
  try {
    if (!t.abierta() || !t.indice("DESCUNUM")) return;
    const std::string empresa = recorta(v_.empresaPublica);
    double base114 = 0, base131 = 0, base132 = 0;
    for (t.primero(); !t.fin(); t.siguiente()) {
      if (recorta(t.texto("DESPATEMP")) != empresa) continue;
      const double casilla = t.numero("DESCASILLA");
      const double porcentaje = t.numero("DESNUMERO");
      if (casilla == 116) {
        deducciones.importe116 = R(b_.CCBASE.valor() * porcentaje / 100);
        b_.OCCLAVE = "8";
        continue;
      }
      ConceptoDeduccion* c = casilla == 114 ? &deducciones.c114
                             : casilla == 131 ? &deducciones.c131
                             : casilla == 132 ? &deducciones.c132
                                              : nullptr;
      if (!c) continue;
      double& base = casilla == 114 ? base114 : casilla == 131 ? base131 : base132;
      // The figure the percentage applies to; any other keeps the concept's last base.
      const double sobre = t.numero("DESSOBRE");
      if (sobre == 111) base = b_.CCCUOTA.valor();
      if (sobre == 312) base = b_.ATCUOTAIMS.valor();
      if (sobre == 340) base = b_.ATCUOTAIMS.valor() + b_.ATCUOTAIT.valor();
      *c = {base, porcentaje, R(base * porcentaje / 100)};
    }
  } catch (const ErrorAlmacen&) {
    // A table that cannot be read leaves the concepts as they stand.
  }
}

void Liquidacion::CALRAROS() {
  BONIFTOTAL = 0;
  for (int r = 1; r < grid_.filas(); ++r) {
    if (const double presencial = grid_.valor(r, 39); presencial != 0) {
      BONIFTOTAL += presencial;
      IMPORTERARO1 = presencial;
    }
    if (const double distancia = grid_.valor(r, 38); distancia != 0) {
      BONIFTOTAL += distancia;
      IMPORTERARO2 = distancia;
    }
  }
}

// The bases of a bonused row added to `b`: the bonus that ended before the month gives
// nothing (false); one that ends in it goes pro rata to its last day.
bool Liquidacion::sumaBasesBonificadas(int r, BasesBonificadas& b) {
  const Fecha primeroDeMes{1, static_cast<int>(v_.MESCOT), static_cast<int>(v_.ANOCOT)};
  const std::string F = grid_.texto(r, 31);
  double DIASFIN = 0;
  if (REDONDEA2(izquierda(F, 2)) != 0) {
    if (const auto fin = leeFechaDMA(F)) {
      DIASFIN = diferenciaDias(primeroDeMes, *fin);
      if (fin->dia == 1 && fin->mes == primeroDeMes.mes && DIASFIN == 0) DIASFIN = 1;
    }
  }
  if (DIASFIN < 0) return false;
  ponEn9(b.BONBASECC, grid_.texto(r, 9));
  if (REDONDEA2(b.BONBASECC) == 0 && grid_.valor(r, 37) > 0) ponEn9(b.BONBASECC, grid_.texto(r, 37));
  ponEn9(b.BONBASEAT, grid_.texto(r, 11));
  if (REDONDEA2(b.BONBASEAT) == 0 && grid_.valor(r, 37) > 0) ponEn9(b.BONBASEAT, grid_.texto(r, 37));
  // The maternity days are added to the base as they stand.
  if (grid_.valor(r, 35) != 0) ponEn9(b.BONBASEAT, REDONDEA2(b.BONBASEAT) + valorNumerico(grid_.texto(r, 35)));
  if (DIASFIN > 0 && DIASFIN < 31) {
    const double diasCot = grid_.valor(r, 4);
    if (diasCot != 0) {
      const double dia = diaDe(F);
      ponEn9(b.BONBASECC, R(REDONDEA2(b.BONBASECC) / diasCot * dia));
      ponEn9(b.BONBASEAT, R(REDONDEA2(b.BONBASEAT) / diasCot * dia));
    }
  }
  b.sumaCC += REDONDEA2(b.BONBASECC);
  b.sumaAT += REDONDEA2(b.BONBASEAT);
  double e = grid_.valor(r, 10);
  if (e == 0) e = 113;
  if (grid_.valor(r, 22) != 0 && e >= 1 && e < 131) b.BASEEPI[static_cast<std::size_t>(e)] += REDONDEA2(b.BONBASEAT);
  return true;
}

void Liquidacion::BONIFICATRABAJADOR() {
  programa_.dialogos().puntero(Puntero::Reloj);
  BONIFTOTAL = 0;
  REDUCTOTAL = 0;
  IMPORTERARO1 = 0;
  IMPORTERARO2 = 0;
  if (porEmpresa) {
    // The TC1: each bonused row on its own, with the percentages, statement line, class
    // and mode written in it.
    for (int r = 1; r < grid_.filas(); ++r) {
      if (grid_.valor(r, 0) == 0 || grid_.valor(r, 28) == 0) continue;
      BasesBonificadas bases;
      if (!sumaBasesBonificadas(r, bases)) continue;
      const CondicionesBonificacion c{grid_.valor(r, 21), grid_.valor(r, 22), grid_.valor(r, 24),
                                      grid_.valor(r, 25), grid_.valor(r, 26), grid_.valor(r, 41),
                                      grid_.valor(r, 43), grid_.valor(r, 40)};
      liquidaContrato(static_cast<int>(std::floor(grid_.valor(r, 6))), c, bases);
    }
  } else {
    // The worker's statement: contract by contract in rising order, the bases of its
    // bonused rows summed, under the percentages in force.
    std::array<bool, 401> HAYCONTRATO{};
    for (int r = 1; r < grid_.filas(); ++r) {
      const double c = grid_.valor(r, 6);
      if (c > 0 && c < 401) HAYCONTRATO[static_cast<std::size_t>(std::floor(c))] = true;
    }
    for (int k = 1; k <= 400; ++k) {
      if (!HAYCONTRATO[static_cast<std::size_t>(k)]) continue;
      BasesBonificadas bases;
      int ultimaFila = 0;
      for (int r = 1; r < grid_.filas(); ++r)
        if (grid_.valor(r, 0) != 0 && grid_.valor(r, 6) == k && grid_.valor(r, 28) != 0 &&
            sumaBasesBonificadas(r, bases))
          ultimaFila = r;
      const CondicionesBonificacion c{v_.PORCCC, v_.PORCAT, v_.PORCDE, v_.PORCFO, v_.PORCFP, v_.BONCASILLA,
                                      v_.BONMODO, ultimaFila > 0 ? grid_.valor(ultimaFila, 40) : 0};
      liquidaContrato(k, c, bases);
    }
  }

  bool cortado = false;
  const double subsidios = pasoSubsidios(cortado);
  if (!cortado) BONIFTOTAL += subsidios;
  if (interruptores.CUOTAOBRERA == 1) {
    BONIFTOTAL = 0;
    REDUCTOTAL = 0;
  }
  programa_.dialogos().puntero(Puntero::Normal);
}

// The subsidies of the rows (column 29), prorated when the bonus ends before the month
// does. A bonus ended before the month stops the pass and drops its sum.
double Liquidacion::pasoSubsidios(bool& cortado) {
  const int M = static_cast<int>(v_.MESCOT), Y = static_cast<int>(v_.ANOCOT);
  const Fecha primeroDeMes{1, M, Y}, finDeMes{DIASMES(M), M, Y};
  double S = 0;
  for (int r = 0; r < grid_.filas(); ++r) {
    if (grid_.valor(r, 0) == 0) continue;
    const std::string F = grid_.texto(r, 31);
    double DIASFIN = 0, DIASEOM = 0;
    if (REDONDEA2(izquierda(F, 2)) != 0) {
      if (const auto fin = leeFechaDMA(F)) {
        DIASFIN = diferenciaDias(primeroDeMes, *fin);
        DIASEOM = diferenciaDias(finDeMes, *fin);
      }
      if (DIASFIN < 0) {
        cortado = true;
        return 0;
      }
    }
    std::string importe(9, ' ');
    ponEn9(importe, grid_.texto(r, 29));
    double cantidad = REDONDEA2(importe);
    if (DIASEOM < 0 && grid_.valor(r, 4) != 0) cantidad = R(cantidad / grid_.valor(r, 4) * diaDe(F));
    S += cantidad;
  }
  return S;
}

// One contract's bonus: common contingencies at the general rate (22.3 under the fixed
// percentages of TRA39), the unemployment, wage-fund and training parts, the accidents
// part by epigraph, to line 601 (bonus) or 209 (reduction).
void Liquidacion::liquidaContrato(int k, const CondicionesBonificacion& c, const BasesBonificadas& bases) {
  TiposLeidos& t = tipos;
  std::string BONSUMCC(9, ' '), BONSUMAT(9, ' ');
  ponEn9(BONSUMCC, bases.sumaCC);
  ponEn9(BONSUMAT, bases.sumaAT);
  const double sumaCC = REDONDEA2(BONSUMCC), sumaAT = REDONDEA2(BONSUMAT);
  const std::array<double, 131>& BASEEPI = bases.BASEEPI;
  v_.CODCONT = llenaIzq(std::to_string(k), 3, '0');
  const bool es97 = k == 97;
  const double tipoCC = c.BONMODO > 0 ? 22.3 : t.e1;
  const double cuota = es97 ? t.k1 : R(tipoCC * sumaCC / 100);
  const double T1 = R(cuota * c.PORCCC / 100);

  // The class of the contract picks the unemployment rate, until the rates are read again.
  if (c.clase == 2) t.b = t.r2;
  if (c.clase == 3) t.b = t.r3;
  if (c.clase == 4) t.b = t.r4;

  double T2 = 0;
  if (es97) {
    T2 = R((t.h1 + t.g3 + t.g4) * c.PORCCC / 100);
  } else {
    const double B1 = R(sumaAT * t.b / 100 * c.PORCDE / 100);
    const double B2 = R(sumaAT * t.e2 / 100 * c.PORCFO / 100);
    const double B3 = R(sumaAT * t.q / 100 * c.PORCFP / 100);
    T2 = B1 + B2 + B3;
  }

  double T3 = 0;
  if (!es97 && c.PORCAT != 0) {
    double S3 = 0;
    const double base126 = grid_.valor(1, 20);
    for (std::size_t i = 1; i <= 130; ++i) {
      if (BASEEPI[i] == 0) continue;
      v_.EPIBUSCA = llenaIzq(std::to_string(i), 3, '0');
      calculo_.LEEEPIGRAFE();
      double CUOTAEPI = 0;
      if (base126 > 0) {
        CUOTAEPI = R((BASEEPI[i] - base126) * (v_.TIPOILT + v_.TIPOIMS) / 100);
        v_.EPIBUSCA = "126";
        calculo_.LEEEPIGRAFE();
        CUOTAEPI += R((v_.TIPOILT + v_.TIPOIMS) * base126 / 100);
      } else {
        CUOTAEPI = R(BASEEPI[i] * (v_.TIPOILT + v_.TIPOIMS) / 100);
      }
      S3 += CUOTAEPI;
    }
    T3 = R(S3 * c.PORCAT / 100);
  }

  const double total = R(T3) + R(T2) + R(T1);
  if (c.BONCASILLA == 601) {
    BONIFTOTAL += total;
    grid_.escribe(1, 44, total);
  } else if (c.BONCASILLA == 209) {
    REDUCTOTAL += total;
  }
}

}  // namespace valdor

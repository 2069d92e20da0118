#include "fan/comando.h"


#include "fan/empleador.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {


namespace {

constexpr double BYTESPORREGISTRO = 72;  // 70 characters and CR LF

std::string campo(const std::optional<std::string>& c) { return c.value_or(""); }

// A total as the file writes it: cents, 11 characters, zeros on the left.
std::string importe11(double total) { return campoDeLinea("un total de la empresa", total, 11, "0", true); }

std::string lineaEDTBA(std::string_view nombre, double total) {
  return std::string(nombre) + importe11(total) + " " + std::string(19, '0') + std::string(29, ' ');
}

std::string lineaEDTCD(std::string_view nombre, double total) {
  return std::string(nombre) + std::string(11, '0') + " " + std::string(8, '0') + importe11(total) + " " +
         std::string(28, ' ');
}

}  // namespace

double importeDeLinea(std::string_view linea) { return REDONDEA2R(REDONDEA2(medio(linea, 11, 7)) / 100); }

std::string lineaTCT00(std::string_view CLAVEEMPRESA, int trabajadores) {
  return "TCT00" + ajusta(textoGeneral(valorNumerico(CLAVEEMPRESA)), 3) + llenaIzq(std::to_string(trabajadores), 6, '0') +
         "000000" + std::string(28, ' ') + "00000000" + std::string(14, ' ');
}

std::vector<std::string> lineasEDT(const TotalesEmpresa& t) {
  std::vector<std::string> lineas;
  auto ba = [&](std::string_view nombre, double total) {
    if (total != 0) lineas.push_back(lineaEDTBA(nombre, total));
  };
  auto cd = [&](std::string_view nombre, double total) {
    if (total != 0) lineas.push_back(lineaEDTCD(nombre, total));
  };
  ba("EDTBA01000", t.EDTBA01000);
  ba("EDTBA02000", t.EDTBA02000);
  ba("EDTBA21000", t.EDTBA21000);
  ba("EDTBA22000", t.EDTBA22000);
  cd("EDTCD01000", t.EDTCD01000);
  cd("EDTCD03000", t.EDTCD03000);
  cd("EDTCD06000", t.EDTCD06000);
  cd("EDTCD07000", t.EDTCD07000);
  cd("EDTCD13000", t.EDTCD13000);  // 13 stands before 10 and 11
  cd("EDTCD10000", t.EDTCD10000);
  cd("EDTCD11000", t.EDTCD11000);
  cd("EDTCD16000", t.EDTCD16000);
  cd("EDTCD17000", t.EDTCD17000);
  return lineas;
}

const std::array<std::string_view, 20>& tiposDeLinea() {
  static constexpr std::array<std::string_view, 20> tipos{"TRA", "AYN", "DAT", "ED1", "ED2", "ED3", "DAE",
                                                          "EDE", "DAA", "EDA", "DAM", "EDM", "ED4", "ED5",
                                                          "ED6", "ED7", "ED8", "ED9", "EDD", "EDO"};
  return tipos;
}

std::vector<std::string> bloqueTrabajador(const std::vector<std::pair<std::string, std::string>>& lineasPorTipo,
                                          EstadoBloques& estado, TotalesEmpresa& t) {
  std::vector<std::string> salida;
  auto imprime = [&](std::string_view linea) { salida.emplace_back(linea); };
  // A held-back ED1 comes out just before the first EDE, EDA or EDM, of this worker or
  // of a later one.
  auto sueltaRetenida = [&] {
    if (!recorta(estado.lineaRetenida).empty()) {
      imprime(estado.lineaRetenida);
      estado.lineaRetenida.clear();
    }
  };
  for (std::string_view tipo : tiposDeLinea()) {
    const std::string* encontrada = nullptr;
    for (const auto& [t2, linea] : lineasPorTipo)
      if (mayusculas(recorta(t2)) == tipo) {
        encontrada = &linea;
        break;
      }
    if (!encontrada) continue;
    const std::string& linea = *encontrada;
    if (tipo == "TRA") {
      imprime(linea);
      ++t.trabajadores;
    } else if (tipo == "AYN" || tipo == "DAE" || tipo == "DAA" || tipo == "DAM") {
      imprime(linea);
    } else if (tipo == "DAT") {
      // The day count of the normal block: with none, DAT is left out and ED1 held back.
      estado.retenerED1 = valorNumerico(medio(linea, 16, 3)) == 0;
      if (!estado.retenerED1) imprime(linea);
    } else if (tipo == "ED1") {
      t.EDTBA01000 += importeDeLinea(linea);
      if (estado.retenerED1) {
        estado.lineaRetenida = linea;
      } else {
        imprime(linea);
      }
    } else if (tipo == "ED2" || tipo == "ED3") {
      t.EDTBA02000 += importeDeLinea(linea);
      imprime(linea);
    } else if (tipo == "EDE" || tipo == "EDA") {
      sueltaRetenida();
      t.EDTBA02000 += importeDeLinea(linea);
      imprime(linea);
    } else if (tipo == "EDM") {
      sueltaRetenida();
      const double a = importeDeLinea(linea);
      t.EDTBA22000 += a;
      t.EDTBA21000 += a;
      imprime(linea);
    } else {
      const double a = importeDeLinea(linea);
      if (tipo == "ED4") t.ED4 += a;
      if (tipo == "ED5") t.EDTCD01000 += a;
      if (tipo == "ED6") t.EDTCD03000 += a;
      if (tipo == "ED7") t.EDTCD07000 += a;
      if (tipo == "ED8") t.EDTCD06000 += a;
      if (tipo == "EDD") t.EDTCD10000 += a;
      if (tipo == "EDO") t.EDTCD11000 += a;
      if (tipo == "ED9") {
        const std::string clave = medio(linea, 6, 2);
        (clave == "13"   ? t.EDTCD13000
         : clave == "16" ? t.EDTCD16000
         : clave == "17" ? t.EDTCD17000
                         : t.EDTCD07000) += a;
      }
      imprime(linea);
    }
  }
  return salida;
}

std::string lineaPieFAN(const PaginaIntercambio& pagina, const REGINTERCAMBIO& registro, double CUENTAEMPRESAS,
                        std::uintmax_t longitud) {
  // The count of the file's lines from its length, the trailer included.
  const double lineas = redondeoPar(static_cast<double>(longitud) / BYTESPORREGISTRO) + 1;
  return "ETF" + std::string(pagina.Option1Cotizacion ? "TC220VIP28" : "AFI10AFI23") +
         izquierda(recorta(registro.CLAVEAUTORIZA), 8) + izquierda(recorta(registro.CLAVESILCON), 8) +
         recorta(pagina.Label12) + recorta(pagina.Label13) + izquierda(recorta(pagina.Text8), 8) +
         izquierda(recorta(pagina.Label10), 3) + "N" + caracterModo(pagina.modo) +
         campo(campoIzq(textoGeneral(CUENTAEMPRESAS), 5, '0')) + campo(campoIzq(textoGeneral(lineas), 8, '0')) +
         "   ";
}

namespace {

// The workers of a company that have a TRA line, in the order of the temp store's key.
std::vector<std::string> trabajadoresDe(Almacen& temporal, const std::string& empresa) {
  std::vector<std::string> lista;
  Sentencia& q = temporal.preparada(
      "SELECT TMPTRA FROM TMPVALDOR WHERE TMPEMP = ? COLLATE ESPANOL AND TMPTIPO = 'TRA' COLLATE ESPANOL "
      "ORDER BY TMPTRA COLLATE ESPANOL");
  q.vincula(1, empresa);
  while (q.paso()) {
    std::string tra = q.valor(0).texto();
    if (!recorta(tra).empty()) lista.push_back(std::move(tra));
  }
  return lista;
}

std::vector<std::pair<std::string, std::string>> lineasDe(Almacen& temporal, const std::string& empresa,
                                                          const std::string& trabajador) {
  std::vector<std::pair<std::string, std::string>> lineas;
  Sentencia& q = temporal.preparada(
      "SELECT TMPTIPO, TMPLINEA FROM TMPVALDOR WHERE TMPEMP = ? COLLATE ESPANOL AND TMPTRA = ? COLLATE ESPANOL");
  q.vincula(1, empresa);
  q.vincula(2, trabajador);
  while (q.paso()) lineas.emplace_back(q.valor(0).texto(), q.valor(1).texto());
  return lineas;
}

}  // namespace

namespace {

// Where a line of the file comes from, for the message of a line that is not whole.
std::string deLaEmpresa(std::string_view que, std::string_view empresa) {
  return std::string(que) + " de la empresa " + recorta(empresa);
}

std::string delTrabajador(std::string_view linea, std::string_view trabajador, std::string_view empresa) {
  return deLaEmpresa(izquierda(linea, 3) + " del trabajador " + recorta(trabajador), empresa);
}

// The file of the marked companies, under its temporary name; `confirma` is left to
// the caller, once it knows that nothing failed.
void escribeFAN(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel, MotorCotizacion& motor,
                FicheroRegistros& fichero) {
  Globales& g = programa.g;
  Almacenes& a = programa.almacenes;
  Dialogos& dialogos = programa.dialogos();
  int marcadas = 0;
  for (const FilaEmpresa& f : sel.grid) marcadas += f.marcada ? 1 : 0;

  fichero.imprimeRegistro(g.LINEAETI, "ETI, la cabecera del fichero,");
  sel.CUENTAEMPRESAS = 0;
  EstadoBloques estado;
  int hechas = 0;
  LecturaContinua lecturaTemporal(a.temporal), lecturaEmpresas(a.empresas);
  for (FilaEmpresa& fila : sel.grid) {
    if (!fila.marcada) continue;
    dialogos.progreso(marcadas ? 100 * hechas / marcadas : 0,
                      textoEmpresaDe("Generando fichero", static_cast<std::size_t>(hechas + 1),
                                     static_cast<std::size_t>(marcadas), fila.BNOMBRE),
                      "");
    ++hechas;
    // A stop asked while the last company was written ends the file before the next one.
    programa.atiendeParada();
    const std::string CODEMPRESA = fila.BSSE;
    if (valorNumerico(CODEMPRESA) == 0) continue;
    LINEAEMP(a.ESA, sel, fila, g.TEXTOPLANO);
    fichero.imprimeRegistro(fila.lineaEMP, deLaEmpresa("EMP", CODEMPRESA));
    fichero.imprimeRegistro(fila.lineaRZS, deLaEmpresa("RZS", CODEMPRESA));

    TotalesEmpresa totales;
    for (const std::string& trabajador : trabajadoresDe(a.temporal, CODEMPRESA))
      for (const std::string& linea : bloqueTrabajador(lineasDe(a.temporal, CODEMPRESA, trabajador), estado, totales))
        fichero.imprimeRegistro(linea, delTrabajador(linea, trabajador, CODEMPRESA));
    fichero.imprimeRegistro(lineaTCT00(sel.CLAVEEMPRESA, totales.trabajadores), deLaEmpresa("TCT", CODEMPRESA));
    for (const std::string& linea : lineasEDT(totales))
      fichero.imprimeRegistro(linea, deLaEmpresa("EDT de totales", CODEMPRESA));

    // Entries 1 to 18 are cleared before the TC1 run; entry 19 is not, and a line
    // left there by the company before is printed again unless the run replaces it.
    for (int i = 1; i <= 18; ++i) g.LINEASTC1[static_cast<std::size_t>(i)].clear();
    motor.TC1VAL(programa, sel, pagina, CODEMPRESA);
    for (int i = 1; i <= 19; ++i) {
      const std::string& linea = g.LINEASTC1[static_cast<std::size_t>(i)];
      if (!recorta(linea).empty()) fichero.imprimeRegistro(linea, deLaEmpresa(izquierda(linea, 3) + " del TC1", CODEMPRESA));
    }
  }
  REGINTERCAMBIO registro = registroEnBlanco();
  {
    FicheroAjustes ajustes(programa.carpetas().trabajo);
    ajustes.lee(registro);
  }
  fichero.imprimeRegistro(lineaPieFAN(pagina, registro, sel.CUENTAEMPRESAS, fichero.longitud()),
                          "ETF, el pie del fichero,");
}

}  // namespace

std::optional<std::string> comando(Programa& programa, PaginaIntercambio& pagina, COTIZACION& sel,
                                   MotorCotizacion& motor) {
  Globales& g = programa.g;
  Almacenes& a = programa.almacenes;
  Dialogos& dialogos = programa.dialogos();

  a.MESPERIODO = textoMesPeriodo(sel.mesDelPeriodo());
  a.ANOPERIODO = textoAnoPeriodo(sel.anoDelPeriodo());
  g.MESPROCESO = a.MESPERIODO;
  g.ANOPROCESO = a.ANOPERIODO;

  // The file takes its final name only when nothing failed on the way: a store that
  // could not be read (even one a rule read as empty), a line that is not whole, an
  // error shown. Otherwise no file, and an old one of that name stays as it was.
  const MarcaTrabajo inicio = programa.marca();
  programa.hallazgosEscritos.clear();
  // Whatever the companies' TC1 runs kept open, or still work on, is let go when the
  // file is done or given up.
  struct FinTC1 {
    MotorCotizacion& motor;
    Programa& programa;
    ~FinTC1() { motor.terminaTC1(programa); }
  } finTC1{motor, programa};
  programa.retiraParada();
  try {
    motor.adelantaTC1(programa, sel);
    motor.COTVAL(programa, sel);
    const auto destino = destinoIntercambio(programa, rutaFicheroFAN(g.RUTAWS, pagina));
    if (!destino) return std::nullopt;
    g.FICHEROEDITADO = g.FICHEROSALIDA;
    FicheroRegistros fichero(*destino);
    escribeFAN(programa, pagina, sel, motor, fichero);
    if (const auto motivo = programa.motivoDeFallo(inicio)) throw ErrorFichero(*motivo);
    fichero.confirma(programa.revisaEscrito);
  } catch (const TrabajoCancelado& e) {
    // The temporary file goes with `fichero`; an old file of that name stays as it was.
    dialogos.mensaje(tituloValdor(), e.what(), Icono::Informacion);
    return std::nullopt;
  } catch (const ErrorValdor& e) {
    dialogos.mensaje(tituloValdor(), conFicheroNoGenerado(e.what()), Icono::Critico);
    return std::nullopt;
  }
  dialogos.progreso(100, "Generando fichero:", "");
  return g.FICHEROSALIDA;
}

}  // namespace valdor

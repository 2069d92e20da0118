#include "cli/ordenes.h"

#include <algorithm>
#include <iostream>

#include "cli/ayuda.h"
#include "cli/consola.h"
#include "engine/cotval.h"
#include "engine/motor.h"
#include "statement/impresion.h"
#include "statement/pagina.h"
#include "fan/seleccion.h"
#include "shell/ajustes.h"
#include "shell/programa.h"
#include "stores/fechas.h"
#include "stores/literales.h"
#include "muestra/oficina_muestra.h"
#include "stores/texto.h"

namespace valdor::cli {

// ---- Options -------------------------------------------------------------------------

namespace {

bool esDe(const std::vector<std::string>& lista, const std::string& a) {
  return std::find(lista.begin(), lista.end(), a) != lista.end();
}

bool soloCifras(std::string_view texto) {
  return !texto.empty() && std::all_of(texto.begin(), texto.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

Opciones::Opciones(const std::vector<std::string>& argumentos, const std::vector<std::string>& conValor,
                   const std::vector<std::string>& banderas) {
  for (std::size_t i = 0; i < argumentos.size(); ++i) {
    const std::string& a = argumentos[i];
    if (pideAyuda(a)) throw AyudaPedida{};
    const std::size_t igual = a.starts_with("--") ? a.find('=') : std::string::npos;
    const std::string nombre = a.substr(0, igual);
    const std::string mostrado = utf8ACp1252(nombre);
    if (esDe(banderas, nombre)) {
      if (igual != std::string::npos) throw ErrorLlamada(mostrado + " no lleva valor.");
    } else if (!esDe(conValor, nombre)) {
      if (a.starts_with("-"))
        throw ErrorLlamada(std::string("Opción desconocida para esta orden: "_cp) + mostrado + ".");
      throw ErrorLlamada("Sobra \"" + utf8ACp1252(a) + "\": esta orden solo lleva opciones.");
    }
    if (tiene(nombre)) throw ErrorLlamada(std::string("La opción "_cp) + mostrado + std::string(" está repetida."_cp));
    std::string valor;
    if (igual != std::string::npos) {
      valor = a.substr(igual + 1);
    } else if (esDe(conValor, nombre)) {
      if (i + 1 >= argumentos.size() || argumentos[i + 1].starts_with("--"))
        throw ErrorLlamada("Falta el valor de " + mostrado + ".");
      valor = argumentos[++i];
    }
    if (esDe(conValor, nombre) && valor.empty())
      throw ErrorLlamada(std::string("El valor de "_cp) + mostrado + std::string(" está vacío."_cp));
    valores_[nombre] = valor;
  }
}

std::optional<std::string> Opciones::texto(const std::string& nombre) const {
  const auto it = valores_.find(nombre);
  if (it == valores_.end()) return std::nullopt;
  std::size_t perdidos = 0;
  std::string cp = utf8ACp1252(it->second, &perdidos);
  if (perdidos > 0)
    throw ErrorLlamada("El valor de " + nombre +
                       std::string(" tiene caracteres que no existen en Windows-1252, el juego de caracteres "
                                   "de los ficheros de intercambio: "_cp) +
                       cp + ".");
  if (std::any_of(cp.begin(), cp.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }))
    throw ErrorLlamada("El valor de " + nombre + std::string(" lleva un carácter de control."_cp));
  return cp;
}

std::optional<int> Opciones::entero(const std::string& nombre, int minimo, int maximo, std::size_t cifras) const {
  const auto t = texto(nombre);
  if (!t) return std::nullopt;
  const bool forma = soloCifras(*t) && t->size() <= 9 && (cifras == 0 || t->size() == cifras);
  const int n = forma ? std::stoi(*t) : minimo - 1;
  if (n < minimo || n > maximo)
    throw ErrorLlamada(nombre + std::string(" espera un número entre "_cp) + std::to_string(minimo) + " y " +
                       std::to_string(maximo) +
                       (cifras == 0 ? std::string() : ", con " + std::to_string(cifras) + " cifras") + ": " + *t + ".");
  return n;
}

void periodoDeLaOrden(const Opciones& o, const Momento& ahora, int& mes, int& ano) {
  mesAnterior(ahora, mes, ano);
  if (const auto m = o.entero("--mes", 1, 12)) mes = *m;
  if (const auto a = o.entero("--ano", 1901, 2100, 4)) ano = *a;
}

std::string codigoEmpresa(const std::string& valor, const std::string& opcion) {
  if (valor.size() != ANCHOCODIGOEMPRESA || !soloCifras(valor))
    throw ErrorLlamada(opcion + std::string(" espera un código de cuenta de cotización de "_cp) +
                       std::to_string(ANCHOCODIGOEMPRESA) + std::string(" cifras, como 28107654331: «"_cp) + valor +
                       std::string("»."_cp));
  return valor;
}

namespace {


std::string dosCifras(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

}  // namespace

// ---- muestra ---------------------------------------------------------------------------

int ordenMuestra(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--mes", "--ano", "--empresas", "--trabajadores"}, {});
  OpcionesMuestra opciones;
  periodoDeLaOrden(o, llamada.ahora, opciones.mes, opciones.ano);
  if (o.tiene("--empresas") != o.tiene("--trabajadores"))
    throw ErrorLlamada("--empresas y --trabajadores van juntas.");
  opciones.empresas = o.entero("--empresas", 1, 99999).value_or(0);
  opciones.trabajadores = o.entero("--trabajadores", 1, 99999).value_or(0);

  const ResumenMuestra resumen = escribeOficinaMuestra(llamada.carpetas, opciones);
  escribeLinea(std::cout, "Oficina de muestra de " + dosCifras(opciones.mes) + "/" + std::to_string(opciones.ano) +
                              ": " + std::to_string(resumen.empresas) + " empresas, " +
                              std::to_string(resumen.trabajadores) + " trabajadores.");
  escribeLinea(std::cout, "Carpeta del programa: " + utf8ACp1252(llamada.carpetas.programa.string()));
  escribeLinea(std::cout, "Carpeta de trabajo:   " + utf8ACp1252(llamada.carpetas.trabajo.string()));
  for (const auto& f : resumen.ficheros) escribeLinea(std::cout, "  " + utf8ACp1252(f.string()));
  return SALIDABIEN;
}

// ---- ajustes ---------------------------------------------------------------------------

namespace {

void muestraAjustes(const REGINTERCAMBIO& r, std::string_view emisor) {
  escribeLinea(std::cout, std::string("Emisor de Intercambio: ") + recorta(emisor));
  escribeLinea(std::cout, std::string("Clave de autorización: "_cp) + recorta(r.CLAVEAUTORIZA));
  escribeLinea(std::cout, "Clave Silcon: " + recorta(r.CLAVESILCON));
  escribeLinea(std::cout, std::string("Fecha de autorización: "_cp) + recorta(r.FECHAAUTORIZA));
  escribeLinea(std::cout, "Ruta de Winsuite: " + recorta(r.RUTAWINSUITE));
}

// A date written whole in the row's mask, "dd/mm/aaaa", that exists on the calendar.
bool esFechaCompleta(const std::string& texto) {
  const bool sinBlancos = texto.find(' ') == std::string::npos;
  return texto.size() == ANCHOFECHAAUTORIZA && sinBlancos && encajaMascaraFecha(texto) && leeFechaDMA(texto).has_value();
}

// A value typed into a row of the configuration grid: the grid takes no more than the
// row's limit, nor a date outside its mask.
void ponFila(FilaConfiguracion& fila, const std::optional<std::string>& valor, const std::string& opcion) {
  if (!valor) return;
  if (valor->size() > fila.limite)
    throw ErrorLlamada(opcion + " admite " + std::to_string(fila.limite) + std::string(" caracteres como máximo ("_cp) +
                       fila.etiqueta + ").");
  if (!fila.mascara.empty() && !esFechaCompleta(*valor))
    throw ErrorLlamada(opcion + " espera una fecha que exista, con la forma dd/mm/aaaa: " + *valor + ".");
  fila.valor = *valor;
}

// Every value checked before the settings are opened, against the widths of the
// configuration grid's rows and of the sender's name, and the date against the calendar.
void compruebaAjustes(const Opciones& o) {
  const std::pair<std::string, std::size_t> anchos[] = {{"--clave-autorizacion", ANCHOCLAVEAUTORIZA},
                                                        {"--clave-silcon", ANCHOCLAVESILCON},
                                                        {"--fecha-autorizacion", ANCHOFECHAAUTORIZA},
                                                        {"--ruta-winsuite", ANCHORUTAWINSUITE},
                                                        {"--emisor", ANCHOEMISOR}};
  for (const auto& [opcion, ancho] : anchos)
    if (const auto valor = o.texto(opcion); valor && valor->size() > ancho)
      throw ErrorLlamada(opcion + " admite " + std::to_string(ancho) +
                         std::string(" caracteres como máximo: "_cp) + *valor + ".");
  if (const auto fecha = o.texto("--fecha-autorizacion"); fecha && !esFechaCompleta(*fecha))
    throw ErrorLlamada("--fecha-autorizacion espera una fecha que exista, con la forma dd/mm/aaaa: " + *fecha + ".");
}

}  // namespace

int ordenAjustes(const Llamada& llamada) {
  const Opciones o(llamada.argumentos,
                   {"--clave-autorizacion", "--clave-silcon", "--fecha-autorizacion", "--ruta-winsuite", "--emisor"},
                   {});
  compruebaAjustes(o);
  const auto& carpeta = llamada.carpetas.trabajo;
  FicheroAjustes fichero(carpeta);
  std::string emisor = leeEmisor(carpeta);

  const bool guarda = o.tiene("--clave-autorizacion") || o.tiene("--clave-silcon") ||
                      o.tiene("--fecha-autorizacion") || o.tiene("--ruta-winsuite");
  {
    if (const auto nombre = o.texto("--emisor")) {
      guardaEmisor(carpeta, *nombre);
      emisor = *nombre;
    }
    if (guarda) {
      // As the configuration dialog: its grid is loaded from the file, the options are
      // typed into their rows, and closing it saves rows 1 to 4.
      auto filas = cargaConfiguracion(fichero, emisor);
      ponFila(filas[1], o.texto("--clave-autorizacion"), "--clave-autorizacion");
      ponFila(filas[2], o.texto("--clave-silcon"), "--clave-silcon");
      ponFila(filas[3], o.texto("--fecha-autorizacion"), "--fecha-autorizacion");
      ponFila(filas[4], o.texto("--ruta-winsuite"), "--ruta-winsuite");
      guardaConfiguracion(fichero, filas);
    }
  }

  REGINTERCAMBIO registro = registroEnBlanco();
  fichero.lee(registro);
  muestraAjustes(registro, emisor);
  return SALIDABIEN;
}

// ---- empresas --------------------------------------------------------------------------

int ordenEmpresas(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--mes", "--ano"}, {});
  int mes = 0, ano = 0;
  periodoDeLaOrden(o, llamada.ahora, mes, ano);

  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  programa.arranca();
  const auto lista = empresasDelMes(programa.almacenes, mes, ano);
  programa.termina();

  escribeLinea(std::cout, std::string("Empresas con nóminas calculadas en "_cp) + dosCifras(mes) + "/" +
                              std::to_string(ano) + " (" +
                              nombrePeriodo(textoAnoPeriodo(ano), textoMesPeriodo(mes)) + "):");
  for (const auto& e : lista)
    escribeLinea(std::cout, ajusta(e.BSSE, 11) + "  " + ajusta(e.BNOMBRE, 35) + "  " +
                                llenaIzq(std::to_string(e.trabajadores), 5, ' '));
  escribeLinea(std::cout, std::to_string(lista.size()) + " empresas.");
  return dialogos.errores() > 0 ? SALIDAFALLO : SALIDABIEN;
}

namespace {

// The port of the statement: --puerto, else VALDOR_IMPRESORA, else LPT1. A refused
// --puerto is a wrong call; a refused VALDOR_IMPRESORA, a job that cannot start.
std::filesystem::path puertoDeLaOrden(const Opciones& o, const Programa& programa) {
  if (const auto puerto = o.texto("--puerto")) {
    if (const auto rechazo = puertoRechazado(*puerto)) throw ErrorLlamada(*rechazo);
    return rutaPuerto(*puerto, programa.carpetas().trabajo);
  }
  const std::string puerto = nombrePuerto(programa.g.PUERTOIMPRESORA);
  if (const auto rechazo = puertoRechazado(puerto)) throw ErrorTrabajo("VALDOR_IMPRESORA: " + *rechazo);
  return rutaPuerto(puerto, programa.carpetas().trabajo);
}

// The page of a statement drawn into a PDF: the offset of --desplazamiento, else
// VALDOR_DESPLAZAMIENTO, else none; the form's captions and rules with --impreso.
Desplazamiento desplazamientoDeLaOrden(const Opciones& o, const Programa& programa) {
  if (const auto texto = o.texto("--desplazamiento")) {
    if (const auto d = leeDesplazamiento(*texto)) return *d;
    throw ErrorLlamada(desplazamientoRechazado("--desplazamiento", *texto));
  }
  if (programa.g.DESPLAZAMIENTOIMPRESO.empty()) return {};
  if (const auto d = leeDesplazamiento(programa.g.DESPLAZAMIENTOIMPRESO)) return *d;
  throw ErrorTrabajo(desplazamientoRechazado("VALDOR_DESPLAZAMIENTO", programa.g.DESPLAZAMIENTOIMPRESO));
}

}  // namespace

int ordenImprimir(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--mes", "--ano", "--empresa", "--puerto", "--pdf", "--desplazamiento"},
                   {"--red", "--impreso"});
  if (o.tiene("--pdf") && o.tiene("--puerto"))
    throw ErrorLlamada("imprimir lleva --puerto o --pdf, no los dos.");
  if (!o.tiene("--pdf") && (o.tiene("--impreso") || o.tiene("--desplazamiento")))
    throw ErrorLlamada("--impreso y --desplazamiento son del PDF: van con --pdf FICHERO.");
  int mes = 0, ano = 0;
  periodoDeLaOrden(o, llamada.ahora, mes, ano);
  const auto empresa = o.texto("--empresa");
  if (!empresa) throw ErrorLlamada("imprimir espera --empresa CODIGO.");
  const std::string codigo = codigoEmpresa(*empresa, "--empresa");
  if (const auto puerto = o.texto("--puerto"))
    if (const auto rechazo = puertoRechazado(*puerto)) throw ErrorLlamada(*rechazo);

  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  programa.arranca();
  const auto pdf = o.tiene("--pdf") ? std::optional(ficheroDeLaLlamada(llamada, cp1252AUtf8(*o.texto("--pdf"))))
                                    : std::nullopt;
  const auto ruta = pdf ? *pdf : puertoDeLaOrden(o, programa);
  const Desplazamiento desplazamiento = pdf ? desplazamientoDeLaOrden(o, programa) : Desplazamiento{};
  const auto lista = empresasDelMes(programa.almacenes, mes, ano);
  const auto elegida = std::find_if(lista.begin(), lista.end(), [&](const auto& e) { return recorta(e.BSSE) == codigo; });
  if (elegida == lista.end())
    throw ErrorTrabajo("La empresa " + codigo + std::string(" no tiene nóminas calculadas en "_cp) + dosCifras(mes) +
                       "/" + std::to_string(ano) + ".");

  // The company's statement as the statement form holds it after its TC1 run.
  BOLETIN boletin;
  TablaTrabajo grid;
  EjecucionTC1 e;
  e.mes = mes;
  e.ano = ano;
  e.empresa = elegida->BSSE;  // as the month's store keeps it, as the statement form passes it
  e.empresaCalculada = [&](const COTVAL& calculo) {
    boletin = calculo.boletin;
    grid = calculo.GRID1;
  };
  ejecutaTC1(programa, e);
  // A store that failed during the run leaves the statement short: it is not printed.
  if (dialogos.errores() > 0 || dialogos.avisos() > 0)
    throw ErrorTrabajo(std::string("El boletín de la empresa "_cp) + codigo +
                       std::string(" no se imprime: el cálculo no ha terminado bien."_cp));

  REGINTERCAMBIO registro = registroEnBlanco();
  FicheroAjustes(programa.carpetas().trabajo).lee(registro);
  const TextosRed red = leerred(registro, o.tiene("--red"));
  if (pdf) {
    escribePdf(*pdf, paginaBoletin(lineasBoletin(boletin, grid, red), o.tiene("--impreso"), desplazamiento));
    programa.termina();
    escribeLinea(std::cout, utf8ACp1252(pdf->string()));
    return dialogos.errores() > 0 ? SALIDAFALLO : SALIDABIEN;
  }
  const bool impreso = IMPRIMEBOLETIN(boletin, grid, red, ruta, dialogos);
  programa.termina();
  if (!impreso)
    throw ErrorTrabajo(std::string("No se ha podido imprimir el boletín en "_cp) + utf8ACp1252(ruta.string()) + ".");
  escribeLinea(std::cout, utf8ACp1252(ruta.string()));
  return dialogos.errores() > 0 ? SALIDAFALLO : SALIDABIEN;
}

}  // namespace valdor::cli

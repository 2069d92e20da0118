#include "cli/ordenes.h"

#include <algorithm>
#include <iostream>

#include "cli/consola.h"
#include "engine/cotval.h"
#include "engine/motor.h"
#include "statement/impresion.h"
#include "fan/seleccion.h"
#include "shell/ajustes.h"
#include "shell/programa.h"
#include "stores/literales.h"
#include "stores/oficina_muestra.h"
#include "stores/texto.h"

namespace valdor::cli {

// ---- Options -------------------------------------------------------------------------

Opciones::Opciones(const std::vector<std::string>& argumentos, const std::vector<std::string>& conValor,
                   const std::vector<std::string>& banderas) {
  auto esDe = [](const std::vector<std::string>& lista, const std::string& a) {
    return std::find(lista.begin(), lista.end(), a) != lista.end();
  };
  for (std::size_t i = 0; i < argumentos.size(); ++i) {
    const std::string& a = argumentos[i];
    if (esDe(banderas, a)) {
      valores_[a] = "";
    } else if (esDe(conValor, a)) {
      if (i + 1 >= argumentos.size()) throw ErrorLlamada("Falta el valor de " + a + ".");
      valores_[a] = argumentos[++i];
    } else {
      throw ErrorLlamada(std::string("Opción desconocida para esta orden: "_cp) + utf8ACp1252(a) + ".");
    }
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
  return cp;
}

std::optional<int> Opciones::entero(const std::string& nombre, int minimo, int maximo) const {
  const auto t = texto(nombre);
  if (!t) return std::nullopt;
  const std::string limpio = recorta(*t);
  const bool digitos = !limpio.empty() && limpio.size() <= 9 &&
                       std::all_of(limpio.begin(), limpio.end(), [](char c) { return c >= '0' && c <= '9'; });
  const int n = digitos ? std::stoi(limpio) : minimo - 1;
  if (n < minimo || n > maximo)
    throw ErrorLlamada(nombre + std::string(" espera un número entre "_cp) + std::to_string(minimo) + " y " +
                       std::to_string(maximo) + ": " + *t + ".");
  return n;
}

void periodoDeLaOrden(const Opciones& o, const Momento& ahora, int& mes, int& ano) {
  mesAnterior(ahora, mes, ano);
  if (const auto m = o.entero("--mes", 1, 12)) mes = *m;
  if (const auto a = o.entero("--ano", 1901, 2100)) ano = *a;
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

// A value typed into a row of the configuration grid: the grid takes no more than the
// row's limit, nor a date outside its mask.
void ponFila(FilaConfiguracion& fila, const std::optional<std::string>& valor, const std::string& opcion) {
  if (!valor) return;
  if (valor->size() > fila.limite)
    throw ErrorLlamada(opcion + " admite " + std::to_string(fila.limite) + std::string(" caracteres como máximo ("_cp) +
                       fila.etiqueta + ").");
  if (!fila.mascara.empty() && !encajaMascaraFecha(*valor))
    throw ErrorLlamada(opcion + " espera una fecha con la forma dd/mm/aaaa: " + *valor + ".");
  fila.valor = *valor;
}

}  // namespace

int ordenAjustes(const Llamada& llamada) {
  const Opciones o(llamada.argumentos,
                   {"--clave-autorizacion", "--clave-silcon", "--fecha-autorizacion", "--ruta-winsuite", "--emisor"},
                   {});
  const auto& carpeta = llamada.carpetas.trabajo;
  FicheroAjustes fichero(carpeta);
  std::string emisor = leeEmisor(carpeta);

  const bool guarda = o.tiene("--clave-autorizacion") || o.tiene("--clave-silcon") ||
                      o.tiene("--fecha-autorizacion") || o.tiene("--ruta-winsuite");
  {
    if (const auto nombre = o.texto("--emisor")) {
      if (nombre->size() > ANCHOEMISOR)
        throw ErrorLlamada("--emisor admite " + std::to_string(ANCHOEMISOR) + std::string(" caracteres como máximo."_cp));
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

int ordenImprimir(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--mes", "--ano", "--empresa", "--puerto"}, {"--red"});
  int mes = 0, ano = 0;
  periodoDeLaOrden(o, llamada.ahora, mes, ano);
  const auto empresa = o.texto("--empresa");
  if (!empresa || recorta(*empresa).empty()) throw ErrorLlamada("imprimir espera --empresa CODIGO.");

  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  programa.arranca();
  const auto lista = empresasDelMes(programa.almacenes, mes, ano);
  if (std::none_of(lista.begin(), lista.end(), [&](const auto& e) { return recorta(e.BSSE) == recorta(*empresa); }))
    throw ErrorTrabajo("La empresa " + *empresa + std::string(" no tiene nóminas calculadas en "_cp) + dosCifras(mes) +
                       "/" + std::to_string(ano) + ".");

  // The company's statement as the statement form holds it after its TC1 run.
  BOLETIN boletin;
  TablaTrabajo grid;
  EjecucionTC1 e;
  e.mes = mes;
  e.ano = ano;
  e.empresa = recorta(*empresa);
  e.empresaCalculada = [&](const COTVAL& calculo) {
    boletin = calculo.boletin;
    grid = calculo.GRID1;
  };
  ejecutaTC1(programa, e);

  REGINTERCAMBIO registro = registroEnBlanco();
  FicheroAjustes(programa.carpetas().trabajo).lee(registro);
  const std::string puerto = nombrePuerto(o.texto("--puerto").value_or(programa.g.PUERTOIMPRESORA));
  const auto ruta = rutaPuerto(puerto, programa.carpetas().trabajo);
  const bool impreso = IMPRIMEBOLETIN(boletin, grid, leerred(registro, o.tiene("--red")), ruta, dialogos);
  programa.termina();
  if (!impreso) return SALIDAFALLO;
  escribeLinea(std::cout, utf8ACp1252(ruta.string()));
  return SALIDABIEN;
}

}  // namespace valdor::cli

// valdor-cli fan and afi: the two exchanges, as the wizard and its forms run them.

#include <iostream>

#include "cli/consola.h"
#include "cli/ordenes.h"
#include "engine/motor.h"
#include "afiliacion/afiliacion.h"
#include "fan/comando.h"
#include "fan/seleccion.h"
#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor::cli {

namespace {

// Starts nothing: the command line launches the tool only when asked to.
struct SinLanzar : Lanzador {
  void lanza(const std::vector<std::string>&) override {}
};

std::vector<std::string> trocea(const std::string& texto, char separador) {
  std::vector<std::string> partes;
  std::size_t desde = 0;
  while (true) {
    const std::size_t p = texto.find(separador, desde);
    partes.push_back(texto.substr(desde, p - desde));
    if (p == std::string::npos) return partes;
    desde = p + 1;
  }
}

int indiceDeCodigo(const std::vector<std::string>& lista, const std::string& codigo, std::size_t largo) {
  for (std::size_t i = 0; i < lista.size(); ++i)
    if (recorta(izquierda(lista[i], largo)) == mayusculas(recorta(codigo))) return static_cast<int>(i);
  return -1;
}

// A value typed into a box of the page: the box takes no more than its width.
std::string caja(const std::string& valor, std::size_t ancho, const std::string& que) {
  if (valor.size() > ancho)
    throw ErrorLlamada(que + " admite " + std::to_string(ancho) + std::string(" caracteres como máximo: "_cp) + valor +
                       ".");
  return valor;
}

// The selection, filled from the options instead of the screen.
struct FormulariosDeConsola : FormulariosIntercambio {
  FormulariosDeConsola(Programa& p, PaginaIntercambio& pg, MotorCotizacion& m) : programa(p), pagina(pg), motor(m) {}

  void COTIZACION() override {
    valdor::COTIZACION sel;
    cargaCOTIZACION(programa, pagina, sel);
    sel.eligeMes(mes - 1);
    sel.eligeAno(ano - 1901);
    sel.claseElegida = clase;
    sel.calificadorElegido = calificador;
    PRESIONBOTON(programa, pagina, sel);
    sel.devEnCta = devEnCta;
    if (empresas.empty()) {
      marcaTodas(sel, true);
    } else {
      for (const std::string& codigo : empresas) {
        bool hallada = false;
        for (FilaEmpresa& f : sel.grid)
          if (recorta(f.BSSE) == recorta(codigo)) f.marcada = hallada = true;
        if (!hallada)
          programa.dialogos().mensaje(tituloValdor(),
                                      "La empresa " + codigo + std::string(" no tiene nóminas calculadas en el mes."_cp),
                                      Icono::Critico);
      }
    }
    if (puedeProcesar(programa, sel)) {
      resultado = comando(programa, pagina, sel, motor);
      if (!resultado) cancelaCOTIZACION(programa);
    } else {
      cancelaCOTIZACION(programa);
    }
    descargaCOTIZACION(programa, sel);
  }
  void AFILIA() override {}
  void EDITOR() override {}

  Programa& programa;
  PaginaIntercambio& pagina;
  MotorCotizacion& motor;
  int mes = 0, ano = 0, clase = 0, calificador = 0;
  bool devEnCta = false;
  std::vector<std::string> empresas;
  std::optional<std::string> resultado;
};

// The end of an exchange: its Windows path, then the native one as the last line.
int informaFichero(Programa& programa, const std::optional<std::string>& fichero, const DialogosConsola& dialogos) {
  if (!fichero) return SALIDAFALLO;
  escribeLinea(std::cout, "Fichero de intercambio: " + *fichero);
  escribeLinea(std::cout, utf8ACp1252(rutaNativa(*fichero, programa.entornoWine).string()));
  return dialogos.errores() > 0 ? SALIDAFALLO : SALIDABIEN;
}

Modo modoDe(const std::string& texto) {
  if (texto == "normal") return Modo::Normal;
  if (texto == "pruebas") return Modo::Pruebas;
  if (texto == "sustitucion" || texto == "sustitución") return Modo::Sustitucion;
  throw ErrorLlamada("--modo espera normal, pruebas o sustitucion: " + texto + ".");
}

// The wizard's page from the options: the start, the page prepared for the message, and
// the name, mode, replaced send and AFI keys typed into their boxes.
void preparaPaginaDeOpciones(const Opciones& o, Programa& programa, PaginaIntercambio& pagina, bool cotizacion) {
  programa.arranca();
  cargaAsistente(programa, pagina, nullptr);
  pagina.SSPanel2Visible = true;
  if (cotizacion) {
    pagina.marcaCotizacion();
  } else {
    pagina.marcaAfiliacion();
  }
  preparaPagina(programa, pagina, cotizacion);
  if (const auto n = o.texto("--nombre")) {
    if (recorta(*n).empty()) throw ErrorLlamada(std::string(textoNombreNoValido()));
    pagina.Text8 = reglaNombre(caja(*n, ANCHONOMBREFICHERO, "--nombre"));
  }
  if (const auto m = o.texto("--modo")) pagina.ponModo(modoDe(*m));
  if (const auto s = o.texto("--sustituye")) {
    if (!o.tiene("--modo")) pagina.ponModo(Modo::Sustitucion);
    if (pagina.modo != Modo::Sustitucion) throw ErrorLlamada("--sustituye va con --modo sustitucion.");
    const auto partes = trocea(*s, ',');
    if (partes.size() != 5) throw ErrorLlamada("--sustituye espera AA,MM,S,EEEEE,DDDD.");
    pagina.Text3 = caja(partes[0], 2, std::string("El año del envío sustituido"_cp));
    pagina.Text4 = caja(partes[1], 2, std::string("El mes del envío sustituido"_cp));
    pagina.Text5 = caja(partes[2], 1, std::string("La serie del envío sustituido"_cp));
    pagina.Text6 = caja(partes[3], 5, std::string("El número de envío sustituido"_cp));
    pagina.Text7 = caja(partes[4], 4, std::string("El documento sustituido"_cp));
  }
  if (const auto c = o.texto("--clave")) pagina.Text10 = caja(*c, ANCHOCLAVEAFI, "--clave");
  if (const auto c = o.texto("--nueva-clave")) pagina.Text11 = caja(*c, ANCHOCLAVEAFI, "--nueva-clave");
}

}  // namespace

int ordenFan(const Llamada& llamada) {
  const Opciones o(llamada.argumentos,
                   {"--mes", "--ano", "--empresas", "--clase", "--calificador", "--nombre", "--modo", "--sustituye"},
                   {"--dev-cta", "--lanzar"});
  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  MotorCalculo motor;
  PaginaIntercambio pagina;
  FormulariosDeConsola formularios(programa, pagina, motor);

  int mes = 0, ano = 0;
  mesAnterior(llamada.ahora, mes, ano);
  formularios.mes = o.entero("--mes", 1, 12).value_or(mes);
  formularios.ano = o.entero("--ano", 1901, 2100).value_or(ano);
  if (const auto c = o.texto("--clase")) {
    formularios.clase = indiceDeCodigo(COTIZACION::clases(), *c, 3);
    if (formularios.clase < 0) throw ErrorLlamada(std::string("Clase de liquidación desconocida: "_cp) + *c + ".");
  }
  if (const auto c = o.texto("--calificador")) {
    formularios.calificador = indiceDeCodigo(COTIZACION::calificadores(), *c, 2);
    if (formularios.calificador < 0) throw ErrorLlamada("Calificador desconocido: " + *c + ".");
  }
  if (const auto e = o.texto("--empresas"))
    for (const std::string& codigo : trocea(*e, ','))
      if (!recorta(codigo).empty()) formularios.empresas.push_back(recorta(codigo));
  formularios.devEnCta = o.tiene("--dev-cta");

  preparaPaginaDeOpciones(o, programa, pagina, true);

  SinLanzar sinLanzar;
  LanzadorDelSistema delSistema;
  Lanzador& lanzador = o.tiene("--lanzar") ? static_cast<Lanzador&>(delSistema) : sinLanzar;
  Command3(programa, pagina, formularios, lanzador, programa.entornoWine);
  programa.termina();

  return informaFichero(programa, formularios.resultado, dialogos);
}

namespace {

// The affiliation module, run from the options instead of the screen.
struct FormulariosAfiliacion : FormulariosIntercambio {
  FormulariosAfiliacion(Programa& p, PaginaIntercambio& pg, bool b) : programa(p), pagina(pg), borrar(b) {}
  void COTIZACION() override {}
  void AFILIA() override {
    valdor::AFILIA afi;
    cargaAFILIA(programa, pagina, afi);
    if (!afi.generarActivo) {
      programa.dialogos().mensaje(tituloAFILIA(), textoNadaQueEnviar(afi), Icono::Critico);
      return;
    }
    resultado = ESCRIBEFICHERO(programa, pagina, afi, *this);
    // Every file stands under its name by now: the rows they carry, and only those.
    if (!resultado.empty() && borrar) BORRAMETODOSREG(programa, afi.enviados);
  }
  void EDITOR() override {}
  Programa& programa;
  PaginaIntercambio& pagina;
  bool borrar;
  std::vector<std::string> resultado;
};

// The end of an affiliation exchange: each file written, its Windows path and then its
// native one, so that the last line is the native path of the last file.
int informaFicheros(Programa& programa, const std::vector<std::string>& ficheros, const DialogosConsola& dialogos) {
  if (ficheros.empty()) return SALIDAFALLO;
  for (const std::string& fichero : ficheros) {
    escribeLinea(std::cout, "Fichero de intercambio: " + fichero);
    escribeLinea(std::cout, utf8ACp1252(rutaNativa(fichero, programa.entornoWine).string()));
  }
  return dialogos.errores() > 0 ? SALIDAFALLO : SALIDABIEN;
}

}  // namespace

int ordenAfi(const Llamada& llamada) {
  const Opciones o(llamada.argumentos, {"--nombre", "--modo", "--sustituye", "--clave", "--nueva-clave"},
                   {"--borrar-pendientes"});
  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  PaginaIntercambio pagina;
  FormulariosAfiliacion formularios(programa, pagina, o.tiene("--borrar-pendientes"));
  preparaPaginaDeOpciones(o, programa, pagina, false);
  SinLanzar sinLanzar;
  Command3(programa, pagina, formularios, sinLanzar, programa.entornoWine);
  programa.termina();
  return informaFicheros(programa, formularios.resultado, dialogos);
}

}  // namespace valdor::cli

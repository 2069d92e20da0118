// valdor-cli fan and afi: the two exchanges, as the wizard and its forms run them.

#include <algorithm>
#include <iostream>

#include "cli/consola.h"
#include "cli/ordenes.h"
#include "browser/revision.h"
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
  std::optional<std::string> lanza(const std::vector<std::string>&) override { return std::nullopt; }
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
    const bool marcadas = empresas.empty() ? (marcaTodas(sel, true), true) : marcaEmpresas(sel);
    if (marcadas && puedeProcesar(programa, sel)) {
      resultado = comando(programa, pagina, sel, motor);
      if (!resultado) cancelaCOTIZACION(programa);
    } else {
      cancelaCOTIZACION(programa);
    }
    descargaCOTIZACION(programa, sel);
  }
  void AFILIA() override {}
  void EDITOR() override {}

  // Marks the companies of the call. Each one that the month's list does not have is
  // told, and then none is processed: a file without a company that was asked for would
  // pass for the one that was wanted.
  bool marcaEmpresas(valdor::COTIZACION& sel) {
    bool todas = true;
    for (const std::string& codigo : empresas) {
      bool hallada = false;
      for (FilaEmpresa& f : sel.grid)
        if (recorta(f.BSSE) == codigo) f.marcada = hallada = true;
      if (!hallada)
        programa.dialogos().mensaje(tituloValdor(),
                                    "La empresa " + codigo + std::string(" no tiene nóminas calculadas en el mes."_cp),
                                    Icono::Critico);
      todas = todas && hallada;
    }
    return todas;
  }

  Programa& programa;
  PaginaIntercambio& pagina;
  MotorCotizacion& motor;
  int mes = 0, ano = 0, clase = 0, calificador = 0;
  bool devEnCta = false;
  std::vector<std::string> empresas;
  std::optional<std::string> resultado;
};

// The end of an exchange: its Windows path, then the native one as the last line. The
// writers' exclamations all say the file is not whole or not right (a store stopped a
// company's workers or the pending list, a worker's line was cut, workers did not fit):
// the file stays for the user to see, and the job has failed.
int informaFichero(Programa& programa, const std::optional<std::string>& fichero, const DialogosConsola& dialogos) {
  if (!fichero) return SALIDAFALLO;
  escribeLinea(std::cout, "Fichero de intercambio: " + *fichero);
  escribeLinea(std::cout, utf8ACp1252(rutaNativa(*fichero, programa.entornoWine).string()));
  return dialogos.errores() > 0 || dialogos.avisos() > 0 ? SALIDAFALLO : SALIDABIEN;
}

Modo modoDe(const std::string& texto) {
  if (texto == "normal") return Modo::Normal;
  if (texto == "pruebas") return Modo::Pruebas;
  if (texto == "sustitucion" || texto == "sustitución"_cp) return Modo::Sustitucion;
  throw ErrorLlamada("--modo espera normal, pruebas o sustitucion: " + texto + ".");
}

bool soloCifras(std::string_view texto) {
  return !texto.empty() && std::all_of(texto.begin(), texto.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// One number of the replaced send: 1 to `ancho` digits (the box takes it by value) within
// [minimo, maximo].
std::string parteSustituida(const std::string& parte, std::size_t ancho, int minimo, int maximo,
                            std::string_view que) {
  const bool forma = soloCifras(parte) && parte.size() <= ancho;
  const int n = forma ? std::stoi(parte) : -1;
  if (n < minimo || n > maximo)
    throw ErrorLlamada("--sustituye: " + std::string(que) + std::string(" ha de ser un número de 1 a "_cp) +
                       std::to_string(ancho) + std::string(" cifras, de "_cp) + std::to_string(minimo) + " a " +
                       std::to_string(maximo) + ": \"" + parte + "\".");
  return parte;
}

// "--sustituye AA,MM,S,EEEEE,DDDD" into the boxes of the replacement panel. The year is
// not 0, which would leave the reference in zeros; the series is one letter or digit,
// since an empty one would move the rest of the reference out of its place.
void ponSustitucion(PaginaIntercambio& pagina, const std::string& valor) {
  const auto partes = trocea(valor, ',');
  if (partes.size() != 5)
    throw ErrorLlamada("--sustituye espera cinco partes separadas por comas, AA,MM,S,EEEEE,DDDD: \"" + valor + "\".");
  pagina.Text3 = parteSustituida(partes[0], 2, 1, 99, "el año"_cp);
  pagina.Text4 = parteSustituida(partes[1], 2, 1, 12, "el mes");
  const std::string serie = mayusculasAscii(partes[2]);
  const bool serieValida =
      serie.size() == 1 && ((serie[0] >= 'A' && serie[0] <= 'Z') || (serie[0] >= '0' && serie[0] <= '9'));
  if (!serieValida)
    throw ErrorLlamada("--sustituye: la serie ha de ser una letra de la A a la Z o una cifra: \"" + partes[2] + "\".");
  pagina.Text5 = serie;
  pagina.Text6 = parteSustituida(partes[3], 5, 0, 99999, std::string("el número de envío"_cp));
  pagina.Text7 = parteSustituida(partes[4], 4, 0, 9999, "el documento");
}

// "--empresas C1,C2,...": at least one code, each a company code, none empty or twice.
std::vector<std::string> empresasDeLaOrden(const std::string& valor) {
  std::vector<std::string> codigos;
  for (const std::string& parte : trocea(valor, ',')) {
    const std::string codigo = recorta(parte);
    if (codigo.empty())
      throw ErrorLlamada(std::string("--empresas lleva un código vacío: \""_cp) + valor +
                         "\". Separe los códigos con una coma, sin comas de más.");
    if (std::find(codigos.begin(), codigos.end(), codigo) != codigos.end())
      throw ErrorLlamada("--empresas repite la empresa " + codigo + ".");
    codigos.push_back(codigoEmpresa(codigo, "--empresas"));
  }
  return codigos;
}

// The boxes of the page that the options fill, read and checked before any work: the
// name, the mode, the replaced send and the AFI keys. Text8 stays empty without --nombre.
PaginaIntercambio cajasDeOpciones(const Opciones& o) {
  PaginaIntercambio cajas;
  if (const auto n = o.texto("--nombre")) {
    if (const auto rechazo = nombreIntercambioRechazado(*n)) throw ErrorLlamada(*rechazo);
    cajas.Text8 = reglaNombre(*n);
  }
  if (const auto m = o.texto("--modo")) cajas.ponModo(modoDe(*m));
  if (const auto s = o.texto("--sustituye")) {
    if (!o.tiene("--modo")) cajas.ponModo(Modo::Sustitucion);
    if (cajas.modo != Modo::Sustitucion) throw ErrorLlamada("--sustituye va con --modo sustitucion.");
    ponSustitucion(cajas, *s);
  }
  if (const auto c = o.texto("--clave")) cajas.Text10 = caja(*c, ANCHOCLAVEAFI, "--clave");
  if (const auto c = o.texto("--nueva-clave")) cajas.Text11 = caja(*c, ANCHOCLAVEAFI, "--nueva-clave");
  return cajas;
}

// The wizard's page: the start, the page prepared for the message, and the boxes the
// options filled typed into it.
void preparaPaginaDeOpciones(const Opciones& o, const PaginaIntercambio& cajas, Programa& programa,
                             PaginaIntercambio& pagina, bool cotizacion) {
  programa.arranca();
  cargaAsistente(programa, pagina, nullptr);
  pagina.SSPanel2Visible = true;
  if (cotizacion) {
    pagina.marcaCotizacion();
  } else {
    pagina.marcaAfiliacion();
  }
  preparaPagina(programa, pagina, cotizacion);
  if (o.tiene("--nombre")) pagina.Text8 = cajas.Text8;
  pagina.ponModo(cajas.modo);
  if (cajas.modo == Modo::Sustitucion) {
    pagina.Text3 = cajas.Text3;
    pagina.Text4 = cajas.Text4;
    pagina.Text5 = cajas.Text5;
    pagina.Text6 = cajas.Text6;
    pagina.Text7 = cajas.Text7;
  }
  if (o.tiene("--clave")) pagina.Text10 = cajas.Text10;
  if (o.tiene("--nueva-clave")) pagina.Text11 = cajas.Text11;
}

// The field checks of each exchange file just written, before it takes its name: the
// findings on the error output, and with --estricto no file when there is one.
RevisionEscrito revisionDeEscritos(bool estricto, std::optional<PeriodoFichero> periodo = std::nullopt) {
  const auto avisa = [](const std::filesystem::path& destino, const std::vector<Hallazgo>& hallazgos) {
    escribeLinea(std::cerr, "Hallazgos en los campos de " + entreComillas(destino) + ":");
    for (const Hallazgo& h : hallazgos) escribeLinea(std::cerr, textoHallazgo(h));
  };
  return valdor::revisionDeEscritos(avisa, estricto ? std::optional<std::string>("con --estricto") : std::nullopt,
                                    periodo);
}

// A file of the page's name already in the folder is replaced only with --reemplazar;
// without it the job stops before any work.
void rehusaReemplazo(const Opciones& o, const Programa& programa, const PaginaIntercambio& pagina) {
  if (o.tiene("--reemplazar")) return;
  if (const auto fichero = ficheroExistente(programa, pagina))
    throw ErrorTrabajo(std::string("Ya existe ").append(descripcionFichero(*fichero)).append(
        std::string(": no se reemplaza. Use --reemplazar para reemplazarlo, o --nombre para darle otro nombre."_cp)));
}

}  // namespace

int ordenFan(const Llamada& llamada) {
  const Opciones o(llamada.argumentos,
                   {"--mes", "--ano", "--empresas", "--clase", "--calificador", "--nombre", "--modo", "--sustituye"},
                   {"--dev-cta", "--lanzar", "--reemplazar", "--estricto"});
  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  MotorCalculo motor;
  PaginaIntercambio pagina;
  FormulariosDeConsola formularios(programa, pagina, motor);

  periodoDeLaOrden(o, llamada.ahora, formularios.mes, formularios.ano);
  if (const auto c = o.texto("--clase")) {
    formularios.clase = indiceDeCodigo(COTIZACION::clases(), *c, 3);
    if (formularios.clase < 0) throw ErrorLlamada(std::string("Clase de liquidación desconocida: "_cp) + *c + ".");
  }
  if (const auto c = o.texto("--calificador")) {
    formularios.calificador = indiceDeCodigo(COTIZACION::calificadores(), *c, 2);
    if (formularios.calificador < 0) throw ErrorLlamada("Calificador desconocido: " + *c + ".");
  }
  if (const auto e = o.texto("--empresas")) formularios.empresas = empresasDeLaOrden(*e);
  formularios.devEnCta = o.tiene("--dev-cta");
  const PaginaIntercambio cajas = cajasDeOpciones(o);

  preparaPaginaDeOpciones(o, cajas, programa, pagina, true);
  rehusaReemplazo(o, programa, pagina);
  programa.revisaEscrito = revisionDeEscritos(o.tiene("--estricto"), PeriodoFichero{formularios.ano, formularios.mes});

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
                   {"--borrar-pendientes", "--reemplazar", "--estricto"});
  DialogosConsola dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  PaginaIntercambio pagina;
  FormulariosAfiliacion formularios(programa, pagina, o.tiene("--borrar-pendientes"));
  const PaginaIntercambio cajas = cajasDeOpciones(o);
  preparaPaginaDeOpciones(o, cajas, programa, pagina, false);
  rehusaReemplazo(o, programa, pagina);
  programa.revisaEscrito = revisionDeEscritos(o.tiene("--estricto"));
  SinLanzar sinLanzar;
  Command3(programa, pagina, formularios, sinLanzar, programa.entornoWine);
  programa.termina();
  return informaFicheros(programa, formularios.resultado, dialogos);
}

}  // namespace valdor::cli

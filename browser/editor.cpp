#include "browser/editor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "browser/revision.h"
#include "stores/ficheros.h"
#include "stores/literales.h"
#include "stores/numeros.h"
#include "stores/texto.h"

namespace valdor {

namespace {
constexpr std::uintmax_t LONGITUDLINEA = 70;
}  // namespace

int filasEstimadas(std::uintmax_t bytes, bool EDITAAFI) {
  return static_cast<int>(redondeoPar(static_cast<double>(bytes) / 70)) + (EDITAAFI ? 1 : 0);
}

// ---- Reading a file line by line ------------------------------------------------------

namespace {

constexpr std::size_t TAMANOBLOQUE = 64 * 1024;

[[noreturn]] void fallaLectura(const std::filesystem::path& fichero, int error) {
  if (error == ENOENT) throw ErrorFichero("No existe el fichero " + entreComillas(fichero) + ".");
  if (error == EISDIR) throw ErrorFichero(entreComillas(fichero) + " es una carpeta, no un fichero.");
  throw ErrorFichero("No se puede leer el fichero " + entreComillas(fichero) + ": " + razonDelSistema(error) + ".");
}

}  // namespace

LectorLineas::LectorLineas(const std::filesystem::path& fichero, std::size_t limite)
    : fichero_(fichero), limite_(limite) {
  fd_ = ::open(fichero.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd_ < 0) fallaLectura(fichero_, errno);
  struct stat st {};
  if (::fstat(fd_, &st) != 0 || S_ISDIR(st.st_mode)) {
    const int error = S_ISDIR(st.st_mode) ? EISDIR : errno;
    ::close(fd_);
    fallaLectura(fichero_, error);
  }
  bloque_.resize(TAMANOBLOQUE);
}

LectorLineas::~LectorLineas() {
  if (fd_ >= 0) ::close(fd_);
}

bool LectorLineas::llena() {
  posicion_ = tope_ = 0;
  while (true) {
    const ssize_t n = ::read(fd_, bloque_.data(), bloque_.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fallaLectura(fichero_, errno);
    tope_ = static_cast<std::size_t>(n);
    return n > 0;
  }
}

int LectorLineas::siguienteByte() {
  if (posicion_ == tope_ && !llena()) return -1;
  return static_cast<unsigned char>(bloque_[posicion_++]);
}

// A line runs up to its first CR or LF. A CR followed by LF ends it as CR LF; a CR before
// any other byte, or before the end of the file, ends it alone, and the byte after it
// starts the next line.
bool LectorLineas::siguiente(LineaLeida& linea) {
  linea.texto.clear();
  linea.longitud = 0;
  int c = siguienteByte();
  if (c < 0) return false;
  while (c >= 0 && c != '\r' && c != '\n') {
    if (linea.texto.size() < limite_) linea.texto += static_cast<char>(c);
    ++linea.longitud;
    c = siguienteByte();
  }
  if (c < 0) {
    linea.fin = FinDeLinea::Ninguno;
  } else if (c == '\n') {
    linea.fin = FinDeLinea::LF;
  } else if (posicion_ == tope_ && !llena()) {
    linea.fin = FinDeLinea::CR;
  } else if (bloque_[posicion_] == '\n') {
    ++posicion_;
    linea.fin = FinDeLinea::CRLF;
  } else {
    linea.fin = FinDeLinea::CR;
  }
  return true;
}

std::vector<std::string> leeLineas(const std::filesystem::path& fichero, std::vector<FinDeLinea>* finales) {
  std::vector<std::string> lineas;
  if (finales) finales->clear();
  try {
    LectorLineas lector(fichero);
    LineaLeida linea;
    while (lector.siguiente(linea)) {
      lineas.push_back(std::move(linea.texto));
      if (finales) finales->push_back(linea.fin);
    }
  } catch (const ErrorFichero&) {
    // The editor shows what could be read, as the load has always done.
  }
  return lineas;
}

void guardaLineas(const std::filesystem::path& fichero, const std::vector<std::string>& lineas) {
  std::string contenido;
  for (const std::string& l : lineas)
    if (!recorta(l).empty()) contenido += l + "\r\n";
  if (const int error = reemplazaFichero(fichero, contenido); error != 0) {
    if (esDiscoLleno(error))
      throw ErrorFichero("No queda espacio en el disco para guardar el fichero " + entreComillas(fichero) + ".");
    throw ErrorFichero("No se puede guardar el fichero " + entreComillas(fichero) + ": " + razonDelSistema(error));
  }
}

std::optional<std::size_t> buscaLinea(const std::vector<std::string>& lineas, std::string_view texto) {
  const std::string buscado = mayusculas(texto);
  if (recorta(buscado).empty()) return std::nullopt;
  for (std::size_t i = 0; i < lineas.size(); ++i)
    if (mayusculas(lineas[i]).find(buscado) != std::string::npos) return i;
  return std::nullopt;
}

// ---- The checks --------------------------------------------------------------------------

TipoIntercambio tipoDeFichero(std::string_view nombre) {
  const std::string n = mayusculasAscii(recorta(nombre));
  if (n.ends_with(".FAN")) return TipoIntercambio::FAN;
  if (n.ends_with(".AFI")) return TipoIntercambio::AFI;
  return TipoIntercambio::Otro;
}

const std::vector<std::string_view>& segmentosDe(TipoIntercambio tipo) {
  static const std::vector<std::string_view> fan{"ETI", "EMP", "RZS", "TRA", "AYN", "DAT",
                                                 "EDL", "EDT", "TCT", "DBA", "ETF"};
  static const std::vector<std::string_view> afi{"ETI", "SIL", "EMP", "RZS", "TRA", "AYN",
                                                 "DOM", "LDD", "FAB", "DAM", "ETF"};
  static const std::vector<std::string_view> ninguno;
  return tipo == TipoIntercambio::FAN ? fan : tipo == TipoIntercambio::AFI ? afi : ninguno;
}

FaltasLinea faltasDeLinea(std::string_view texto, std::uintmax_t longitud, FinDeLinea fin, TipoIntercambio tipo) {
  FaltasLinea f;
  if (recorta(texto).empty()) return f;
  if (longitud != LONGITUDLINEA) f.longitud = longitud;
  const auto& segmentos = segmentosDe(tipo);
  const std::string_view segmento = texto.substr(0, 3);
  if (!segmentos.empty() && std::find(segmentos.begin(), segmentos.end(), segmento) == segmentos.end())
    f.segmento = std::string(segmento);
  if (fin != FinDeLinea::CRLF) f.fin = fin;
  return f;
}

std::vector<std::string> observacionesDeLinea(std::string_view linea, TipoIntercambio tipo, FinDeLinea fin) {
  const FaltasLinea f = faltasDeLinea(linea, linea.size(), fin, tipo);
  std::vector<std::string> r;
  if (f.longitud) r.push_back("longitud " + std::to_string(*f.longitud));
  if (f.segmento) r.push_back("segmento " + imprimible(*f.segmento));
  if (f.fin == FinDeLinea::LF) r.push_back("fin LF");
  if (f.fin == FinDeLinea::CR) r.push_back("fin CR");
  if (f.fin == FinDeLinea::Ninguno) r.push_back(std::string("sin fin de línea"_cp));
  return r;
}

void cuentaLinea(CuentasPie& c, std::string_view l) {
  if (recorta(l).empty()) return;
  ++c.lineas;
  if (l.starts_with("EMP")) ++c.empresas;
  if (l.starts_with("ETF")) {
    // The counts are the 13 figures that end the trailer before its blanks: 5 of
    // companies and 8 of lines.
    const std::string cifras = derecha(recortaDer(l), 13);
    c.hayPie = cifras.size() == 13 &&
               std::all_of(cifras.begin(), cifras.end(), [](char ch) { return ch >= '0' && ch <= '9'; });
    c.empresasPie = c.hayPie ? std::stol(cifras.substr(0, 5)) : 0;
    c.lineasPie = c.hayPie ? std::stol(cifras.substr(5)) : 0;
  }
}

CuentasPie cuentasDelPie(const std::vector<std::string>& lineas) {
  CuentasPie c;
  for (const std::string& l : lineas) cuentaLinea(c, l);
  return c;
}

std::vector<std::string> RevisionFichero::revisa(const LineaLeida& linea) {
  ++numero_;
  cuentaLinea(cuentas_, linea.texto);
  const FaltasLinea f = faltasDeLinea(linea.texto, linea.longitud, linea.fin, tipo_);
  std::vector<std::string> informe;
  if (f.ninguna()) return informe;
  faltas_ = true;
  const std::string numero = std::string("Línea "_cp) + std::to_string(numero_) + ": ";
  if (f.longitud)
    informe.push_back(numero + "tiene " + std::to_string(*f.longitud) + " caracteres y debe tener 70.");
  if (f.segmento)
    informe.push_back(numero + "\"" + imprimible(*f.segmento) + "\" no es un segmento de un fichero " +
                      (tipo_ == TipoIntercambio::FAN ? "FAN" : "AFI") + ".");
  if (f.fin == FinDeLinea::LF) informe.push_back(numero + "termina en LF y no en CR LF.");
  if (f.fin == FinDeLinea::CR) informe.push_back(numero + "termina en CR y no en CR LF.");
  if (f.fin == FinDeLinea::Ninguno)
    informe.push_back(numero + std::string("es la última y no termina en CR LF."_cp));
  return informe;
}

std::vector<std::string> RevisionFichero::cierre() const {
  const CuentasPie& c = cuentas_;
  std::vector<std::string> informe;
  if (!c.hayPie) {
    informe.push_back(std::string("No hay línea de cierre ETF con sus cuentas de empresas y de líneas."_cp));
  } else if (c.cuadran()) {
    informe.push_back(std::string("Las cuentas del cierre ETF cuadran con el fichero: "_cp) + std::to_string(c.empresas) +
                      " empresas y " + std::to_string(c.lineas) + std::string(" líneas."_cp));
  } else {
    if (c.empresasPie != c.empresas)
      informe.push_back(std::string("El cierre ETF cuenta "_cp) + std::to_string(c.empresasPie) + " empresas y el fichero tiene " +
                        std::to_string(c.empresas) + ".");
    if (c.lineasPie != c.lineas)
      informe.push_back(std::string("El cierre ETF cuenta "_cp) + std::to_string(c.lineasPie) + std::string(" líneas y el fichero tiene "_cp) +
                        std::to_string(c.lineas) + ".");
  }
  return informe;
}

std::vector<std::string> informeRevision(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  RevisionFichero revision(tipo);
  std::vector<std::string> informe;
  for (const std::string& l : lineas) {
    const auto faltas = revision.revisa(LineaLeida{l, l.size(), FinDeLinea::CRLF});
    informe.insert(informe.end(), faltas.begin(), faltas.end());
  }
  const auto cierre = revision.cierre();
  informe.insert(informe.end(), cierre.begin(), cierre.end());
  return informe;
}

namespace {

// The line findings of `lineas` as a save writes them: the blank ones left out, the rest
// numbered in the saved file's order; the trailer's verdict when its counts do not tally.
std::vector<std::string> faltasGuardadas(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  RevisionFichero revision(tipo);
  std::vector<std::string> faltas;
  for (const std::string& l : lineas) {
    if (recorta(l).empty()) continue;
    const auto f = revision.revisa(LineaLeida{l, l.size(), FinDeLinea::CRLF});
    faltas.insert(faltas.end(), f.begin(), f.end());
  }
  if (!revision.cuentas().cuadran()) {
    const auto cierre = revision.cierre();
    faltas.insert(faltas.end(), cierre.begin(), cierre.end());
  }
  return faltas;
}

}  // namespace

std::string listaLimitada(const std::vector<std::string>& textos) {
  constexpr std::size_t MOSTRADAS = 15;
  std::string texto;
  for (std::size_t i = 0; i < std::min(MOSTRADAS, textos.size()); ++i) texto.append(textos[i]).append("\n");
  if (textos.size() > MOSTRADAS)
    texto.append("... y ").append(std::to_string(textos.size() - MOSTRADAS)).append(std::string(" más.\n"_cp));
  return texto;
}

std::optional<std::string> faltasDeLineas(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  const auto faltas = faltasGuardadas(lineas, tipo);
  if (faltas.empty()) return std::nullopt;
  return listaLimitada(faltas);
}

std::optional<std::string> avisoAlGuardar(const std::vector<std::string>& lineas, TipoIntercambio tipo) {
  std::vector<std::string> faltas = faltasGuardadas(lineas, tipo);
  std::vector<std::string> guardadas;
  std::copy_if(lineas.begin(), lineas.end(), std::back_inserter(guardadas),
               [](const std::string& l) { return !recorta(l).empty(); });
  for (const Hallazgo& h : revisaCampos(guardadas, tipo)) {
    std::string texto = textoHallazgo(h);
    texto.front() = 'L';  // "línea N, ..." opens its line of the list
    faltas.push_back(std::move(texto));
  }
  if (faltas.empty()) return std::nullopt;
  return std::string("El fichero no pasa la revisión:\n"_cp)
      .append(listaLimitada(faltas))
      .append(std::string("\n¿Desea guardarlo así de todos modos?"_cp));
}

// ---- How a line's bytes are shown and how typed text becomes bytes -------------------------

namespace {

enum class Escritura { TablaYMayusculas, MayusculasYTabla };

struct CampoAcentos {
  TipoIntercambio tipo;
  std::string_view segmento;
  std::size_t desde;  // 0-based
  std::size_t ancho;
  Escritura escritura;
};

constexpr CampoAcentos CAMPOSACENTOS[] = {
    {TipoIntercambio::FAN, "RZS", 5, 55, Escritura::TablaYMayusculas},
    {TipoIntercambio::AFI, "RZS", 5, 55, Escritura::TablaYMayusculas},
    {TipoIntercambio::FAN, "AYN", 3, 20, Escritura::MayusculasYTabla},
    {TipoIntercambio::FAN, "AYN", 23, 20, Escritura::MayusculasYTabla},
    {TipoIntercambio::FAN, "TRA", 36, 25, Escritura::MayusculasYTabla},
};

// Each field of the accent table that `linea` has (by its kind and segment) and reaches.
template <typename F>
void recorreCampos(std::string_view linea, TipoIntercambio tipo, F&& hacer) {
  for (const CampoAcentos& c : CAMPOSACENTOS)
    if (c.tipo == tipo && linea.substr(0, 3) == c.segmento && linea.size() > c.desde) hacer(c);
}

// The line in Windows-1252 letters: the fields of the table through its way back.
std::string letrasDeLinea(std::string_view linea, TipoIntercambio tipo) {
  std::string letras(linea);
  recorreCampos(linea, tipo, [&](const CampoAcentos& c) {
    const std::string_view campo = linea.substr(c.desde, c.ancho);
    letras.replace(c.desde, campo.size(), PONACENTOS(campo));
  });
  return letras;
}

std::string escribeCampo(std::string_view texto, Escritura escritura) {
  return escritura == Escritura::TablaYMayusculas ? mayusculas(QUITAACENTOS(texto)) : QUITAACENTOS(mayusculas(texto));
}

}  // namespace

std::string lineaParaMostrar(std::string_view linea, TipoIntercambio tipo) {
  return cp1252AUtf8(letrasDeLinea(linea, tipo));
}

std::string lineaTecleada(std::string_view anterior, std::string_view tecleada, TipoIntercambio tipo) {
  const std::string mostrada = letrasDeLinea(anterior, tipo);
  std::string bytes = utf8ACp1252(tecleada);
  if (bytes == mostrada) return std::string(anterior);
  const std::string letras = bytes;
  recorreCampos(letras, tipo, [&](const CampoAcentos& c) {
    const std::string_view campo = std::string_view(letras).substr(c.desde, c.ancho);
    const bool igual = anterior.substr(0, 3) == c.segmento && mostrada.size() >= c.desde + campo.size() &&
                       std::string_view(mostrada).substr(c.desde, campo.size()) == campo;
    bytes.replace(c.desde, campo.size(), igual ? anterior.substr(c.desde, campo.size()) : escribeCampo(campo, c.escritura));
  });
  return bytes;
}

}  // namespace valdor

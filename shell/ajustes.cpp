// The exchange settings file "VALDOR.MDB", the sender's name beside it, and the
// configuration dialog's grid over both.
#include "shell/ajustes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include "stores/ficheros.h"
#include "stores/texto.h"

namespace valdor {

namespace {

namespace fs = std::filesystem;

// ---- Layout of record 1 --------------------------------------------------------------

struct Campo {
  std::size_t desde;
  std::size_t ancho;
  std::string REGINTERCAMBIO::*miembro;
};

constexpr Campo CAMPOS[] = {
    {0, ANCHOCLAVEAUTORIZA, &REGINTERCAMBIO::CLAVEAUTORIZA},
    {8, ANCHOCLAVESILCON, &REGINTERCAMBIO::CLAVESILCON},
    {16, ANCHORUTAWINSUITE, &REGINTERCAMBIO::RUTAWINSUITE},
    {166, ANCHOFECHAAUTORIZA, &REGINTERCAMBIO::FECHAAUTORIZA},
};
static_assert(166 + ANCHOFECHAAUTORIZA == LONGITUDREGISTRO);


}  // namespace

// ---- The record as bytes -----------------------------------------------------------------

std::string aBytes(const REGINTERCAMBIO& reg) {
  std::string bytes;
  bytes.reserve(LONGITUDREGISTRO);
  for (const Campo& c : CAMPOS) bytes += imprimible(ajusta(reg.*c.miembro, c.ancho));
  return bytes;
}

// A field wholly inside `bytes` takes its bytes as they are, blanks included. A field
// that the bytes cover only in part (a file cut short) takes the bytes present, filled
// with blanks to its width, so that it reads as a complete field of a shorter text. A
// field the bytes don't reach keeps its value. Bytes beyond the record are ignored.
void desdeBytes(std::string_view bytes, REGINTERCAMBIO& reg) {
  for (const Campo& c : CAMPOS) {
    if (bytes.size() <= c.desde) break;
    reg.*c.miembro = imprimible(ajusta(bytes.substr(c.desde, c.ancho), c.ancho));
  }
}

// A drive ("C:\", "c:/"), a share ("\\servidor\recurso") or a native absolute path,
// with none of the characters that Windows refuses in a path.
bool esRutaDePrograma(std::string_view ruta) {
  if (ruta.find_first_of("<>\"|?*") != std::string_view::npos) return false;
  if (std::any_of(ruta.begin(), ruta.end(), esControl)) return false;
  auto letra = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  const bool unidad = ruta.size() >= 3 && letra(ruta[0]) && ruta[1] == ':' && (ruta[2] == '\\' || ruta[2] == '/');
  const bool recurso = ruta.size() >= 3 && ruta.starts_with("\\\\") && ruta[2] != '\\';
  const bool nativa = ruta.size() >= 2 && ruta[0] == '/' && ruta[1] != '/';
  return unidad || recurso || nativa;
}

namespace {

std::string defectoDeTamano(std::uintmax_t tamano) {
  return "mide " + std::to_string(tamano) + " bytes y un registro de ajustes mide " + std::to_string(LONGITUDREGISTRO);
}

}  // namespace

std::optional<std::string> defectoDelRegistro(std::string_view bytes) {
  if (bytes.size() != LONGITUDREGISTRO) return defectoDeTamano(bytes.size());
  const auto control = std::find_if(bytes.begin(), bytes.end(), esControl);
  if (control != bytes.end())
    return "tiene un car\xE1" "cter de control en el byte " + std::to_string(control - bytes.begin() + 1);
  const std::string ruta = recorta(bytes.substr(16, ANCHORUTAWINSUITE));
  if (!ruta.empty() && ruta.front() != '0' && !esRutaDePrograma(ruta))
    return "su ruta de Winsuite \"" + ruta + "\" no es una ruta de Windows";
  return std::nullopt;
}

// ---- The open settings file ------------------------------------------------------------

FicheroAjustes::FicheroAjustes(const std::filesystem::path& carpeta)
    : ruta_(resuelveFichero(carpeta, FICHEROAJUSTES)) {
  fd_ = ::open(ruta_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd_ >= 0) return;
  errorApertura_ = errno;
  // A file that may be read but not written still gives its settings.
  if (errorApertura_ == EACCES || errorApertura_ == EROFS || errorApertura_ == EPERM || errorApertura_ == EISDIR) {
    fd_ = ::open(ruta_.c_str(), O_RDONLY | O_CLOEXEC);
    soloLectura_ = fd_ >= 0;
  }
}

FicheroAjustes::~FicheroAjustes() {
  if (fd_ >= 0) ::close(fd_);
}

bool FicheroAjustes::abierto() const { return fd_ >= 0; }

std::uintmax_t FicheroAjustes::longitud() const {
  struct stat st {};
  if (fd_ < 0 || ::fstat(fd_, &st) != 0 || st.st_size < 0) return 0;
  return static_cast<std::uintmax_t>(st.st_size);
}

bool FicheroAjustes::lee(REGINTERCAMBIO& reg) {
  auto falla = [&](int error) {
    return ErrorAjustes("No se puede leer el fichero de ajustes " + entreComillas(ruta_) + ": " +
                        razonDelSistema(error) + ".");
  };
  if (fd_ < 0) {
    if (errorApertura_ == ENOENT) return false;  // no folder to make it in: nothing to read
    throw falla(errorApertura_);
  }
  CerrojoRegistro cerrojo(fd_, 0, static_cast<off_t>(LONGITUDREGISTRO), !soloLectura_);
  if (cerrojo.ocupado()) return false;
  // One byte more than a record tells a file that is longer than one.
  char bufer[LONGITUDREGISTRO + 1];
  std::size_t leido = 0;
  while (leido < sizeof bufer) {
    const ssize_t n = ::pread(fd_, bufer + leido, sizeof bufer - leido, static_cast<off_t>(leido));
    if (n < 0) {
      if (errno == EINTR) continue;
      throw falla(errno);
    }
    if (n == 0) break;
    leido += static_cast<std::size_t>(n);
  }
  if (leido == 0) return false;
  const std::string_view bytes(bufer, leido);
  // A file longer than a record is told by its whole length.
  const auto defecto = leido > LONGITUDREGISTRO ? defectoDeTamano(std::max(longitud(), leido)) : defectoDelRegistro(bytes);
  if (defecto) {
    throw ErrorAjustes("El fichero de ajustes " + entreComillas(ruta_) + " no es un registro de ajustes: " +
                       *defecto + ". Revise el fichero o b\xF3rrelo y vuelva a configurar el programa.");
  }
  desdeBytes(bytes, reg);
  return true;
}

void FicheroAjustes::escribe(const REGINTERCAMBIO& reg) {
  const std::string bytes = aBytes(reg);
  if (const auto defecto = defectoDelRegistro(bytes)) {
    throw ErrorAjustes("No se guardan los ajustes en " + entreComillas(ruta_) + ": " + *defecto + ".");
  }
  if (fd_ < 0 || soloLectura_) {
    throw ErrorAjustes("No se puede abrir el fichero de ajustes " + entreComillas(ruta_) +
                       ": " + razonDelSistema(errorApertura_));
  }
  CerrojoRegistro cerrojo(fd_, 0, static_cast<off_t>(LONGITUDREGISTRO));
  if (cerrojo.ocupado()) {
    throw ErrorAjustes("El fichero de ajustes " + entreComillas(ruta_) +
                       " est\xE1 bloqueado por otro usuario. Int\xE9ntelo de nuevo m\xE1s tarde.");
  }
  int error = escribeTodo(fd_, bytes, 0);
  // The file holds one record: whatever stood behind it goes.
  if (error == 0 && longitud() > LONGITUDREGISTRO && ::ftruncate(fd_, static_cast<off_t>(LONGITUDREGISTRO)) != 0)
    error = errno;
  if (error == 0) return;
  if (esDiscoLleno(error)) {
    throw ErrorAjustes("No queda espacio en el disco para guardar el fichero de ajustes " +
                       entreComillas(ruta_) + ".");
  }
  throw ErrorAjustes("No se puede escribir el fichero de ajustes " + entreComillas(ruta_) +
                     ": " + razonDelSistema(error));
}

// ---- Fills for an empty file -----------------------------------------------------------

REGINTERCAMBIO registroEnBlanco() {
  return {std::string(ANCHOCLAVEAUTORIZA, ' '), std::string(ANCHOCLAVESILCON, ' '),
          std::string(ANCHORUTAWINSUITE, ' '), std::string(ANCHOFECHAAUTORIZA, ' ')};
}

REGINTERCAMBIO registroDeConfiguracion() {
  return {std::string(ANCHOCLAVEAUTORIZA, ' '), std::string(ANCHOCLAVESILCON, ' '),
          std::string(RUTAWINSUITEPORDEFECTO), ""};
}

// The main window's start holds no record yet, so it starts from blanks whether the file
// is empty or not; a whole record then overwrites every field.
REGINTERCAMBIO leeAjustesAlArrancar(FicheroAjustes& fichero) {
  REGINTERCAMBIO reg = registroEnBlanco();
  fichero.lee(reg);
  reg.CLAVEAUTORIZA = ajusta(recorta(reg.CLAVEAUTORIZA), ANCHOCLAVEAUTORIZA);
  reg.CLAVESILCON = ajusta(recorta(reg.CLAVESILCON), ANCHOCLAVESILCON);
  return reg;
}

// ---- The two keys --------------------------------------------------------------------

std::string claveAutorizaParaETI(std::string_view CLAVEAUTORIZA) {
  return llenaIzq(recorta(CLAVEAUTORIZA), ANCHOCLAVEAUTORIZA, '0');
}

// Filled with blanks on the right and trimmed again: what remains is the trimmed key.
std::string claveSilconParaETI(std::string_view CLAVESILCON) { return recorta(CLAVESILCON); }

// Both keys are 8 wide.
std::string claveParaPieAFI(std::string_view clave) {
  return llenaDer(clave, ANCHOCLAVEAUTORIZA, ' ');
}

// ---- The sender's name -----------------------------------------------------------------

std::string leeEmisor(const std::filesystem::path& carpeta) {
  std::ifstream entrada(resuelveFichero(carpeta, FICHEROEMISOR), std::ios::binary);
  std::string linea;
  if (!entrada || !std::getline(entrada, linea)) return "";
  if (!linea.empty() && linea.back() == '\r') linea.pop_back();
  return imprimible(izquierda(linea, ANCHOEMISOR));
}

// The name goes to a new file beside the old one, which then takes the old one's place in
// one step: a failure leaves the former name whole. Only the first line of the name is
// kept, since only the first line is read back.
void guardaEmisor(const std::filesystem::path& carpeta, std::string_view nombre) {
  const fs::path destino = resuelveFichero(carpeta, FICHEROEMISOR);
  std::string contenido(izquierda(nombre.substr(0, nombre.find_first_of("\r\n")), ANCHOEMISOR));
  contenido += '\n';

  auto falla = [&](int error) -> ErrorAjustes {
    if (esDiscoLleno(error)) {
      return ErrorAjustes("No queda espacio en el disco para guardar el nombre del emisor en " +
                          entreComillas(destino) + ".");
    }
    return ErrorAjustes("No se puede guardar el nombre del emisor en " + entreComillas(destino) +
                        ": " + razonDelSistema(error));
  };

  if (const int error = reemplazaFichero(destino, contenido); error != 0) throw falla(error);
}

// ---- The configuration dialog's grid -----------------------------------------------------

// The dialog starts from its own fill whether the file is empty or not: a whole record
// overwrites it, and a record cut short keeps it in the fields it doesn't reach.
std::array<FilaConfiguracion, 5> cargaConfiguracion(FicheroAjustes& fichero,
                                                     std::string_view EMISORNOMBRE) {
  REGINTERCAMBIO reg = registroDeConfiguracion();
  fichero.lee(reg);
  return filasDeConfiguracion(reg, EMISORNOMBRE);
}

std::array<FilaConfiguracion, 5> filasDeConfiguracion(const REGINTERCAMBIO& reg, std::string_view EMISORNOMBRE) {
  std::array<FilaConfiguracion, 5> filas{{
      {"Emisor de Intercambio", recorta(EMISORNOMBRE), ANCHOEMISOR, ""},
      {"Clave de autorizaci\xF3n", recorta(reg.CLAVEAUTORIZA), ANCHOCLAVEAUTORIZA, ""},
      {"Clave Silcon", recorta(reg.CLAVESILCON), ANCHOCLAVESILCON, ""},
      {"Fecha de autorizaci\xF3n", recorta(reg.FECHAAUTORIZA), ANCHOFECHAAUTORIZA, "99/99/9999"},
      {"Ruta de Winsuite", "", ANCHORUTAWINSUITE, ""},
  }};
  // A route that starts with a blank or a "0" is taken for no route at all.
  const std::string& ruta = reg.RUTAWINSUITE;
  if (!ruta.empty() && ruta.front() != '0' && ruta.front() != ' ') filas[4].valor = recorta(ruta);
  return filas;
}

REGINTERCAMBIO guardaConfiguracion(FicheroAjustes& fichero,
                                   const std::array<FilaConfiguracion, 5>& filas) {
  REGINTERCAMBIO reg;
  reg.CLAVEAUTORIZA = ajusta(filas[1].valor, ANCHOCLAVEAUTORIZA);
  reg.CLAVESILCON = ajusta(filas[2].valor, ANCHOCLAVESILCON);
  reg.FECHAAUTORIZA = ajusta(filas[3].valor, ANCHOFECHAAUTORIZA);
  reg.RUTAWINSUITE = ajusta(filas[4].valor, ANCHORUTAWINSUITE);
  fichero.escribe(reg);
  return reg;
}

// The mask's literal "/" stands at positions 3 and 6; every other position takes a digit,
// or a blank for one not typed. An untouched mask gives "".
bool encajaMascaraFecha(std::string_view texto) {
  if (texto.size() > ANCHOFECHAAUTORIZA) return false;
  for (std::size_t i = 0; i < texto.size(); ++i) {
    const char c = texto[i];
    const bool valido = (i == 2 || i == 5) ? c == '/' : ((c >= '0' && c <= '9') || c == ' ');
    if (!valido) return false;
  }
  return true;
}

}  // namespace valdor

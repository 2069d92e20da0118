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
  for (const Campo& c : CAMPOS) bytes += ajusta(reg.*c.miembro, c.ancho);
  return bytes;
}

// A field wholly inside `bytes` takes its bytes as they are, blanks included. A field
// that the bytes cover only in part (a file cut short) takes the bytes present, filled
// with blanks to its width, so that it reads as a complete field of a shorter text. A
// field the bytes don't reach keeps its value. Bytes beyond the record are ignored.
void desdeBytes(std::string_view bytes, REGINTERCAMBIO& reg) {
  for (const Campo& c : CAMPOS) {
    if (bytes.size() <= c.desde) break;
    reg.*c.miembro = ajusta(bytes.substr(c.desde, c.ancho), c.ancho);
  }
}

// ---- The open settings file ------------------------------------------------------------

FicheroAjustes::FicheroAjustes(const std::filesystem::path& carpeta)
    : ruta_(resuelveFichero(carpeta, FICHEROAJUSTES)) {
  fd_ = ::open(ruta_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (fd_ < 0) errorApertura_ = errno;
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
  if (fd_ < 0) return false;
  CerrojoRegistro cerrojo(fd_, 0, static_cast<off_t>(LONGITUDREGISTRO));
  if (cerrojo.ocupado()) return false;
  char bufer[LONGITUDREGISTRO];
  std::size_t leido = 0;
  while (leido < LONGITUDREGISTRO) {
    const ssize_t n = ::pread(fd_, bufer + leido, LONGITUDREGISTRO - leido,
                              static_cast<off_t>(leido));
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (n == 0) break;
    leido += static_cast<std::size_t>(n);
  }
  if (leido == 0) return false;
  desdeBytes(std::string_view(bufer, leido), reg);
  return true;
}

void FicheroAjustes::escribe(const REGINTERCAMBIO& reg) {
  if (fd_ < 0) {
    throw ErrorAjustes("No se puede abrir el fichero de ajustes " + entreComillas(ruta_) +
                       ": " + razonDelSistema(errorApertura_));
  }
  CerrojoRegistro cerrojo(fd_, 0, static_cast<off_t>(LONGITUDREGISTRO));
  if (cerrojo.ocupado()) {
    throw ErrorAjustes("El fichero de ajustes " + entreComillas(ruta_) +
                       " est\xE1 bloqueado por otro usuario. Int\xE9ntelo de nuevo m\xE1s tarde.");
  }
  const int error = escribeTodo(fd_, aBytes(reg), 0);
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
  return izquierda(linea, ANCHOEMISOR);
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

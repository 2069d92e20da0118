// Plain files of the system (the settings, the sender's name, the rate files and, later,
// the exchange files): their names in messages, whole writes, and the replacement of a
// file by a complete new one, so that a failure (a full disk) never leaves half a file.
#pragma once

#include "stores/error.h"

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace valdor {

// The message of a failure that stopped a job, ending by saying that no file was made
// (unless it says so already).
std::string conFicheroNoGenerado(std::string_view mensaje);

// A path as the messages show it: Windows-1252 text between double quotes.
std::string entreComillas(const std::filesystem::path& ruta);

// The system's reason for an errno value, as Windows-1252 text.
std::string razonDelSistema(int error);

// True for the errors of a disk (or a quota) with no room left.
bool esDiscoLleno(int error);

// A file named by the rules: the exact name in `carpeta` when it exists, else a file
// of the same name ignoring case (the first in name order when there are several),
// else the exact name (for creating it).
std::filesystem::path resuelveFichero(const std::filesystem::path& carpeta, std::string_view nombre);

// Writes all of `datos` at offset `desde` of an open file, over partial writes.
// Returns 0 or the errno of the failure; a write that moves nothing counts as a full disk.
int escribeTodo(int fd, std::string_view datos, off_t desde);

// Replaces `destino` by a file holding exactly `contenido`: written under a temporary
// name beside it, flushed to disk, then renamed over it. Returns 0 or the errno of the
// failure; on failure the temporary file is gone and `destino` is as it was.
int reemplazaFichero(const std::filesystem::path& destino, std::string_view contenido);

// The temporary names that `reemplazaFichero` tries in turn, from 0 up to
// INTENTOSTEMPORAL - 1; a name already taken is passed over.
inline constexpr int INTENTOSTEMPORAL = 100;
std::filesystem::path nombreTemporal(const std::filesystem::path& destino, int intento);

// A lock of the open file description on the bytes of one record of a fixed-record
// file, held for one get or put and released with the object. Such a lock conflicts with
// any other opening of the file, in this process too. It waits about two seconds for a
// lock that another user holds; `ocupado()` tells when it gave up. A file system that
// keeps no locks is used without one: refusing every read there would leave the program
// without its settings and rates.
class CerrojoRegistro {
 public:
  // `exclusivo` for a file open for writing; a shared lock keeps writers out as well.
  CerrojoRegistro(int fd, off_t desde, off_t largo, bool exclusivo = true);
  ~CerrojoRegistro();
  CerrojoRegistro(const CerrojoRegistro&) = delete;
  CerrojoRegistro& operator=(const CerrojoRegistro&) = delete;
  bool ocupado() const { return ocupado_; }

 private:
  int pide(short tipo) const;
  int fd_;
  off_t desde_;
  off_t largo_;
  bool tomado_ = false;
  bool ocupado_ = false;
};

// The lock of a run on its work folder: one run at a time uses the folder's temp store.
// It is a lock of the open folder (flock), so it goes with the process that holds it,
// however that process ends: a folder whose lock nobody holds has no run in it, and
// whatever a run left there is a leftover. A file system that keeps no locks is used
// without one.
class CerrojoCarpeta {
 public:
  // Takes the lock without waiting; `tomado()` is false when another run holds it.
  // Throws ErrorFichero when the folder cannot be opened.
  explicit CerrojoCarpeta(const std::filesystem::path& carpeta);
  ~CerrojoCarpeta();
  CerrojoCarpeta(const CerrojoCarpeta&) = delete;
  CerrojoCarpeta& operator=(const CerrojoCarpeta&) = delete;
  bool tomado() const { return tomado_; }

 private:
  int fd_ = -1;
  bool tomado_ = false;
};

// Removes the temporary files that runs now gone left beside `destino` (the names of
// `nombreTemporal`, of any process that no longer exists). Those of a live process are
// its own, still being written.
void limpiaTemporalesHuerfanos(const std::filesystem::path& destino);

// An exchange file being written: records of text, each ended by CR LF, put under a
// temporary name beside the final one and renamed over it only when `confirma` is
// called, so that a crash or a full disk never leaves half a file under the final
// name. The temporary file goes with the object when it was not confirmed. A file
// already under the final name stays as it is until the rename replaces it whole.
inline constexpr std::size_t LARGOREGISTRO = 70;

// A look at a written file (`escrito`, its temporary name) before it takes its final
// name (`destino`).
using RevisionEscrito = std::function<void(const std::filesystem::path& escrito, const std::filesystem::path& destino)>;

class FicheroRegistros {
 public:
  // Creates the folder of `destino` when it is missing. Throws ErrorFichero.
  explicit FicheroRegistros(std::filesystem::path destino);
  ~FicheroRegistros();
  FicheroRegistros(const FicheroRegistros&) = delete;
  FicheroRegistros& operator=(const FicheroRegistros&) = delete;

  // Writes `linea` and CR LF. The records are gathered and written a block at a time, so
  // a file of many records costs a write per block, not per record. Throws ErrorFichero.
  void imprime(std::string_view linea);
  // Writes a record of an exchange file, which is exactly LARGOREGISTRO characters:
  // control characters that a store, a setting or a rate file held (a CR, an LF, a
  // NUL) become blanks, so that no value splits or cuts the record; a record of any
  // other length throws ErrorFichero, naming `donde` (the company, the worker and the
  // kind of line) and showing the record.
  void imprimeRegistro(std::string_view linea, std::string_view donde);
  // The bytes written so far.
  std::uintmax_t longitud() const { return longitud_; }
  // Writes what is gathered, flushes the file to disk and puts it under its final name. Throws ErrorFichero.
  // `revision`, when given, reads the whole file under its temporary name just before;
  // what it throws keeps the file from its name, and the file is removed.
  void confirma(const RevisionEscrito& revision = {});

 private:
  std::filesystem::path destino_;
  std::filesystem::path temporal_;
  int fd_ = -1;
  std::uintmax_t longitud_ = 0;  // written and gathered
  std::string pendiente_;        // gathered, not yet written
  bool confirmado_ = false;

  static constexpr std::size_t TAMANOBLOQUE = 64 * 1024;
  void vuelca();
};

// A file that could not be written, with a Spanish message naming it.
class ErrorFichero : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

}  // namespace valdor

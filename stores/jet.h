// The payroll product's own stores: Jet databases (Access 97 and 2000-2003 formats).
// Which engine a file needs is told by its header, never by its name.
//
// A Jet store is read once into a read-only copy: an SQLite database in memory with the
// same tables, columns and indices, text keys under the ESPANOL collation, so that the
// cursors, seeks and queries of the rules run on it as on any store and never learn
// which engine they read. VALDOR+ never writes a byte into a Jet file.
//
// The file is read by mdbtools' libmdb in a child process that streams the rows to the
// copy: a damaged file that would bring libmdb down, or send it round in circles, ends
// that child, and the user gets the message of a damaged store. A file that changes
// while it is read (the payroll product rewriting it) is read again; one that keeps
// changing gives the message of a store in use.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace valdor {

enum class Motor {
  Ninguno,  // no such file, or it cannot be read
  SQLite,
  Jet3,     // Access 97
  Jet4,     // Access 2000-2003
  Ace,      // Access 2007 and later, read as Jet
  Otro      // a file of neither kind: damaged, or of another program
};

// The engine of a file, by its first bytes.
Motor motorDe(const std::filesystem::path& ruta);
// "Jet 3", "Jet 4", "SQLite", ...
std::string_view nombreMotor(Motor motor);
inline bool esJet(Motor m) { return m == Motor::Jet3 || m == Motor::Jet4 || m == Motor::Ace; }

// What tells one state of a file from another: its inode and device, its size, and the
// times of its last change, to the nanosecond.
struct IdentidadFichero {
  dev_t dispositivo = 0;
  ino_t inodo = 0;
  std::int64_t tamano = 0;
  std::int64_t modificado = 0;  // ns
  std::int64_t cambiado = 0;    // ns
  friend bool operator==(const IdentidadFichero&, const IdentidadFichero&) = default;
};
std::optional<IdentidadFichero> identidadDe(const std::filesystem::path& ruta);

struct OpcionesJet {
  // The tables to copy; every table of the file when empty.
  std::vector<std::string> tablas;
  // A reader silent for this long is taken as lost in a damaged file and stopped.
  std::chrono::milliseconds silencioMaximo{60000};
  // Readings of a file that keeps changing before it is given up as in use.
  int intentos = 3;
  // Called after each reading, before the file is looked at again: lets a test change
  // the file at that moment, as the payroll product could.
  std::function<void()> trasLeer;
};

struct CierraSqlite {
  void operator()(sqlite3* db) const;
};
using BaseEnMemoria = std::unique_ptr<sqlite3, CierraSqlite>;

struct CopiaJet {
  BaseEnMemoria base;           // the copy, with the ESPANOL collation registered
  IdentidadFichero identidad;   // the state of the file that was copied
};

// Copies the tables of the Jet file at `ruta` into a new database in memory. Throws
// ErrorAlmacen: NoExiste for a missing file, Danado for a file whose structure is
// broken (the same message as a damaged SQLite store), Bloqueo for a file that kept
// changing while it was read.
CopiaJet copiaJet(const std::filesystem::path& ruta, const OpcionesJet& opciones);

namespace jet {
// The reading itself, run in the child process: writes the stream of jet_protocolo.h
// to `fd` and returns the child's exit status.
int escribeFlujoJet(const char* ruta, const std::vector<std::string>& tablas, int fd);
}  // namespace jet

}  // namespace valdor

// The stream by which the reader of a Jet file hands its tables to the store that
// copies them. The reader runs in a child process (a damaged file may bring mdbtools
// down, never the program), and writes to a pipe; the store reads the other end.
//
// A stream is a run of messages, each a kind byte and its body:
//   'T' a table: its name, its columns (name, kind, width) and its indices (name,
//       then the positions of their key columns among the columns sent, each with
//       its direction);
//   'F' a row: one value per column sent, in order;
//   'E' the end of the current table, with its count of rows;
//   'X' a failure of the reader, with its detail; nothing follows it;
//   'Z' the end of the stream: every table asked for that the file holds was sent.
// Numbers are in the machine's own byte order: both ends are the same program.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace valdor::jet {

enum class Mensaje : char { Tabla = 'T', Fila = 'F', FinTabla = 'E', Fallo = 'X', Fin = 'Z' };

// The kind of a column sent, and of a value in a row.
enum class Clase : std::uint8_t { Texto = 0, Numero = 1, Fecha = 2 };
enum class Marca : std::uint8_t { Nulo = 0, Numero = 1, Texto = 2 };

// Appends the parts of a message to a buffer.
class Escritura {
 public:
  void byte(std::uint8_t b) { datos_.push_back(static_cast<char>(b)); }
  void entero(std::uint32_t n) { crudo(&n, sizeof n); }
  void numero(double d) { crudo(&d, sizeof d); }
  void texto(std::string_view t) {
    entero(static_cast<std::uint32_t>(t.size()));
    datos_.append(t);
  }
  std::string& datos() { return datos_; }

 private:
  void crudo(const void* p, std::size_t n) { datos_.append(static_cast<const char*>(p), n); }
  std::string datos_;
};

}  // namespace valdor::jet

// The floor of the FAN run: what no run of the month can go below. It reads every row
// and every column of the month's NOMIN as text, once through the project's store layer
// and once through the bare SQLite C API, and writes a file of the FAN file's size in
// records of 70 characters and CR LF. Each part is timed on its own.
//
//   valdor-suelo MES.MDB BYTES SALIDA
//
// Prints one line per part: "almacen S", "sqlite S", "escritura S" (seconds), then the
// rows and values read, so that the reads can be checked to have done their work.

#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "stores/almacen.h"

namespace {

using Reloj = std::chrono::steady_clock;

double segundos(Reloj::time_point desde) { return std::chrono::duration<double>(Reloj::now() - desde).count(); }

// Every value of every row through the store layer, as the rules read them.
std::size_t porElAlmacen(const std::string& ruta, std::size_t& filas) {
  valdor::Almacen a;
  a.abre(ruta);
  valdor::Consulta q = a.consulta("SELECT * FROM NOMIN");
  std::size_t bytes = 0;
  filas = 0;
  while (q.siguiente()) {
    ++filas;
    for (int i = 0; i < q.columnas(); ++i) bytes += q.campo(i).texto().size();
  }
  return bytes;
}

// The same through the C API, with no conversion beyond SQLite's own to text.
std::size_t porSqlite(const std::string& ruta, std::size_t& filas) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(ruta.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    std::cerr << "No se puede abrir " << ruta << "\n";
    std::exit(1);
  }
  sqlite3_stmt* st = nullptr;
  sqlite3_prepare_v2(db, "SELECT * FROM NOMIN", -1, &st, nullptr);
  std::size_t bytes = 0;
  filas = 0;
  const int columnas = sqlite3_column_count(st);
  while (sqlite3_step(st) == SQLITE_ROW) {
    ++filas;
    for (int i = 0; i < columnas; ++i) {
      sqlite3_column_text(st, i);
      bytes += static_cast<std::size_t>(sqlite3_column_bytes(st, i));
    }
  }
  sqlite3_finalize(st);
  sqlite3_close(db);
  return bytes;
}

// A file of `tamano` bytes in records of 70 characters and CR LF.
void escribe(const std::string& salida, std::size_t tamano) {
  std::ofstream f(salida, std::ios::binary);
  const std::string registro = std::string(70, 'X') + "\r\n";
  for (std::size_t hecho = 0; hecho < tamano; hecho += registro.size())
    f.write(registro.data(), static_cast<std::streamsize>(std::min(registro.size(), tamano - hecho)));
  f.flush();
  if (!f) {
    std::cerr << "No se puede escribir " << salida << "\n";
    std::exit(1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "Uso: valdor-suelo MES.MDB BYTES SALIDA\n";
    return 2;
  }
  const std::string mes = argv[1], salida = argv[3];
  const std::size_t tamano = std::strtoull(argv[2], nullptr, 10);
  std::size_t filasA = 0, filasS = 0;

  auto t = Reloj::now();
  const std::size_t bytesA = porElAlmacen(mes, filasA);
  const double almacen = segundos(t);
  t = Reloj::now();
  const std::size_t bytesS = porSqlite(mes, filasS);
  const double sqlite = segundos(t);
  t = Reloj::now();
  escribe(salida, tamano);
  const double escritura = segundos(t);

  std::printf("almacen %.3f\nsqlite %.3f\nescritura %.3f\n", almacen, sqlite, escritura);
  std::printf("filas %zu %zu, bytes de texto %zu %zu\n", filasA, filasS, bytesA, bytesS);
  return filasA == filasS ? 0 : 1;
}

// The orders of the command line and the shape of a call:
//   valdor-cli [--programa DIR] [--trabajo DIR] [--ahora "AAAA-MM-DD HH:MM"] ORDEN [opciones]
#pragma once

#include "stores/error.h"

#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "shell/momento.h"
#include "stores/catalogo.h"

namespace valdor::cli {

// Exit statuses: 0 success, 1 the job failed or a check found faults, 2 a wrong call.
inline constexpr int SALIDABIEN = 0;
inline constexpr int SALIDAFALLO = 1;
inline constexpr int SALIDALLAMADA = 2;

// A wrong call: its message (Windows-1252) goes to standard error, one line, with the
// line that points to the help.
class ErrorLlamada : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// "-h", "--help" or "--ayuda" among an order's options: the order's help is shown.
struct AyudaPedida {};

// A failed job: its message (Windows-1252) goes to standard error.
class ErrorTrabajo : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// The options of an order: "--nombre valor" or "--nombre=valor" pairs and "--bandera"
// flags. Each option goes once; a value is never empty, and a value that begins with
// "--" must be given after "=" (otherwise it reads as the next option).
class Opciones {
 public:
  // `conValor` and `banderas` list what the order accepts; anything else is a wrong call,
  // and a help flag is AyudaPedida.
  Opciones(const std::vector<std::string>& argumentos, const std::vector<std::string>& conValor,
           const std::vector<std::string>& banderas);
  bool tiene(const std::string& nombre) const { return valores_.count(nombre) > 0; }
  // The value as Windows-1252 text; a character with no Windows-1252 form, or a control
  // character (which would break a fixed-width line), is a wrong call.
  std::optional<std::string> texto(const std::string& nombre) const;
  // The value as a whole number within [minimo, maximo], written with digits only (with
  // exactly `cifras` of them when it is not 0).
  std::optional<int> entero(const std::string& nombre, int minimo, int maximo, std::size_t cifras = 0) const;

 private:
  std::map<std::string, std::string> valores_;
};

// The month and year of a job: given, or by default the month before the moment of
// the run, as the selection's lists default to it. The year list runs 1901 to 2100.
void periodoDeLaOrden(const Opciones& o, const Momento& ahora, int& mes, int& ano);

// The width of a company code in the stores (the contribution account code, ESA.A1 and
// NOMIN.BSSE): 11 digits, as 28107654331.
inline constexpr std::size_t ANCHOCODIGOEMPRESA = 11;
// `valor` when it is a company code of that width; otherwise a wrong call of `opcion`.
std::string codigoEmpresa(const std::string& valor, const std::string& opcion);

struct Llamada {
  Carpetas carpetas;
  Momento ahora;
  std::string orden;
  std::vector<std::string> argumentos;  // what follows the order
  std::filesystem::path carpetaDeLlamada;  // where the call was made, for relative files
};

// The file named in the call (UTF-8, as given): a Windows path ("C:\...") through the
// Wine drives, any other relative to where the call was made.
std::filesystem::path ficheroDeLaLlamada(const Llamada& llamada, const std::string& nombre);

int ordenMuestra(const Llamada& llamada);
int ordenAjustes(const Llamada& llamada);
int ordenEmpresas(const Llamada& llamada);
int ordenFan(const Llamada& llamada);
int ordenAfi(const Llamada& llamada);
int ordenRevisar(const Llamada& llamada);
int ordenImprimir(const Llamada& llamada);
int ordenAlmacenes(const Llamada& llamada);

}  // namespace valdor::cli

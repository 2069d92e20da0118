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

// A wrong call: its message (Windows-1252) goes to standard error with the usage.
class ErrorLlamada : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// A failed job: its message (Windows-1252) goes to standard error.
class ErrorTrabajo : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// The options of an order: "--nombre valor" pairs and "--bandera" flags.
class Opciones {
 public:
  // `conValor` and `banderas` list what the order accepts; anything else is a wrong call.
  Opciones(const std::vector<std::string>& argumentos, const std::vector<std::string>& conValor,
           const std::vector<std::string>& banderas);
  bool tiene(const std::string& nombre) const { return valores_.count(nombre) > 0; }
  // The value as Windows-1252 text; a character with no Windows-1252 form is a wrong call.
  std::optional<std::string> texto(const std::string& nombre) const;
  // The value as a whole number within [minimo, maximo].
  std::optional<int> entero(const std::string& nombre, int minimo, int maximo) const;

 private:
  std::map<std::string, std::string> valores_;
};

// The month and year of a job: given, or by default the month before the moment of
// the run, as the selection's lists default to it. The year list runs 1901 to 2100.
void periodoDeLaOrden(const Opciones& o, const Momento& ahora, int& mes, int& ano);

struct Llamada {
  Carpetas carpetas;
  Momento ahora;
  std::string orden;
  std::vector<std::string> argumentos;  // what follows the order
  std::filesystem::path carpetaDeLlamada;  // where the call was made, for relative files
};

int ordenMuestra(const Llamada& llamada);
int ordenAjustes(const Llamada& llamada);
int ordenEmpresas(const Llamada& llamada);
int ordenFan(const Llamada& llamada);
int ordenAfi(const Llamada& llamada);
int ordenRevisar(const Llamada& llamada);
int ordenImprimir(const Llamada& llamada);
int ordenAlmacenes(const Llamada& llamada);

}  // namespace valdor::cli

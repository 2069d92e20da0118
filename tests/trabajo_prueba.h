// The master stores of a test's office, and an exchange job of a test: a temporary office
// with its two folders, the recording dialogs, the run fixed at 15/11/2026 07:30 with the
// transmission tool's drive inside the office, and the wizard's page.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "shell/asistente.h"
#include "shell/programa.h"
#include "stores/esquemas.h"
#include "tests/apoyo.h"

namespace valdor::pruebas {

// The six master stores of the program folder `programa`, made empty.
inline void creaMaestros(const std::filesystem::path& programa) {
  const std::pair<const char*, std::span<const DefTabla>> maestros[] = {
      {"CONVENIO.MDB", esquemas::tablasCONVENIO()}, {"EMPRESAS.MDB", esquemas::tablasEMPRESAS()},
      {"PRODUCTO.MDB", esquemas::tablasPRODUCTO()}, {"CONSTANT.MDB", esquemas::tablasCONSTANT()},
      {"BONIFICA.MDB", esquemas::tablasBONIFICA()}, {"DESEMPLEO.MDB", esquemas::tablasDESEMPLEO()}};
  for (const auto& [nombre, tablas] : maestros) Almacen::crea(programa / nombre, tablas);
}

struct TrabajoDePrueba {
  TrabajoDePrueba() {
    std::filesystem::create_directories(carpetas.programa);
    std::filesystem::create_directories(carpetas.trabajo);
    programa.entornoWine = {c / "wine"};
  }
  // The page of a job of `tipo` ("FAN" or "AFI") at the run's moment.
  void paginaDe(std::string_view tipo) {
    if (tipo == "AFI") {
      pagina.marcaAfiliacion();
    } else {
      pagina.marcaCotizacion();
    }
    pagina.Label10 = std::string(tipo);
    pagina.Label12 = "20261115";
    pagina.Label13 = "0730";
  }

  CarpetaTemporal c;
  Carpetas carpetas{c / "programa", c / "trabajo"};
  DialogosGrabador dialogos;
  Programa programa{carpetas, dialogos, Separadores{}, Momento{2026, 11, 15, 7, 30, 0}};
  PaginaIntercambio pagina;
};

}  // namespace valdor::pruebas

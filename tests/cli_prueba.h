// The command line's tests: the check that an output holds a text, and the sample office
// of October 2026, written by valdor-cli at 15/11/2026 07:30 in a temporary folder that
// holds the transmission tool's drive too.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/apoyo.h"

namespace valdor::pruebas {

inline const std::string AHORA = "2026-11-15 07:30";

// Whether `texto` (an output of a run) holds `trozo`; a failure shows the whole text.
inline ::testing::AssertionResult contiene(std::string_view texto, std::string_view trozo) {
  if (texto.find(trozo) != std::string_view::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "falta \"" << trozo << "\" en:\n" << texto;
}

class CliMuestra : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("WINEPREFIX", (c / "wine").c_str(), 1);
    unsetenv("VALDOR_IMPRESORA");
    unsetenv("VALDOR_DESPLAZAMIENTO");
    ASSERT_EQ(valdor(c, {"--ahora", AHORA, "muestra"}).estado, 0);
  }
  // `orden` at the run's moment with `opciones`.
  Resultado corre(const std::string& orden, const std::vector<std::string>& opciones = {}) {
    std::vector<std::string> a{"--ahora", AHORA, orden};
    a.insert(a.end(), opciones.begin(), opciones.end());
    return valdor(c, a);
  }
  // The FAN job of October 2026 with `opciones`.
  Resultado fan(std::vector<std::string> opciones = {}) {
    opciones.insert(opciones.begin(), {"--mes", "10", "--ano", "2026"});
    return corre("fan", opciones);
  }
  std::filesystem::path carpetaFan() const { return c / "wine/drive_c/WINSUITE/VIPTC2/FAN"; }
  std::filesystem::path carpetaAfi() const { return c / "wine/drive_c/WINSUITE/VIPTC2/AFI"; }
  // Every file under the office and the drive, to see that a refused call wrote none.
  std::vector<std::filesystem::path> ficheros() const {
    std::vector<std::filesystem::path> todos;
    for (const auto& e : std::filesystem::recursive_directory_iterator(c.ruta()))
      if (e.path().filename() != "salida.txt" && e.path().filename() != "errores.txt") todos.push_back(e.path());
    std::sort(todos.begin(), todos.end());
    return todos;
  }

  CarpetaTemporal c;
};

}  // namespace valdor::pruebas

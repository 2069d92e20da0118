// The runner of valdor-cli for the tests of the command line (declared in apoyo.h).
#include <sys/wait.h>

#include <cstdlib>

#include "tests/apoyo.h"

namespace valdor::pruebas {

Resultado valdor(const CarpetaTemporal& c, const std::vector<std::string>& argumentos, bool conCarpetas) {
  std::string orden = paraLaShell(VALDOR_CLI);
  if (conCarpetas)
    orden += " --programa " + paraLaShell((c / "programa").string()) + " --trabajo " +
             paraLaShell((c / "trabajo").string());
  for (const auto& a : argumentos) orden.append(1, ' ').append(paraLaShell(a));
  orden += " >" + paraLaShell((c / "salida.txt").string()) + " 2>" + paraLaShell((c / "errores.txt").string());
  const int r = std::system(orden.c_str());
  return {WIFEXITED(r) ? WEXITSTATUS(r) : -1, leeBytes(c / "salida.txt"), leeBytes(c / "errores.txt")};
}

}  // namespace valdor::pruebas

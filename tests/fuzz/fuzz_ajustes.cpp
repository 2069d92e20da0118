// Fuzz target: the settings file VALDOR.MDB. Any bytes either read as a settings record
// (176 bytes, its four fields printable and of their widths, and written back the same)
// or give an error that names the file, with the record in memory left as it was and
// the file untouched.

#include <string>
#include <string_view>
#include <vector>

#include "shell/ajustes.h"
#include "stores/texto.h"
#include "tests/fuzz/carpeta.h"
#include "tests/fuzz/objetivo.h"

namespace valdor::fuzz {

const char* const NOMBREOBJETIVO = "ajustes";

std::vector<std::string> semillas() {
  const std::string ruta = ajusta("C:\\WINSUITE\\WINSUITE.EXE", 150);
  return {
      "00000123SILCON01" + ruta + "01/02/2024",
      "        " "        " + std::string(150, ' ') + "          ",
      "1       2       " + ajusta("\\\\SRV\\WS\\W.EXE", 150) + "  /  /    ",
      "1       2       " + ajusta("/opt/winsuite", 150) + "          ",
      "ABC     " "DEF     " + ajusta("0", 150) + "31/12/1999",
  };
}

}  // namespace valdor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* datos, std::size_t tamano) {
  using namespace valdor;
  using namespace valdor::fuzz;
  const std::string bytes(reinterpret_cast<const char*>(datos), tamano);

  // Taken straight from bytes of any length: printable fields, and only those reached.
  REGINTERCAMBIO directo{"a", "b", "c", "d"};
  desdeBytes(bytes, directo);
  for (const std::string* campo : {&directo.CLAVEAUTORIZA, &directo.CLAVESILCON, &directo.RUTAWINSUITE, &directo.FECHAAUTORIZA})
    if (!sinControl(*campo)) fallaFuzz("desdeBytes deja un byte de control");

  const auto fichero = escribe("VALDOR.MDB", bytes);
  FicheroAjustes f(carpeta().ruta());
  const REGINTERCAMBIO antes{"a", "b", "c", "d"};
  REGINTERCAMBIO reg = antes;
  try {
    const bool leido = f.lee(reg);
    if (!leido) {
      if (!bytes.empty()) fallaFuzz("un fichero con bytes no se ha leído ni rechazado");
      return 0;
    }
    if (bytes.size() != LONGITUDREGISTRO || defectoDelRegistro(bytes)) fallaFuzz("se ha aceptado lo que no es un registro");
    if (reg.CLAVEAUTORIZA.size() != 8 || reg.CLAVESILCON.size() != 8 || reg.RUTAWINSUITE.size() != 150 ||
        reg.FECHAAUTORIZA.size() != 10)
      fallaFuzz("anchos de los campos");
    if (aBytes(reg) != bytes) fallaFuzz("el registro leído no da los mismos bytes");
    // What was read can be saved and read back the same.
    f.escribe(reg);
    REGINTERCAMBIO otra;
    if (!f.lee(otra) || aBytes(otra) != bytes) fallaFuzz("ida y vuelta");
  } catch (const ErrorAjustes& e) {
    const std::string mensaje = e.what();
    if (mensaje.find(fichero.filename().string()) == std::string::npos) fallaFuzz("el mensaje no nombra el fichero");
    if (!sinControl(mensaje.substr(0, mensaje.find(": ")))) fallaFuzz("mensaje con bytes de control");
    if (reg.CLAVEAUTORIZA != antes.CLAVEAUTORIZA || reg.RUTAWINSUITE != antes.RUTAWINSUITE)
      fallaFuzz("un registro rechazado ha cambiado el de memoria");
    if (leeBytes(fichero) != bytes) fallaFuzz("un registro rechazado se ha tocado");
  }
  return 0;
}

#include "shell/rutas.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "stores/ficheros.h"
#include "stores/texto.h"

namespace valdor {

namespace fs = std::filesystem;

EntornoWine entornoWineDelSistema() {
  if (const char* prefijo = std::getenv("WINEPREFIX"); prefijo && *prefijo) return {fs::path(prefijo)};
  const char* casa = std::getenv("HOME");
  return {fs::path(casa && *casa ? casa : ".") / ".wine"};
}

fs::path rutaNativa(std::string_view rutaWindows, const EntornoWine& entorno) {
  std::string ruta = cp1252AUtf8(recorta(rutaWindows));
  for (char& c : ruta)
    if (c == '\\') c = '/';
  fs::path actual;
  std::string_view resto = ruta;
  const bool conUnidad = ruta.size() >= 2 && ruta[1] == ':' &&
                         ((ruta[0] >= 'A' && ruta[0] <= 'Z') || (ruta[0] >= 'a' && ruta[0] <= 'z'));
  if (conUnidad) {
    const char unidad = static_cast<char>(ruta[0] | 0x20);
    actual = entorno.prefijo / "dosdevices" / (std::string(1, unidad) + ":");
    std::error_code ec;
    if (unidad == 'c' && !fs::exists(actual, ec)) actual = entorno.prefijo / "drive_c";
    resto.remove_prefix(2);
  } else if (!resto.empty() && resto.front() == '/') {
    actual = "/";
  }
  // Each part of the path, looked for ignoring case where its exact name is missing.
  while (!resto.empty()) {
    const std::size_t barra = resto.find('/');
    const std::string_view parte = resto.substr(0, barra);
    resto = barra == std::string_view::npos ? std::string_view{} : resto.substr(barra + 1);
    if (parte.empty() || parte == ".") continue;
    actual = actual.empty() ? fs::path(std::string(parte)) : resuelveFichero(actual, parte);
  }
  return actual;
}

std::vector<std::string> ordenDeArranque(std::string_view programa, const std::vector<std::string>& argumentos,
                                         const EntornoWine& entorno) {
  const std::string limpio = recorta(programa);
  std::vector<std::string> orden;
  const bool esWindows = limpio.size() >= 2 && limpio[1] == ':';
  if (mayusculas(derecha(limpio, 4)) == ".EXE") {
    orden = {"wine", rutaNativa(limpio, entorno).string()};
  } else {
    orden = {esWindows ? rutaNativa(limpio, entorno).string() : cp1252AUtf8(limpio)};
  }
  for (const std::string& a : argumentos) orden.push_back(a);
  return orden;
}

namespace {

// Reads the errno that the started process writes when its exec fails; nothing is read
// (the pipe closes on exec) when the program runs.
std::optional<int> errorDelArranque(int lectura) {
  int error = 0;
  ssize_t leidos = 0;
  do {
    leidos = ::read(lectura, &error, sizeof error);
  } while (leidos < 0 && errno == EINTR);
  if (leidos == static_cast<ssize_t>(sizeof error)) return error;
  return std::nullopt;
}

}  // namespace

std::optional<std::string> LanzadorDelSistema::lanza(const std::vector<std::string>& orden) {
  if (orden.empty()) return std::string("no hay ninguna orden que ejecutar");
  if (orden.front() == "wine" && orden.size() > 1) {
    std::error_code ec;
    if (!fs::is_regular_file(orden[1], ec)) return "no existe el programa " + entreComillas(orden[1]);
  }
  std::vector<char*> argv;
  for (const std::string& a : orden) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  int tubo[2];
  if (::pipe2(tubo, O_CLOEXEC) != 0) return razonDelSistema(errno);
  // Two forks: the program runs on its own, nobody waits for it, and no child is left
  // behind unreaped. A failed exec writes its errno into the pipe.
  const pid_t hijo = ::fork();
  if (hijo < 0) {
    const int error = errno;
    ::close(tubo[0]);
    ::close(tubo[1]);
    return razonDelSistema(error);
  }
  if (hijo == 0) {
    ::close(tubo[0]);
    ::setsid();
    const pid_t nieto = ::fork();
    if (nieto == 0) {
      const int nulo = ::open("/dev/null", O_RDWR);
      if (nulo >= 0) {
        ::dup2(nulo, 0);
        ::dup2(nulo, 1);
        ::dup2(nulo, 2);
      }
      ::execvp(argv[0], argv.data());
    }
    if (nieto > 0) ::_exit(0);
    // Here the exec (or the second fork) failed.
    const int error = errno;
    [[maybe_unused]] const ssize_t escritos = ::write(tubo[1], &error, sizeof error);
    ::_exit(127);
  }
  ::close(tubo[1]);
  const std::optional<int> error = errorDelArranque(tubo[0]);
  ::close(tubo[0]);
  int estado = 0;
  ::waitpid(hijo, &estado, 0);
  if (error) return razonDelSistema(*error);
  return std::nullopt;
}

std::string textoFalloArranque(std::string_view programa, const std::vector<std::string>& orden,
                               std::string_view motivo) {
  std::string linea;
  for (const std::string& parte : orden) linea.append(linea.empty() ? "" : " ").append(parte);
  return std::string("No se ha podido arrancar ").append(recorta(programa)).append(". Orden ejecutada: ")
      .append(utf8ACp1252(linea)).append(". Motivo: ").append(motivo).append(".");
}

std::string rutaWindows(const std::filesystem::path& nativa, const EntornoWine& entorno) {
  auto dentro = [&](const fs::path& base, std::string unidad) -> std::optional<std::string> {
    const fs::path relativa = nativa.lexically_normal().lexically_relative(base.lexically_normal());
    if (relativa.empty() || *relativa.begin() == "..") return std::nullopt;
    for (const auto& parte : relativa) unidad.append(1, '\\').append(parte.string());
    return unidad;
  };
  if (auto r = dentro(entorno.prefijo / "drive_c", "C:")) return utf8ACp1252(*r);
  std::error_code ec;
  for (const auto& unidad : fs::directory_iterator(entorno.prefijo / "dosdevices", ec)) {
    const std::string nombre = unidad.path().filename().string();
    if (nombre.size() != 2 || nombre[1] != ':') continue;
    if (auto r = dentro(unidad.path(), mayusculasAscii(nombre))) return utf8ACp1252(*r);
  }
  return utf8ACp1252(nativa.string());
}

}  // namespace valdor

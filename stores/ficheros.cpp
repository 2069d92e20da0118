#include "stores/ficheros.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <optional>
#include <system_error>
#include <utility>

#include "stores/literales.h"
#include "stores/texto.h"

namespace valdor {

std::string entreComillas(const std::filesystem::path& ruta) {
  return std::string(1, '"').append(utf8ACp1252(ruta.string())).append(1, '"');
}

// The reasons a clerk meets when a file or a folder fails, in Spanish: the C library
// would give them in English. Any other value keeps its number, so support can look it up.
std::string razonDelSistema(int error) {
  switch (error) {
    case ENOENT: return "no existe el fichero o la carpeta";
    case EACCES: return std::string("no hay permiso de acceso"_cp);
    case EPERM: return std::string("la operación no está permitida"_cp);
    case ENOSPC: return "no queda espacio en el disco";
    case EDQUOT: return "se ha agotado la cuota de disco del usuario";
    case EROFS: return std::string("el disco es de solo lectura"_cp);
    case EISDIR: return "es una carpeta, no un fichero";
    case ENOTDIR: return "una parte de la ruta no es una carpeta";
    case EEXIST: return "ya existe";
    case EBUSY: return std::string("está en uso"_cp);
    case EAGAIN: return std::string("el recurso no está disponible por ahora; inténtelo de nuevo"_cp);
    case ENAMETOOLONG: return "el nombre es demasiado largo";
    case EMFILE: case ENFILE: return "hay demasiados ficheros abiertos";
    case EIO: return "error de entrada o salida del dispositivo";
    case ENXIO: case ENODEV: return std::string("el dispositivo no existe o no está conectado"_cp);
    case ETXTBSY: return std::string("el fichero está en uso por un programa"_cp);
    case ELOOP: return std::string("hay demasiados enlaces simbólicos en la ruta"_cp);
    case EFBIG: return "el fichero es demasiado grande";
    case EINVAL: return std::string("el argumento no es válido"_cp);
    default: return "error del sistema " + std::to_string(error);
  }
}

std::string conFicheroNoGenerado(std::string_view mensaje) {
  std::string r(mensaje);
  if (r.find("no se ha generado") == std::string::npos) r += " El fichero no se ha generado.";
  return r;
}

bool esDiscoLleno(int error) { return error == ENOSPC || error == EDQUOT; }

std::filesystem::path resuelveFichero(const std::filesystem::path& carpeta, std::string_view nombre) {
  const std::filesystem::path exacta = carpeta / std::string(nombre);
  std::error_code ec;
  if (std::filesystem::exists(exacta, ec)) return exacta;
  const std::string buscado = mayusculasAscii(nombre);
  std::optional<std::filesystem::path> hallada;
  const std::filesystem::path donde = carpeta.empty() ? std::filesystem::path(".") : carpeta;
  for (std::filesystem::directory_iterator it(donde, ec), fin; !ec && it != fin; it.increment(ec)) {
    const std::string otro = it->path().filename().string();
    if (mayusculasAscii(otro) == buscado && (!hallada || otro < hallada->filename().string()))
      hallada = carpeta / otro;
  }
  return hallada.value_or(exacta);
}

int escribeTodo(int fd, std::string_view datos, off_t desde) {
  std::size_t hecho = 0;
  while (hecho < datos.size()) {
    const ssize_t n = ::pwrite(fd, datos.data() + hecho, datos.size() - hecho, desde + static_cast<off_t>(hecho));
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) return ENOSPC;
    hecho += static_cast<std::size_t>(n);
  }
  return 0;
}

std::filesystem::path nombreTemporal(const std::filesystem::path& destino, int intento) {
  return destino.parent_path() /
         (destino.filename().string() + "." + std::to_string(::getpid()) + "." + std::to_string(intento) + ".tmp");
}

void limpiaTemporalesHuerfanos(const std::filesystem::path& destino) {
  const std::string prefijo = destino.filename().string() + ".";
  std::error_code ec;
  const std::filesystem::path carpeta = destino.parent_path().empty() ? "." : destino.parent_path();
  for (std::filesystem::directory_iterator it(carpeta, ec), fin; !ec && it != fin; it.increment(ec)) {
    const std::string nombre = it->path().filename().string();
    if (!nombre.starts_with(prefijo) || !nombre.ends_with(".tmp")) continue;
    // NAME.<pid>.<attempt>.tmp
    const std::string resto = nombre.substr(prefijo.size(), nombre.size() - prefijo.size() - 4);
    const std::size_t punto = resto.find('.');
    if (punto == 0 || punto == std::string::npos) continue;
    const std::string pid = resto.substr(0, punto), intento = resto.substr(punto + 1);
    auto soloCifras = [](const std::string& t) {
      return !t.empty() && t.size() <= 9 && t.find_first_not_of("0123456789") == std::string::npos;
    };
    if (!soloCifras(pid) || !soloCifras(intento)) continue;
    const pid_t dueno = static_cast<pid_t>(std::stol(pid));
    if (dueno == ::getpid() || ::kill(dueno, 0) == 0 || errno != ESRCH) continue;
    std::error_code borrado;
    std::filesystem::remove(it->path(), borrado);
  }
}

int reemplazaFichero(const std::filesystem::path& destino, std::string_view contenido) {
  std::filesystem::path temporal;
  int fd = -1;
  for (int intento = 0; fd < 0 && intento < INTENTOSTEMPORAL; ++intento) {
    temporal = nombreTemporal(destino, intento);
    fd = ::open(temporal.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) return errno;
  }
  if (fd < 0) return EEXIST;

  int error = escribeTodo(fd, contenido, 0);
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  if (error == 0 && ::rename(temporal.c_str(), destino.c_str()) != 0) error = errno;
  if (error != 0) ::unlink(temporal.c_str());
  return error;
}

CerrojoRegistro::CerrojoRegistro(int fd, off_t desde, off_t largo, bool exclusivo)
    : fd_(fd), desde_(desde), largo_(largo) {
  const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  for (;;) {
    if (pide(exclusivo ? F_WRLCK : F_RDLCK) == 0) {
      tomado_ = true;
      return;
    }
    const int error = errno;
    if (error == EINTR) continue;
    if (error != EAGAIN && error != EACCES) return;  // ENOLCK, EINVAL, EOPNOTSUPP: no locks here
    if (std::chrono::steady_clock::now() >= limite) {
      ocupado_ = true;
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

CerrojoRegistro::~CerrojoRegistro() {
  if (tomado_) pide(F_UNLCK);
}

int CerrojoRegistro::pide(short tipo) const {
  struct flock cerrojo {};
  cerrojo.l_type = tipo;
  cerrojo.l_whence = SEEK_SET;
  cerrojo.l_start = desde_;
  cerrojo.l_len = largo_;
  cerrojo.l_pid = 0;
  return ::fcntl(fd_, F_OFD_SETLK, &cerrojo);
}

namespace {

[[noreturn]] void fallaEscritura(const std::filesystem::path& ruta, int error) {
  if (esDiscoLleno(error))
    throw ErrorFichero("No queda espacio en el disco para escribir " + entreComillas(ruta) +
                       ". El fichero no se ha generado.");
  throw ErrorFichero("No se puede escribir " + entreComillas(ruta) + ": " + razonDelSistema(error) +
                     ". El fichero no se ha generado.");
}

}  // namespace

CerrojoCarpeta::CerrojoCarpeta(const std::filesystem::path& carpeta) {
  fd_ = ::open(carpeta.empty() ? "." : carpeta.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd_ < 0)
    throw ErrorFichero("No se puede abrir la carpeta de trabajo " + entreComillas(carpeta) + ": " +
                       razonDelSistema(errno) + ".");
  while (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    // EWOULDBLOCK: another run holds it. Anything else: no locks on this file system.
    tomado_ = errno != EWOULDBLOCK;
    if (tomado_) ::close(std::exchange(fd_, -1));
    return;
  }
  tomado_ = true;
}

CerrojoCarpeta::~CerrojoCarpeta() {
  if (fd_ >= 0) ::close(fd_);  // closing the folder lets the lock go
}

FicheroRegistros::FicheroRegistros(std::filesystem::path destino) : destino_(std::move(destino)) {
  std::error_code ec;
  if (!destino_.parent_path().empty()) std::filesystem::create_directories(destino_.parent_path(), ec);
  limpiaTemporalesHuerfanos(destino_);
  for (int intento = 0; fd_ < 0 && intento < INTENTOSTEMPORAL; ++intento) {
    temporal_ = nombreTemporal(destino_, intento);
    fd_ = ::open(temporal_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd_ < 0 && errno != EEXIST) fallaEscritura(destino_, errno);
  }
  if (fd_ < 0) fallaEscritura(destino_, EEXIST);
}

FicheroRegistros::~FicheroRegistros() {
  if (fd_ >= 0) ::close(fd_);
  if (!confirmado_ && !temporal_.empty()) ::unlink(temporal_.c_str());
}

void FicheroRegistros::imprime(std::string_view linea) {
  pendiente_.append(linea).append("\r\n");
  longitud_ += linea.size() + 2;
  if (pendiente_.size() >= TAMANOBLOQUE) vuelca();
}

void FicheroRegistros::vuelca() {
  const off_t desde = static_cast<off_t>(longitud_ - pendiente_.size());
  if (const int error = escribeTodo(fd_, pendiente_, desde); error != 0) fallaEscritura(destino_, error);
  pendiente_.clear();
}

void FicheroRegistros::imprimeRegistro(std::string_view linea, std::string_view donde) {
  const std::string registro = imprimible(linea);
  if (registro.size() != LARGOREGISTRO) {
    // Control characters shown as blanks, and no more than a line's worth.
    throw ErrorFichero(std::string("La línea "_cp) + std::string(donde) + " mide " + std::to_string(registro.size()) +
                       std::string(" caracteres y debe medir 70: \""_cp) + izquierda(registro, 100) + "\". " +
                       std::string("El fichero "_cp) + entreComillas(destino_) + " no se ha generado.");
  }
  imprime(registro);
}

void FicheroRegistros::confirma(const RevisionEscrito& revision) {
  vuelca();
  int error = ::fsync(fd_) != 0 ? errno : 0;
  if (::close(fd_) != 0 && error == 0) error = errno;
  fd_ = -1;
  if (error == 0 && revision) revision(temporal_, destino_);
  if (error == 0 && ::rename(temporal_.c_str(), destino_.c_str()) != 0) error = errno;
  if (error != 0) fallaEscritura(destino_, error);
  confirmado_ = true;
}

}  // namespace valdor

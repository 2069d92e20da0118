// Windows paths on this system: the paths that the rules build are Windows paths (the
// transmission tool's folders); they are kept and shown as such, and opened through the
// Wine drives, where the tool runs and sees the same folders. Programs the rules name
// start through Wine when they are Windows programs.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdor {

// Where the Windows drives of the transmission tool are: the Wine prefix.
struct EntornoWine {
  std::filesystem::path prefijo;  // $WINEPREFIX, or ~/.wine
};
EntornoWine entornoWineDelSistema();

// The native form of a path the rules build: backslashes become "/", a drive "X:"
// becomes the Wine drive prefijo/dosdevices/x: (for "C:" falling back to
// prefijo/drive_c when that link is missing). Each part of the path that is missing
// under its exact name is looked for ignoring case.
std::filesystem::path rutaNativa(std::string_view rutaWindows, const EntornoWine& entorno);

// The Windows form of a native path, the reverse of `rutaNativa`: a path inside the
// prefix's drive_c or one of its dosdevices drives becomes "X:\..."; any other path is
// kept as it is. Windows-1252 text, as the settings keep it.
std::string rutaWindows(const std::filesystem::path& nativa, const EntornoWine& entorno);

// The command that starts a program the rules name: a Windows ".EXE" runs through
// "wine" with its native path; anything else runs as it stands. Arguments follow.
std::vector<std::string> ordenDeArranque(std::string_view programa, const std::vector<std::string>& argumentos,
                                         const EntornoWine& entorno);

// Starts programs without waiting for them. `lanza` returns why the program could not
// be started (Windows-1252 text), or std::nullopt once it is running.
class Lanzador {
 public:
  virtual ~Lanzador() = default;
  virtual std::optional<std::string> lanza(const std::vector<std::string>& orden) = 0;
};

// The real one: a detached process, which nobody waits for. A program that cannot be
// executed (missing, not executable) is told with the system's reason; a Windows program
// run through "wine" is looked for first, since wine itself starts and only then fails.
class LanzadorDelSistema : public Lanzador {
 public:
  std::optional<std::string> lanza(const std::vector<std::string>& orden) override;
};

// The failure of a start as the user reads it: what was started (the route as the
// settings give it and the command that ran) and why it failed.
std::string textoFalloArranque(std::string_view programa, const std::vector<std::string>& orden,
                               std::string_view motivo);

}  // namespace valdor

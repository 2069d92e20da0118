// The run of the program: the global variables that carry an exchange from the
// wizard to the writers and the editor, the settings record in memory, the stores,
// and the start and exit sequences. One object of this class is the program's state;
// the forms and the command line hold it and pass it by reference.
#pragma once

#include <array>
#include <atomic>
#include <optional>
#include <string>

#include "shell/ajustes.h"
#include "stores/dialogos.h"
#include "shell/momento.h"
#include "shell/rutas.h"
#include "stores/catalogo.h"
#include "stores/ficheros.h"
#include "stores/numeros.h"

namespace valdor {

// The program's global variables. Flags that cross forms are doubles holding 0 or 1.
struct Globales {
  std::string SEPDECIMAL = ".";
  std::string SEPMILES = ",";
  double COMADECIMAL = 0;
  std::string RUTAWS;    // RUTAWINSUITE as read, not trimmed
  std::string LANZADOR;  // command line of the transmission tool
  std::string LINEAETI;
  std::string LINEASIL;
  std::string LINEAEMPAFI;
  std::string LINEARZSAFI;
  std::string FICHEROSALIDA;
  std::string FICHEROEDITADO;
  double PASOASISTENTE = 0;
  double CANCELADO = 0;
  double HAYEXCLUIDAS = 0;
  double EDITAAFI = 0;
  std::string EMISORNOMBRE;
  std::string MESPROCESO;
  std::string ANOPROCESO;
  // The output of the accent mapping, kept from one name to the next.
  std::string TEXTOPLANO;
  // Set when a worker's line came out longer than 70 characters (it is kept cut at 70);
  // the wizard warns at its end. The statement run clears it when it starts.
  double LINEALARGA = 0;
  // The printer port of the statement ("" for LPT1): VALDOR_IMPRESORA of the environment.
  std::string PUERTOIMPRESORA;
  // How far the form's feed moves the statement drawn on a page ("" for none; "V" or
  // "V,H" in millimetres down and to the right): VALDOR_DESPLAZAMIENTO of the environment.
  std::string DESPLAZAMIENTOIMPRESO;
  // The TC1 lines of the company at hand, entries 1 to 25 (entry 0 is not used).
  std::array<std::string, 26> LINEASTC1;
};

// Where a job began: the errors shown and the store failures met so far.
struct MarcaTrabajo {
  int errores = 0;
  int fallos = 0;
};

class Programa {
  // Before the stores, which report through it.
  DialogosContados dialogos_;

 public:
  // `sistema` are the separators of the machine's regional setting (read once by the
  // caller with separadoresDelSistema, or pinned by a test); `fijo` fixes the moment of
  // the run, which otherwise is the machine's clock at each reading.
  Programa(Carpetas carpetas, Dialogos& dialogos, Separadores sistema, std::optional<Momento> fijo = std::nullopt);
  ~Programa();
  Programa(const Programa&) = delete;
  Programa& operator=(const Programa&) = delete;

  Globales g;
  REGINTERCAMBIO registro;
  Almacenes almacenes;
  // Where the Windows drives of the transmission tool are.
  EntornoWine entornoWine = entornoWineDelSistema();
  // What looks at each exchange file the writers make, before it takes its name (the
  // field checks, when the caller asks for them); none by default.
  RevisionEscrito revisaEscrito;
  // What that look found in the files of the job under way, for a person ("" when
  // nothing): the question that offers to edit the file shows it first. Each writer
  // empties it as it starts.
  std::string hallazgosEscritos;

  Dialogos& dialogos() { return dialogos_; }

  // A job's file is whole only when nothing failed while it ran: `marca` at its start,
  // `motivoDeFallo` before the file takes its final name. The reason names the failure
  // (a store that failed, even where a rule read it as empty and went on; a store still
  // closed since its opening failed; an error shown), or std::nullopt.
  MarcaTrabajo marca() const { return {dialogos_.errores(), almacenes.fallos().cuenta}; }
  std::optional<std::string> motivoDeFallo(MarcaTrabajo inicio) const;

  // The user's request to stop the job that runs (the desktop's "Cancelar"). A job
  // clears it when it starts and calls `atiendeParada` between two workers and two
  // companies, which throws TrabajoCancelado once a stop was asked.
  void pideParada() { parada_ = true; }
  void retiraParada() { parada_ = false; }
  bool paradaPedida() const { return parada_; }
  void atiendeParada() const;
  const Carpetas& carpetas() const { return almacenes.carpetas(); }
  const Separadores& separadores() const { return sistema_; }
  Momento ahora() const { return ahora_ ? *ahora_ : momentoActual(); }

  // The start of the main window, before it is shown: the work folder taken for this
  // run (a temp store that a run now gone left there is deleted), the decimal
  // separator, the work stores and the master stores in their order (close, create,
  // open), the settings and the sender's name. Throws CarpetaOcupada when another run
  // (the desktop program or the command line) uses the work folder.
  void arranca();
  // The exit: the four work stores closed in their order, then "TEMPORAL VALDOR.MDB"
  // deleted. Harmless twice; also run at the end of the object's life.
  void termina() noexcept;

 private:
  void tomaCarpeta();
  void detectaSeparadores();
  void leeAjustes();

  Separadores sistema_;
  std::optional<Momento> ahora_;
  bool arrancado_ = false;
  std::optional<CerrojoCarpeta> cerrojo_;
  std::atomic<bool> parada_ = false;
};

// Another run holds the work folder: its temp store is that run's alone.
class CarpetaOcupada : public ErrorValdor {
 public:
  using ErrorValdor::ErrorValdor;
};

// A job stopped at the user's request: nothing failed, and nothing was written.
class TrabajoCancelado : public ErrorValdor {
 public:
  TrabajoCancelado();
};

}  // namespace valdor

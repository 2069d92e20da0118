// valdor: the desktop program of VALDOR+.
//
//   valdor [--programa DIR] [--trabajo DIR] [--ahora "AAAA-MM-DD HH:MM"] [--captura FICHERO.png]
//
// The folders and the moment are taken as the command line takes them. With --captura the
// program starts as usual, prepares the wizard for a contribution, saves a picture of the
// whole window and ends: the way to look at it without a screen (QT_QPA_PLATFORM=offscreen).

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

#include "shell/asistente.h"
#include "shell/forms/dialogos_qt.h"
#include "app/frmmain.h"
#include "shell/programa.h"
#include "stores/texto.h"

namespace fs = std::filesystem;
using namespace valdor;
using namespace valdor::formularios;

namespace {

constexpr int SALIDABIEN = 0;
constexpr int SALIDAFALLO = 1;
constexpr int SALIDALLAMADA = 2;

constexpr const char* USO =
    "Uso: valdor [--programa DIR] [--trabajo DIR] [--ahora \"AAAA-MM-DD HH:MM\"] [--captura FICHERO.png]\n"
    "\n"
    "La carpeta del programa es la del ejecutable, salvo --programa o VALDOR_PROGRAMA.\n"
    "La carpeta de trabajo es la actual; --trabajo cambia a ella antes de empezar.\n"
    "--captura guarda una imagen de la ventana con el asistente preparado y termina.\n";

struct Llamada {
  Carpetas carpetas;
  std::optional<Momento> ahora;  // fixed by --ahora; otherwise the clock at each reading
  std::optional<QString> captura;
};

struct ErrorLlamada {
  QString texto;
  int salida;
};

Llamada leeLlamada(const QStringList& argumentos) {
  std::optional<fs::path> programa, trabajo;
  std::optional<Momento> ahora;
  Llamada llamada;
  for (qsizetype i = 1; i < argumentos.size(); ++i) {
    const QString& a = argumentos[i];
    auto valor = [&]() -> QString {
      if (i + 1 >= argumentos.size()) throw ErrorLlamada{QStringLiteral("Falta el valor de ") + a + ".", SALIDALLAMADA};
      return argumentos[++i];
    };
    if (a == QLatin1String("--programa")) {
      programa = fs::absolute(fs::path(valor().toStdString()));  // relative to where the call was made
    } else if (a == QLatin1String("--trabajo")) {
      trabajo = fs::absolute(fs::path(valor().toStdString()));
    } else if (a == QLatin1String("--ahora")) {
      const QString texto = valor();
      ahora = leeMomento(texto.toStdString());
      if (!ahora)
        throw ErrorLlamada{QStringLiteral("--ahora espera \"AAAA-MM-DD HH:MM\" con una fecha y hora reales: ") +
                               texto + ".",
                           SALIDALLAMADA};
    } else if (a == QLatin1String("--captura")) {
      llamada.captura = valor();
    } else {
      throw ErrorLlamada{QString::fromUtf8("Opción desconocida: ") + a + ".", SALIDALLAMADA};
    }
  }
  // Every folder named relative to where the call was made, before any change of folder.
  if (!programa) {
    if (const char* entorno = std::getenv("VALDOR_PROGRAMA"); entorno && *entorno) programa = fs::absolute(entorno);
  }
  if (trabajo) {
    std::error_code ec;
    fs::current_path(*trabajo, ec);
    if (ec)
      throw ErrorLlamada{QString::fromUtf8("No se puede entrar en la carpeta de trabajo \"") +
                             QString::fromStdString(trabajo->string()) + "\".",
                         SALIDAFALLO};
  }
  llamada.carpetas.programa =
      fs::absolute(programa.value_or(fs::path(QCoreApplication::applicationDirPath().toStdString())));
  llamada.carpetas.trabajo = fs::current_path();
  std::error_code ec;
  if (!fs::is_directory(llamada.carpetas.programa, ec))
    throw ErrorLlamada{QStringLiteral("No existe la carpeta del programa \"") +
                           QString::fromStdString(llamada.carpetas.programa.string()) + "\".",
                       SALIDAFALLO};
  llamada.ahora = ahora;
  return llamada;
}

// The start of the main window. A start that cannot go on (another run holds the work
// folder) is told in a box and on the error output, and the program ends.
bool cargaVentana(frmMain& ventana) {
  try {
    ventana.carga();
    return true;
  } catch (const std::exception& e) {
    const QString texto = QString::fromStdString(cp1252AUtf8(e.what()));
    std::cerr << texto.toStdString() << '\n';
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
      QMessageBox::critical(nullptr, QStringLiteral("VALDOR+"), texto);
    return false;
  }
}

// A picture of the window with the wizard prepared for a contribution. Any box that
// the start brings up is closed as soon as it shows, so that nothing waits for a user.
int captura(QApplication& aplicacion, frmMain& ventana, const QString& fichero) {
  QTimer cierraCuadros;
  QObject::connect(&cierraCuadros, &QTimer::timeout, [] {
    if (QWidget* cuadro = QApplication::activeModalWidget()) cuadro->close();
  });
  cierraCuadros.start(200);
  ventana.show();
  if (!cargaVentana(ventana)) return SALIDAFALLO;
  ventana.pulsaBarraLista(QStringLiteral("cotiza"));
  int salida = SALIDABIEN;
  QTimer::singleShot(500, &ventana, [&] {
    const bool guardada = ventana.grab().save(fichero, "PNG");
    if (!guardada) std::cerr << "No se puede guardar la imagen \"" << fichero.toStdString() << "\".\n";
    salida = guardada ? SALIDABIEN : SALIDAFALLO;
    aplicacion.quit();
  });
  aplicacion.exec();
  return salida;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication aplicacion(argc, argv);
  // Qt takes the user's locale for the C library; the core's numbers don't depend on it.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName(QStringLiteral("VALDOR+"));

  Llamada llamada;
  try {
    llamada = leeLlamada(QCoreApplication::arguments());
  } catch (const ErrorLlamada& e) {
    std::cerr << e.texto.toStdString() << '\n';
    if (e.salida == SALIDALLAMADA)
      std::cerr << USO;
    else if (QGuiApplication::platformName() != QLatin1String("offscreen"))
      QMessageBox::critical(nullptr, QStringLiteral("VALDOR+"), e.texto);
    return e.salida;
  }

  DialogosQt dialogos;
  Programa programa(llamada.carpetas, dialogos, separadoresDelSistema(), llamada.ahora);
  LanzadorDelSistema lanzador;
  frmMain ventana(programa, lanzador, entornoWineDelSistema());
  dialogos.ponVentana(&ventana);
  QObject::connect(&dialogos, &DialogosQt::progresoCambiado, &ventana, &frmMain::muestraProgreso);
  ventana.resize(frmMain::TAMANOINICIAL);

  if (llamada.captura) return captura(aplicacion, ventana, *llamada.captura);
  ventana.show();
  if (!cargaVentana(ventana)) return SALIDAFALLO;
  return aplicacion.exec();
}

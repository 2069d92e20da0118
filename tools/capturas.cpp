// valdor-capturas: the README's pictures of the month's FAN run, drawn by the desktop's
// own forms over a generated office (600 companies of 25 workers, October 2026):
//  - seleccion-empresas.png: the company selection after "VERIFICAR EMPRESAS", with a
//    filter typed, a few companies marked and the count under the list;
//  - proceso-largo.png: the statement run's window in the middle of the run, with
//    "empresa n de N", the company, the worker, the progress and "Cancelar";
//  - proceso-cancelado.png: the message after that "Cancelar", with no file left.
//
//   valdor-capturas CARPETA      (run by tools/capturas.sh under xvfb-run)
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <clocale>
#include <filesystem>
#include <iostream>

#include "engine/forms/cotval.h"
#include "fan/forms/cotizacion.h"
#include "shell/asistente.h"
#include "shell/forms/dialogos_qt.h"
#include "shell/programa.h"
#include "muestra/oficina_muestra.h"

namespace fs = std::filesystem;
using namespace valdor;

namespace {

bool guarda(QWidget* ventana, const fs::path& fichero) {
  const bool hecho = ventana->grab().save(QString::fromStdString(fichero.string()), "PNG");
  if (!hecho) std::cerr << "No se puede guardar " << fichero << '\n';
  return hecho;
}

QToolButton* elemento(QWidget* ventana, const char* clave) {
  for (QToolButton* b : ventana->findChildren<QToolButton*>())
    if (b->property("clave").toString() == QLatin1String(clave)) return b;
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication aplicacion(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  if (argc != 2) {
    std::cerr << "uso: valdor-capturas CARPETA\n";
    return 2;
  }
  const fs::path salida = fs::absolute(argv[1]);
  fs::create_directories(salida);
  QTemporaryDir temporal;
  const fs::path raiz = temporal.path().toStdString();
  const Carpetas carpetas{raiz / "programa", raiz / "trabajo"};
  escribeOficinaMuestra(carpetas, OpcionesMuestra{10, 2026, 600, 25});

  formularios::DialogosQt dialogos;
  Programa programa(carpetas, dialogos, Separadores{}, Momento{2026, 11, 15, 7, 30, 0});
  programa.entornoWine = {raiz / "wine"};
  programa.arranca();
  PaginaIntercambio pagina;
  pagina.marcaCotizacion();
  preparaPagina(programa, pagina, true);
  programa.g.LINEAETI = LINEAETI(pagina, programa.registro);

  formularios::MotorEscritorio motor(nullptr);
  formularios::COTIZACION seleccion(programa, pagina, motor);
  dialogos.ponVentana(&seleccion);
  seleccion.resize(860, 620);
  seleccion.show();
  seleccion.findChild<QPushButton*>(QStringLiteral("PRESIONBOTON"))->click();
  auto* rejilla = seleccion.findChild<QTableWidget*>(QStringLiteral("grid"));
  for (int fila : {10, 12, 15}) rejilla->item(fila, formularios::COTIZACION::SEL)->setCheckState(Qt::Checked);
  auto* filtro = seleccion.findChild<QLineEdit*>(QStringLiteral("filtro"));
  // Part of the generated names ("EMPRESA DE MUESTRA 00011, S.L."), in small letters.
  filtro->setText(QStringLiteral("muestra 0001"));
  QApplication::processEvents();
  bool bien = guarda(&seleccion, salida / "seleccion-empresas.png");
  filtro->clear();
  seleccion.findChild<QCheckBox*>(QStringLiteral("MarcarTodas"))->click();

  // Half-way through the run: the picture, then "Cancelar"; then the message it brings.
  int paso = 0;
  QTimer vigia;
  QObject::connect(&vigia, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (paso == 0 && modal && modal->objectName() == QLatin1String("COTVAL")) {
      if (++paso; !guarda(modal, salida / "proceso-largo.png")) bien = false;
      modal->findChild<QPushButton*>(QStringLiteral("Cancelar"))->click();
    } else if (paso == 1 && qobject_cast<QMessageBox*>(modal)) {
      ++paso;
      if (!guarda(modal, salida / "proceso-cancelado.png")) bien = false;
      static_cast<QMessageBox*>(modal)->accept();
    }
  });
  vigia.start(1000);
  elemento(&seleccion, "pro")->click();
  if (paso != 2) {
    std::cerr << "El proceso terminó antes de la captura\n";
    bien = false;
  }
  return bien ? 0 : 1;
}

// valdor-capturas: the README's pictures, drawn by the desktop's own forms. The month's
// FAN run, over a generated office (600 companies of 25 workers, October 2026):
//  - seleccion-empresas.png: the company selection after "VERIFICAR EMPRESAS", with a
//    filter typed, a few companies marked and the count under the list;
//  - proceso-largo.png: the statement run's window in the middle of the run, with
//    "empresa n de N", the company, the worker, the progress and "Cancelar";
//  - proceso-cancelado.png: the message after that "Cancelar", with no file left.
// The main window at the size the program gives it (1024x720), over the hand-made
// sample office of October 2026, for a user whose decimal separator is the comma:
//  - asistente.png: the wizard prepared for a contribution (FAN);
//  - boletin-tc1.png: the TC1 statement form after "Calcular" of the bakery alone;
//  - vista-previa.png: the print preview of that statement on plain paper;
// and, for a user whose decimal separator is the point:
//  - editor.png: the month's FAN file written from the wizard, in the editor it offers,
//    with one line changed and not saved yet.
//
//   valdor-capturas CARPETA      (run by tools/capturas.sh under xvfb-run)
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <clocale>
#include <filesystem>
#include <iostream>

#include "app/frmmain.h"
#include "browser/forms/editor.h"
#include "engine/forms/boletin_tc1.h"
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

// The programs the window would start (the transmission tool) are not started.
class SinLanzar : public Lanzador {
 public:
  std::optional<std::string> lanza(const std::vector<std::string>&) override { return std::nullopt; }
};

const Momento MOMENTO{2026, 11, 15, 7, 30, 0};

QToolButton* elemento(QWidget* ventana, const char* clave) {
  for (QToolButton* b : ventana->findChildren<QToolButton*>())
    if (b->property("clave").toString() == QLatin1String(clave)) return b;
  return nullptr;
}

// The month's FAN run over the generated office in `raiz`.
bool capturasDelFan(const fs::path& raiz, const fs::path& salida) {
  const Carpetas carpetas{raiz / "programa", raiz / "trabajo"};
  escribeOficinaMuestra(carpetas, OpcionesMuestra{10, 2026, 600, 25});

  formularios::DialogosQt dialogos;
  Programa programa(carpetas, dialogos, Separadores{}, MOMENTO);
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
  programa.termina();
  return bien;
}

// The hand-made sample office of October 2026, written in `raiz`.
Carpetas oficinaMuestra(const fs::path& raiz) {
  const Carpetas carpetas{raiz / "programa", raiz / "trabajo"};
  escribeOficinaMuestra(carpetas, OpcionesMuestra{10, 2026, 0, 0});
  return carpetas;
}

// The main window over the sample office in `raiz`, at the size the program gives it,
// for a user with the given separators.
struct Escritorio {
  Escritorio(const fs::path& raiz, Separadores separadores)
      : programa(oficinaMuestra(raiz), dialogos, separadores, MOMENTO),
        ventana(programa, lanzador, EntornoWine{raiz / "wine"}) {
    programa.entornoWine = {raiz / "wine"};  // the files go to the office's own Wine drive
    dialogos.ponVentana(&ventana);
    QObject::connect(&dialogos, &formularios::DialogosQt::progresoCambiado, &ventana,
                     &formularios::frmMain::muestraProgreso);
    ventana.resize(formularios::frmMain::TAMANOINICIAL);
    ventana.show();
    ventana.carga();
  }
  ~Escritorio() { ventana.close(); }

  formularios::DialogosQt dialogos;
  Programa programa;
  SinLanzar lanzador;
  formularios::frmMain ventana;
};

// The wizard's "Aceptar" over the sample office, for a user whose decimal separator is
// the point (the one the rate files are written with): every company of the month, the
// question to edit the file answered "Sí", and in the editor the given name of the first
// worker retyped; the picture is taken with that change unsaved, which is then dropped.
// Any other box is accepted.
bool capturaDelEditor(const fs::path& raiz, const fs::path& salida) {
  Escritorio e(raiz, Separadores{});
  formularios::frmMain& ventana = e.ventana;
  ventana.pulsaBarraLista(QStringLiteral("cotiza"));
  enum { SELECCION, EDITOR, HECHO } paso = SELECCION;
  bool hecha = false;
  QElapsedTimer reloj;
  reloj.start();
  QTimer vigia;
  // Each step that opens a box of its own is started from a zero timer, so that the
  // watch goes on looking while that box waits.
  QObject::connect(&vigia, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal) return;
    if (reloj.elapsed() > 60000) {  // something unforeseen: give up, and say so below
      paso = HECHO;
      QTimer::singleShot(0, modal, &QWidget::close);
      return;
    }
    if (auto* caja = qobject_cast<QMessageBox*>(modal)) {
      QAbstractButton* boton = caja->button(QMessageBox::Discard);
      if (!boton && caja->text().contains(QStringLiteral("¿Desea editar"))) boton = caja->button(QMessageBox::Yes);
      if (!boton) boton = caja->defaultButton();
      if (boton) QTimer::singleShot(0, boton, &QAbstractButton::click);
      return;
    }
    if (paso == SELECCION && modal->objectName() == QLatin1String("COTIZACION")) {
      paso = EDITOR;
      QTimer::singleShot(0, modal, [modal] {
        modal->findChild<QPushButton*>(QStringLiteral("PRESIONBOTON"))->click();
        modal->findChild<QCheckBox*>(QStringLiteral("MarcarTodas"))->click();
        elemento(modal, "pro")->click();
      });
    } else if (paso == EDITOR && modal->objectName() == QLatin1String("EDITOR")) {
      paso = HECHO;
      auto* rejilla = modal->findChild<QTableWidget*>(QStringLiteral("REJILLA"));
      for (int fila = 0; fila < rejilla->rowCount(); ++fila) {
        QTableWidgetItem* linea = rejilla->item(fila, formularios::EDITOR::LINEA);
        if (!linea || !linea->text().startsWith(QLatin1String("AYN"))) continue;
        rejilla->editItem(linea);
        auto* edicion = rejilla->findChild<QLineEdit*>(QStringLiteral("edicion"));
        if (!edicion) break;
        // The given name is at positions 44 to 58 of the line.
        edicion->setText(edicion->text().left(43) + QStringLiteral("PEDRO").leftJustified(15) +
                         edicion->text().mid(58));
        QKeyEvent intro(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(edicion, &intro);
        break;
      }
      modal->resize(1120, 680);
      QApplication::processEvents();
      hecha = guarda(modal, salida / "editor.png");
      QTimer::singleShot(0, modal, &QWidget::close);
    }
  });
  vigia.start(100);
  ventana.asistente()->findChild<QPushButton*>(QStringLiteral("Command3"))->click();
  if (!hecha) std::cerr << "No se ha visto el editor con el fichero del mes\n";
  return hecha;
}

// The main window over the sample office in `raiz`, for a user whose decimal separator
// is the comma: the wizard, the TC1 form and its print preview.
bool capturasDeLaVentana(const fs::path& raiz, const fs::path& salida) {
  Escritorio e(raiz, Separadores{',', '.'});
  formularios::frmMain& ventana = e.ventana;
  ventana.pulsaBarraLista(QStringLiteral("cotiza"));
  QApplication::processEvents();
  bool bien = guarda(&ventana, salida / "asistente.png");

  // The bakery alone, chosen by its name.
  ventana.pulsaBarraLista(QStringLiteral("BOLETIN"));
  formularios::TC1VAL* boletin = ventana.boletin();
  boletin->findChild<QRadioButton*>(QStringLiteral("Option3D1_1"))->click();
  auto* empresa = boletin->findChild<QComboBox*>(QStringLiteral("ComboEmpresa"));
  empresa->setCurrentIndex(empresa->findText(QStringLiteral("Panadería"), Qt::MatchContains));
  boletin->findChild<QPushButton*>(QStringLiteral("Calcular"))->click();
  QApplication::processEvents();
  bien = guarda(&ventana, salida / "boletin-tc1.png") && bien;

  // The preview on plain paper, taken as soon as it shows.
  boletin->findChild<QCheckBox*>(QStringLiteral("ConImpreso"))->setChecked(true);
  bool vista = false;
  QTimer vigia;
  QObject::connect(&vigia, &QTimer::timeout, [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || modal->objectName() != QLatin1String("VistaPreviaBoletin")) return;
    vista = guarda(modal, salida / "vista-previa.png");
    modal->close();
  });
  vigia.start(500);
  boletin->findChild<QPushButton*>(QStringLiteral("VistaPrevia"))->click();
  if (!vista) std::cerr << "No se ha visto la vista previa\n";
  return bien && vista;
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
  const bool fan = capturasDelFan(raiz / "generada", salida);
  const bool ventana = capturasDeLaVentana(raiz / "muestra", salida);
  const bool editor = capturaDelEditor(raiz / "editor", salida);
  return fan && ventana && editor ? 0 : 1;
}

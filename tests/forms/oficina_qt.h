// Support of the form tests: the sample office in temporary folders, a program run on
// it with the scripted recorder of messages, a recorder of the programs started, and the
// main window over them.
#pragma once

#include <QtTest>
#include <QtWidgets>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "shell/asistente.h"
#include "app/frmmain.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "muestra/oficina_muestra.h"
#include "tests/apoyo.h"

namespace valdor::pruebas {

inline const Momento MOMENTO{2026, 11, 15, 7, 30, 0};

class LanzadorGrabador : public Lanzador {
 public:
  std::optional<std::string> lanza(const std::vector<std::string>& orden) override {
    ordenes.push_back(orden);
    return fallo;
  }
  std::optional<std::string> fallo;  // the reason a start fails, when a test wants it to
  std::vector<std::vector<std::string>> ordenes;
};

// The sample office of October 2026 in a temporary folder.
struct Oficina {
  Oficina() { escribeOficinaMuestra(carpetas, OpcionesMuestra{10, 2026, 0, 0}); }
  std::filesystem::path ajustes() const { return carpetas.trabajo / "VALDOR.MDB"; }

  CarpetaTemporal carpeta;
  Carpetas carpetas{carpeta / "programa", carpeta / "trabajo"};
  DialogosGrabador dialogos;
  LanzadorGrabador lanzador;
  EntornoWine entorno{carpeta / "wine"};
};

// Windows-1252 text of the core as the forms show it.
inline QString q(std::string_view cp1252) { return formularios::aQString(cp1252); }

// While it lives, the next modal window to open other than `salvo`: its name and title are
// kept, `accion` runs on it, and then it is closed if it is still open.
class AlAbrirModal {
 public:
  explicit AlAbrirModal(std::function<void(QWidget*)> accion = {}, QWidget* salvo = nullptr) {
    QObject::connect(&reloj_, &QTimer::timeout, &reloj_, [this, accion = std::move(accion), salvo] {
      QPointer<QWidget> modal = QApplication::activeModalWidget();
      if (!modal || modal == salvo) return;
      reloj_.stop();
      nombre = modal->objectName();
      titulo = modal->windowTitle();
      if (accion) accion(modal);
      if (modal && modal->isVisible()) modal->close();
    });
    reloj_.start(20);
  }
  QString nombre, titulo;

 private:
  QTimer reloj_;
};

// The item of a bar with the key `clave`.
inline QToolButton* elemento(const QWidget* ventana, const QString& clave) {
  for (QToolButton* b : ventana->findChildren<QToolButton*>())
    if (b->property("clave").toString() == clave) return b;
  qFatal("sin elemento %s", qPrintable(clave));
}

// Runs the test class `P` with the program's arguments.
template <typename P>
int ejecuta(int argc, char** argv) {
  P prueba;
  return QTest::qExec(&prueba, argc, argv);
}

// The keyboard of a window: the Alt letters of its buttons (hidden ones too), its tabs and
// its labels that lead to a control, upper case and sorted, so that a letter used twice
// stands twice.
inline QString letrasAlt(const QWidget* ventana) {
  QString letras;
  const auto letra = [&letras](const QString& texto) {
    if (const qsizetype i = texto.indexOf(QLatin1Char('&')); i >= 0 && i + 1 < texto.size())
      letras += texto.at(i + 1).toUpper();
  };
  for (const QAbstractButton* b : ventana->findChildren<QAbstractButton*>()) letra(b->text());
  for (const QTabBar* t : ventana->findChildren<QTabBar*>())
    for (int i = 0; i < t->count(); ++i) letra(t->tabText(i));
  for (const QLabel* l : ventana->findChildren<QLabel*>())
    if (l->buddy()) letra(l->text());
  std::sort(letras.begin(), letras.end());
  return letras;
}

// The controls the Tab key visits in the window shown, from `primero` until it comes
// round again, by object name.
inline QStringList ordenTab(QWidget* ventana, QWidget* primero) {
  ventana->activateWindow();
  if (!QTest::qWaitForWindowActive(ventana)) return {};
  primero->setFocus();
  QStringList nombres{primero->objectName()};
  for (QWidget* w = nullptr; nombres.size() < 20 && w != primero;) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    if ((w = QApplication::focusWidget()) != primero) nombres << (w ? w->objectName() : QString());
  }
  return nombres;
}

// The main window loaded on the sample office and shown.
struct Escritorio {
  Escritorio() {
    p.entornoWine = o.entorno;
    v.carga();
    v.show();
  }
  void pulsa(const char* clave) { elemento(&v, QString::fromLatin1(clave))->click(); }

  Oficina o;
  Programa p{o.carpetas, o.dialogos, {}, MOMENTO};
  formularios::frmMain v{p, o.lanzador, o.entorno};
};

}  // namespace valdor::pruebas

// Support of the form tests: the sample office in temporary folders, a program run on
// it with the scripted recorder of messages, and a recorder of the programs started.
#pragma once

#include <QApplication>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "shell/asistente.h"
#include "shell/forms/texto_qt.h"
#include "shell/programa.h"
#include "stores/oficina_muestra.h"
#include "tests/apoyo.h"

namespace valdor::pruebas {

inline const Momento MOMENTO{2026, 11, 15, 7, 30, 0};

class LanzadorGrabador : public Lanzador {
 public:
  void lanza(const std::vector<std::string>& orden) override { ordenes.push_back(orden); }
  std::vector<std::vector<std::string>> ordenes;
};

// A recorder that also runs a check while each message box is up.
class DialogosQueMiran : public DialogosGrabador {
 public:
  void mensaje(std::string_view titulo, std::string_view texto, Icono icono) override {
    DialogosGrabador::mensaje(titulo, texto, icono);
    if (alMensaje) alMensaje();
  }
  std::function<void()> alMensaje;
};

struct Oficina {
  Oficina() {
    escribeOficinaMuestra(carpetas, OpcionesMuestra{10, 2026, 0, 0});
  }
  std::filesystem::path ajustes() const { return carpetas.trabajo / "VALDOR.MDB"; }

  CarpetaTemporal carpeta;
  Carpetas carpetas{carpeta / "programa", carpeta / "trabajo"};
  DialogosQueMiran dialogos;
  LanzadorGrabador lanzador;
  EntornoWine entorno{carpeta / "wine"};
};

// Windows-1252 text of the core as the forms show it.
inline QString q(std::string_view cp1252) { return formularios::aQString(cp1252); }

// Runs `accion` on the next modal window that opens (a dialog shown with exec), once.
inline void alAbrirModal(std::function<void(QWidget*)> accion) {
  auto* reloj = new QTimer(qApp);
  QObject::connect(reloj, &QTimer::timeout, reloj, [reloj, accion = std::move(accion)] {
    if (QWidget* modal = QApplication::activeModalWidget()) {
      reloj->stop();
      reloj->deleteLater();
      accion(modal);
    }
  });
  reloj->start(20);
}

}  // namespace valdor::pruebas

#include "shell/forms/dialogos_qt.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QInputDialog>
#include <QMessageBox>
#include <QTimer>

#include "shell/asistente.h"
#include "shell/forms/texto_qt.h"
#include "stores/error.h"
#include "stores/literales.h"

namespace valdor::formularios {

namespace {

QMessageBox::Icon iconoDeCaja(Icono icono) {
  switch (icono) {
    case Icono::Pregunta:
      return QMessageBox::Question;
    case Icono::Exclamacion:
      return QMessageBox::Warning;
    case Icono::Critico:
      return QMessageBox::Critical;
    case Icono::Informacion:
      break;
  }
  return QMessageBox::Information;
}

// The buttons speak Spanish whether or not Qt's own translations are installed.
void rotula(QMessageBox& caja, QMessageBox::StandardButton boton, std::string_view texto) {
  if (QAbstractButton* b = caja.button(boton)) b->setText(aQString(texto));
}

}  // namespace

QWidget* DialogosQt::padre() const {
  if (QWidget* activa = QApplication::activeWindow()) return activa;
  return ventana_;
}

void DialogosQt::mensaje(std::string_view titulo, std::string_view texto, Icono icono) {
  QMessageBox caja(iconoDeCaja(icono), aQString(titulo), aQString(texto), QMessageBox::Ok, padre());
  rotula(caja, QMessageBox::Ok, "Aceptar");
  caja.exec();
}

bool DialogosQt::pregunta(std::string_view titulo, std::string_view texto, bool noPorDefecto) {
  QMessageBox caja(QMessageBox::Question, aQString(titulo), aQString(texto), QMessageBox::Yes | QMessageBox::No,
                   padre());
  rotula(caja, QMessageBox::Yes, "&Sí"_cp);
  rotula(caja, QMessageBox::No, "&No");
  caja.setDefaultButton(noPorDefecto ? QMessageBox::No : QMessageBox::Yes);
  return caja.exec() == QMessageBox::Yes;
}

Guardado DialogosQt::preguntaGuardar(std::string_view titulo, std::string_view texto) {
  QMessageBox caja(QMessageBox::Warning, aQString(titulo), aQString(texto),
                   QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, padre());
  rotula(caja, QMessageBox::Save, "&Guardar");
  rotula(caja, QMessageBox::Discard, "&Descartar");
  rotula(caja, QMessageBox::Cancel, "&Cancelar");
  caja.setDefaultButton(QMessageBox::Save);
  caja.setEscapeButton(QMessageBox::Cancel);
  switch (caja.exec()) {
    case QMessageBox::Save: return Guardado::Guardar;
    case QMessageBox::Discard: return Guardado::Descartar;
    default: return Guardado::Cancelar;
  }
}

std::optional<std::string> DialogosQt::entrada(std::string_view titulo, std::string_view texto) {
  QInputDialog caja(padre());
  caja.setWindowTitle(aQString(titulo));
  caja.setLabelText(aQString(texto));
  caja.setOkButtonText(QStringLiteral("Aceptar"));
  caja.setCancelButtonText(QStringLiteral("Cancelar"));
  if (caja.exec() != QDialog::Accepted) return std::nullopt;
  return aCp1252(caja.textValue());
}

void DialogosQt::progreso(int porcentaje, std::string_view etiqueta1, std::string_view etiqueta2) {
  // A quarter of a second between two drawings at least; the start and the end of a run
  // are always drawn.
  constexpr qint64 INTERVALO = 250;
  if (ultimoProgreso_.isValid() && ultimoProgreso_.elapsed() < INTERVALO && porcentaje > 0 && porcentaje < 100) return;
  ultimoProgreso_.start();
  emit progresoCambiado(porcentaje, aQString(etiqueta1), aQString(etiqueta2));
  // The run holds the only thread: let the screen paint what it was just told, without
  // taking the user's clicks in the middle of the run, save those for its "Cancelar".
  QCoreApplication::processEvents(entradaAceptada_ > 0 ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
}

void DialogosQt::puntero(Puntero p) {
  pedido_ = p;
  if (punteroEnCola_) return;
  punteroEnCola_ = true;
  QTimer::singleShot(0, this, [this] {
    punteroEnCola_ = false;
    aplicaPuntero();
  });
}

void DialogosQt::aplicaPuntero() {
  if (pedido_ == puesto_) return;
  puesto_ = pedido_;
  if (pedido_ == Puntero::Normal) {
    if (punteroPuesto_) QApplication::restoreOverrideCursor();
    punteroPuesto_ = false;
    return;
  }
  const QCursor cursor(pedido_ == Puntero::Reloj ? Qt::WaitCursor : Qt::BusyCursor);
  if (punteroPuesto_) {
    QApplication::changeOverrideCursor(cursor);
  } else {
    QApplication::setOverrideCursor(cursor);
    punteroPuesto_ = true;
  }
}

DialogosQt* dialogosQt(Dialogos& dialogos) {
  if (auto* contados = dynamic_cast<DialogosContados*>(&dialogos)) return dialogosQt(contados->dentro());
  return dynamic_cast<DialogosQt*>(&dialogos);
}

void avisaError(Dialogos& dialogos, const std::exception& error) {
  // The core's errors carry Windows-1252 text already; anything else speaks UTF-8.
  const bool delNucleo = dynamic_cast<const ErrorValdor*>(&error) != nullptr;
  dialogos.puntero(Puntero::Normal);
  const std::string texto = delNucleo ? error.what() : "Error inesperado: " + utf8ACp1252(error.what());
  dialogos.mensaje(tituloValdor(), texto, Icono::Critico);
}

}  // namespace valdor::formularios

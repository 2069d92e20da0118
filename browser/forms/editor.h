// EDITOR, the exchange file editor: the file named by FICHEROSALIDA line by line in the
// grid REJILLA, each line with its number, its length and what the checks find in it,
// and under the grid the verdict on the trailer's counts. Only the lines are edited, at
// most 70 characters each, shown and typed field by field in the character set their
// writer used; "Guardar" writes them back without the blank ones (warning first when a
// line fails the check), "Buscar" brings the first line holding a text to the top,
// "Imprimir" hands the file to the system's text editor and "Cancelar" closes. Unsaved
// edits mark the title, and nothing drops them without asking Guardar / Descartar /
// Cancelar. Every rule is the core's (browser/editor.h).
#pragma once

#include <QDialog>
#include <filesystem>
#include <string>
#include <vector>

#include "browser/editor.h"

class QLabel;
class QTableWidget;
class QTableWidgetItem;

namespace valdor {
class Programa;
class Lanzador;
}  // namespace valdor

namespace valdor::formularios {

class EdicionLinea;

class EDITOR : public QDialog {
  Q_OBJECT

 public:
  enum Columna { ORDEN = 0, LINEA = 1, ESTADO = 2, REVISION = 3, COLUMNAS = 4 };

  // The load: the rows the file's size suggests, then its lines. `lanzador` starts the
  // text editor that prints.
  EDITOR(Programa& programa, Lanzador& lanzador, QWidget* padre = nullptr);
  ~EDITOR() override;

  // Column 1 of every row, as the core's text: what "Guardar" writes.
  const std::vector<std::string>& lineas() const { return lineas_; }

  // The commands of the list bar, by key; any other key is ignored. A line still being
  // edited is taken first, as Enter takes it.
  void pulsaBarraLista(const QString& clave);

  // Every close goes through here: the affiliation flag is cleared for the next file.
  void done(int resultado) override;
  // "Cancelar", Escape and the window's close: with unsaved edits the user chooses to
  // save them, drop them, or stay.
  void reject() override;

  bool modificado() const { return modificado_; }

 private:
  void construye();
  void carga();
  // True when the lines are on disk as the grid holds them.
  bool guarda();
  void marcaModificado(bool modificado);
  void busca();
  void imprime();
  void cambiaCelda(QTableWidgetItem* celda);
  // The edit of a line is refused when a character has no place in the file's code page.
  bool aceptaLinea(const QString& texto);
  void revisaFila(int fila);
  void muestraCierre();

  Programa& programa_;
  Lanzador& lanzador_;
  std::filesystem::path ruta_;  // the native file; empty when there is none
  TipoIntercambio tipo_ = TipoIntercambio::Otro;
  bool cargando_ = false;
  bool modificado_ = false;  // edits not yet saved
  // The grid's lines as the core's text, kept with every edit, and which rows are marked:
  // the trailer's verdict, the search and the save read these, not the cells.
  std::vector<std::string> lineas_;
  std::vector<FinDeLinea> finales_;  // how each line ended in the file, until a save ends them all with CR LF
  std::vector<bool> marcadas_;

  QLabel* fichero_ = nullptr;
  QString detalle_;  // the title panel's text: the file, its kind and its lines
  QTableWidget* REJILLA_ = nullptr;
  EdicionLinea* edicion_ = nullptr;
  QLabel* cierre_ = nullptr;
  QLabel* observaciones_ = nullptr;
};

}  // namespace valdor::formularios

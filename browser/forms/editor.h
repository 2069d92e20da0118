// EDITOR, the exchange file editor: the file named by FICHEROSALIDA line by line in the
// grid REJILLA, each line with its number, its length and what the checks find in it,
// and under the grid the verdict on the trailer's counts. Only the lines are edited, at
// most 70 characters each; "Guardar" writes them back without the blank ones, "Buscar"
// brings the first line holding a text to the top, "Imprimir" hands the file to the
// system's text editor and "Cancelar" closes without saving. Every rule is the core's
// (browser/editor.h).
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

 private:
  void construye();
  void carga();
  void guarda();
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
  // The grid's lines as the core's text, kept with every edit, and which rows are marked:
  // the trailer's verdict, the search and the save read these, not the cells.
  std::vector<std::string> lineas_;
  std::vector<FinDeLinea> finales_;  // how each line ended in the file, until a save ends them all with CR LF
  std::vector<bool> marcadas_;

  QLabel* fichero_ = nullptr;
  QTableWidget* REJILLA_ = nullptr;
  EdicionLinea* edicion_ = nullptr;
  QLabel* cierre_ = nullptr;
  QLabel* observaciones_ = nullptr;
};

}  // namespace valdor::formularios

// EDITOR, the exchange file editor: the file named by FICHEROSALIDA line by line in the
// grid REJILLA, each line with its number, its length and what the checks find in it,
// and under the grid the verdict on the trailer's counts. Only the lines are edited, at
// most 70 characters each, shown and typed field by field in the character set their
// writer used; "Guardar" writes them back without the blank ones (warning first when a
// line fails the check), "Buscar" brings the first line holding a text to the top,
// "Imprimir" hands the file to the system's text editor and "Cancelar" closes. Unsaved
// edits mark the title, and nothing drops them without asking Guardar / Descartar /
// Cancelar. The field checks (browser/revision.h) mark each field in error in its line,
// in colour and with its rule under the pointer, and list the findings in the panel
// HALLAZGOS, where a click takes the user to the field; they follow every edit, and a
// save of lines with findings lists them in the one question before it. Every rule is
// the core's (browser/editor.h, browser/revision.h).
#pragma once

#include <QDialog>
#include <filesystem>
#include <string>
#include <vector>

#include "browser/editor.h"
#include "browser/revision.h"

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
  // The panel's columns.
  enum ColumnaHallazgo { H_LINEA = 0, H_POSICIONES = 1, H_CAMPO = 2, H_VALOR = 3, H_REGLA = 4, H_COLUMNAS = 5 };
  // The marks of a line's cell: a list with, for each field in error, a map of "desde"
  // (its first character, from 0), "ancho" and "regla" (its findings' text).
  static constexpr int MARCAS = Qt::UserRole + 1;

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
  // The field findings of the grid's lines as they stand, numbered by row (the first is 1).
  const std::vector<Hallazgo>& hallazgos() const { return hallazgos_; }

 private:
  void construye();
  void construyePanel();
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
  // The field checks over the lines as they stand: the marks of the rows that gain or
  // lose a finding, the panel and its count.
  void revisaLosCampos();
  void marcaCampos(int fila, const std::vector<const Hallazgo*>& suyos);
  void llenaPanel();
  // The row of the panel's finding `indice` selected, and its field selected in the edit.
  void vaAHallazgo(int indice);

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
  std::vector<Hallazgo> hallazgos_;

  QLabel* fichero_ = nullptr;
  QString detalle_;  // the title panel's text: the file, its kind and its lines
  QTableWidget* REJILLA_ = nullptr;
  EdicionLinea* edicion_ = nullptr;
  QLabel* cierre_ = nullptr;
  QLabel* observaciones_ = nullptr;
  QTableWidget* HALLAZGOS_ = nullptr;
  QLabel* campos_ = nullptr;
};

}  // namespace valdor::formularios

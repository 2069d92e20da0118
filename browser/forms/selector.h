// The file selector "Edición de Ficheros": the exchange files in the folders of the
// transmission tool, as a tree of two levels (browser/selector.h). A click on a file
// opens the editor EDITOR on it, modally; a click on a branch title opens nothing.
#pragma once

#include <QDialog>

#include "browser/selector.h"

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace valdor {
class Programa;
class Lanzador;
}  // namespace valdor

namespace valdor::formularios {

class selector : public QDialog {
  Q_OBJECT

 public:
  // The load: the tool's route read again from the settings file, and the tree of its
  // folders. `lanzador` is the editor's, which hands files over for printing.
  selector(Programa& programa, Lanzador& lanzador, QWidget* padre = nullptr);

  const ArbolSelector& arbol() const { return arbol_; }

 protected:
  bool eventFilter(QObject* objeto, QEvent* evento) override;

 private:
  void construye();
  void carga();
  void pulsaNodo(QTreeWidgetItem* nodo);

  Programa& programa_;
  Lanzador& lanzador_;
  ArbolSelector arbol_;

  QLabel* raiz_ = nullptr;
  QLabel* resumen_ = nullptr;
  QTreeWidget* TreeView1_ = nullptr;
};

// The command "Editar Ficheros" of the main window: the selector, modally, over `padre`.
void abreSelector(Programa& programa, Lanzador& lanzador, QWidget* padre);

}  // namespace valdor::formularios

// The blue title band of the program's forms: the title in white and, under it, a line
// of detail (the file, the root, the sender); and how a form lays out its parts.
#pragma once

#include <QString>
#include <initializer_list>

class QFrame;
class QLayout;
class QLabel;
class QWidget;

namespace valdor::formularios {

struct Cabecera {
  QFrame* marco = nullptr;
  QLabel* titulo = nullptr;   // objectName "titulo"
  QLabel* detalle = nullptr;  // objectName `nombreDetalle`
};

// A band for `padre` with `titulo` at `puntos` points; the detail line is empty and
// takes the style given for it (a Qt style sheet body, e.g. "font-style: italic;").
Cabecera cabecera(QWidget* padre, const QString& titulo, int puntos, const QString& nombreDetalle,
                  const QString& estiloDetalle = {});

// The layout of a form: the band over the body, with the list bar (if any) on the left
// of both; no margins between them.
void colocaForma(QWidget* forma, QWidget* barra, QWidget* cabecera, QLayout* cuerpo);

// The order in which the Tab key visits `controles`, from the first to the last.
void ordenTab(std::initializer_list<QWidget*> controles);

}  // namespace valdor::formularios

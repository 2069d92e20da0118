// The statement's page (PaginaBoletin) drawn through Qt's print support: on a printer of
// the system, in the print preview, or on any paint device. The page says where every
// character goes; this only draws it there, each run of characters at its column, so
// that the letter's own width never moves a figure.
#pragma once

#include <QString>

#include "statement/pagina.h"

class QPainter;
class QPrinter;

namespace valdor::formularios {

// The sheet and the margins the page assumes, set on the printer: A4 across, the
// whole sheet addressable.
void preparaImpresora(QPrinter& impresora);

// Draws the page with `painter`, `escala` device units to a point, from the sheet's top
// left corner.
void dibujaPagina(QPainter& painter, const PaginaBoletin& pagina, double escala);

// Prints the page on `impresora` (already prepared). An empty text when it went; else
// why not, naming the printer.
QString imprimePagina(QPrinter& impresora, const PaginaBoletin& pagina);

}  // namespace valdor::formularios

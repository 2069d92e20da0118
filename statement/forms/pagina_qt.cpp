#include "statement/forms/pagina_qt.h"

#include <QFont>
#include <QPageLayout>
#include <QPainter>
#include <QPen>
#include <QPrinter>

#include "shell/forms/texto_qt.h"

namespace valdor::formularios {

namespace {

// A letter of `puntos` points for a device of `escala` units to the point.
QFont letra(QFont::StyleHint estilo, const char* familia, double puntos, double escala) {
  QFont f(QString::fromLatin1(familia));
  f.setStyleHint(estilo);
  f.setPixelSize(std::max(1, qRound(puntos * escala)));
  return f;
}

}  // namespace

void preparaImpresora(QPrinter& impresora) {
  impresora.setFullPage(true);
  impresora.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF()));
}

void dibujaPagina(QPainter& painter, const PaginaBoletin& p, double escala) {
  painter.save();
  QPen pluma(Qt::black);
  pluma.setWidthF(0.5 * escala);
  painter.setPen(pluma);
  for (const Raya& r : p.rayas)
    painter.drawLine(QPointF(p.x(r.columna1), p.y(r.fila1)) * escala, QPointF(p.x(r.columna2), p.y(r.fila2)) * escala);
  for (const Rotulo& r : p.rotulos) {
    painter.setFont(letra(QFont::SansSerif, "Helvetica", r.puntos, escala));
    painter.drawText(QPointF(p.x(r.columna), p.y(r.fila)) * escala, aQString(r.texto));
  }
  painter.setFont(letra(QFont::TypeWriter, "Courier", PUNTOSLETRA, escala));
  for (std::size_t fila = 0; fila < p.lineas.size(); ++fila)
    for (const Tramo& t : tramos(p.lineas[fila]))
      for (std::size_t i = 0; i < t.texto.size(); ++i)
        painter.drawText(QPointF(p.x(static_cast<double>(t.columna + i)), p.base(static_cast<double>(fila))) * escala,
                         aQString(t.texto.substr(i, 1)));
  painter.restore();
}

QString imprimePagina(QPrinter& impresora, const PaginaBoletin& pagina) {
  const QString nombre = impresora.outputFormat() == QPrinter::PdfFormat ? impresora.outputFileName()
                                                                          : impresora.printerName();
  QPainter painter;
  if (!painter.begin(&impresora))
    return QStringLiteral("No se ha podido empezar a imprimir en «%1».").arg(nombre);
  dibujaPagina(painter, pagina, impresora.resolution() / 72.0);
  if (!painter.end() || impresora.printerState() == QPrinter::Error)
    return QStringLiteral("La impresión en «%1» ha fallado.").arg(nombre);
  return {};
}

}  // namespace valdor::formularios

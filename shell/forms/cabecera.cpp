#include "shell/forms/cabecera.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace valdor::formularios {

Cabecera cabecera(QWidget* padre, const QString& titulo, int puntos, const QString& nombreDetalle,
                  const QString& estiloDetalle) {
  Cabecera c;
  c.marco = new QFrame(padre);
  c.marco->setObjectName(QStringLiteral("cabecera"));
  c.marco->setStyleSheet(
      QStringLiteral("#cabecera { background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 #1f3f6e, stop:1 #5b86bd); }"
                     "#titulo { color: white; font-size: %1pt; font-weight: bold; }"
                     "#%2 { color: #e8eef7; %3 }")
          .arg(puntos)
          .arg(nombreDetalle, estiloDetalle));
  c.titulo = new QLabel(titulo, c.marco);
  c.titulo->setObjectName(QStringLiteral("titulo"));
  c.detalle = new QLabel(c.marco);
  c.detalle->setObjectName(nombreDetalle);
  auto* capa = new QVBoxLayout(c.marco);
  capa->setContentsMargins(12, 8, 12, 8);
  capa->setSpacing(2);
  capa->addWidget(c.titulo);
  capa->addWidget(c.detalle);
  return c;
}

void colocaForma(QWidget* forma, QWidget* barra, QWidget* cabecera, QLayout* cuerpo) {
  auto* columna = barra ? new QVBoxLayout : new QVBoxLayout(forma);
  columna->setContentsMargins(0, 0, 0, 0);
  columna->setSpacing(0);
  columna->addWidget(cabecera);
  columna->addLayout(cuerpo, 1);
  if (!barra) return;
  auto* capa = new QHBoxLayout(forma);
  capa->setContentsMargins(0, 0, 0, 0);
  capa->setSpacing(0);
  capa->addWidget(barra);
  capa->addLayout(columna, 1);
}

void ordenTab(std::initializer_list<QWidget*> controles) {
  QWidget* anterior = nullptr;
  for (QWidget* control : controles) {
    if (anterior) QWidget::setTabOrder(anterior, control);
    anterior = control;
  }
}

}  // namespace valdor::formularios

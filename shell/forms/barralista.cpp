#include "shell/forms/barralista.h"

#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace valdor::formularios {

BarraLista::BarraLista(const QString& grupo, QWidget* padre) : QFrame(padre) {
  setObjectName(QStringLiteral("SSListBar1"));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setFixedWidth(132);
  setStyleSheet(QStringLiteral(
      "#SSListBar1 { background: #4f6d8f; }"
      "#SSListBar1 QToolButton { color: white; border: 1px solid transparent; border-radius: 4px; padding: 4px; }"
      "#SSListBar1 QToolButton:hover { border-color: #c9d8ea; background: #5f7fa3; }"
      "#SSListBar1 QToolButton:pressed { background: #3d5875; }"));

  auto* cabecera = new QPushButton(grupo, this);
  cabecera->setObjectName(QStringLiteral("grupo"));
  cabecera->setFlat(false);
  cabecera->setFocusPolicy(Qt::NoFocus);
  QFont negrita = cabecera->font();
  negrita.setBold(true);
  cabecera->setFont(negrita);

  auto* capa = new QVBoxLayout(this);
  capa->setContentsMargins(2, 2, 2, 8);
  capa->setSpacing(6);
  capa->addWidget(cabecera);
  elementos_ = new QVBoxLayout;
  elementos_->setSpacing(10);
  elementos_->setContentsMargins(6, 8, 6, 0);
  capa->addLayout(elementos_);
  capa->addStretch(1);
}

QToolButton* BarraLista::agrega(const QString& clave, const QString& texto, const QIcon& icono) {
  auto* elemento = new QToolButton(this);
  elemento->setObjectName(QStringLiteral("SSListBar1_") + clave);
  elemento->setProperty("clave", clave);
  elemento->setText(texto);
  elemento->setIcon(icono);
  elemento->setIconSize(QSize(40, 40));
  elemento->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  elemento->setAutoRaise(true);
  elemento->setFocusPolicy(Qt::NoFocus);
  elemento->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(elemento, &QToolButton::clicked, this, [this, clave] { emit pulsado(clave); });
  elementos_->addWidget(elemento);
  return elemento;
}

}  // namespace valdor::formularios

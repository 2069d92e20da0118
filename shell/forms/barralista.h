// The list bar of the main window: one group with its caption and a column of big
// items, each with an icon, a caption and the key by which the window reads it.
#pragma once

#include <QFrame>
#include <QIcon>
#include <QString>

class QToolButton;
class QVBoxLayout;

namespace valdor::formularios {

class BarraLista : public QFrame {
  Q_OBJECT

 public:
  explicit BarraLista(const QString& grupo, QWidget* padre = nullptr);

  // The item's key is kept in its property "clave".
  QToolButton* agrega(const QString& clave, const QString& texto, const QIcon& icono);

 signals:
  void pulsado(const QString& clave);

 private:
  QVBoxLayout* elementos_ = nullptr;
};

}  // namespace valdor::formularios

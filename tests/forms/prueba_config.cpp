// The configuration dialog: the first run, the edit limits and the date mask, the
// ellipsis of the route, the save on "Aceptar" only, and the wizard forcing it.
#include "shell/forms/config.h"
#include "shell/forms/pxvaldor32.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::config;

namespace {

const std::string RUTA = "C:\\WINSUITE\\WINSUITE.EXE";

std::string relleno(std::string texto, std::size_t ancho) {
  texto.resize(ancho, ' ');
  return texto;
}

// Types into the value cell of a row through the grid's own editor.
QLineEdit* editaFila(config& d, int fila, const QString& texto) {
  auto* rejilla = d.findChild<QTableWidget*>(QStringLiteral("CONFI"));
  const QModelIndex celda = rejilla->model()->index(fila, 1);
  rejilla->setCurrentIndex(celda);
  rejilla->edit(celda);
  auto* caja = qobject_cast<QLineEdit*>(rejilla->indexWidget(celda));
  if (caja) QTest::keyClicks(caja, texto);
  return caja;
}

// Enter in the cell's box: the grid takes the value once the event loop runs.
void confirma(QLineEdit* caja) {
  QTest::keyClick(caja, Qt::Key_Return);
  QCoreApplication::processEvents();
}

}  // namespace

class PruebaConfiguracion : public QObject {
  Q_OBJECT

 private slots:
  void primeraVezLaRutaPorDefectoYSoloAceptarGuarda() {
    Oficina o;
    std::filesystem::remove(o.ajustes());
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.arranca();
    {
      config d(p, o.entorno);
      QCOMPARE(d.valor(0), std::string("GESTORÍA LABORAL DEL VALLE, S.L."_cp));
      QCOMPARE(d.findChild<QComboBox*>(QStringLiteral("Combo1"))->currentText(), q("Configuración General"_cp));
      d.show();
      // Escape and the window's close cancel: the settings stay as they were.
      QTest::keyClick(&d, Qt::Key_Escape);
      QVERIFY(!d.isVisible());
      d.show();
      d.close();
      QVERIFY(!std::filesystem::exists(o.ajustes()) || leeBytes(o.ajustes()).empty());
      d.show();
      d.findChild<QPushButton*>(QStringLiteral("Aceptar"))->click();
    }
    QCOMPARE(leeBytes(o.ajustes()), std::string(16, ' ') + relleno(RUTA, 150) + std::string(10, ' '));
  }

  void limitesMascaraElipsisYGuardadoConLaEdicionAbierta() {
    Oficina o;
    const std::string emisor = leeBytes(o.carpetas.trabajo / "EMISOR.TXT");
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.arranca();
    {
      config d(p, o.entorno);
      d.show();
      QLineEdit* clave = editaFila(d, 1, QStringLiteral("123456789"));
      QVERIFY(clave);
      confirma(clave);
      QCOMPARE(d.valor(1), std::string("12345678"));
      confirma(editaFila(d, 0, QStringLiteral("OTRO EMISOR")));
      QLineEdit* fecha = editaFila(d, 3, QString());
      fecha->selectAll();
      QTest::keyClicks(fecha, QStringLiteral("0102"));
      confirma(fecha);
      QCOMPARE(d.valor(3), std::string("01/02/    "));

      // The "..." of the route, cancelled: the route is left empty.
      AlAbrirModal cancelado;
      d.findChild<QToolButton*>(QStringLiteral("BuscaWinsuite"))->click();
      QCOMPARE(d.valor(4), std::string());
      QCOMPARE(o.dialogos.punteros, (std::vector<Puntero>{Puntero::Reloj, Puntero::Normal}));

      // "Aceptar" while the key is still being typed: what the box shows is saved.
      editaFila(d, 2, QStringLiteral("ABC"));
      d.findChild<QPushButton*>(QStringLiteral("Aceptar"))->click();
    }
    // The sender is not a field of the settings: its file stays as it was.
    const std::string ajustes = leeBytes(o.ajustes());
    QCOMPARE(ajustes, "12345678ABC     " + std::string(150, ' ') + "01/02/    ");
    QCOMPARE(leeBytes(o.carpetas.trabajo / "EMISOR.TXT"), emisor);
  }

  // A letter for each control and none twice; Tab from top to bottom, the arrows into the
  // route's box and out; Escape and Enter in a cell's edit for the cell alone, and out
  // of it for "Cancelar" and "Aceptar".
  void elTeclado() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.arranca();
    {
      config d(p, o.entorno);
      d.show();
      QCOMPARE(letrasAlt(&d), QStringLiteral("ACDEG"));
      auto* rejilla = d.findChild<QTableWidget*>(QStringLiteral("CONFI"));
      auto* ruta = d.findChild<QLineEdit*>(QStringLiteral("RutaWinsuite"));
      QCOMPARE(ordenTab(&d, rejilla), QStringList({"CONFI", "RutaWinsuite", "BuscaWinsuite", "Aceptar", "Cancelar",
                                                   "qt_tabwidget_tabbar", "Combo1"}));
      rejilla->setCurrentCell(3, 1);
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
      QCOMPARE(QApplication::focusWidget(), ruta);
      QTest::keyClick(ruta, Qt::Key_Up);
      QVERIFY(rejilla->currentRow() == 3 && rejilla->isAncestorOf(QApplication::focusWidget()));

      QTest::keyClick(editaFila(d, 1, QStringLiteral("NUEVA")), Qt::Key_Escape);
      confirma(editaFila(d, 2, QStringLiteral("SLC00001")));
      QVERIFY(d.isVisible());
      QCOMPARE(d.valor(1), std::string("20731542"));
      QTest::keyClick(ruta, Qt::Key_Escape);
      QVERIFY(!d.isVisible() && leeBytes(o.ajustes()).starts_with("20731542SLC48213"));
      d.show();
      QTest::keyClick(ruta, Qt::Key_Return);
      QVERIFY(!d.isVisible());
    }
    QCOMPARE(leeBytes(o.ajustes()).substr(0, 16), std::string("20731542SLC00001"));
  }

  void elAsistenteObligaAConfigurarSinAjustes() {
    Oficina o;
    escribeBytes(o.ajustes(), "");
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.arranca();
    formularios::PXVALDOR32 w(p, o.lanzador, o.entorno, formularios::fabricaFormulariosQt());
    AlAbrirModal forzado([](QWidget* d) { d->findChild<QPushButton*>(QStringLiteral("Aceptar"))->click(); });
    w.carga();
    QCOMPARE(forzado.nombre, QStringLiteral("config"));
    QCOMPARE(p.g.RUTAWS, relleno(RUTA, 150));
    QCOMPARE(leeBytes(o.ajustes()).size(), LONGITUDREGISTRO);
  }
};

int ejecutaPruebaConfiguracion(int argc, char** argv) { return ejecuta<PruebaConfiguracion>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_config.moc"

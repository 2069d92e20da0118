// The main window: the commands of its list bar, top bar and menu, as its command
// table routes them.
#include "app/frmmain.h"
#include "shell/forms/pxvaldor32.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::frmMain;
using formularios::PXVALDOR32;

namespace {

QAction* herramienta(frmMain& v, const QString& clave) {
  for (QAction* a : v.findChild<QToolBar*>(QStringLiteral("barrasup"))->actions())
    if (a->data().toString() == clave) return a;
  return nullptr;
}

QString texto(PXVALDOR32* a, const char* control) {
  if (auto* c = a->findChild<QLineEdit*>(QString::fromLatin1(control))) return c->text();
  return a->findChild<QLabel*>(QString::fromLatin1(control))->text();
}

bool visible(PXVALDOR32* a, const char* control) {
  return a->findChild<QWidget*>(QString::fromLatin1(control))->isVisibleTo(a);
}

// The wizard as a command left it: a contribution page or an affiliation page, with the
// type panel showing the default name, the extension, the moment of preparation and,
// for an affiliation, the keys.
void compruebaPagina(PXVALDOR32* a, bool cotizacion) {
  QVERIFY(a && a->isVisible() && visible(a, "SSPanel2"));
  QCOMPARE(a->pagina().Option1Cotizacion, cotizacion);
  QCOMPARE(a->pagina().Option1Afiliacion, !cotizacion);
  QCOMPARE((QStringList{texto(a, "Text8"), texto(a, "Label10"), texto(a, "Label12"), texto(a, "Label13")}),
           (QStringList{"F1511260", cotizacion ? "FAN" : "AFI", "20261115", "0730"}));
  for (const char* control : {"Text10", "Text11", "Label16", "Label17"}) QCOMPARE(visible(a, control), !cotizacion);
}

}  // namespace

class PruebaPrincipal : public QObject {
  Q_OBJECT

 private slots:
  void laCargaElAsistenteYLasOrdenesDeLasBarras() {
    Escritorio e;
    PXVALDOR32* a = e.v.asistente();
    QVERIFY(a && a->isVisible() && !visible(a, "SSPanel2"));
    QVERIFY(texto(a, "Label3").startsWith(QStringLiteral("Bienvenido al asistente")));
    QCOMPARE(texto(a, "Label19"), q("para GESTORÍA LABORAL DEL VALLE, S.L."_cp));
    QVERIFY(e.o.dialogos.mensajes.empty());

    e.pulsa("cotiza");
    compruebaPagina(e.v.asistente(), true);
    e.pulsa("afilia");
    compruebaPagina(e.v.asistente(), false);

    // Closed with its own control, the wizard is loaded anew by the next command.
    e.v.asistente()->findChild<QToolButton*>(QStringLiteral("controlcerrar"))->click();
    QVERIFY(!e.v.asistente());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    herramienta(e.v, QStringLiteral("COT"))->trigger();
    compruebaPagina(e.v.asistente(), true);
    herramienta(e.v, QStringLiteral("AFIL"))->trigger();
    compruebaPagina(e.v.asistente(), false);
    QVERIFY(e.o.lanzador.ordenes.empty());

    // "Winsuite" starts the tool with the route of the settings; without one it starts
    // nothing and says why.
    e.pulsa("Winsuite");
    QCOMPARE(e.o.lanzador.ordenes.size(), std::size_t{1});
    const std::size_t antes = e.o.dialogos.mensajes.size();
    escribeBytes(e.o.ajustes(), std::string(LONGITUDREGISTRO, ' '));
    e.pulsa("Winsuite");
    QCOMPARE(e.o.lanzador.ordenes.size(), std::size_t{1});
    QCOMPARE(e.o.dialogos.mensajes.size(), antes + 1);
    QCOMPARE(e.o.dialogos.mensajes.back().icono, Icono::Critico);
    e.o.dialogos.mensajes.clear();

    // "Editar Ficheros" hides the wizard while the selector is up, with the busy pointer
    // until the selector is loaded, then the arrow.
    e.o.dialogos.punteros.clear();
    bool visibleDuranteElSelector = true;
    AlAbrirModal selector([&](QWidget*) { visibleDuranteElSelector = e.v.asistente()->isVisible(); });
    e.pulsa("FICHE");
    QCOMPARE(selector.nombre, QStringLiteral("selector"));
    QVERIFY(!visibleDuranteElSelector);
    QVERIFY(e.v.asistente()->isVisible());
    QCOMPARE(e.o.dialogos.punteros, (std::vector<Puntero>{Puntero::FlechaReloj, Puntero::Normal, Puntero::Normal}));
    QVERIFY(e.o.dialogos.mensajes.empty());
  }

  // Every item of the list bar is a menu entry with the key its tip names; in the menu
  // bar and in each menu no two entries share an Alt letter.
  void losMenusLlevanCadaOrdenConSuLetraYSuTecla() {
    Escritorio e;
    auto letrasUnicas = [](const QList<QAction*>& acciones) {
      QSet<QChar> vistas;
      for (QAction* a : acciones) {
        if (a->isSeparator()) continue;
        const qsizetype i = a->text().indexOf(QLatin1Char('&'));
        if (i < 0 || vistas.contains(a->text().at(i + 1).toLower())) return false;
        vistas.insert(a->text().at(i + 1).toLower());
      }
      return true;
    };
    QVERIFY(letrasUnicas(e.v.menuBar()->actions()));
    QSet<QString> teclas;
    for (QAction* menu : e.v.menuBar()->actions()) {
      QVERIFY(letrasUnicas(menu->menu()->actions()));
      for (QAction* a : menu->menu()->actions())
        if (!a->shortcut().isEmpty()) teclas.insert(a->shortcut().toString(QKeySequence::NativeText));
    }
    int elementos = 0;
    for (QToolButton* b : e.v.findChildren<QToolButton*>()) {
      if (!b->property("clave").isValid()) continue;
      ++elementos;
      const QString tip = b->toolTip();
      const qsizetype desde = tip.lastIndexOf(QLatin1Char('(')) + 1;
      QVERIFY2(teclas.contains(tip.mid(desde, tip.size() - desde - 1)), qPrintable(tip));
    }
    QCOMPARE(elementos, 6);

    // Ctrl+1 as the keyboard gives it: the wizard's contribution page.
    e.v.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&e.v));
    QTest::keyClick(&e.v, Qt::Key_1, Qt::ControlModifier);
    compruebaPagina(e.v.asistente(), true);
  }

  void salirCierraLaVentanaYBorraElTemporal() {
    const std::function<void(frmMain&)> salidas[] = {
        [](frmMain& v) { elemento(&v, QStringLiteral("salir"))->click(); },
        [](frmMain& v) { herramienta(v, QStringLiteral("Salir"))->trigger(); },
        [](frmMain& v) { v.findChild<QAction*>(QStringLiteral("mnuFileExit"))->trigger(); },
    };
    for (const auto& sal : salidas) {
      Escritorio e;
      // Keys are read as they are spelt: these two are not commands of their bars.
      e.v.pulsaBarraLista(QStringLiteral("Salir"));
      e.v.pulsaBarraSuperior(QStringLiteral("salir"));
      QVERIFY(e.v.isVisible());
      QVERIFY(std::filesystem::exists(e.o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
      sal(e.v);
      QVERIFY(!e.v.isVisible());
      QVERIFY(!std::filesystem::exists(e.o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
    }
  }
};

int ejecutaPruebaPrincipal(int argc, char** argv) { return ejecuta<PruebaPrincipal>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_principal.moc"

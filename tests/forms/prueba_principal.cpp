// The main window: the commands of its list bar, top bar and menu, as its command
// table routes them.
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "shell/forms/frmmain.h"
#include "shell/forms/pxvaldor32.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::frmMain;
using formularios::PXVALDOR32;

namespace {

QToolButton* elemento(frmMain& v, const QString& clave) {
  for (QToolButton* b : v.findChildren<QToolButton*>())
    if (b->property("clave").toString() == clave) return b;
  return nullptr;
}

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

// The wizard as a command left it: a contribution page or an affiliation page.
void compruebaPagina(PXVALDOR32* a, bool cotizacion) {
  QVERIFY(a && a->isVisible());
  QCOMPARE(a->pagina().Option1Cotizacion, cotizacion);
  QCOMPARE(a->pagina().Option1Afiliacion, !cotizacion);
  QVERIFY(visible(a, "SSPanel2"));
  QCOMPARE(texto(a, "Label10"), cotizacion ? QStringLiteral("FAN") : QStringLiteral("AFI"));
  QCOMPARE(texto(a, "Text8"), QStringLiteral("F1511260"));
  QCOMPARE(texto(a, "Label12"), QStringLiteral("20261115"));
  QCOMPARE(texto(a, "Label13"), QStringLiteral("0730"));
  QCOMPARE(visible(a, "Text10"), !cotizacion);
  QCOMPARE(visible(a, "Text11"), !cotizacion);
}

}  // namespace

class PruebaPrincipal : public QObject {
  Q_OBJECT

 private slots:
  void laCargaMuestraElAsistenteYLasBarrasPreparanLaPagina() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    frmMain v(p, o.lanzador, o.entorno);
    v.carga();
    v.show();
    PXVALDOR32* a = v.asistente();
    QVERIFY(a && a->isVisible() && !visible(a, "SSPanel2"));
    QVERIFY(texto(a, "Label3").startsWith(QStringLiteral("Bienvenido al asistente")));
    QCOMPARE(texto(a, "Label19"), q("para GESTORÍA LABORAL DEL VALLE, S.L."_cp));
    QVERIFY(o.dialogos.mensajes.empty());

    elemento(v, QStringLiteral("cotiza"))->click();
    compruebaPagina(v.asistente(), true);
    elemento(v, QStringLiteral("afilia"))->click();
    compruebaPagina(v.asistente(), false);

    // Closed with its own control, the wizard is loaded anew by the next command.
    v.asistente()->findChild<QToolButton*>(QStringLiteral("controlcerrar"))->click();
    QVERIFY(!v.asistente());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    herramienta(v, QStringLiteral("COT"))->trigger();
    compruebaPagina(v.asistente(), true);
    herramienta(v, QStringLiteral("AFIL"))->trigger();
    compruebaPagina(v.asistente(), false);
    QVERIFY(o.lanzador.ordenes.empty());
  }

  void winsuiteArrancaLaHerramientaSoloConRuta() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    frmMain v(p, o.lanzador, o.entorno);
    v.carga();
    elemento(v, QStringLiteral("Winsuite"))->click();
    QCOMPARE(o.lanzador.ordenes.size(), std::size_t{1});

    escribeBytes(o.ajustes(), std::string(LONGITUDREGISTRO, ' '));
    elemento(v, QStringLiteral("Winsuite"))->click();
    QCOMPARE(o.lanzador.ordenes.size(), std::size_t{1});
    QVERIFY(o.dialogos.mensajes.empty());
  }

  void editarFicherosEscondeElAsistenteMientrasTanto() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.entornoWine = o.entorno;
    frmMain v(p, o.lanzador, o.entorno);
    v.carga();
    v.show();
    QString abierto;
    bool visibleDuranteElSelector = true;
    alAbrirModal([&](QWidget* modal) {
      abierto = modal->objectName();
      visibleDuranteElSelector = v.asistente()->isVisible();
      modal->close();
    });
    elemento(v, QStringLiteral("FICHE"))->click();
    QCOMPARE(abierto, QStringLiteral("selector"));
    QVERIFY(!visibleDuranteElSelector);
    QVERIFY(v.asistente()->isVisible());
    QVERIFY(o.dialogos.mensajes.empty());
    // The busy pointer until the selector is loaded, then the arrow.
    QCOMPARE(o.dialogos.punteros, (std::vector<Puntero>{Puntero::FlechaReloj, Puntero::Normal, Puntero::Normal}));
  }

  void salirCierraLaVentanaYBorraElTemporal() {
    Oficina o;
    const std::function<void(frmMain&)> salidas[] = {
        [](frmMain& v) { elemento(v, QStringLiteral("salir"))->click(); },
        [](frmMain& v) { herramienta(v, QStringLiteral("Salir"))->trigger(); },
        [](frmMain& v) { v.findChild<QAction*>(QStringLiteral("mnuFileExit"))->trigger(); },
    };
    for (const auto& sal : salidas) {
      Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
      frmMain v(p, o.lanzador, o.entorno);
      v.carga();
      v.show();
      // Keys are read as they are spelt: these two are not commands of their bars.
      v.pulsaBarraLista(QStringLiteral("Salir"));
      v.pulsaBarraSuperior(QStringLiteral("salir"));
      QVERIFY(v.isVisible());
      QVERIFY(std::filesystem::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
      sal(v);
      QVERIFY(!v.isVisible());
      QVERIFY(!std::filesystem::exists(o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
    }
  }
};

int ejecutaPruebaPrincipal(int argc, char** argv) {
  PruebaPrincipal prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_principal.moc"

// The company selection COTIZACION on the sample office, and the whole road of a
// contribution exchange from the main window.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>
#include <QtTest>
#include <memory>

#include "fan/forms/cotizacion.h"
#include "shell/forms/frmmain.h"
#include "shell/forms/pxvaldor32.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using Formulario = formularios::COTIZACION;

namespace {

// The ETI line of the sample office at MOMENTO: keys 20731542 and SLC48213, a normal send
// under the default name.
const std::string ETI = "ETI" "TC220VIP28" "20731542" "SLC48213" "20261115" "0730" "F1511260" "FAN" "N" " "
                        "00000000000000" "  ";

QToolButton* elemento(QWidget* ventana, const QString& clave) {
  for (QToolButton* b : ventana->findChildren<QToolButton*>())
    if (b->property("clave").toString() == clave) return b;
  return nullptr;
}

// The lines after the first that begin with `inicio`.
std::size_t lineas(const std::string& fichero, const std::string& inicio) {
  std::size_t n = 0;
  for (auto p = fichero.find("\r\n" + inicio); p != std::string::npos; p = fichero.find("\r\n" + inicio, p + 1)) ++n;
  return n;
}

// The form shown by itself, on the page of a contribution.
struct Seleccion {
  explicit Seleccion(Momento momento = MOMENTO) : programa(o.carpetas, o.dialogos, {}, momento) {
    programa.entornoWine = o.entorno;
    programa.arranca();
    pagina.marcaCotizacion();
    f = std::make_unique<Formulario>(programa, pagina, motor);
    f->show();
  }
  template <typename T = QComboBox>
  T* control(const char* nombre) {
    return f->findChild<T*>(QString::fromLatin1(nombre));
  }
  QTableWidget* grid() { return control<QTableWidget>("grid"); }
  void verifica() { control<QPushButton>("PRESIONBOTON")->click(); }
  void pulsa(const char* clave) { elemento(f.get(), QString::fromLatin1(clave))->click(); }
  std::vector<bool> marcas() {
    std::vector<bool> m;
    for (int r = 0; r < grid()->rowCount(); ++r)
      m.push_back(grid()->item(r, Formulario::SEL)->checkState() == Qt::Checked);
    return m;
  }

  Oficina o;
  Programa programa;
  PaginaIntercambio pagina;
  MotorSinCalculo motor;
  std::unique_ptr<Formulario> f;
};

}  // namespace

class PruebaCotizacion : public QObject {
  Q_OBJECT

 private slots:
  void lasListasConSusValoresPorDefecto() {
    Seleccion s;
    // 15 November 2026: October of the same year; the year with its leading blank.
    const std::tuple<const char*, int, QString> listas[] = {
        {"Combo1", 12, QStringLiteral("10")},
        {"Combo2", 200, QStringLiteral(" 2026")},
        {"Clase", 21, QStringLiteral("L00.- Normal")},
        {"Calificador", 9, q("00.- Liquidación cuota total en plazo"_cp)}};
    for (const auto& [nombre, elementos, elegido] : listas) {
      QCOMPARE(s.control(nombre)->count(), elementos);
      QCOMPARE(s.control(nombre)->currentText(), elegido);
    }
    QVERIFY(!s.control<QCheckBox>("MarcarTodas")->isEnabled() && !s.control<QCheckBox>("DevEnCta")->isEnabled());
    const QString cabeceras[] = {QStringLiteral("Empresas"), QStringLiteral("Sel"), {}, {}, {}, QStringLiteral("Tr")};
    for (int c = 0; c < 6; ++c) {
      QCOMPARE(s.grid()->horizontalHeaderItem(c)->text(), cabeceras[c]);
      QCOMPARE(s.grid()->isColumnHidden(c), c >= 2 && c <= 4);
    }

    // January: December of the year before. The month chosen is the one listed:
    // September has no payroll.
    Seleccion enero(Momento{2027, 1, 10, 9, 0, 0});
    QCOMPARE(enero.control("Combo1")->currentText(), QStringLiteral("12"));
    QCOMPARE(enero.control("Combo2")->currentText(), QStringLiteral(" 2026"));
    enero.control("Combo1")->setCurrentIndex(8);
    enero.verifica();
    QCOMPARE(enero.grid()->rowCount(), 0);
  }

  void verificarMarcarTodasYCancelar() {
    Seleccion s;
    // A code that begins with a letter reads 0.
    Almacenes& a = s.programa.almacenes;
    a.MESPERIODO = "10";
    a.ANOPERIODO = "2026";
    QVERIFY(a.ABREPERIODO());
    a.periodo.ejecuta("UPDATE NOMIN SET BSSE = 'X' || substr(BSSE, 2) WHERE BNOMBRE LIKE 'Construcciones%'");
    a.CIERRAPERIODO();

    s.verifica();
    // Talleres Úbeda has only a row marked "N"; Peñalara counts 5 of its 6 rows.
    const std::pair<std::string_view, QString> esperadas[] = {{"Asociación Cultural Río Ebro"_cp, "3"},
                                                              {"Café Nórdico Lars Hansen"_cp, "3"},
                                                              {"Construcciones Peñalara, S.L."_cp, "5"},
                                                              {"Panadería Ángel Muñoz Ortega"_cp, "3"}};
    QCOMPARE(s.grid()->rowCount(), 4);
    for (int r = 0; r < 4; ++r) {
      QCOMPARE(s.grid()->item(r, Formulario::EMPRESAS)->text(), q(esperadas[r].first));
      QCOMPARE(s.grid()->item(r, Formulario::TR)->text(), esperadas[r].second);
    }
    QVERIFY(!s.control("Combo1")->isEnabled() && !s.control("Combo2")->isEnabled());

    auto* todas = s.control<QCheckBox>("MarcarTodas");
    todas->click();
    QCOMPARE(s.marcas(), (std::vector<bool>{true, true, false, true}));
    // A click marks the letter code all the same; clearing "Marcar todas" leaves it.
    s.grid()->item(2, Formulario::SEL)->setCheckState(Qt::Checked);
    todas->click();
    QCOMPARE(s.marcas(), (std::vector<bool>{false, false, true, false}));
    for (int r = 0; r < 4; ++r) QCOMPARE(s.f->seleccion().grid[static_cast<std::size_t>(r)].marcada, r == 2);
    s.control<QCheckBox>("DevEnCta")->click();
    QVERIFY(s.f->seleccion().devEnCta);

    s.pulsa("can");
    QVERIFY(!s.f->isVisible());
    QCOMPARE(s.programa.g.CANCELADO, 1.0);
    QVERIFY(!s.programa.almacenes.empresas.abierto());
  }

  void elCaminoEnteroDesdeLaVentanaPrincipal() {
    Oficina o;
    Programa p(o.carpetas, o.dialogos, {}, MOMENTO);
    p.entornoWine = o.entorno;
    formularios::frmMain v(p, o.lanzador, o.entorno);
    v.carga();
    v.show();
    elemento(&v, QStringLiteral("cotiza"))->click();
    QString seleccion;
    bool sigueSinMarcas = false;
    alAbrirModal([&](QWidget* modal) {
      seleccion = modal->objectName();
      modal->findChild<QPushButton*>(QStringLiteral("PRESIONBOTON"))->click();
      elemento(modal, QStringLiteral("pro"))->click();
      sigueSinMarcas = modal->isVisible();
      modal->findChild<QCheckBox*>(QStringLiteral("MarcarTodas"))->click();
      elemento(modal, QStringLiteral("pro"))->click();
    });
    v.asistente()->findChild<QPushButton*>(QStringLiteral("Command3"))->click();

    QCOMPARE(seleccion, QStringLiteral("COTIZACION"));
    // "Procesar" with nothing marked says so, and the form stays.
    QVERIFY(sigueSinMarcas);
    QCOMPARE(o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(o.dialogos.mensajes[0].titulo, std::string("Valdor Plus"));
    QCOMPARE(o.dialogos.mensajes[0].texto,
             std::string("Para iniciar el proceso del fichero debe seleccionar al menos una empresa."));
    QCOMPARE(o.dialogos.preguntas.size(), std::size_t{1});
    QCOMPARE(o.dialogos.preguntas[0].texto, std::string(preguntaEditarFan()));
    QCOMPARE(o.lanzador.ordenes.size(), std::size_t{1});
    const std::string bytes = leeBytes(o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/FAN/F1511260.FAN");
    QCOMPARE(bytes.substr(0, 72), ETI + "\r\n");
    QCOMPARE(lineas(bytes, "EMP"), std::size_t{4});
  }
};

int ejecutaPruebaCotizacion(int argc, char** argv) {
  PruebaCotizacion prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_cotizacion.moc"

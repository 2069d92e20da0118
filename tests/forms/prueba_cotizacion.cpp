// The company selection COTIZACION on the sample office, and the whole road of a
// contribution exchange from the main window.
#include "engine/forms/cotval.h"
#include "fan/forms/cotizacion.h"
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

// The form shown by itself, on the page of a contribution.
struct Seleccion {
  Seleccion() {
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
  Programa programa{o.carpetas, o.dialogos, {}, MOMENTO};
  PaginaIntercambio pagina;
  MotorSinCalculo motor;
  std::unique_ptr<Formulario> f;
};

// The recorder of messages with a user who clicks the button `boton` of the window on
// screen at the second progress whose first label begins with `cuando`, as the progress
// lets the clicks in between two drawings.
struct DialogosQueCancelan : DialogosGrabador {
  DialogosQueCancelan(std::string_view cuando, const char* boton) : cuando(cuando), boton(boton) {}
  void progreso(int porcentaje, std::string_view e1, std::string_view e2) override {
    DialogosGrabador::progreso(porcentaje, e1, e2);
    if (!e1.starts_with(cuando) || ++vistos != 2) return;
    if (QWidget* modal = QApplication::activeModalWidget())
      if (auto* b = modal->findChild<QPushButton*>(QString::fromLatin1(boton))) b->click();
  }
  std::string_view cuando;
  const char* boton;
  int vistos = 0;
};

}  // namespace

class PruebaCotizacion : public QObject {
  Q_OBJECT

 private slots:
  void verificarMarcarTodasYCancelar() {
    Seleccion s;
    // 15 November 2026: October of the same year; nothing to mark before the companies
    // are listed.
    QCOMPARE(s.control("Combo1")->currentText(), QStringLiteral("10"));
    QCOMPARE(s.control("Combo2")->currentText(), QStringLiteral(" 2026"));
    QVERIFY(!s.control<QCheckBox>("MarcarTodas")->isEnabled() && !s.control<QCheckBox>("DevEnCta")->isEnabled());

    s.verifica();
    QCOMPARE(s.control<QLabel>("cuenta")->text(), QStringLiteral("4 empresas, 0 marcadas"));
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
    QCOMPARE(s.marcas(), (std::vector<bool>{true, true, true, true}));
    // Clearing "Marcar todas" clears the marks; a click marks one company.
    todas->click();
    s.grid()->item(2, Formulario::SEL)->setCheckState(Qt::Checked);
    QCOMPARE(s.marcas(), (std::vector<bool>{false, false, true, false}));
    QCOMPARE(s.control<QLabel>("cuenta")->text(), QStringLiteral("4 empresas, 1 marcada"));
    QTest::keyClicks(s.control<QLineEdit>("filtro"), QStringLiteral("ALARA"));
    for (int r = 0; r < 4; ++r) QCOMPARE(s.grid()->isRowHidden(r), r != 2);
    s.control<QLineEdit>("filtro")->clear();
    QVERIFY(!s.grid()->isRowHidden(0));
    for (int r = 0; r < 4; ++r) QCOMPARE(s.f->seleccion().grid[static_cast<std::size_t>(r)].marcada, r == 2);
    s.control<QCheckBox>("DevEnCta")->click();
    QVERIFY(s.f->seleccion().devEnCta);

    s.pulsa("can");
    QVERIFY(!s.f->isVisible());
    QCOMPARE(s.programa.g.CANCELADO, 1.0);
    QVERIFY(!s.programa.almacenes.empresas.abierto());

    // The month chosen is the one listed: September has no payroll.
    Seleccion septiembre;
    septiembre.control("Combo1")->setCurrentIndex(8);
    septiembre.verifica();
    QCOMPARE(septiembre.grid()->rowCount(), 0);
  }

  // "Cancelar" in the statement run's window, then in the form while the file is written:
  // the run stops, no file (nor a temporary one) is left, and the user is told.
  void cancelarDuranteElProcesoNoDejaFichero() {
    const std::pair<std::string_view, const char*> momentos[] = {{"Calculando", "Cancelar"},
                                                                 {"Generando fichero", "cancelarTrabajo"}};
    for (const auto& [cuando, boton] : momentos) {
      Oficina o;
      DialogosQueCancelan dialogos(cuando, boton);
      Programa programa{o.carpetas, dialogos, {}, MOMENTO};
      programa.entornoWine = o.entorno;
      programa.arranca();
      PaginaIntercambio pagina;
      pagina.marcaCotizacion();
      preparaPagina(programa, pagina, true);
      pagina.Text8 = "CANCELAR";
      programa.g.LINEAETI = LINEAETI(pagina, programa.registro);
      formularios::MotorEscritorio motor(nullptr);
      Formulario f(programa, pagina, motor);
      f.show();
      f.findChild<QPushButton*>(QStringLiteral("PRESIONBOTON"))->click();
      f.findChild<QCheckBox*>(QStringLiteral("MarcarTodas"))->click();
      elemento(&f, QStringLiteral("pro"))->click();

      QVERIFY(!f.isVisible());
      QCOMPARE(dialogos.vistos, 2);
      QCOMPARE(dialogos.mensajes.size(), std::size_t{1});
      QCOMPARE(dialogos.mensajes[0].icono, Icono::Informacion);
      QCOMPARE(dialogos.mensajes[0].texto, std::string("Proceso cancelado por el usuario. El fichero no se ha generado."));
      const auto carpeta = o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/FAN";
      QVERIFY(!std::filesystem::exists(carpeta) || std::filesystem::is_empty(carpeta));
      QCOMPARE(programa.g.CANCELADO, 1.0);
    }
  }

  void elCaminoEnteroDesdeLaVentanaPrincipal() {
    Escritorio e;
    e.pulsa("cotiza");
    bool sigueSinMarcas = false;
    AlAbrirModal seleccion([&](QWidget* modal) {
      modal->findChild<QPushButton*>(QStringLiteral("PRESIONBOTON"))->click();
      elemento(modal, QStringLiteral("pro"))->click();
      sigueSinMarcas = modal->isVisible();
      modal->findChild<QCheckBox*>(QStringLiteral("MarcarTodas"))->click();
      elemento(modal, QStringLiteral("pro"))->click();
    });
    e.v.asistente()->findChild<QPushButton*>(QStringLiteral("Command3"))->click();

    QCOMPARE(seleccion.nombre, QStringLiteral("COTIZACION"));
    // "Procesar" with nothing marked says so, and the form stays.
    QVERIFY(sigueSinMarcas);
    QCOMPARE(e.o.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(e.o.dialogos.mensajes[0].titulo, std::string("VALDOR+"));
    QCOMPARE(e.o.dialogos.mensajes[0].texto,
             std::string("Para iniciar el proceso del fichero debe seleccionar al menos una empresa."));
    QCOMPARE(e.o.dialogos.preguntas.size(), std::size_t{1});
    QCOMPARE(e.o.dialogos.preguntas[0].texto, std::string(preguntaEditarFan()));
    QCOMPARE(e.o.lanzador.ordenes.size(), std::size_t{1});
    const auto lineas = registros(e.o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/FAN/F1511260.FAN");
    QCOMPARE(lineas.front(), ETI);
    QCOMPARE(std::count_if(lineas.begin(), lineas.end(), [](const std::string& l) { return l.starts_with("EMP"); }), 4);
  }
};

int ejecutaPruebaCotizacion(int argc, char** argv) { return ejecuta<PruebaCotizacion>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_cotizacion.moc"

// The affiliation module on the sample office: what it shows, the file it writes, its
// way out, and the road to it from the main window.
#include "afiliacion/forms/afilia.h"
#include "shell/forms/pxvaldor32.h"
#include "stores/almacen.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

namespace {

// The sample's pending rows: two of Construcciones Peñalara (the second a new hire with
// no payroll row yet), one of the bakery, one of the café, every one in the worker file. A company code is province, number and
// the nine digits modulo 97: 281076543 % 97 = 31, 411234098 % 97 = 76, 81987654 % 97 = 53.
const QString PENALARA = QStringLiteral("28107654331"), PANADERIA = QStringLiteral("41123409876"),
              CAFE = QStringLiteral("08198765453");

// The lines of the default page of 15 November 2026, 07:30, with the settings 20731542 and
// SLC48213 and no keys; C = 3 companies, T = 2 + 2 * 3 + 6 * 4 + 1 = 33 lines.
const std::string ETI = "ETI" "AFI31WS342" "20731542" "SLC48213" "20261115" "0730" "F1511260" "AFI" "N" " "
                        "00000000000000" "  ";
const std::string ETF = "ETFAFI31WS342" "20731542" "SLC48213" "20261115" "0730" "F1511260" "AFIN" " " "00003"
                        "00000033" "   ";

// The module as "&Aceptar" opens it on an affiliation page.
struct Modulo {
  Modulo() {
    p.arranca();
    p.entornoWine = o.entorno;
    pagina.marcaAfiliacion();
    preparaPagina(p, pagina, false);
    p.g.LINEAETI = LINEAETI(pagina, p.registro);
    p.g.LINEASIL = LINEASIL(pagina);
  }
  void abre() {
    f = std::make_unique<formularios::AFILIA>(p, pagina, formularios);
    f->terminaPrograma = [this] { ++finales; };
    f->show();
  }
  template <typename T = QLabel>
  T* control(const char* nombre) {
    return f->findChild<T*>(QString::fromLatin1(nombre));
  }
  QString celda(const char* rejilla, int fila, int columna) {
    const QTableWidgetItem* i = control<QTableWidget>(rejilla)->item(fila, columna);
    return i ? i->text() : QString();
  }

  Oficina o;
  Programa p{o.carpetas, o.dialogos, {}, MOMENTO};
  PaginaIntercambio pagina;
  formularios::FormulariosQt formularios{p, pagina, nullptr};  // its editor opens on the new file
  std::unique_ptr<formularios::AFILIA> f;
  int finales = 0;
};

}  // namespace

class PruebaAfilia : public QObject {
  Q_OBJECT

 private slots:
  void muestraLosPendientesYGenerarEscribeElFichero() {
    Modulo m;
    m.abre();
    // The pending rows from the grid's first, then blank rows to max(4 + 10, 50); the
    // companies in the order of their first worker.
    QCOMPARE(m.control<QTableWidget>("GRID1")->rowCount(), 50);
    const QString filas[][2] = {{PENALARA, "00003"}, {PENALARA, "00007"}, {PANADERIA, "00002"}, {CAFE, "00003"}, {}};
    for (int r = 0; r < 5; ++r)
      QCOMPARE(QStringList({m.celda("GRID1", r, 0), m.celda("GRID1", r, 1)}), QStringList({filas[r][0], filas[r][1]}));
    const QString empresas[] = {PENALARA, PANADERIA, CAFE, {}};
    for (int r = 0; r < 4; ++r) QCOMPARE(m.celda("Grid2", r, 0), empresas[r]);
    // The lines that open and close the file, and the sender.
    QCOMPARE(m.control("Label2")->text(), q(ETI));
    QCOMPARE(m.control("Label7")->text(), q(ETF));
    QCOMPARE(m.control("Label19")->text(), q("para GESTORÍA LABORAL DEL VALLE, S.L."_cp));

    // The key (Clave) is blank: the module asks first, and "No" writes nothing.
    m.control<QPushButton>("Command2")->click();
    QCOMPARE(m.o.dialogos.preguntas.size(), std::size_t{1});
    QVERIFY(m.o.dialogos.preguntas[0].texto.starts_with("La clave (Clave) de la l\xEDnea SIL est\xE1 en blanco."));
    QVERIFY(!std::filesystem::exists(m.o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/AFI/F1511260.AFI"));

    m.o.dialogos.punteros.clear();
    m.o.dialogos.respuestas = {true};
    m.control<QPushButton>("Command2")->click();
    QCOMPARE(m.p.g.FICHEROSALIDA, std::string("C:\\WINSUITE\\VIPTC2\\AFI\\F1511260.AFI"));
    const auto lineas = registros(m.o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/AFI/F1511260.AFI");
    QCOMPARE(lineas.front(), ETI);
    QCOMPARE(lineas.back(), ETF);
    QCOMPARE(m.o.dialogos.preguntas.back().titulo, m.p.g.FICHEROSALIDA);
    QCOMPARE(m.o.dialogos.preguntas.back().texto, std::string(preguntaEditarAfi()));
    QVERIFY(m.o.dialogos.mensajes.empty());  // answered no: no editor
    // The hourglass is off for the editor question and again at the end of the run.
    QCOMPARE(m.o.dialogos.punteros, (std::vector<Puntero>{Puntero::Reloj, Puntero::Normal, Puntero::Normal}));
    QCOMPARE(m.control<QProgressBar>("ProgressBar1")->value(), 100);
  }

  // "&Cancelar" beside the progress, then Escape, while the file is written: the module
  // stays, no file of the run stands, an older one of that name is left as it was, the
  // user is told, and "&Salir" with a yes finds nothing written to delete. Idle, the
  // keyboard has a letter for each control and none twice, and Tab goes top to bottom.
  void cancelarDuranteLaEscrituraNoDejaFicheroYElTeclado() {
    Modulo m;
    const auto carpeta = m.o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/AFI";
    const std::string anterior = "de un env\xEDo anterior\r\n";
    std::filesystem::create_directories(carpeta);
    escribeBytes(carpeta / "F1511260.AFI", anterior);
    m.abre();
    QCOMPARE(letrasAlt(m.f.get()), QStringLiteral("CEGNST"));
    QCOMPARE(ordenTab(m.f.get(), m.control<QTableWidget>("GRID1")),
             QStringList({"GRID1", "Grid2", "Command2", "Command3", "Command1"}));
    auto* cancelar = m.control<QPushButton>("cancelarTrabajo");
    for (const bool escape : {false, true}) {
      m.o.dialogos.alProgreso = [&m, cancelar, escape](int) {
        QVERIFY(cancelar->isVisible() && !m.control<QPushButton>("Command1")->isEnabled());
        escape ? QTest::keyClick(m.f.get(), Qt::Key_Escape) : cancelar->click();
      };
      m.o.dialogos.respuestas = {true};  // written with its blank key
      m.control<QPushButton>("Command2")->click();
      QVERIFY(m.f->isVisible() && !cancelar->isVisible() && m.control<QPushButton>("Command2")->isEnabled());
      QCOMPARE(m.o.dialogos.mensajes.back().texto,
               std::string("Proceso cancelado por el usuario. El fichero no se ha generado."));
      QCOMPARE(leeBytes(carpeta / "F1511260.AFI"), anterior);
      QCOMPARE(std::distance(std::filesystem::directory_iterator(carpeta), std::filesystem::directory_iterator()), 1);
    }
    QCOMPARE(m.o.dialogos.mensajes.size(), std::size_t{2});
    m.o.dialogos.respuestas = {true};
    m.control<QPushButton>("Command1")->click();
    QVERIFY(m.o.dialogos.mensajes.back().texto.starts_with("No se ha escrito ning\xFAn fichero de afiliaci\xF3n"));
  }

  // The worker record of Peñalara's 00007 gone: the module says so at each opening,
  // and the file leaves him out: T = 2 + 2 * 3 + 6 * 3 + 1 = 27.
  void unPendienteSinFichaSeDiceCadaVezYNoVaEnElFichero() {
    Modulo m;
    {
      Almacen producto;
      producto.abre(m.o.carpetas.programa / "PRODUCTO.MDB");
      producto.ejecuta("DELETE FROM WK WHERE WKEMP = ? AND TRA1 = ?", {"28107654331", "00007"});
    }
    for (std::size_t vez = 1; vez <= 2; ++vez) {
      m.abre();
      QCOMPARE(m.o.dialogos.mensajes.size(), vez);
      QCOMPARE(m.o.dialogos.mensajes.back().icono, Icono::Exclamacion);
      QVERIFY(m.o.dialogos.mensajes.back().texto.find(
                  "Empresa 28107654331, trabajador 00007: el trabajador no est\xE1 en el fichero de trabajadores.") !=
              std::string::npos);
      QCOMPARE(m.celda("GRID1", 1, 1), QStringLiteral("00007"));  // still shown in the list
    }
    QVERIFY(m.control("Label7")->text().endsWith(QStringLiteral("00003" "00000027" "   ")));
    m.o.dialogos.respuestas = {true};  // written with its blank key
    m.control<QPushButton>("Command2")->click();
    const auto lineas = registros(m.o.carpeta / "wine/drive_c/WINSUITE/VIPTC2/AFI/F1511260.AFI");
    QCOMPARE(lineas.size(), std::size_t{27});
    QCOMPARE(q(lineas.back()), m.control("Label7")->text());
  }

  void salirSoloBorraLoEscritoConUnSiYSiempreTerminaElPrograma() {
    Modulo m;
    auto quedan = [&m] {
      m.p.almacenes.ABREACUVALDOR();
      return m.p.almacenes.VALDORTA.cuenta();
    };
    // No, and then yes with no file written by the module: the list stays whole.
    for (const bool si : {false, true}) {
      m.abre();
      QVERIFY(m.control<QPushButton>("Command2")->isEnabled());
      m.o.dialogos.respuestas = {si};
      m.control<QPushButton>("Command1")->click();
      QCOMPARE(m.o.dialogos.preguntas.back().titulo, std::string(tituloPendientes()));
      QCOMPARE(quedan(), 4);
      QVERIFY(!m.f->isVisible());
      QCOMPARE(m.finales, si ? 2 : 1);
      QVERIFY(m.pagina.Option1Afiliacion);  // the page is left as it was
    }
    QCOMPARE(m.o.dialogos.mensajes.size(), std::size_t{1});
    QVERIFY(m.o.dialogos.mensajes[0].texto.find("No se ha escrito ning\xFAn fichero de afiliaci\xF3n") !=
            std::string::npos);
    // The file written, the editor declined, and yes: the four rows it carries go.
    m.abre();
    m.o.dialogos.respuestas = {true};  // written with its blank key
    m.control<QPushButton>("Command2")->click();
    m.o.dialogos.respuestas = {true};
    m.control<QPushButton>("Command1")->click();
    QCOMPARE(quedan(), 0);
    QCOMPARE(m.finales, 3);
    QVERIFY(m.o.dialogos.mensajes.back().texto.find("4 trabajadores, los que van en los ficheros escritos. Quedan 0") !=
            std::string::npos);
    // Nothing pending: nothing to generate.
    m.abre();
    QVERIFY(!m.control<QPushButton>("Command2")->isEnabled());
    QCOMPARE(m.celda("GRID1", 0, 0), QString());
  }

  // From the list bar through the wizard's keys to the module; "&Nuevo" back to the
  // wizard; the next "&Aceptar" to the module again, whose "&Salir" closes the main
  // window with the program's exit.
  void delAsistenteAlModuloYDeAhiAlFinDelPrograma() {
    Escritorio e;
    e.pulsa("afilia");
    formularios::PXVALDOR32* a = e.v.asistente();
    // The keys take 8 characters each, and reach the module in its SIL line.
    QTest::keyClicks(a->findChild<QLineEdit*>(QStringLiteral("Text10")), QStringLiteral("AB12CD789"));
    QTest::keyClicks(a->findChild<QLineEdit*>(QStringLiteral("Text11")), QStringLiteral("XY34"));
    const QString SIL = QStringLiteral("SIL" "AB12CD78" "XY34    ") + QString(51, QLatin1Char(' '));
    auto aceptaYPulsa = [a](const char* boton) {
      QString sil = QStringLiteral("<sin módulo>");
      AlAbrirModal modulo([&sil, boton](QWidget* m) {
        if (m->objectName() != QLatin1String("AFILIA")) return;
        sil = m->findChild<QLabel*>(QStringLiteral("Label4"))->text();
        m->findChild<QPushButton*>(QString::fromLatin1(boton))->click();
      });
      a->findChild<QPushButton*>(QStringLiteral("Command3"))->click();
      return sil;
    };

    QCOMPARE(aceptaYPulsa("Command3"), SIL);
    QCOMPARE(a->findChild<QLabel*>(QStringLiteral("SSPanel1"))->text(), q("   Afiliación"_cp));
    QVERIFY(!a->pagina().Option1Afiliacion && !a->pagina().Option1Cotizacion);
    QVERIFY(a->findChild<QWidget*>(QStringLiteral("SSPanel2"))->isVisible());
    QVERIFY(e.v.isVisible());
    // Neither option on: "&Aceptar" waits for a kind of message.
    QVERIFY(!a->findChild<QPushButton*>(QStringLiteral("Command3"))->isEnabled());

    e.pulsa("afilia");
    QCOMPARE(aceptaYPulsa("Command1"), SIL);
    QCOMPARE(e.o.dialogos.preguntas.back().titulo, std::string(tituloPendientes()));
    QTRY_VERIFY(!e.v.isVisible());
    QVERIFY(!std::filesystem::exists(e.o.carpetas.trabajo / "TEMPORAL VALDOR.MDB"));
  }
};

int ejecutaPruebaAfilia(int argc, char** argv) { return ejecuta<PruebaAfilia>(argc, argv); }

}  // namespace valdor::pruebas

#include "prueba_afilia.moc"

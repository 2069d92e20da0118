// The file selector and the exchange file editor over small files written by hand in a
// temporary Wine drive: the load with the rows the size suggests, the edit of a line and
// what it refuses, the search, the save without blank lines, the print order, and the
// road from the selector's tree and from the wizard to the editor.
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>
#include <memory>

#include "browser/forms/editor.h"
#include "browser/forms/selector.h"
#include "shell/ajustes.h"
#include "shell/forms/formularios.h"
#include "stores/literales.h"
#include "tests/forms/oficina_qt.h"

namespace valdor::pruebas {

using formularios::EDITOR;

namespace {

namespace fs = std::filesystem;

const std::string ETI = "ETI" + std::string(67, ' ');
const std::string EMP = "EMP" + std::string(67, '0');
const std::string RZS = "RZS" + std::string(67, 'R');
const std::string TRA = "TRA" + std::string(67, 'X');
// The trailer's counts are its last 13 figures before the blanks: 5 of companies and 8 of
// lines.
std::string cierre(std::string_view cuentas) { return "ETF" + std::string(51, ' ') + std::string(cuentas) + "   "; }

std::string fichero(const std::vector<std::string>& lineas) {
  std::string bytes;
  for (const std::string& l : lineas) bytes += l + "\r\n";
  return bytes;
}

// A program with its Wine drive in a temporary folder, and the editor on one of the FAN
// folder's files.
struct Banco {
  Banco() {
    fs::create_directories(fan);
    fs::create_directories(carpetas.trabajo);
    p.entornoWine = EntornoWine{carpeta / "wine"};
  }

  void abre(const std::string& nombre) {
    p.g.FICHEROSALIDA = "C:\\WINSUITE\\VIPTC2\\FAN\\" + nombre;
    p.g.FICHEROEDITADO = p.g.FICHEROSALIDA;
    f = std::make_unique<EDITOR>(p, lanzador);
    f->show();
    QCoreApplication::processEvents();
  }
  QTableWidget* rejilla() const { return f->findChild<QTableWidget*>(QStringLiteral("REJILLA")); }
  QString celda(int fila, int columna) const {
    const QTableWidgetItem* c = rejilla()->item(fila, columna);
    return c ? c->text() : QString();
  }
  QStringList fila(int f) const { return {celda(f, 0), celda(f, 1), celda(f, 2), celda(f, 3)}; }
  QString etiqueta(const char* nombre) const { return f->findChild<QLabel*>(QString::fromLatin1(nombre))->text(); }
  void pulsa(const char* clave) {
    f->findChild<QToolButton*>(QStringLiteral("SSListBar1_") + QString::fromLatin1(clave))->click();
  }

  // The editor of a line as the user opens it; only one is open at a time.
  QLineEdit* abreEdicion(int fila) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    rejilla()->editItem(rejilla()->item(fila, EDITOR::LINEA));
    return rejilla()->findChild<QLineEdit*>(QStringLiteral("edicion"));
  }
  void termina(QLineEdit* edicion) {
    QTest::keyClick(edicion, Qt::Key_Return);
    QCoreApplication::processEvents();
  }
  void edita(int fila, const QString& texto) {
    QLineEdit* e = abreEdicion(fila);
    QVERIFY(e);
    e->setText(texto);
    termina(e);
  }

  CarpetaTemporal carpeta;
  Carpetas carpetas{carpeta / "programa", carpeta / "trabajo"};
  fs::path fan = carpeta / "wine/drive_c/WINSUITE/VIPTC2/FAN";
  DialogosGrabador dialogos;
  LanzadorGrabador lanzador;
  Programa p{carpetas, dialogos, {}, MOMENTO};
  std::unique_ptr<EDITOR> f;
};

void guardaRuta(const Banco& b, const std::string& ruta) {
  REGINTERCAMBIO r = registroEnBlanco();
  r.RUTAWINSUITE = ruta;
  FicheroAjustes(b.carpetas.trabajo).escribe(r);
}

}  // namespace

class PruebaEditorFicheros : public QObject {
  Q_OBJECT

 private slots:
  void cargaCadaLineaTalCualConSuLongitudYSuRevision() {
    Banco b;
    // 72 + 73 + 72 = 217 bytes: 3.1 rows, so 3; one more for an affiliation file.
    escribeBytes(b.fan / "F2211260.FAN", fichero({ETI, TRA + "Y", EMP}));
    b.abre("F2211260.FAN");
    QCOMPARE(b.f->windowTitle(), QStringLiteral("Edición del Fichero C:\\WINSUITE\\VIPTC2\\FAN\\F2211260.FAN"));
    QCOMPARE(b.rejilla()->rowCount(), 3);
    QCOMPARE(b.fila(0), (QStringList{"1", q(ETI), "70", ""}));
    QCOMPARE(b.fila(1), (QStringList{"2", q(TRA + "Y"), "71", "longitud 71"}));
    QCOMPARE(b.fila(2), (QStringList{"3", q(EMP), "70", ""}));
    QVERIFY(b.rejilla()->item(0, 0)->textAlignment() & Qt::AlignRight);
    // Only the marked row is tinted.
    QCOMPARE(b.rejilla()->item(0, EDITOR::REVISION)->background().style(), Qt::NoBrush);
    QVERIFY(b.rejilla()->item(1, EDITOR::REVISION)->background().style() != Qt::NoBrush);
    // Only the line is edited.
    for (int c = 0; c < EDITOR::COLUMNAS; ++c)
      QCOMPARE(bool(b.rejilla()->item(1, c)->flags() & Qt::ItemIsEditable), c == EDITOR::LINEA);
    QCOMPARE(b.etiqueta("cierre"), q("No hay línea de cierre ETF con sus cuentas de empresas y de líneas."_cp));
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("1 línea con observaciones (columna Revisión)."));

    b.pulsa("can");
    QVERIFY(!b.f->isVisible());
    QCOMPARE(b.f->result(), int(QDialog::Rejected));

    // An affiliation file gets a row more, empty, and the flag is cleared on the close.
    b.p.g.EDITAAFI = 1;
    b.abre("F2211260.FAN");
    QCOMPARE(b.rejilla()->rowCount(), 4);
    QCOMPARE(b.fila(3), (QStringList{"", "", "", ""}));
    QCOMPARE(b.p.g.EDITAAFI, 1.0);
    QTest::keyClick(b.f.get(), Qt::Key_Escape);
    QVERIFY(!b.f->isVisible());
    QCOMPARE(b.p.g.EDITAAFI, 0.0);
  }

  void unFicheroQueNoSeGeneroDejaLaRejillaVacia() {
    Banco b;
    b.p.g.FICHEROSALIDA = "   ";
    EDITOR f(b.p, b.lanzador);
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(b.dialogos.mensajes[0].titulo, std::string("Valdor Plus"));
    QCOMPARE(b.dialogos.mensajes[0].texto, std::string("El fichero no se generó. El proceso ha sido abortado."_cp));
    QCOMPARE(b.dialogos.mensajes[0].icono, Icono::Critico);
    QCOMPARE(f.findChild<QTableWidget*>(QStringLiteral("REJILLA"))->rowCount(), 0);
    // Nothing to save or to print.
    f.pulsaBarraLista(QStringLiteral("guar"));
    f.pulsaBarraLista(QStringLiteral("IMPRI"));
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QVERIFY(b.lanzador.ordenes.empty());
  }

  void laEdicionCuentaDeNuevoYRehusaLoQueNoCabeEnElFichero() {
    Banco b;
    // ETI, one company (EMP, RZS), one worker and the trailer: 1 company, 5 lines.
    escribeBytes(b.fan / "F2211260.FAN", fichero({ETI, EMP, RZS, TRA, cierre("0000100000005")}));
    b.abre("F2211260.FAN");
    QCOMPARE(b.rejilla()->rowCount(), 5);  // 360 bytes: 5.14 rows
    QCOMPARE(b.etiqueta("cierre"), QStringLiteral("Cierre ETF: 1 empresa, 5 líneas: cuadran con el fichero."));
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("Ninguna línea con observaciones."));

    b.edita(3, "TRA" + QString(60, QLatin1Char('Z')));
    QCOMPARE(b.fila(3), (QStringList{"4", "TRA" + QString(60, QLatin1Char('Z')), "63", "longitud 63"}));
    QCOMPARE(b.etiqueta("observaciones"), QStringLiteral("1 línea con observaciones (columna Revisión)."));

    // Typing stops at 70 characters.
    QLineEdit* e = b.abreEdicion(3);
    QVERIFY(e);
    e->selectAll();
    QTest::keyClicks(e, QString(75, QLatin1Char('W')));
    QCOMPARE(e->text().size(), 70);
    b.termina(e);
    QCOMPARE(b.fila(3), (QStringList{"4", QString(70, QLatin1Char('W')), "70", "segmento WWW"}));

    // A Greek omega (U+03C9, the 4th character) has no byte in the file: the line stays.
    b.edita(3, QStringLiteral("TRA\u03C9"));
    QCOMPARE(b.celda(3, 1), QString(70, QLatin1Char('W')));
    QTRY_COMPARE(b.dialogos.mensajes.size(), std::size_t{1});
    QCOMPARE(b.dialogos.mensajes[0].icono, Icono::Exclamacion);
    QVERIFY(b.dialogos.mensajes[0].texto.find("U+03C9") != std::string::npos);
    QVERIFY(b.dialogos.mensajes[0].texto.find("número 4 "_cp) != std::string::npos);
    // The euro sign has one: 0x80.
    b.edita(1, QStringLiteral("EMP\u20AC") + QString(66, QLatin1Char('0')));
    QCOMPARE(b.celda(1, 2), QStringLiteral("70"));
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{1});

    // A line emptied: no length, and the trailer now counts one line too many.
    b.edita(2, QString());
    QCOMPARE(b.fila(2), (QStringList{"3", "", "", ""}));
    QCOMPARE(b.etiqueta("cierre"),
             QStringLiteral("Cierre ETF: 1 empresa, 5 líneas. No cuadran: el fichero tiene 4 líneas."));

    // The save drops the emptied line, and takes the line still being typed; the rows
    // keep their numbers on the screen.
    QLineEdit* abierta = b.abreEdicion(0);
    QVERIFY(abierta);
    abierta->setText(q("ETI a medio escribir"_cp));
    b.pulsa("guar");
    QCOMPARE(leeBytes(b.fan / "F2211260.FAN"),
             fichero({"ETI a medio escribir", "EMP\x80" + std::string(66, '0'), std::string(70, 'W'),
                      cierre("0000100000005")}));
    QCOMPARE(b.fila(0), (QStringList{"1", "ETI a medio escribir", "20", "longitud 20"}));
    QCOMPARE(b.rejilla()->rowCount(), 5);
    QCOMPARE(b.celda(3, 0), QStringLiteral("4"));
    QVERIFY(b.dialogos.mensajes.size() == 1);  // no message on success
    QVERIFY(b.f->isVisible());

    // A folder that went away: the failure is told, critically.
    fs::remove_all(b.fan);
    b.pulsa("guar");
    QCOMPARE(b.dialogos.mensajes.size(), std::size_t{2});
    QCOMPARE(b.dialogos.mensajes[1].titulo, std::string("Valdor Plus"));
    QCOMPARE(b.dialogos.mensajes[1].icono, Icono::Critico);
    QVERIFY(b.dialogos.mensajes[1].texto.starts_with("No se puede guardar el fichero"));
  }

  void buscarSubeLaPrimeraLineaConElTextoArriba() {
    Banco b;
    // ETI, nine companies, a worker at row 10 and another at row 20, the trailer at row 59:
    // 60 lines, 4320 bytes, 61.7 rows, so 62: the last two rows stay empty.
    std::vector<std::string> lineas{ETI};
    for (int i = 0; i < 9; ++i) lineas.push_back(EMP);
    lineas.push_back("TRA" + std::string(67, '1'));
    while (lineas.size() < 20) lineas.push_back("AYN" + std::string(67, ' '));
    lineas.push_back("TRA" + std::string(67, '2'));
    while (lineas.size() < 59) lineas.push_back("AYN" + std::string(67, ' '));
    lineas.push_back(cierre("0000900000060"));
    escribeBytes(b.fan / "F2211260.FAN", fichero(lineas));
    b.abre("F2211260.FAN");
    QCOMPARE(b.rejilla()->rowCount(), 62);
    QCOMPARE(b.fila(59)[0], QStringLiteral("60"));
    QCOMPARE(b.fila(60), (QStringList{"", "", "", ""}));
    QCOMPARE(b.fila(61), (QStringList{"", "", "", ""}));
    QCOMPARE(b.etiqueta("cierre"), QStringLiteral("Cierre ETF: 9 empresas, 60 líneas: cuadran con el fichero."));
    QCOMPARE(b.rejilla()->rowAt(0), 0);

    b.dialogos.entradas = {std::string("tra")};
    b.pulsa("BUSCA");
    QCOMPARE(b.dialogos.preguntas.back().titulo, std::string("BUSQUEDA DE TEXTO"));
    QCOMPARE(b.dialogos.preguntas.back().texto, std::string(" Introduzca el texto que desee buscar"));
    QCOMPARE(b.rejilla()->rowAt(0), 10);
    QCOMPARE(b.rejilla()->currentRow(), 10);
    QVERIFY(b.rejilla()->item(10, 1)->isSelected());

    // No hit, or no text: nothing moves and nothing is said.
    b.rejilla()->scrollToTop();
    b.dialogos.entradas = {std::string("zzz"), std::nullopt};
    b.pulsa("BUSCA");
    b.pulsa("BUSCA");
    QCOMPARE(b.dialogos.preguntas.size(), std::size_t{3});
    QCOMPARE(b.rejilla()->rowAt(0), 0);
    QCOMPARE(b.rejilla()->currentRow(), 10);
    QVERIFY(b.dialogos.mensajes.empty());

    // The search reads the grid as edited, not the file.
    b.edita(5, "EXTRA" + QString(65, QLatin1Char(' ')));
    b.dialogos.entradas = {std::string("Tra")};
    b.pulsa("BUSCA");
    QCOMPARE(b.rejilla()->rowAt(0), 5);
  }

  void imprimirEntregaElFicheroYCancelarNoGuarda() {
    Banco b;
    const std::string bytes = fichero({ETI, EMP});
    escribeBytes(b.fan / "F2211260.FAN", bytes);
    b.abre("F2211260.FAN");
    b.pulsa("IMPRI");
    QCOMPARE(b.lanzador.ordenes,
             (std::vector<std::vector<std::string>>{{"xdg-open", (b.fan / "F2211260.FAN").string()}}));
    QVERIFY(b.f->isVisible());

    b.edita(1, QString());
    b.pulsa("can");
    QVERIFY(!b.f->isVisible());
    QCOMPARE(leeBytes(b.fan / "F2211260.FAN"), bytes);

    // A form destroyed in the middle of an edit: the edit ends as the window loses its
    // focus, without reaching back into the form, and nothing is saved.
    b.abre("F2211260.FAN");
    b.f->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(b.f.get()));
    QLineEdit* abierta = b.abreEdicion(0);
    QVERIFY(abierta);
    abierta->setFocus();
    abierta->selectAll();
    QTest::keyClicks(abierta, QStringLiteral("ETI nuevo"));
    b.f.reset();
    QCoreApplication::processEvents();
    QVERIFY(b.dialogos.mensajes.empty());
    QCOMPARE(leeBytes(b.fan / "F2211260.FAN"), bytes);
  }

  void elSelectorMuestraLasCarpetasYAbreElEditorSoloSobreUnFichero() {
    Banco b;
    const fs::path viptc2 = b.carpeta / "wine/drive_c/WINSUITE/VIPTC2";
    fs::create_directories(viptc2 / "AFI");
    escribeBytes(b.fan / "B2211260.FAN", fichero({ETI, EMP}));
    escribeBytes(b.fan / "a1511260.fan", fichero({ETI, EMP, RZS}));
    escribeBytes(b.fan / "NOTAS.TXT", "x");
    escribeBytes(viptc2 / "AFI/F2211260.AFI", fichero({ETI}));
    // The route comes from the settings file, not from what the program read at its start.
    guardaRuta(b, "C:\\WINSUITE\\Winsuite.exe");
    b.p.registro.RUTAWINSUITE = "C:\\OTRA\\Winsuite.exe";
    b.p.g.FICHEROEDITADO = "ANTES";

    formularios::selector s(b.p, b.lanzador);
    s.show();
    QCoreApplication::processEvents();
    QCOMPARE(s.windowTitle(), QStringLiteral("Editar ficheros en C:\\WINSUITE\\"));
    QCOMPARE(b.dialogos.punteros, std::vector<Puntero>{Puntero::Normal});
    auto* arbol = s.findChild<QTreeWidget*>(QStringLiteral("TreeView1"));
    QCOMPARE(arbol->topLevelItemCount(), 4);
    const QString ramas[] = {q("Cotización (FAN)"_cp), q("Afiliación (AFI)"_cp), QStringLiteral("Procesados (ANT)"),
                             QStringLiteral("Huellas (HLL)")};
    const int hijos[] = {2, 1, 0, 0};
    for (int i = 0; i < 4; ++i) {
      QCOMPARE(arbol->topLevelItem(i)->text(0), ramas[i]);
      QCOMPARE(arbol->topLevelItem(i)->childCount(), hijos[i]);
      QVERIFY(arbol->topLevelItem(i)->isExpanded());
    }
    QTreeWidgetItem* cotizacion = arbol->topLevelItem(0);
    QCOMPARE(cotizacion->child(0)->text(0), QStringLiteral("C:\\WINSUITE\\VIPTC2\\FAN\\a1511260.fan"));
    QCOMPARE(cotizacion->child(1)->text(0), QStringLiteral("C:\\WINSUITE\\VIPTC2\\FAN\\B2211260.FAN"));
    QCOMPARE(arbol->topLevelItem(1)->child(0)->text(0), QStringLiteral("C:\\WINSUITE\\VIPTC2\\AFI\\F2211260.AFI"));

    auto pulsa = [arbol](QTreeWidgetItem* nodo) {
      QTest::mouseClick(arbol->viewport(), Qt::LeftButton, {}, arbol->visualItemRect(nodo).center());
    };
    // A branch title opens nothing: a window that opened anyway is counted and closed.
    int otrasVentanas = 0;
    QTimer vigia;
    connect(&vigia, &QTimer::timeout, &s, [&] {
      if (QWidget* modal = QApplication::activeModalWidget(); modal && modal != &s) {
        ++otrasVentanas;
        modal->close();
      }
    });
    vigia.start(20);
    pulsa(cotizacion);
    vigia.stop();
    QCOMPARE(otrasVentanas, 0);
    QCOMPARE(b.p.g.FICHEROSALIDA, std::string("Cotización (FAN)"_cp));
    QCOMPARE(b.p.g.FICHEROEDITADO, std::string("ANTES"));

    // A file opens the editor on itself.
    QString abierto, titulo;
    int filas = -1;
    alAbrirModal([&](QWidget* modal) {
      abierto = modal->objectName();
      titulo = modal->windowTitle();
      filas = modal->findChild<QTableWidget*>(QStringLiteral("REJILLA"))->rowCount();
      modal->close();
    });
    pulsa(cotizacion->child(0));
    QCOMPARE(abierto, QStringLiteral("EDITOR"));
    QCOMPARE(titulo, QStringLiteral("Edición del Fichero C:\\WINSUITE\\VIPTC2\\FAN\\a1511260.fan"));
    QCOMPARE(filas, 3);  // 216 bytes
    QCOMPARE(b.p.g.FICHEROEDITADO, std::string("C:\\WINSUITE\\VIPTC2\\FAN\\a1511260.fan"));
    QCOMPARE(b.p.g.FICHEROSALIDA, b.p.g.FICHEROEDITADO);

    // Enter on a file opens it as the click does.
    abierto.clear();
    alAbrirModal([&](QWidget* modal) {
      abierto = modal->objectName();
      filas = modal->findChild<QTableWidget*>(QStringLiteral("REJILLA"))->rowCount();
      modal->close();
    });
    arbol->setCurrentItem(arbol->topLevelItem(1)->child(0));
    QTest::keyClick(arbol, Qt::Key_Return);
    QCOMPARE(abierto, QStringLiteral("EDITOR"));
    QCOMPARE(filas, 1);  // 72 bytes
    QCOMPARE(b.p.g.FICHEROEDITADO, std::string("C:\\WINSUITE\\VIPTC2\\AFI\\F2211260.AFI"));
  }

  void conLaRutaEscritaDeOtroModoLasCuatroRamasQuedanVacias() {
    Banco b;
    escribeBytes(b.fan / "B2211260.FAN", fichero({ETI, EMP}));
    guardaRuta(b, "C:\\WINSUITE\\WINSUITE.EXE");
    formularios::selector s(b.p, b.lanzador);
    QCOMPARE(s.windowTitle(), QStringLiteral("Editar ficheros en C:\\WINSUITE\\WINSUITE.EXE"));
    auto* arbol = s.findChild<QTreeWidget*>(QStringLiteral("TreeView1"));
    QCOMPARE(arbol->topLevelItemCount(), 4);
    for (int i = 0; i < 4; ++i) QCOMPARE(arbol->topLevelItem(i)->childCount(), 0);
  }

  void elAsistenteAbreElEditorSobreElFicheroQueEscribio() {
    Banco b;
    escribeBytes(b.fan / "F2211260.FAN", fichero({ETI, TRA + "Y", EMP}));
    b.p.g.FICHEROSALIDA = "C:\\WINSUITE\\VIPTC2\\FAN\\F2211260.FAN";
    b.p.g.EDITAAFI = 1;
    PaginaIntercambio pagina;
    formularios::FormulariosQt formularios(b.p, pagina, nullptr);
    QString abierto, linea;
    int filas = -1;
    alAbrirModal([&](QWidget* modal) {
      abierto = modal->objectName();
      auto* rejilla = modal->findChild<QTableWidget*>(QStringLiteral("REJILLA"));
      filas = rejilla->rowCount();
      linea = rejilla->item(1, 1)->text();
      modal->close();
    });
    formularios.EDITOR();
    QCOMPARE(abierto, QStringLiteral("EDITOR"));
    QCOMPARE(filas, 4);  // 217 bytes: 3 rows, and one for the affiliation flag
    QCOMPARE(linea, q(TRA + "Y"));
    QCOMPARE(b.p.g.EDITAAFI, 0.0);
    QVERIFY(b.dialogos.mensajes.empty());
  }
};

int ejecutaPruebaEditorFicheros(int argc, char** argv) {
  PruebaEditorFicheros prueba;
  return QTest::qExec(&prueba, argc, argv);
}

}  // namespace valdor::pruebas

#include "prueba_editor_ficheros.moc"

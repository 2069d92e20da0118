#include "app/ayuda.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#ifndef VALDOR_VERSION
#error "VALDOR_VERSION must come from the build (the project's version)"
#endif

namespace valdor::formularios {

namespace {

// The month's work in the order a clerk does it, in the program's own words.
const char* const GUIA = R"(<h2>El trabajo del mes con VALDOR+</h2>
<ol>
<li><b>Cotización.</b> Pulse <i>Cotización</i> en la barra de la izquierda (Ctrl+1) o elija
<i>Intercambios &gt; Cotización</i>. En el asistente, elija <i>FAN</i>, compruebe el nombre del
fichero y pulse <i>Aceptar</i>.</li>
<li><b>Empresas.</b> Elija el mes y el año y pulse <i>VERIFICAR EMPRESAS</i>. Marque las empresas
que van en el fichero, una a una o con <i>Marcar todas</i>; escriba parte del código o del nombre
en <i>Filtrar</i> para encontrar una empresa. Bajo la lista se ve cuántas hay y cuántas están
marcadas.</li>
<li><b>Proceso.</b> Pulse <i>Procesar</i>. VALDOR+ calcula el boletín de cada trabajador y escribe
el fichero empresa por empresa; la ventana muestra «empresa n de N», la empresa y el trabajador.
<i>Cancelar</i> (o Escape) detiene el proceso en menos de un segundo y no deja ningún fichero.</li>
<li><b>Revisión.</b> Al terminar puede abrir el fichero en el editor (<i>Editar ficheros</i>), que
señala las líneas que no cumplen las reglas del intercambio.</li>
<li><b>Boletín TC1.</b> Con <i>Boletín TC1</i> se calcula e imprime el boletín de una empresa o
de todas las del mes.</li>
<li><b>Envío.</b> Pulse <i>Winsuite</i> para abrir la herramienta de transmisión y enviar el
fichero a la Tesorería General de la Seguridad Social.</li>
</ol>
<p>Las altas, bajas y variaciones de los trabajadores se envían del mismo modo con
<i>Afiliación</i> (fichero AFI).</p>)";

}  // namespace

QString versionValdor() { return QStringLiteral(VALDOR_VERSION); }

void muestraGuia(QWidget* padre) {
  QDialog guia(padre);
  guia.setObjectName(QStringLiteral("guia"));
  guia.setWindowTitle(QString::fromUtf8("Guía del trabajo del mes"));
  guia.resize(620, 520);
  auto* texto = new QTextBrowser(&guia);
  texto->setObjectName(QStringLiteral("texto"));
  texto->setHtml(QString::fromUtf8(GUIA));
  auto* botones = new QDialogButtonBox(QDialogButtonBox::Close, &guia);
  botones->button(QDialogButtonBox::Close)->setText(QStringLiteral("&Cerrar"));
  botones->button(QDialogButtonBox::Close)->setDefault(true);
  QObject::connect(botones, &QDialogButtonBox::rejected, &guia, &QDialog::reject);
  auto* capa = new QVBoxLayout(&guia);
  capa->addWidget(texto, 1);
  capa->addWidget(botones);
  guia.exec();
}

void muestraAcercaDe(QWidget* padre) {
  QMessageBox caja(QMessageBox::Information, QStringLiteral("Acerca de VALDOR+"),
                   QString::fromUtf8("<b>VALDOR+</b> versión %1<br><br>Boletines de cotización a la Seguridad "
                                     "Social y ficheros de intercambio con la Tesorería (FAN y AFI).")
                       .arg(versionValdor()),
                   QMessageBox::Ok, padre);
  caja.setObjectName(QStringLiteral("acercaDe"));
  caja.button(QMessageBox::Ok)->setText(QStringLiteral("Aceptar"));
  caja.exec();
}

}  // namespace valdor::formularios

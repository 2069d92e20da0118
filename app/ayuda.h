// The Help menu's windows: a short guide to the month's work and the "Acerca de" box
// with the program's version.
#pragma once

#include <QString>

class QWidget;

namespace valdor::formularios {

// The version of this build, as the project declares it.
QString versionValdor();

// The guide to the month's work, modal over `padre`; Enter and Escape close it.
void muestraGuia(QWidget* padre);
// The "Acerca de VALDOR+" box with the version.
void muestraAcercaDe(QWidget* padre);

}  // namespace valdor::formularios

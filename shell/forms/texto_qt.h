// The edge between the core's Windows-1252 text and Qt's QString.
#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "stores/texto.h"

namespace valdor::formularios {

inline QString aQString(std::string_view cp1252) { return QString::fromUtf8(cp1252AUtf8(cp1252)); }
// The same, short, for the forms' many captions.
inline QString q(std::string_view cp1252) { return aQString(cp1252); }

// A character with no Windows-1252 form becomes "?", as the system's code page makes it.
inline std::string aCp1252(const QString& texto) { return utf8ACp1252(texto.toUtf8().toStdString()); }

}  // namespace valdor::formularios

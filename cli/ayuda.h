// The help of valdor-cli: the whole help, each order's own help, and the line that
// points a wrong call to the help that answers it. Every text is Windows-1252.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdor::cli {

// "valdor-cli --ayuda": the shape of a call, every order with its options, the folders.
std::string ayudaGeneral();

// "valdor-cli ORDEN --ayuda": the shape of a call of that order, its options and the
// values each option takes; std::nullopt for a name that is no order.
std::optional<std::string> ayudaDeOrden(std::string_view orden);

bool esOrden(std::string_view orden);

// The line after the message of a wrong call: the order's help when the order is known,
// the whole help otherwise.
std::string pistaDeAyuda(std::string_view orden);

// "-h", "--help" or "--ayuda".
bool pideAyuda(std::string_view argumento);

}  // namespace valdor::cli

#pragma once

#include "quindle/core/Diag.h"

#include <string>

namespace Zamt {

/// Puts a note behind every error that reading `text` gave where one of the `signWords` stands: the word that
/// the language has for the sign. Errors that were found in another text must not be in `diag`.
void noteForeignSigns(const std::string& text, Diag& diag);

} // namespace Zamt

#pragma once

#include <string>

namespace Zamt::Host {

/// Shows a long text page by page and waits until the reader is done: with the command in PAGER, or "less -R"
/// if that is not set. False, with nothing shown, when standard output is no terminal, PAGER is empty, or the
/// command can't be run: then the text is to be printed.
bool showPaged(const std::string& text);

} // namespace Zamt::Host

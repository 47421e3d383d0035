#pragma once

#include "host/objects/Grid.h"
#include "quindle/core/QuindleDocument.h"

#include <string>
#include <vector>

/// A LAS file holds the first fifteen bytes of a class name. These two keep a longer name that a Quindle uses
/// from becoming another class once it was written and read back.
namespace Zamt::Host {

/// Gives the classes of `grid` their whole names back where a Quindle, or one that it runs, spells one whose
/// first fifteen bytes are the name in the file. `resolver` may be empty.
void restoreClassNames(const QuindleDocument& document, const QuindleResolver& resolver, Grid& grid);

/// The classes that a run added, as the file will hold them; `shortened` receives a sentence for each that
/// lost its end. False, with a sentence in `problem`, when two classes would get one name.
bool storableClassNames(const Grid& grid, std::vector<ClassName>& names, std::vector<std::string>& shortened,
                        std::string& problem);

} // namespace Zamt::Host

#pragma once

#include "host/objects/Grid.h"

#include <string>
#include <vector>

/// A LAS file holds the first fifteen bytes of a class name. These keep a longer name that a Quindle uses
/// from becoming another class once it was written and read back.
namespace Zamt::Host {

/// As much of a name as a file holds, cut between characters.
std::string storedClassName(const std::string& name);

/// The classes that a run added, as the file will hold them; `shortened` receives a sentence for each that
/// lost its end. False, with a sentence in `problem`, when two classes would get one name.
bool storableClassNames(const Grid& grid, std::vector<ClassName>& names, std::vector<std::string>& shortened,
                        std::string& problem);

} // namespace Zamt::Host

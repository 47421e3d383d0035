#pragma once

#include "quindle/core/QuindleDocument.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

/// The words of the outer shape of a file, for those who read it and those who write it.
namespace Zamt {

/// A setting that holds one text.
struct TextSetting {
  std::string_view word;
  const char* what; ///< How a message names it.
  std::string QuindleDocument::*field;
};

/// In the order in which they are written.
inline constexpr std::array<TextSetting, 6> textSettings{{
    {"description", "the description", &QuindleDocument::description},
    {"category", "the category", &QuindleDocument::category},
    {"icon", "the icon", &QuindleDocument::icon},
    {"shortcut", "the shortcut", &QuindleDocument::shortcut},
    {"author", "the author", &QuindleDocument::author},
    {"version", "the version", &QuindleDocument::version},
}};

/// Defaults that are words of their own instead of values.
inline constexpr std::array<std::pair<std::string_view, QuindleParam::DefaultSource>, 3> defaultSources{{
    {"pick", QuindleParam::DefaultSource::Pick},
    {"brush", QuindleParam::DefaultSource::Brush},
    {"active", QuindleParam::DefaultSource::Active},
}};

inline constexpr std::array<std::pair<std::string_view, QuindleTrigger::Kind>, 4> occasions{{
    {"run", QuindleTrigger::Kind::Run},
    {"key", QuindleTrigger::Kind::Key},
    {"tile.enter", QuindleTrigger::Kind::TileEnter},
    {"load", QuindleTrigger::Kind::Load},
}};

} // namespace Zamt

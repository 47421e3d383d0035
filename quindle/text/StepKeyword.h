#pragma once

#include "quindle/core/QuindleDocument.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace Zamt {

/// The kind of step that a word begins, if it begins one.
inline std::optional<QuindleStep::Kind> stepKeyword(std::string_view word) {
  using Kind = QuindleStep::Kind;
  static constexpr std::array<std::pair<std::string_view, Kind>, 11> keywords{{{"let", Kind::Let},
                                                                               {"create", Kind::Create},
                                                                               {"select", Kind::Select},
                                                                               {"classify", Kind::Classify},
                                                                               {"set", Kind::Set},
                                                                               {"connect", Kind::Connect},
                                                                               {"call", Kind::Call},
                                                                               {"run", Kind::Run},
                                                                               {"report", Kind::Report},
                                                                               {"if", Kind::If},
                                                                               {"for", Kind::ForEach}}};
  for (const auto& [keyword, kind] : keywords)
    if (word == keyword) return kind;
  return std::nullopt;
}

} // namespace Zamt

#pragma once

#include "quindle/core/QuindleDocument.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace Zamt {

/// The words that begin steps.
inline constexpr std::array<std::pair<std::string_view, QuindleStep::Kind>, 11> stepKeywords{{
    {"let", QuindleStep::Kind::Let},
    {"create", QuindleStep::Kind::Create},
    {"select", QuindleStep::Kind::Select},
    {"classify", QuindleStep::Kind::Classify},
    {"set", QuindleStep::Kind::Set},
    {"connect", QuindleStep::Kind::Connect},
    {"call", QuindleStep::Kind::Call},
    {"run", QuindleStep::Kind::Run},
    {"report", QuindleStep::Kind::Report},
    {"if", QuindleStep::Kind::If},
    {"for", QuindleStep::Kind::ForEach},
}};

/// The kind of step that a word begins, if it begins one.
inline std::optional<QuindleStep::Kind> stepKeyword(std::string_view word) {
  for (const auto& [keyword, kind] : stepKeywords)
    if (word == keyword) return kind;
  return std::nullopt;
}

/// The word that begins a step of this kind; empty if none does.
inline std::string_view stepKeyword(QuindleStep::Kind kind) {
  for (const auto& [keyword, itsKind] : stepKeywords)
    if (kind == itsKind) return keyword;
  return {};
}

} // namespace Zamt

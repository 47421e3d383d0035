#pragma once

#include "quindle/core/QuindleDocument.h"

#include <string_view>
#include <unordered_map>

namespace Zamt {

/// The parameters of a document by name, for passes that look up many. The document has to stay as it is.
class ParamIndex {
public:
  explicit ParamIndex(const QuindleDocument& document) {
    params_.reserve(document.params.size());
    for (const QuindleParam& param : document.params) params_.emplace(param.name, &param);
  }

  /// What `QuindleDocument::findParam` finds.
  const QuindleParam* find(std::string_view name) const {
    const auto found = params_.find(name);
    return found == params_.end() ? nullptr : found->second;
  }

private:
  std::unordered_map<std::string_view, const QuindleParam*> params_;
};

} // namespace Zamt

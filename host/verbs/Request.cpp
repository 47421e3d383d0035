#include "host/verbs/Request.h"

#include <utility>

namespace Zamt::Host {

template <class Type>
const Type* Request::find(std::string_view option) const {
  const auto found = values_.find(option);
  return found == values_.end() ? nullptr : std::get_if<Type>(&found->second);
}

void Request::set(std::string_view option, Value value) {
  values_.insert_or_assign(std::string(option), std::move(value));
}

bool Request::has(std::string_view option) const { return values_.contains(option); }

bool Request::flag(std::string_view option) const {
  const bool* const found = find<bool>(option);
  return found != nullptr && *found;
}

const std::string& Request::text(std::string_view option) const {
  static const std::string none;
  const std::string* const found = find<std::string>(option);
  return found == nullptr ? none : *found;
}

const std::vector<std::string>& Request::texts(std::string_view option) const {
  static const std::vector<std::string> none;
  const std::vector<std::string>* const found = find<std::vector<std::string>>(option);
  return found == nullptr ? none : *found;
}

std::uint64_t Request::number(std::string_view option, std::uint64_t otherwise) const {
  const std::uint64_t* const found = find<std::uint64_t>(option);
  return found == nullptr ? otherwise : *found;
}

int Request::level(std::string_view option, int otherwise) const {
  const int* const found = find<int>(option);
  return found == nullptr ? otherwise : *found;
}

} // namespace Zamt::Host

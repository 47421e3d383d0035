#include "host/cli/jsonText.h"

#include <nlohmann/json.hpp>

#include <type_traits>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

/// What is still to be turned, and where it goes.
using Pending = std::vector<std::pair<const Data*, nlohmann::json*>>;

/// Gives `json` room for every element; where those lie does not change any more.
void turn(const Data::List& list, nlohmann::json& json, Pending& pending) {
  json = nlohmann::json::array();
  json.get_ref<nlohmann::json::array_t&>().resize(list.size());
  for (std::size_t i = 0; i < list.size(); ++i) pending.emplace_back(&list[i], &json[i]);
}

void turn(const Fields& fields, nlohmann::json& json, Pending& pending) {
  json = nlohmann::json::object();
  for (const auto& [name, value] : fields) pending.emplace_back(&value, &json[name]);
}

template <class Scalar>
void turn(const Scalar& scalar, nlohmann::json& json, Pending& /*pending*/) {
  json = scalar;
}

} // namespace

std::string jsonText(const Data& data) {
  nlohmann::json root;
  Pending pending{{&data, &root}};
  while (!pending.empty()) {
    const auto [from, to] = pending.back();
    pending.pop_back();
    std::visit([to = to, &pending](const auto& value) { turn(value, *to, pending); }, from->value);
  }
  return root.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

} // namespace Zamt::Host

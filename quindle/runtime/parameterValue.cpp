#include "quindle/runtime/parameterValue.h"

namespace Zamt {

std::optional<std::string> parameterValue(const QuindleDocument& doc,
                                          const std::map<std::string, std::string>& args,
                                          const std::string& name) {
  if (const auto supplied = args.find(name); supplied != args.end()) return supplied->second;
  const QuindleParam* const param = doc.findParam(name);
  if (!param || param->defaultValue.kind == QuindleValue::Kind::None) return std::nullopt;
  return param->defaultValue.toPlainText();
}

} // namespace Zamt

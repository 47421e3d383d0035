#include "host/verbs/clouds/Failures.h"

#include "host/verbs/texts.h"

#include <fmt/format.h>

namespace Zamt::Host {

namespace {

/// What went wrong, for programs and for people.
struct Words {
  const char* key;
  const char* text;
};

Words wordsOf(Failure failure) {
  switch (failure) {
  case Failure::Reading: return {"read", "could not be read"};
  case Failure::Running: return {"run", "could not be worked on"};
  case Failure::Writing: return {"write", "could not be written"};
  case Failure::None:
  case Failure::Interrupted: break;
  }
  return {"interrupted", "not finished"};
}

/// A sentence without what differs from cloud to cloud: their paths, and numbers.
std::string withoutParticulars(std::string sentence, const std::string& cloud) {
  for (std::size_t at = 0; !cloud.empty() && (at = sentence.find(cloud, at)) != std::string::npos;)
    sentence.erase(at, cloud.size());
  std::erase_if(sentence, [](char c) { return c >= '0' && c <= '9'; });
  return sentence;
}

} // namespace

void Failures::add(Failure failure, const std::string& cloud, const Diag& said) {
  const std::string why = said.firstError();
  ++count_;
  Kind& kind = kinds_[{failure, withoutParticulars(why, cloud)}];
  if (kind.clouds++ != 0) return;
  kind.first = cloud;
  kind.why = why;
}

std::string Failures::text() const {
  std::string text;
  for (const auto& [key, kind] : kinds_)
    text += fmt::format("  {} {} ({}{}): {}\n", countOf(kind.clouds, "cloud"), wordsOf(key.first).text,
                        kind.clouds == 1 ? "" : "the first is ", kind.first, kind.why);
  return text;
}

Data Failures::data() const {
  return Data::list(kinds_, [](const auto& entry) -> Data {
    const auto& [key, kind] = entry;
    return Fields{
        {"kind", wordsOf(key.first).key}, {"clouds", kind.clouds}, {"first", kind.first}, {"why", kind.why}};
  });
}

} // namespace Zamt::Host

#include "host/verbs/verbs.h"

#include <utility>

namespace Zamt::Host {

std::vector<Verb> allVerbs() {
  struct Group {
    const char* title;
    std::vector<Verb (*)()> verbs;
  };
  const std::vector<Group> groups{
      {"Clouds", {sampleVerb, infoVerb}},
      {"Run a Quindle on clouds", {previewVerb, runVerb}},
      {"Write a Quindle", {checkVerb, fmtVerb, explainVerb, planVerb}},
      {"Keep Quindles in the collection",
       {listVerb, searchVerb, showVerb, saveVerb, deleteVerb, enableVerb, disableVerb, keysVerb}},
      {"Look something up", {referenceVerb, conditionsVerb, registryVerb}}};
  std::vector<Verb> verbs;
  for (const Group& group : groups)
    for (const auto& describe : group.verbs) {
      verbs.push_back(describe());
      verbs.back().group = group.title;
    }
  return verbs;
}

} // namespace Zamt::Host

#include "host/verbs/verbs.h"

#include <utility>

namespace Zamt::Host {

namespace {

/// Refuses what can't be meant before the verb sees it.
void guard(Verb& verb) {
  verb.run = [options = verb.options, run = std::move(verb.run)](const Request& request,
                                                                 const Context& context) {
    const std::string why = refusalOf(options, request);
    return why.empty() ? run(request, context) : refused(Status::Usage, why);
  };
}

} // namespace

std::vector<Verb> allVerbs() {
  struct Group {
    const char* title;
    std::vector<Verb (*)()> verbs;
  };
  const std::vector<Group> groups{
      {"Clouds", {sampleVerb, infoVerb}},
      {"Run a Quindle on clouds", {previewVerb, runVerb}},
      {"Say in one line which points", {countVerb, classifyVerb, extractVerb}},
      {"Write a Quindle", {checkVerb, fmtVerb, explainVerb, planVerb}},
      {"Keep Quindles in the collection",
       {listVerb, searchVerb, showVerb, saveVerb, deleteVerb, enableVerb, disableVerb, keysVerb}},
      {"Look something up", {referenceVerb, conditionsVerb, registryVerb}}};
  std::vector<Verb> verbs;
  for (const Group& group : groups)
    for (const auto& describe : group.verbs) {
      verbs.push_back(describe());
      verbs.back().group = group.title;
      guard(verbs.back());
    }
  return verbs;
}

} // namespace Zamt::Host

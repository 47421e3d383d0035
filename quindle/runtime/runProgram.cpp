#include "quindle/runtime/ProgramWalk.h"
#include "quindle/runtime/QuindleRuntime.h"
#include "quindle/runtime/parameterValue.h"

#include <optional>

namespace Zamt {

// A run comes back here through the runs nested in it, which `mayNest` holds to a fixed depth.
// NOLINTNEXTLINE(misc-no-recursion)
bool QuindleRuntime::run(const QuindleDocument& doc, const std::map<std::string, std::string>& args,
                         bool preview, QuindleRunResult& result, Diag& diag) {
  result = {};
  result.preview = preview;
  forgetPreviewDisplay(diag);
  if (!doc.enabled) {
    diag.warning("\"" + doc.name + "\" is switched off.", doc.name);
    return false;
  }
  const std::shared_ptr<const Program> program = programFor(doc, result, diag);
  if (!program || !applyBindings(doc, *program, args, diag)) return false;
  ProgramWalk walk{*this, doc, *program, args, preview, result, diag};
  if (!walk.walk() || !walk.checkSelection() || !walk.checkClass()) return false;
  if (preview) showWhatWouldChange(doc, args, walk.counter, diag);
  result.ok = true;
  return true;
}

/// The kept program if it still is the document's, else a new one; null if that can't be compiled.
std::shared_ptr<const QuindleRuntime::Program>
QuindleRuntime::programFor(const QuindleDocument& doc, QuindleRunResult& result, Diag& diag) {
  if (const auto kept = programs.find(doc.name); kept != programs.end()) {
    if (kept->second->revision == doc.revision) return kept->second;
    programs.erase(kept);
  }
  auto program = std::make_shared<Program>();
  if (!compile(doc, *program, diag)) return nullptr;
  programs[doc.name] = program;
  result.compiled = true;
  return program;
}

/// Writes this run's parameter values into the objects. One that fails does not hide the others.
bool QuindleRuntime::applyBindings(const QuindleDocument& doc, const Program& program,
                                   const std::map<std::string, std::string>& args, Diag& diag) {
  bool ok = true;
  for (const QuindleBinding& binding : program.bindings) {
    const std::optional<std::string> value = parameterValue(doc, args, binding.param);
    if (!value) {
      const QuindleParam* const param = doc.findParam(binding.param);
      if (param && param->defaultSource != QuindleParam::DefaultSource::Written)
        diag.error("The parameter \"" + binding.param +
                       "\" takes its value from the application, and none was supplied for this run.",
                   doc.name);
      else
        diag.error("No value for the parameter \"" + binding.param + "\", and it has no default.", doc.name);
      ok = false;
      continue;
    }
    const bool written = binding.connect ? ops.connect(binding.object, binding.slot, *value, {}, diag)
                                         : ops.setParam(binding.object, binding.slot, *value, diag);
    ok = ok && written;
  }
  return ok;
}

} // namespace Zamt

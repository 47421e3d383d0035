#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/runtime/QuindleOps.h"
#include "quindle/runtime/QuindleSceneWords.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Zamt {

/// What a run tells its caller.
struct QUINDLE_API QuindleRunResult {
  bool ok = false;       ///< The run went to its end.
  bool compiled = false; ///< This run compiled the program rather than taking it from the cache.
  bool preview = false;  ///< This was a preview.
  int settled = 0;       ///< Pieces of deferred work done, nested runs included; held at the ends of int.
  std::vector<std::string> report; ///< The report lines, those of nested runs where their step stands.
};

/// Runs Quindles on one scene, for real or as a preview that stops before what writes. Compiling builds the
/// objects of a Quindle in the scene; what is left is a program that is kept, by the Quindle's name, so that
/// a second run only writes the parameters' values and fires the actions.
///
/// A program is kept until its document comes with another `revision`, `forget` or `setBrushObject` drops it,
/// or the runtime ends. The cache does not look at the scene, and objects of a dropped program stay in it.
/// Whatever a run or a compilation fails by, an exception of the scene or of the resolver included, the
/// runtime can be used again at once. What takes no Diag lets std::bad_alloc through.
///
/// Nothing is locked: one thread at a time.
class QUINDLE_API QuindleRuntime {
public:
  /// One thing that a run does. Nothing of an "if" is left in a program but the guards of its steps.
  struct QUINDLE_API RunStep {
    /// What is done, and which fields say it.
    enum class Kind : std::int32_t {
      Fire = 0,   ///< `object`, `action`, `writes`, `counts`.
      Report = 1, ///< `text`.
      Let = 2,    ///< `name`, `value`.
      Run = 3     ///< `name`, `args`, `argNames`.
    };

    Kind kind = Kind::Fire;            ///< Which of the fields below count.
    std::string object;                ///< The name that the scene gave the object.
    std::string action;                ///< Its action slot.
    std::string text;                  ///< The report line before its braces are filled in.
    std::string name;                  ///< Of a Let, or of the Quindle that a Run runs.
    QuindleExpr value;                 ///< Of a Let.
    std::vector<QuindleExpr> args;     ///< Of a Run, worked out where the step stands.
    std::vector<std::string> argNames; ///< Parallel to `args`.
    bool writes = false;               ///< The action changes data, so a preview skips it.
    bool counts = false;               ///< The action builds the selection whose counts a report reads.
    QuindleExpr guard;                 ///< Under what condition the step runs; of kind None for always.
  };

  /// What is left of a compiled Quindle: a thin list over objects that stand in the scene.
  struct QUINDLE_API Program {
    std::uint32_t revision = 0;           ///< Of the document when it was compiled.
    std::vector<QuindleBinding> bindings; ///< What gets the parameters' values before the steps.
    std::vector<RunStep> steps;           ///< In the order in which they run.
    std::string editorObject;             ///< The editor of the last "classify into"; empty if there is none.
  };

  /// Keeps a reference to `ops`, which has to outlive the runtime.
  explicit QuindleRuntime(QuindleOps& ops);
  QuindleRuntime(const QuindleRuntime&) = delete;
  QuindleRuntime& operator=(const QuindleRuntime&) = delete;
  /// Forgets all programs and leaves the scene as it is.
  ~QuindleRuntime();

  /// Finds the Quindles that "run" steps name. While it is empty, such steps fail.
  QuindleResolver resolver;

  /// Runs the document's run trigger. `args` holds the parameters' values as text; a parameter that it lacks
  /// takes its default. What the last preview showed is taken away first.
  ///
  /// `result` is overwritten. Returns false when the document is switched off or something failed; `diag`
  /// says what, `result.report` keeps the lines made so far, and what was fired stays fired.
  bool run(const QuindleDocument& doc, const std::map<std::string, std::string>& args, bool preview,
           QuindleRunResult& result, Diag& diag);

  /// Builds the document's objects in the scene, and puts what is left for each run into `program`, which has
  /// to be empty. Returns false after reporting every fault; the program must not be used then, and what was
  /// built stays in the scene. The cache is not touched.
  bool compile(const QuindleDocument& doc, Program& program, Diag& diag);

  /// Drops the program kept for the Quindle of that name, if any. A host that reads a document anew has to
  /// call this, since the new document starts at revision 0.
  void forget(const std::string& name);

  /// What the scene called the object that a "create" step of the latest compilation called `name`; any other
  /// name is returned as it is.
  std::string objectNamed(const std::string& name) const;

  /// The brush to select from: the one named by the host, else the one known, else the first in the scene,
  /// else a new one that is switched on for drawing. Empty with an error if none can be made.
  std::string ensureBrushObject(Diag& diag);

  /// Names the brush, for as long as the runtime lives, and drops all programs, whose selections start from
  /// the old one. Empty text, and the name of the current brush, change nothing.
  void setBrushObject(const std::string& name);

  /// The objects that publish a value of the named kind, in the scene's order, without those that Quindles
  /// made for themselves.
  std::vector<std::string> sceneObjectsPublishing(const std::string& kind);

  /// Of `sceneObjectsPublishing`, those made by a creator whose identifier is exactly `kind`.
  std::vector<std::string> sceneObjectsOfKind(const std::string& kind);

  /// A report line with its braces filled in: a let's or a parameter's value, or a count read back from the
  /// object `counter`, which is empty if nothing has counted yet. What cannot be filled in stays as it is
  /// written, with a warning. Empty, after an error, if memory runs out.
  std::string expandReport(const std::string& text, const QuindleDocument& doc,
                           const std::map<std::string, std::string>& args,
                           const std::map<std::string, QuindleValue>& lets, const std::string& counter,
                           bool preview, Diag& diag) const;

  /// Attaches the selection that `editor` holds, as a mask, to what displays the first parameter of type Grid
  /// or Field that has a value. How it went is told in notes; it never fails a run.
  void showWhatWouldChange(const QuindleDocument& doc, const std::map<std::string, std::string>& args,
                           const std::string& editor, Diag& diag);

  /// Removes what the last preview attached. Reports nothing.
  void forgetPreviewDisplay(Diag& diag);

private:
  class QUINDLE_PRIVATE ProgramCompiler;
  class QUINDLE_PRIVATE Run;

  QUINDLE_PRIVATE std::shared_ptr<const Program> programFor(const QuindleDocument& doc,
                                                            QuindleRunResult& result, Diag& diag);
  // What the public functions do; std::bad_alloc passes through.
  QUINDLE_PRIVATE bool build(const QuindleDocument& doc, Program& program, Diag& diag);
  QUINDLE_PRIVATE std::string findBrush(Diag& diag);
  QUINDLE_PRIVATE std::string filledIn(const std::string& text, const QuindleDocument& doc,
                                       const std::map<std::string, std::string>& args,
                                       const std::map<std::string, QuindleValue>& lets,
                                       const std::string& counter, bool preview, Diag& diag) const;
  QUINDLE_PRIVATE void attachPreview(const QuindleDocument& doc,
                                     const std::map<std::string, std::string>& args,
                                     const std::string& editor, Diag& diag);
  QUINDLE_PRIVATE void detachPreview();
  QUINDLE_PRIVATE std::string makeBrush(Diag& diag);

  QuindleOps& ops_;
  std::map<std::string, std::shared_ptr<const Program>> programs_;
  std::string brushObject_ = sceneWords::usualBrush;
  bool brushPinned_ = false;
  std::vector<std::string> previewObjects_;
  int objectCounter_ = 0; ///< Like `objectNames_`, of the latest compilation.
  std::map<std::string, std::string> objectNames_;
};

} // namespace Zamt

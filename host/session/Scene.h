#pragma once

#include "files/Stop.h"
#include "host/objects/CloudObjects.h"
#include "host/objects/MaskedLabels.h"
#include "host/session/SceneTurn.h"
#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/runtime/QuindleRuntime.h"
#include "quindle/scene/TolvenQuindleOps.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

/// A scene around one cloud at a time, and the runtime that runs Quindles in it: what the command line needs,
/// and nothing that it could not do through the graph. There is one graph for the process, so one Scene at a
/// time: a second one waits for its turn. It belongs to the thread that made it.
class Scene {
public:
  /// Waits until the scenes that were asked for before are gone, and starts from an empty graph. What runs in
  /// it ends when `stop`, which outlives the scene, is raised. Clouds may be in any of `formats`. Not to be
  /// made by a thread that has one.
  explicit Scene(const Stop& stop, CloudFormats formats = cloudFormats());
  ~Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  /// Names the region to work in, before a cloud is opened: everything that runs is kept to it, and
  /// parameters that ask the application for a region or a brush get it. False with a sentence in `problem`
  /// if `text` is no region.
  bool setRegion(const std::string& text, std::string& problem);

  /// Keeps everything that runs to the points of these classes (names or numbers, separated by commas). To be
  /// called behind `setRegion` and before a cloud is opened; a class that a cloud lacks fails the run on it.
  void setClasses(const std::string& classes);

  /// Sets the classes that all clouds offer from now on. Without this, each offers its own and those that the
  /// standard has for it. To be called before a cloud is opened.
  void setLabels(LabelSet labels) { labels_ = std::move(labels); }

  /// How many Quindles one run may start, those that they start included: far more than a sensible collection
  /// does, and so few that Quindles which run one another in vain end within a second.
  static constexpr unsigned mostNestedRuns = 10'000;

  /// Names who finds the Quindles that others run. One run asks for at most `mostNestedRuns`, and for none
  /// once it is to stop; what asks for more fails with a sentence.
  void setResolver(QuindleResolver resolver);

  /// Opens the cloud at `path` in place of the one before. What was compiled stays, unless the new cloud
  /// offers other classes, for which it was not made. False with an error in `diag` if it can't be used.
  bool openCloud(const std::string& path, const QuindleDocument& document, Diag& diag);

  /// Runs or previews `document` on the open cloud. `values` are parameter values as the user wrote them;
  /// those that the application supplies, and a cloud that nobody named, are added here.
  bool run(const QuindleDocument& document, const std::map<std::string, std::string>& values, bool preview,
           QuindleRunResult& result, Diag& diag);

  /// Works out which points of the open cloud the condition of the first step of `document`, a "select",
  /// holds for, within what the scene is kept to. Nothing but that step is looked at, and it is compiled
  /// once: a scene is asked for the points of one document only.
  bool select(const QuindleDocument& document, const std::map<std::string, std::string>& values,
              PointMask& kept, Diag& diag);

  /// What the editors of the last run changed, or would have, one entry for each that selected points.
  std::vector<ClassChange> changes() const;

  /// Writes the open cloud with the classes as they are now, if the run is not dry. False with an error in
  /// `diag`, and nothing written, on failure; notes in `diag` say what the file could not hold as it was.
  bool writeCloud(const std::string& path, Diag& diag);

  /// Whether what runs may write files, and which ones its actions wrote. To be set before a cloud is opened.
  ActionFiles& files() { return *files_; }

  /// Adds a display of the cloud, so that a preview has something to show its selection on.
  bool addDisplay(Diag& diag);

  /// Draws the open cloud into a PNG file, the points whose class was changed in front, dry or not.
  bool savePicture(const std::string& path, Diag& diag);

  /// The open cloud; null if there is none.
  Rethold::StrongPtr<Grid> grid() const;

  /// For hosts that ask what the scene holds.
  QuindleRuntime& runtime() { return *runtime_; }

private:
  /// The end of what a condition was compiled into, and what gets values of parameters.
  struct Chain {
    std::string end;
    std::vector<QuindleBinding> bindings;
  };

  bool findLabels(const QuindleDocument& document, const PointCloud& cloud, LabelSet& labels, Diag& diag);
  bool supplyAll(const QuindleDocument& document, std::map<std::string, std::string>& args, Diag& diag);
  bool compileCondition(const QuindleDocument& document, Diag& diag);
  bool bindCondition(const QuindleDocument& document, const std::map<std::string, std::string>& args,
                     Diag& diag);
  bool supply(const QuindleParam& param, std::map<std::string, std::string>& args, Diag& diag);
  bool makeField(const QuindleParam& param, const std::string& field, std::string& object, Diag& diag);
  bool makeRegion(const QuindleParam& param, const std::string& text, std::string& object, Diag& diag);
  void forgetCompiled();
  bool mayNest(std::string& error);

  SceneTurn turn_; ///< Before and behind all that touches the graph.
  const Stop& stop_;
  std::shared_ptr<ActionFiles> files_ = std::make_shared<ActionFiles>();
  std::unique_ptr<TolvenQuindleOps> ops_;
  std::unique_ptr<QuindleRuntime> runtime_;
  std::string cloud_;                       ///< The name of the cloud's object.
  std::string region_;                      ///< The name of the region's object; empty if none was named.
  std::string brush_;                       ///< What selections start from; empty for what the runtime finds.
  std::map<std::string, std::string> made_; ///< Objects made for parameter values, by what they stand for.
  std::optional<LabelSet> labels_;          ///< Of `setLabels`.

  unsigned nestedRuns_ = 0;    ///< That the resolver was asked for since a run began.
  std::optional<Chain> chain_; ///< Of `select`.
  LabelSet compiledFor_;       ///< The classes that the cached programs were compiled with.
};

} // namespace Zamt::Host

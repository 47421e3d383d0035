#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/runtime/QuindleOps.h"
#include "rethold/Pointer.h"
#include "sorbine/VObject.h"
#include "sorbine/ValuePool.h"

#include <string>
#include <vector>

namespace Zamt {

/// The scene operations on the application's object graph. It knows nothing about the objects between calls:
/// each call looks them up by name and answers what the graph says at that moment. The questions report
/// nothing and answer false, empty text or an empty list, or let std::bad_alloc through; the other operations
/// say what went wrong.
class QUINDLE_API TolvenQuindleOps : public QuindleOps {
public:
  /// All values are read and written in the context of `pool`, which is kept alive.
  explicit TolvenQuindleOps(Rethold::StrongPtr<ValuePool> pool);
  ~TolvenQuindleOps() override;

  std::string create(const std::string& creator, const std::string& name, Diag& diag) override;
  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& sourceSlot, Diag& diag) override;
  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Diag& diag) override;

  /// Reads outputs as well as inputs; an input wins the name.
  bool getParam(const std::string& object, const std::string& slot, std::string& value, Diag& diag) override;
  bool fireAction(const std::string& object, const std::string& action, Diag& diag) override;
  bool exists(const std::string& name) override;

  /// The kind only has to occur in the readable name of the type of an output, so "Brush" finds longer type
  /// names too; an empty kind finds every object that a creator made and that has an output.
  std::vector<std::string> objectsPublishing(const std::string& kind) override;
  std::string sourceOf(const std::string& object, const std::string& slot) override;
  std::vector<std::string> consumersOf(const std::string& object) override;
  std::string creatorOf(const std::string& object) override;

  /// What the slot "status" of the object holds.
  std::string statusOf(const std::string& object) override;

  /// `creator` is "Category/Identifier" or the identifier alone.
  std::string createConsumer(const std::string& source, const std::string& creator,
                             const std::string& acceptName, Diag& diag) override;
  bool removeObject(const std::string& name, Diag& diag) override;

  /// At most 100 rounds, so that a graph that keeps itself busy cannot hold a run up for ever; the next call
  /// goes on where this one stopped.
  int settle() override;

  /// The object of that name; null, with an error, if there is none.
  Rethold::StrongPtr<VObject> resolve(const std::string& name, Diag& diag) const;

private:
  Rethold::StrongPtr<ValuePool> pool_;
};

} // namespace Zamt

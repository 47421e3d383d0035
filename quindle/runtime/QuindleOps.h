#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"

#include <string>
#include <vector>

namespace Zamt {

/// The one way in which the library touches a scene: a set of named objects with named slots, known only as
/// text. A host implements the six pure operations, and of the others those that its scene can answer; what
/// is not overridden counts as "not known", and only what depends on the answer is lost.
///
/// Object names are unique in a scene. All calls come from the thread that drives the runtime, one at a time.
/// An operation that fails reports why in its Diag; callers add nothing to it. What one throws ends the call
/// of the runtime: std::bad_alloc as memory that ran out, anything else unchanged in the caller's hands.
class QUINDLE_API QuindleOps {
public:
  virtual ~QuindleOps();

  /// Makes an object with the creator "Category/Identifier", asking for `name`. Returns the name that it
  /// really got, which alone counts from then on, or empty text with an error. A name that is taken is asked
  /// for again when a Quindle is compiled again, and must not fail.
  virtual std::string create(const std::string& creator, const std::string& name, Diag& diag) = 0;

  /// Attaches the input `slot` of `object` to the output `sourceSlot` of `source`; with an empty `sourceSlot`
  /// the scene chooses the output. True when the connection holds.
  virtual bool connect(const std::string& object, const std::string& slot, const std::string& source,
                       const std::string& sourceSlot, Diag& diag) = 0;

  /// Writes an input from text, in the form that a scene file would hold.
  virtual bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                        Diag& diag) = 0;

  /// Reads a slot as text into `value`.
  virtual bool getParam(const std::string& object, const std::string& slot, std::string& value,
                        Diag& diag) = 0;

  /// Presses the action slot `action`. The effect may come only with the next `settle`.
  virtual bool fireAction(const std::string& object, const std::string& action, Diag& diag) = 0;

  /// True while there is an object of that name. The default knows none.
  virtual bool exists(const std::string& name);

  /// The names of all objects that publish a value of the named kind, in the scene's order. None by default.
  virtual std::vector<std::string> objectsPublishing(const std::string& kind);

  /// The object that feeds `slot` of `object`; empty, as by default, if nothing does.
  virtual std::string sourceOf(const std::string& object, const std::string& slot);

  /// The names of all objects that read from `object`. None by default.
  virtual std::vector<std::string> consumersOf(const std::string& object);

  /// The "Category/Identifier" that made `object`; empty, as by default, if unknown.
  virtual std::string creatorOf(const std::string& object);

  /// A line in which `object` tells its state; empty, as by default, if it has nothing to say.
  virtual std::string statusOf(const std::string& object);

  /// Makes an object wired to read `source`, and returns its name. `acceptName`, if not empty, names the way
  /// of reading. The default reports that this scene can't, and returns empty text.
  virtual std::string createConsumer(const std::string& source, const std::string& creator,
                                     const std::string& acceptName, Diag& diag);

  /// Removes an object; true if it was there. The default removes nothing and reports nothing.
  virtual bool removeObject(const std::string& name, Diag& diag);

  /// Does the work that the scene has deferred, until there is no more or a limit is reached. Returns how
  /// many pieces of work that was.
  virtual int settle() = 0;
};

} // namespace Zamt

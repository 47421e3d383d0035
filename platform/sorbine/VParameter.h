#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "sorbine/VValue.h"
#include "sorbine/ValuePool.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Zamt {

class VObject;
class VSlot;

/// A value on its way from one object to its readers: what an output publishes and the inputs attached to it
/// share, or what an input that nothing feeds has for itself.
class QUINDLE_PLATFORM_API VParameter {
public:
  using UserCallback =
      std::function<bool(const Rethold::StrongPtr<VObject>& reader, const std::string& slotName)>;

  /// Who may write the value from text.
  enum class Access {
    Own,      ///< Anyone: the parameter of an input.
    Published ///< Nobody but the publisher itself: the parameter of an output.
  };

  /// A parameter that holds `value`, which may be null, and has no source yet.
  explicit VParameter(Rethold::StrongPtr<VValueBase> value, Access access = Access::Own);
  VParameter(const VParameter&) = delete;
  VParameter& operator=(const VParameter&) = delete;
  ~VParameter();

  /// The object that the value comes from: the publisher, or an input's own object. Null once it is gone.
  Rethold::StrongPtr<VObject> source() const { return source_.lock(); }

  /// The value; null for a parameter made without one.
  const Rethold::StrongPtr<VValueBase>& value() const { return value_; }

  /// Writes the value, or its member if `member` is not empty, from text, and schedules the readers. False,
  /// with nothing changed, if the text does not read as the type, if there is no such value or member, or if
  /// the value is published by an output.
  bool setValueFromText(const std::string& text, const Rethold::StrongPtr<ValuePool>& pool,
                        const std::string& member);

  /// The value, or its member if `member` is not empty, as text; empty if there is none. The last argument
  /// makes no difference to this graph.
  std::string getValueAsText(const Rethold::StrongPtr<ValuePool>& pool, const std::string& member,
                             bool /*unused*/) const;

  /// Calls `callback` for each input that reads this parameter, with its object and the name of the input, in
  /// the order in which they were attached, until it returns false. An input reads its own parameter too.
  void iterateUsers(const UserCallback& callback) const;

  /// Marks the value as changed and puts the readers on the schedule. For whoever changed the value itself.
  void changed();

private:
  friend class VSlot;
  friend class VObject;

  void detachUsers();
  Rethold::StrongPtr<VValueBase> find(const std::string& member) const;

  Rethold::StrongPtr<VValueBase> value_;
  Rethold::WeakPtr<VObject> source_;
  Access access_;
  std::map<std::uint64_t, Rethold::WeakPtr<VSlot>> users_; ///< By the serial of the attachment.
  std::uint64_t lastUser_ = 0;
};

} // namespace Zamt

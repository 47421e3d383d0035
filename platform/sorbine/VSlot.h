#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"
#include "sorbine/VParameter.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <utility>

namespace Zamt {

/// A named input or output of an object. An input that nothing feeds has a parameter of its own, whose source
/// is the slot's own object; attached to an output, it shares that output's parameter.
class QUINDLE_PLATFORM_API VSlot : public std::enable_shared_from_this<VSlot> {
public:
  /// A slot over `parameter`, which may be null. With a `member`, the slot is about that member of the
  /// parameter's value.
  VSlot(std::string name, std::string help, Rethold::StrongPtr<VParameter> parameter,
        std::string member = {});
  VSlot(const VSlot&) = delete;
  VSlot& operator=(const VSlot&) = delete;
  ~VSlot();

  const std::string& name() const { return name_; }
  const std::string& help() const { return help_; }
  const std::string& member() const { return member_; }

  /// The object that has the slot; null once it is gone.
  Rethold::StrongPtr<VObject> owner() const { return owner_.lock(); }

  /// The parameter behind the slot; null if there is none.
  const Rethold::StrongPtr<VParameter>& parameter() const { return parameter_; }

  /// What the slot is about: the parameter's value, or its member; null without one.
  Rethold::StrongPtr<VValueBase> value() const;

  /// The type of `value()`; "void" if there is none.
  Rethold::TypeId type() const;

  /// True while the input shares a parameter that is not its own.
  bool fed() const { return parameter_ != own_; }

  /// True if the value, or what feeds the slot, changed since the object last computed. All inputs count as
  /// changed for the first time.
  bool changed() const;

  /// Makes the input share `parameter`, and schedules its object. The types are the caller's business:
  /// `TolvenActions::Attachment` checks them.
  void attach(const Rethold::StrongPtr<VParameter>& parameter);

  /// Gives the input its own parameter back, with the value that it last had, and schedules its object.
  void detach();

private:
  friend class VObject;
  friend class VSlotContainer;

  void share(const Rethold::StrongPtr<VParameter>& parameter);
  void startReading();
  void stopReading();

  std::string name_;
  std::string help_;
  std::string member_;
  Rethold::WeakPtr<VObject> owner_;
  Rethold::StrongPtr<VParameter> own_;
  Rethold::StrongPtr<VParameter> parameter_;
  std::uint64_t reading_ = 0;    ///< The serial under which the parameter knows this slot; 0 for none.
  std::uint64_t attachedAt_ = 0; ///< Tick of the last attaching or detaching.
};

/// An object's own view of one of its inputs, which is of type `T`.
template <class T>
class VInput {
public:
  explicit VInput(Rethold::StrongPtr<VSlot> slot) : slot_(std::move(slot)) {}

  /// The value that the input has: its own, or what feeds it publishes. It may change with the next call into
  /// the graph.
  const T& get() const {
    static const T none{};
    const auto value = valueAs<T>(slot_->value());
    return value ? value->held : none;
  }

  /// Writes the input's own value, as if the user had, and schedules the object. Does nothing while the input
  /// is fed.
  void set(T value) const {
    const auto own = slot_->fed() ? nullptr : valueAs<T>(slot_->value());
    if (!own) return;
    own->held = std::move(value);
    slot_->parameter()->changed();
  }

  /// The object that feeds the input; null if nothing does.
  Rethold::StrongPtr<VObject> source() const { return slot_->fed() ? slot_->parameter()->source() : nullptr; }

  /// True if the value, or what feeds it, changed since the last `compute`.
  bool changed() const { return slot_->changed(); }

  const Rethold::StrongPtr<VSlot>& slot() const { return slot_; }

private:
  Rethold::StrongPtr<VSlot> slot_;
};

/// An object's own view of one of its outputs, which is of type `T`.
template <class T>
class VOutput {
public:
  explicit VOutput(Rethold::StrongPtr<VSlot> slot) : slot_(std::move(slot)) {}

  /// What was published last.
  const T& get() const { return value().held; }

  /// Publishes `next` and schedules the readers. Publishing what is there already does nothing. Of a pointer
  /// only the pointer is compared: after changing what it points to, call `touch`.
  void publish(T next) const {
    if constexpr (std::equality_comparable<T>)
      if (value().age() != 0 && value().held == next) return;
    value().held = std::move(next);
    touch();
  }

  /// Says that what is published has changed, and schedules the readers.
  void touch() const { slot_->parameter()->changed(); }

  const Rethold::StrongPtr<VSlot>& slot() const { return slot_; }

private:
  VValue<T>& value() const { return static_cast<VValue<T>&>(*slot_->parameter()->value()); }

  Rethold::StrongPtr<VSlot> slot_;
};

} // namespace Zamt

#pragma once

#include "rethold/Export.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"
#include "sorbine/VManagedObject.h"

#include <cstdint>
#include <string>
#include <utility>

namespace Zamt {

/// The text form of values of type `T`, and their members. This general form is that of a type without text:
/// it reads nothing and prints nothing, which suits pointers to data. A type that a scene file can hold
/// specialises it with
///   static bool setValueFromText(T& value, const std::string& text);  // false: `value` is as it was
///   static std::string Text(const T& value);                          // reads back as an equal value
/// and, if it has members that slots can address, with
///   static Rethold::StrongPtr<VValueBase> component(const T& value, const std::string& name);
/// which gives the member's own value, held by `value`, or null.
template <class T>
struct QUINDLE_PLATFORM_API VValueTrait {
  static bool setValueFromText(T& /*value*/, const std::string& /*text*/) { return false; }
  static std::string Text(const T& /*value*/) { return {}; }
};

/// Decimal, with exponent if need be, "inf" or "nan"; the whole text, in the C locale. Prints whole numbers
/// below 1e15 in full, others as the shortest text that reads back as the same number.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<double> {
  static bool setValueFromText(double& value, const std::string& text);
  static std::string Text(double value);
};

/// As for double.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<float> {
  static bool setValueFromText(float& value, const std::string& text);
  static std::string Text(float value);
};

/// Decimal digits with an optional sign; what does not fit is refused.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<std::int32_t> {
  static bool setValueFromText(std::int32_t& value, const std::string& text);
  static std::string Text(std::int32_t value);
};

/// "true" or "false", and nothing else.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<bool> {
  static bool setValueFromText(bool& value, const std::string& text);
  static std::string Text(bool value);
};

/// The text itself, any bytes.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<std::string> {
  static bool setValueFromText(std::string& value, const std::string& text);
  static std::string Text(const std::string& value);
};

/// A value of some type, with the time of its last change.
class QUINDLE_PLATFORM_API VValueBase {
public:
  VValueBase() = default;
  VValueBase(const VValueBase&) = delete;
  VValueBase& operator=(const VValueBase&) = delete;
  virtual ~VValueBase();

  /// The type of what is held: `T` for a `VValue<T>`.
  virtual Rethold::TypeId type() const = 0;

  /// The member value of that name, or null. It belongs to this value and changes with it.
  virtual Rethold::StrongPtr<VValueBase> component(const std::string& name) const = 0;

  /// Reads the value from text; false if the text is not of the type, and then nothing has changed.
  virtual bool setFromText(const std::string& text) = 0;

  /// The value as text; empty for a type that has none.
  virtual std::string asText() const = 0;

  /// When the value last changed, in ticks of the one clock of the process; 0 if it never did.
  std::uint64_t age() const { return age_; }

  /// Marks the value as changed: its age takes a new tick of the clock.
  void touch();

private:
  std::uint64_t age_ = 0;
};

/// A value of type `T`.
template <class T>
class QUINDLE_PLATFORM_API VValue : public VValueBase {
public:
  using ValueType = T;

  VValue() = default;
  explicit VValue(T initial) : held(std::move(initial)) {}

  Rethold::TypeId type() const override { return Rethold::typeOf<T>(); }

  Rethold::StrongPtr<VValueBase> component([[maybe_unused]] const std::string& name) const override {
    if constexpr (requires { VValueTrait<T>::component(held, name); })
      return VValueTrait<T>::component(held, name);
    else
      return nullptr;
  }

  bool setFromText(const std::string& text) override {
    if (!VValueTrait<T>::setValueFromText(held, text)) return false;
    touch();
    return true;
  }

  std::string asText() const override { return VValueTrait<T>::Text(held); }

  /// What is held. Whoever changes it calls `touch`.
  T held{};
};

/// `value` as a `VValue<T>`, or null if it is null or of another type.
template <class T>
Rethold::StrongPtr<VValue<T>> valueAs(const Rethold::StrongPtr<VValueBase>& value) {
  if (!value || value->type() != Rethold::typeOf<T>()) return nullptr;
  return std::static_pointer_cast<VValue<T>>(value);
}

/// Makes values of one type. Registered under the readable name of the value type.
class QUINDLE_PLATFORM_API VValueCreator : public VManagedObject {
public:
  ~VValueCreator() override;

  /// A new value of the type, as it is before anyone wrote it.
  virtual Rethold::StrongPtr<VValueBase> createValue() const = 0;

  /// Makes `creator` known under `name`. A name that is known already keeps its creator.
  static void registerCreator(const std::string& name, const Rethold::StrongPtr<VValueCreator>& creator);

  bool isA(Rethold::TypeId type) const override;

protected:
  Rethold::TypeId kind() const override;
};

/// The creator of one value type, such as `VValue<double>`.
template <class Value>
class QUINDLE_PLATFORM_API TypedValueCreator : public VValueCreator {
public:
  Rethold::StrongPtr<VValueBase> createValue() const override { return std::make_shared<Value>(); }
};

} // namespace Zamt

#include "sorbine/VValue.h"

#include "sorbine/VGraph.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace Zamt {
namespace {

std::string_view withoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

template <class Number>
bool readNumber(Number& value, std::string_view text) {
  text = withoutPlus(text);
  Number result{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  value = result;
  return true;
}

// Large enough for the shortest text of any double, and for whole numbers below WholeLimit.
constexpr std::size_t NumberLength = 32;

std::string printed(const char* begin, const std::to_chars_result& result) {
  return result.ec == std::errc() ? std::string(begin, static_cast<const char*>(result.ptr)) : std::string();
}

template <class Number>
std::string printNumber(Number value) {
  std::array<char, NumberLength> buffer{};
  return printed(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value));
}

// Whole numbers are written out, because people read them in reports: 100000 and not 1e+05.
template <class Real>
std::string printReal(Real value) {
  constexpr Real WholeLimit = Real(1e15);
  if (!(std::abs(value) < WholeLimit) || std::trunc(value) != value) return printNumber(value);
  std::array<char, NumberLength> buffer{};
  return printed(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                              std::chars_format::fixed));
}

} // namespace

bool VValueTrait<double>::setValueFromText(double& value, const std::string& text) {
  return readNumber(value, text);
}
std::string VValueTrait<double>::Text(double value) { return printReal(value); }

bool VValueTrait<float>::setValueFromText(float& value, const std::string& text) {
  return readNumber(value, text);
}
std::string VValueTrait<float>::Text(float value) { return printReal(value); }

bool VValueTrait<std::int32_t>::setValueFromText(std::int32_t& value, const std::string& text) {
  return readNumber(value, text);
}
std::string VValueTrait<std::int32_t>::Text(std::int32_t value) { return printNumber(value); }

bool VValueTrait<bool>::setValueFromText(bool& value, const std::string& text) {
  if (text != "true" && text != "false") return false;
  value = text == "true";
  return true;
}
std::string VValueTrait<bool>::Text(bool value) { return value ? "true" : "false"; }

bool VValueTrait<std::string>::setValueFromText(std::string& value, const std::string& text) {
  value = text;
  return true;
}
std::string VValueTrait<std::string>::Text(const std::string& value) { return value; }

VValueBase::~VValueBase() = default;

void VValueBase::touch() { age_ = VGraph::get().tick(); }

VValueCreator::~VValueCreator() = default;

void VValueCreator::registerCreator(const std::string& name,
                                    const Rethold::StrongPtr<VValueCreator>& creator) {
  if (!find(Rethold::typeOf<VValueCreator>(), name)) add(creator, name);
}

bool VValueCreator::isA(Rethold::TypeId type) const {
  return type == Rethold::typeOf<VValueCreator>() || VManagedObject::isA(type);
}

Rethold::TypeId VValueCreator::kind() const { return Rethold::typeOf<VValueCreator>(); }

} // namespace Zamt

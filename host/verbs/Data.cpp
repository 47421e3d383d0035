#include "host/verbs/Data.h"

namespace Zamt::Host {

Data::Data() : value(nullptr) {}
Data::Data(bool truth) : value(truth) {}
Data::Data(double number) : value(number) {}
Data::Data(const char* text) : value(std::string(text)) {}
Data::Data(std::string_view text) : value(std::string(text)) {}
Data::Data(std::string text) : value(std::move(text)) {}
Data::Data(List list) : value(std::move(list)) {}
Data::Data(Fields fields) : value(std::move(fields)) {}
Data::Data(Value&& made) : value(std::move(made)) {}

// Values lie in one another as deep as a verb makes them, which no input decides.
// NOLINTBEGIN(misc-no-recursion)
Data::Data(const Data& other) = default;
Data::Data(Data&& other) noexcept = default;
Data& Data::operator=(const Data& other) = default;
Data& Data::operator=(Data&& other) noexcept = default;
Data::~Data() = default;
// NOLINTEND(misc-no-recursion)

} // namespace Zamt::Host

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sd_bus_message;

namespace ostrevan::bus {

struct value;
using dictionary = std::map<std::string, value, std::less<>>;

/// Tells it from other text. Only sent.
struct object_path {
    std::string text;
    bool operator==(const object_path&) const = default;
};

/// A value of any type as it came over the bus. Every integer becomes one of 64 bits, since programs disagree on the types
/// of the same property; structures become lists, and object paths and signatures text. Numbers of 32 bits are only sent.
struct value : std::variant<std::monostate, bool, std::int64_t, double, std::string, std::vector<value>, dictionary,
                            object_path, std::int32_t> {
    using variant::variant;
};

/// The values of a message that are left to read; nothing for a type without a counterpart.
std::vector<value> read_values(sd_bus_message& message);
/// Appends a value, of the type that it has; a list is one of texts, and nothing is an empty text. Returns a negative error
/// number of the system when it does not fit the message.
int write_value(sd_bus_message& message, const value& single);

// The value of a name, however its sender has typed it.

/// Empty without one; several texts are joined by ", ".
std::string text_of(const dictionary& values, std::string_view name);
/// Empty if the value is not a number.
std::optional<double> number_of(const dictionary& values, std::string_view name);
std::optional<double> number_of(const value& single);
/// Empty without one.
const dictionary& dictionary_of(const dictionary& values, std::string_view name);

}  // namespace ostrevan::bus

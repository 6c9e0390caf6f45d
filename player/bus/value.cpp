#include "player/bus/value.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace ostrevan::bus {
namespace {

// Reading functions return nothing for a damaged message, of which the rest cannot be read either.

template <class Number>
std::optional<value> integer(sd_bus_message& message, char type) {
    Number number{};
    if (sd_bus_message_read_basic(&message, type, &number) < 0) return std::nullopt;
    if constexpr (sizeof(Number) == 8) {
        constexpr auto limit = static_cast<Number>(std::numeric_limits<std::int64_t>::max());
        return static_cast<std::int64_t>(std::min(number, limit));
    } else {
        return static_cast<std::int64_t>(number);
    }
}

std::optional<value> boolean(sd_bus_message& message) {
    int flag = 0;
    if (sd_bus_message_read_basic(&message, SD_BUS_TYPE_BOOLEAN, &flag) < 0) return std::nullopt;
    return flag != 0;
}

std::optional<value> real(sd_bus_message& message) {
    double number = 0;
    if (sd_bus_message_read_basic(&message, SD_BUS_TYPE_DOUBLE, &number) < 0) return std::nullopt;
    return number;
}

std::optional<value> text(sd_bus_message& message, char type) {
    const char* characters = nullptr;
    if (sd_bus_message_read_basic(&message, type, &characters) < 0) return std::nullopt;
    return std::string(characters);
}

/// Entries of which the key is text; others are of no use here.
dictionary entries(std::vector<value>&& pairs) {
    dictionary result;
    for (auto& pair : pairs) {
        auto* const list = std::get_if<std::vector<value>>(&pair);
        if (list == nullptr) continue;
        auto& both = *list;
        if (both.size() == 2 && std::holds_alternative<std::string>(both[0]))
            result.insert_or_assign(std::move(std::get<std::string>(both[0])), std::move(both[1]));
    }
    return result;
}

std::optional<value> container(sd_bus_message& message, char type, const char* contents) {
    const std::string kind(contents);  // the message may forget it
    if (sd_bus_message_enter_container(&message, type, contents) < 0) return std::nullopt;
    auto values = read_values(message);
    if (sd_bus_message_exit_container(&message) < 0) return std::nullopt;
    if (type == SD_BUS_TYPE_VARIANT) return values.empty() ? value{} : std::move(values.front());
    if (type == SD_BUS_TYPE_ARRAY && kind.starts_with('{')) return entries(std::move(values));
    return values;
}

std::optional<value> read_value(sd_bus_message& message, char type, const char* contents) {
    switch (type) {
        case SD_BUS_TYPE_BOOLEAN:
            return boolean(message);
        case SD_BUS_TYPE_BYTE:
            return integer<std::uint8_t>(message, type);
        case SD_BUS_TYPE_INT16:
            return integer<std::int16_t>(message, type);
        case SD_BUS_TYPE_UINT16:
            return integer<std::uint16_t>(message, type);
        case SD_BUS_TYPE_INT32:
            return integer<std::int32_t>(message, type);
        case SD_BUS_TYPE_UINT32:
            return integer<std::uint32_t>(message, type);
        case SD_BUS_TYPE_INT64:
            return integer<std::int64_t>(message, type);
        case SD_BUS_TYPE_UINT64:
            return integer<std::uint64_t>(message, type);
        case SD_BUS_TYPE_DOUBLE:
            return real(message);
        case SD_BUS_TYPE_STRING:
        case SD_BUS_TYPE_OBJECT_PATH:
        case SD_BUS_TYPE_SIGNATURE:
            return text(message, type);
        case SD_BUS_TYPE_ARRAY:
        case SD_BUS_TYPE_STRUCT:
        case SD_BUS_TYPE_DICT_ENTRY:
        case SD_BUS_TYPE_VARIANT:
            return container(message, type, contents);
        default:
            return sd_bus_message_skip(&message, nullptr) < 0 ? std::nullopt : std::optional<value>(value{});
    }
}

int write_text(sd_bus_message& message, char type, const std::string& text) {
    return sd_bus_message_append_basic(&message, type, text.c_str());
}

int write_list(sd_bus_message& message, const std::vector<value>& list) {
    int result = sd_bus_message_open_container(&message, SD_BUS_TYPE_ARRAY, "s");
    for (const auto& each : list)
        if (result >= 0) result = write_value(message, each);
    return result < 0 ? result : sd_bus_message_close_container(&message);
}

const char* signature_of(const value& single) {
    constexpr std::array signatures{"s", "b", "x", "d", "s", "as", "a{sv}", "o", "i"};  // by alternative
    return signatures[single.index()];
}

int write_entry(sd_bus_message& message, const std::string& name, const value& single) {
    int result = sd_bus_message_open_container(&message, SD_BUS_TYPE_DICT_ENTRY, "sv");
    if (result >= 0) result = write_text(message, SD_BUS_TYPE_STRING, name);
    if (result >= 0) result = sd_bus_message_open_container(&message, SD_BUS_TYPE_VARIANT, signature_of(single));
    if (result >= 0) result = write_value(message, single);
    if (result >= 0) result = sd_bus_message_close_container(&message);
    return result < 0 ? result : sd_bus_message_close_container(&message);
}

int write_dictionary(sd_bus_message& message, const dictionary& entries) {
    int result = sd_bus_message_open_container(&message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (const auto& [name, single] : entries)
        if (result >= 0) result = write_entry(message, name, single);
    return result < 0 ? result : sd_bus_message_close_container(&message);
}

const value* find(const dictionary& values, std::string_view name) {
    const auto found = values.find(name);
    return found == values.end() ? nullptr : &found->second;
}

}  // namespace

std::vector<value> read_values(sd_bus_message& message) {
    std::vector<value> values;
    char type = 0;
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(&message, &type, &contents) > 0) {
        auto next = read_value(message, type, contents);
        if (!next) break;
        values.push_back(std::move(*next));
    }
    return values;
}

int write_value(sd_bus_message& message, const value& single) {
    struct writer {
        sd_bus_message& message;
        int operator()(std::monostate) const { return write_text(message, SD_BUS_TYPE_STRING, {}); }
        int operator()(bool flag) const {
            const int number = flag ? 1 : 0;
            return sd_bus_message_append_basic(&message, SD_BUS_TYPE_BOOLEAN, &number);
        }
        int operator()(std::int64_t number) const {
            return sd_bus_message_append_basic(&message, SD_BUS_TYPE_INT64, &number);
        }
        int operator()(std::int32_t number) const {
            return sd_bus_message_append_basic(&message, SD_BUS_TYPE_INT32, &number);
        }
        int operator()(double number) const { return sd_bus_message_append_basic(&message, SD_BUS_TYPE_DOUBLE, &number); }
        int operator()(const std::string& text) const { return write_text(message, SD_BUS_TYPE_STRING, text); }
        int operator()(const object_path& path) const { return write_text(message, SD_BUS_TYPE_OBJECT_PATH, path.text); }
        int operator()(const std::vector<value>& list) const { return write_list(message, list); }
        int operator()(const dictionary& entries) const { return write_dictionary(message, entries); }
    };
    return std::visit(writer{message}, static_cast<const value::variant&>(single));
}

std::string text_of(const dictionary& values, std::string_view name) {
    const auto* const found = find(values, name);
    if (found == nullptr) return {};
    if (const auto* const single = std::get_if<std::string>(found)) return *single;
    std::string joined;
    if (const auto* const several = std::get_if<std::vector<value>>(found))
        for (const auto& each : *several)
            if (const auto* const part = std::get_if<std::string>(&each)) joined += (joined.empty() ? "" : ", ") + *part;
    return joined;
}

std::optional<double> number_of(const value& single) {
    if (const auto* const number = std::get_if<std::int64_t>(&single)) return static_cast<double>(*number);
    if (const auto* const number = std::get_if<double>(&single)) return *number;
    return std::nullopt;
}

std::optional<double> number_of(const dictionary& values, std::string_view name) {
    const auto* const found = find(values, name);
    return found == nullptr ? std::nullopt : number_of(*found);
}

const dictionary& dictionary_of(const dictionary& values, std::string_view name) {
    static const dictionary none;
    const auto* const found = find(values, name);
    const auto* const entries = found == nullptr ? nullptr : std::get_if<dictionary>(found);
    return entries == nullptr ? none : *entries;
}

}  // namespace ostrevan::bus

#include "player/library/m3u.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "nuv/text.h"

namespace ostrevan::library {
namespace {

constexpr std::string_view scheme_end = "://";
constexpr std::string_view local_scheme = "file://";
constexpr std::size_t longest_place = 4096 + 16;              // a path, and the subsong
constexpr std::size_t longest_line = 3 * longest_place + 16;  // as an address

/// What other programs call a playlist too.
struct other_format {
    std::string_view beginning;
    const char* name;
};
constexpr other_format other_formats[] = {
    {"[playlist]", "a PLS list"}, {"<", "XML, such as XSPF, ASX or WPL"}, {"\xFF\xFE", "UTF-16"}, {"\xFE\xFF", "UTF-16"}};

bool begins_with(std::string_view text, std::string_view beginning) {
    return nuv::equal_ascii_nocase(text.substr(0, beginning.size()), beginning);
}

void check_format(std::string_view text) {
    constexpr const char* remedy = "; only M3U lists in one-byte text or UTF-8 can be read";
    const auto start = text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    for (const auto& [beginning, name] : other_formats)
        if (begins_with(start, beginning)) throw std::runtime_error(std::string("This is ") + name + remedy);
    if (text.find('\0') != std::string_view::npos) throw std::runtime_error(std::string("This is no text") + remedy);
    for (auto at = text.find("#EXT-X-"); at != std::string_view::npos; at = text.find("#EXT-X-", at + 1))
        if (at == 0 || text[at - 1] == '\n')
            throw std::runtime_error("This is the list of a stream in the network, which is not played");
}

/// The path of an address on this machine; empty for any other.
std::optional<std::string> path_of_address(std::string_view address) {
    address.remove_prefix(local_scheme.size());
    if (begins_with(address, "localhost/")) address.remove_prefix(std::string_view("localhost").size());
    if (!address.starts_with('/')) return std::nullopt;
    std::string path;
    for (std::size_t i = 0; i < address.size(); ++i) {
        unsigned char byte = 0;
        const char* const digits = address.data() + i + 1;
        const bool is_escaped =
            address[i] == '%' && i + 2 < address.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        path += is_escaped ? static_cast<char>(byte) : address[i];
        if (is_escaped) i += 2;
    }
    if (path.find('\0') != std::string::npos) return std::nullopt;
    return path;
}

bool has_scheme(std::string_view line) {
    const auto scheme = line.substr(0, line.find(scheme_end));
    return scheme.size() < line.size() && scheme.find('/') == std::string_view::npos;
}

std::string address_of(const std::string& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address(local_scheme);
    for (const char each : path) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte > ' ' && byte < 0x7F && each != '%') address += each;
        else (address += '%').append({digits[byte / 16], digits[byte % 16]});
    }
    return address;
}

bool can_be_line(const std::string& path) {
    constexpr std::string_view blanks = " \t\r";
    return path.find('\n') == std::string::npos && path.find('\r') == std::string::npos && !path.empty() &&
           blanks.find(path.front()) == std::string_view::npos && blanks.find(path.back()) == std::string_view::npos;
}

}  // namespace

m3u_contents parse_m3u(std::string_view text, const std::string& folder) {
    constexpr std::string_view utf8_mark = "\xEF\xBB\xBF";
    if (text.starts_with(utf8_mark)) text.remove_prefix(utf8_mark.size());
    check_format(text);
    m3u_contents result;
    for (std::size_t number = 1; !text.empty(); ++number) {
        auto line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        while (!line.empty() && std::string_view(" \t\r").find(line.back()) != std::string_view::npos) line.remove_suffix(1);
        if (line.empty() || line.front() == '#') continue;
        const auto refuse = [&](const std::string& why) {
            result.problems.push_back("Line " + std::to_string(number) + " " + why);
        };
        auto place =
            has_scheme(line) ? std::optional<std::string>() : (line.front() == '/' ? "" : folder + "/") + std::string(line);
        if (line.size() <= longest_line && begins_with(line, local_scheme)) place = path_of_address(line);
        if (line.size() > longest_line || (place && place->size() > longest_place)) refuse("is too long for a path.");
        else if (!place) refuse("is no file of this machine: " + std::string(line));
        else result.places.push_back(std::move(*place));
    }
    return result;
}

std::string m3u_text(std::span<const m3u_entry> entries) {
    std::string text = "#EXTM3U\n";
    for (const auto& [path, subsong, seconds, title] : entries) {
        auto shown = title;
        std::ranges::replace_if(
            shown, [](char each) { return each == '\n' || each == '\r'; }, ' ');
        text += "#EXTINF:" + std::to_string(seconds > 0 ? std::llround(seconds) : -1) + "," + shown + "\n";
        text += can_be_line(path) ? path : address_of(path);
        if (subsong != 0) text += "|" + std::to_string(subsong);
        text += '\n';
    }
    return text;
}

}  // namespace ostrevan::library

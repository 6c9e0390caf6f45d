// Seeds: tests/quorvel/xml/corpus/good tests/quorvel/xml/corpus/lax tests/quorvel/xml/corpus/bad
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/check.h"
#include "quorvel/xml/entities.h"
#include "quorvel/xml/escape.h"
#include "quorvel/xml/utf8.h"
#include "quorvel/xml/xml_parser.h"

namespace {

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Vek::utf8_length(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const std::string decoded = Vek::decodeEntities(text.data(), text.size());
        fuzz::check(is_utf8(decoded), "what is decoded is UTF-8");
        fuzz::check(decoded.size() <= text.size(), "a reference is never shorter than what it stands for");
        std::string storage;
        fuzz::check(Vek::decoded(text, storage) == decoded, "the short way gives the same");

        std::string escaped;
        Vek::appendEscaped(escaped, decoded);
        fuzz::check(escaped.find_first_of("\"'<>") == std::string::npos, "nothing is left to escape");
        fuzz::check(Vek::decodeEntities(escaped.data(), escaped.size()) == decoded, "what is escaped decodes to itself");
    } catch (const Vek::xmlParser::error&) {
        fuzz::check(!is_utf8(text), "only what is not UTF-8 is refused");
    }
    return 0;
}

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <pugixml.hpp>
#include <random>
#include <string>
#include <string_view>

#include "bench/ratio.h"
#include "quorvel/xml/xml_parser.h"

namespace {

/// The totals of a reader, equal for all of them.
struct found {
    std::size_t entries = 0;
    std::size_t attributes = 0;
    std::size_t value_bytes = 0;

    void take(std::string_view value) {
        ++attributes;
        value_bytes += value.size();
    }
    friend bool operator==(const found&, const found&) = default;
};

/// A file as exported: ten attributes (330 bytes) and one track per entry.
std::string statistics_file(std::size_t entries) {
    std::mt19937_64 random(1);
    std::string out = "<PlaybackStatistics Version=\"3.0\" Mapping=\"C653739F-14B3-4EF2-819B-A3E2883230AE\">\n";
    out.reserve(entries * 300);
    const auto attribute = [&out](std::string_view name, std::string_view value) {
        out.append(name).append("=\"").append(value).append("\" ");
    };
    const auto time = [&](const std::string& name) {
        attribute(name, std::to_string(132'000'000'000'000'000 + random() % 1'000'000'000'000'000));
        const auto two_digits = [&] { return std::to_string(10 + random() % 20); };
        attribute(name + "Friendly",
                  "20" + two_digits() + "-10-" + two_digits() + " 12:" + two_digits() + ":" + two_digits());
    };
    for (std::size_t i = 0; i < entries; ++i) {
        out.append("  <Entry ");
        attribute("ID", std::to_string(1'000'000'000'000'000 + random() % 9'000'000'000'000'000));
        attribute("Count", std::to_string(random() % 100));
        time("FirstPlayed");
        time("LastPlayed");
        time("Added");
        attribute("Rating", std::to_string(100 + random() % 150));
        attribute("RatingFriendly", std::to_string(1 + random() % 5));
        out.append(">\n<Item Path=\"/m/")
            .append(std::to_string(i % 5000))
            .append("/Live &amp; Late.flac\"></Item>  </Entry>\n");
    }
    return out + "</PlaybackStatistics>";
}

/// Reads the entries with all attributes and skips their content, as an import does.
class entry_reader : public Vek::xmlParser {
public:
    found result;
    void onElem(const Vek::xmlContext&, const char*, const char*, const Vek::xmlAttributes& attributes, const char*,
                std::size_t) override {
        ++result.entries;
        for (const auto& [name, value] : attributes) result.take(value);
    }
};

class root_reader : public Vek::xmlParser {
public:
    found result;
    void onElem(const Vek::xmlContext& context, const char*, const char*, const Vek::xmlAttributes&, const char* content,
                std::size_t length) override {
        entry_reader entries;
        entries.parse(context, content, length);
        result = entries.result;
    }
};

found read_by_vek(std::string_view text) {
    root_reader reader;
    reader.parse({}, text.data(), text.size());
    return reader.result;
}

/// A tree over the text itself, with references decoded and values otherwise unchanged.
found read_by_pugixml(std::string& text, pugi::xml_document& tree) {
    found result;
    const auto outcome = tree.load_buffer_inplace(text.data(), text.size(), pugi::parse_minimal | pugi::parse_escapes);
    if (!outcome) std::abort();
    for (const auto& entry : tree.document_element().children()) {
        ++result.entries;
        for (const auto& attribute : entry.attributes()) result.take(attribute.value());
    }
    return result;
}

found read_by_expat(std::string_view text) {
    struct state {
        int depth = 0;
        found result;
    } all;
    const XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetUserData(parser, &all);
    XML_SetElementHandler(
        parser,
        [](void* user, const XML_Char*, const XML_Char** attributes) {
            auto& [depth, result] = *static_cast<state*>(user);
            if (++depth != 2) return;
            ++result.entries;
            for (; *attributes != nullptr; attributes += 2) result.take(attributes[1]);
        },
        [](void* user, const XML_Char*) { --static_cast<state*>(user)->depth; });
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) std::abort();
    XML_ParserFree(parser);
    return all.result;
}

/// Time of a reader that starts with fresh memory, like the first in its process.
template <typename Reader>
double first_time(const Reader& reader) {
    malloc_trim(0);
    return bench::processor_seconds_of(reader);
}

/// Two levels of a million entries, every attribute decoded and visited; the floor is the fastest tree available.
void parsing_a_million_entries(benchmark::State& state) {
    constexpr std::size_t entries = 1'000'000;
    static const std::string text = statistics_file(entries);
    double floor_total = 0;
    double expat_total = 0;
    bench::ratio ratio(state, 0.8);
    for (auto _ : state) {
        std::string in_place = text;
        pugi::xml_document tree;
        found by_pugixml;
        found by_expat;
        found by_vek;
        const double floor_time = first_time([&] { by_pugixml = read_by_pugixml(in_place, tree); });
        floor_total += floor_time;
        expat_total += first_time([&] { by_expat = read_by_expat(text); });
        ratio.add(floor_time, first_time([&] { by_vek = read_by_vek(text); }));
        if (by_vek != by_pugixml || by_vek != by_expat || by_vek.entries != entries) {
            state.SkipWithError("the readers disagree");
            break;
        }
    }
    ratio.report("pugixml in place, decoding");
    state.counters["expat_ratio"] = expat_total / floor_total;
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

BENCHMARK(parsing_a_million_entries)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

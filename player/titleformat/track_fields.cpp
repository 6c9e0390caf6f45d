#include "player/titleformat/track_fields.h"

#include <array>
#include <cmath>
#include <optional>
#include <stdexcept>

namespace ostrevan::titleformat {
namespace {

class string_out final : public titleformat_text_out {
public:
    explicit string_out(std::string& out) : out_(out) {}
    void write(const nuv::guid& /*kind*/, const char* text, std::size_t length) override {
        if (length == whole_text) out_ += text;
        else out_.append(text, length);
    }

private:
    std::string& out_;
};

std::string_view file_of(std::string_view path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view without_extension(std::string_view file) {
    const auto dot = file.find_last_of('.');
    return dot == std::string_view::npos || dot == 0 ? file : file.substr(0, dot);
}

std::string_view directory_name(std::string_view path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string_view::npos ? std::string_view{} : file_of(path.substr(0, slash));
}

std::string clock_text(double seconds) {
    const auto whole = static_cast<long long>(std::llround(seconds));
    const auto two = [](long long n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    if (whole < 3600) return std::to_string(whole / 60) + ":" + two(whole % 60);
    return std::to_string(whole / 3600) + ":" + two(whole / 60 % 60) + ":" + two(whole % 60);
}

std::optional<std::string> number(std::uint32_t value) {
    return value == 0 ? std::nullopt : std::optional(std::to_string(value));
}

using from_location = std::string (*)(const playable_location&);
using from_info = std::optional<std::string> (*)(const file_info&);

template <typename Function>
struct named {
    std::string_view name;
    Function value;
};

constexpr auto location_fields = std::to_array<named<from_location>>({
    {"path", [](const playable_location& l) { return l.path; }},
    {"filename_ext", [](const playable_location& l) { return std::string(file_of(l.path)); }},
    {"filename", [](const playable_location& l) { return std::string(without_extension(file_of(l.path))); }},
    {"directoryname", [](const playable_location& l) { return std::string(directory_name(l.path)); }},
    {"subsong", [](const playable_location& l) { return std::to_string(l.subsong); }},
});

constexpr auto info_fields = std::to_array<named<from_info>>({
    {"length", [](const file_info& i) { return i.length() > 0 ? std::optional(clock_text(i.length())) : std::nullopt; }},
    {"length_seconds",
     [](const file_info& i) {
         return i.length() > 0 ? std::optional(std::to_string(std::llround(i.length()))) : std::nullopt;
     }},
    {"codec", [](const file_info& i) { return i.codec().empty() ? std::nullopt : std::optional(std::string(i.codec())); }},
    {"bitrate", [](const file_info& i) { return number(i.bitrate()); }},
    {"samplerate", [](const file_info& i) { return number(i.sample_rate()); }},
    {"channels", [](const file_info& i) { return number(i.channels()); }},
});

/// Substitutes for an absent tag, in the order in which they are tried.
struct substitution {
    std::string_view name;
    std::array<std::string_view, 4> tags;
};
constexpr auto substitutions = std::to_array<substitution>({
    {"artist", {"artist", "album artist", "composer", "performer"}},
    {"album artist", {"album artist", "artist", "composer", "performer"}},
});

bool append_tag(const file_info& info, std::string_view name, std::string& out) {
    const auto index = info.meta_find(name);
    if (index == file_info::npos || info.meta_value_count(index) == 0) return false;
    const char* separator = "";
    for (const auto value : info.meta_values(index)) {
        out.append(separator).append(value);
        separator = ", ";
    }
    return true;
}

template <typename Table>
auto find_named(const Table& table, std::string_view name) {
    auto it = table.begin();
    while (it != table.end() && it->name != name) ++it;
    return it;
}

/// One component's field of one track during its evaluation on this thread. A field may evaluate others, and through them
/// itself.
class field_in_work {
public:
    field_in_work(const component_fields::entry& field, const metadb_handle& track)
        : field_(field), track_(track), outer_(innermost) {
        std::size_t depth = 0;
        for (const auto* each = outer_; each != nullptr; each = each->outer_, ++depth)
            if (depth == max_depth || (&each->field_ == &field && &each->track_ == &track))
                throw std::logic_error("the field leads back to itself");
        innermost = this;
    }
    ~field_in_work() { innermost = outer_; }
    field_in_work(const field_in_work&) = delete;
    field_in_work& operator=(const field_in_work&) = delete;

private:
    static constexpr std::size_t max_depth = 32;  // stops a chain from track to track
    static inline thread_local const field_in_work* innermost = nullptr;

    const component_fields::entry& field_;
    const metadb_handle& track_;
    const field_in_work* const outer_;
};

}  // namespace

void component_fields::report(std::string_view name, const entry& failed) const {
    {
        const std::lock_guard lock(mutex_);
        if (!reported_.emplace(name).second) return;  // once, not for every track
    }
    if (on_failure_) on_failure_(*failed.provider, "the field %" + std::string(name) + "%");
}

void component_fields::add(field_provider& provider) {
    for (std::size_t i = 0; i < provider.get_field_count(); ++i)
        entries_.try_emplace(provider.get_field_name(i), entry{&provider, i});
}

const component_fields::entry* component_fields::find(std::string_view name) const noexcept {
    const auto found = entries_.find(std::string(name));
    return found == entries_.end() ? nullptr : &found->second;
}

std::optional<std::uint64_t> track_fields::sort_value(std::string_view name) const {
    const auto* const published = published_.find(name);
    if (published == nullptr) return std::nullopt;
    try {
        const field_in_work once(*published, track_);
        const auto values = query_service<field_sort_values>(*published->provider);
        return values ? values->sort_value(published->index, track_) : std::nullopt;
    } catch (...) {
        published_.report(name, *published);
        return std::nullopt;
    }
}

bool track_fields::field(std::string_view name, std::string& out) const {
    if (const auto* published = published_.find(name)) {
        const auto before = out.size();
        try {
            const field_in_work once(*published, track_);
            string_out sink(out);
            return published->provider->process_field(published->index, &track_, sink);
        } catch (...) {
            published_.report(name, *published);
            out.resize(before);
            return false;
        }
    }
    if (const auto it = find_named(location_fields, name); it != location_fields.end()) {
        out += it->value(track_.location());
        return true;
    }
    const auto& snapshot = this->info();
    if (!snapshot) return false;
    const auto& info = snapshot->info();
    if (const auto it = find_named(info_fields, name); it != info_fields.end()) {
        const auto text = it->value(info);
        if (text) out += *text;
        return text.has_value();
    }
    if (const auto it = find_named(substitutions, name); it != substitutions.end()) {
        for (const auto tag : it->tags)
            if (append_tag(info, tag, out)) return true;
        return false;
    }
    if (append_tag(info, name, out)) return true;
    if (name != "title") return false;
    out += without_extension(file_of(track_.location().path));  // an untagged file is shown by its name
    return true;
}

}  // namespace ostrevan::titleformat

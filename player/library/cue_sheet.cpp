#include "player/library/cue_sheet.h"

#include <algorithm>
#include <charconv>

#include "nuv/text.h"
#include "player/library/cue_text.h"

namespace ostrevan::library {
namespace {

constexpr std::size_t size_limit = 1 << 20;
constexpr std::uint32_t highest_number = 999;

std::string_view trim(std::string_view text) noexcept {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Removes and returns the first word of the line.
std::string_view take_word(std::string_view& line) noexcept {
    const auto end = std::min(line.find_first_of(" \t"), line.size());
    const auto word = line.substr(0, end);
    line = trim(line.substr(end));
    return word;
}

/// A text ends at the last quotation mark of the line; quotation marks inside are not escaped.
std::string_view unquote(std::string_view text) noexcept {
    if (text.size() < 2 || text.front() != '"') return text;
    const auto last = text.rfind('"');
    return last == 0 ? text.substr(1) : text.substr(1, last - 1);
}

std::optional<std::uint32_t> to_number(std::string_view text) noexcept {
    std::uint32_t value = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

class parser {
public:
    cue_sheet parse(std::string_view text) {
        while (!text.empty()) {
            // Old writers end lines with a carriage return alone.
            const auto end = std::min(text.find_first_of("\n\r"), text.size());
            ++line_;
            run(trim(text.substr(0, end)));
            const std::size_t line_end = text.substr(end).starts_with("\r\n") ? 2 : 1;
            text.remove_prefix(std::min(end + line_end, text.size()));
        }
        finish();
        return std::move(sheet_);
    }

private:
    using handler = void (parser::*)(std::string_view rest);
    struct command {
        std::string_view name;
        handler run;
    };
    static const command commands[];

    void run(std::string_view line);

    void on_file(std::string_view rest) {
        // The last word is the file type, unless the name ends the line.
        if (!rest.starts_with('"')) {
            const auto kind = rest.find_last_of(" \t");
            if (kind != rest.npos) rest = trim(rest.substr(0, kind));
        }
        file_ = unquote(rest);
        if (file_.empty()) fail("FILE without a name");
    }

    void on_track(std::string_view rest) {
        const auto number = to_number(take_word(rest));
        if (!number || *number == 0 || *number > highest_number) fail("TRACK needs a number");
        is_in_track_ = true;
        track_ = {};
        track_.number = *number;
        is_audio_ = nuv::equal_ascii_nocase(rest, "AUDIO");
        current_ = nullptr;
    }

    void on_index(std::string_view rest) {
        if (to_number(take_word(rest)) != 1U) return;
        if (!is_in_track_) fail("INDEX without TRACK");
        if (file_.empty() && sheet_.files.empty()) fail("INDEX without FILE");
        if (!is_audio_ || current_ != nullptr) return;
        track_.start = time(rest);
        if (!file_.empty()) sheet_.files.push_back(std::exchange(file_, {}));
        track_.file = sheet_.files.size() - 1;
        const auto same = [&](const cue_track& each) { return each.number == track_.number; };
        if (std::ranges::any_of(sheet_.tracks, same)) fail("a track number occurs twice");
        if (!sheet_.tracks.empty() && sheet_.tracks.back().file == track_.file) {
            if (track_.start < sheet_.tracks.back().start) fail("the time lies before the track in front");
            sheet_.tracks.back().end = track_.start;
        }
        sheet_.tracks.push_back(std::move(track_));
        current_ = &sheet_.tracks.back();
    }

    double time(std::string_view text) const {
        const auto first = text.find(':');
        const auto second = first == text.npos ? text.npos : text.find(':', first + 1);
        if (second != text.npos) {
            const auto minutes = to_number(text.substr(0, first));
            const auto seconds = to_number(text.substr(first + 1, second - first - 1));
            const auto frames = to_number(text.substr(second + 1));
            if (minutes && seconds && frames && *seconds < 60 && *frames < 75)
                return *minutes * 60.0 + *seconds + *frames / 75.0;
        }
        fail("INDEX needs a time as minutes:seconds:frames");
    }

    void set(std::string_view field, std::string_view text) {
        const auto value = trim(unquote(text));
        if (value.empty() || value.size() > longest_cue_value) return;
        auto& fields = !is_in_track_ ? sheet_.fields : current_ != nullptr ? current_->fields : track_.fields;
        const auto present = std::ranges::find(fields, field, &cue_fields::value_type::first);
        if (present == fields.end()) fields.emplace_back(field, value);
        else present->second = value;
    }
    void on_title(std::string_view rest) { set("title", rest); }
    void on_performer(std::string_view rest) { set("artist", rest); }
    void on_songwriter(std::string_view rest) { set("composer", rest); }
    void on_isrc(std::string_view rest) { set("isrc", rest); }

    void on_remark(std::string_view rest) {
        constexpr std::pair<std::string_view, std::string_view> remarks[] = {
            {"DATE", "date"},         {"GENRE", "genre"}, {"DISCNUMBER", "discnumber"}, {"TOTALDISCS", "totaldiscs"},
            {"COMPOSER", "composer"},
        };
        const auto name = take_word(rest);
        for (const auto& [word, field] : remarks)
            if (nuv::equal_ascii_nocase(word, name)) set(field, rest);
    }

    void finish() const {
        if (sheet_.tracks.empty()) throw cue_error("the CUE sheet lists no audio track");
    }

    [[noreturn]] void fail(const char* why) const {
        throw cue_error("line " + std::to_string(line_) + " of the CUE sheet: " + why);
    }

    cue_sheet sheet_;
    std::string file_;              // named, no track yet
    cue_track track_;               // begun, no INDEX 01 yet
    cue_track* current_ = nullptr;  // the last of the sheet's tracks, while its lines follow
    bool is_in_track_ = false;
    bool is_audio_ = false;
    std::size_t line_ = 0;
};

constexpr parser::command parser::commands[] = {
    {"FILE", &parser::on_file},   {"TRACK", &parser::on_track},           {"INDEX", &parser::on_index},
    {"TITLE", &parser::on_title}, {"PERFORMER", &parser::on_performer},   {"REM", &parser::on_remark},
    {"ISRC", &parser::on_isrc},   {"SONGWRITER", &parser::on_songwriter},
};

void parser::run(std::string_view line) {
    const auto name = take_word(line);
    for (const auto& each : commands)
        if (nuv::equal_ascii_nocase(each.name, name)) return (this->*each.run)(line);
}

}  // namespace

cue_sheet parse_cue(std::string_view bytes) {
    if (bytes.size() > size_limit) throw cue_error("the CUE sheet is larger than 1 MiB");
    return parser().parse(cue_text(bytes));
}

}  // namespace ostrevan::library

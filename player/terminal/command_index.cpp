#include <algorithm>
#include <iostream>

#include "player/terminal/commands.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/key_text.h"
#include "player/terminal/table.h"

namespace ostrevan::terminal {
namespace {

constexpr char digits[] = "0123456789abcdef";

void dump(const services::index_manager_impl& index, const nuv::guid& id) {
    const auto name = nuv::guid_text(id);
    std::vector<unsigned char> blob(index::index_store::max_record_size);
    std::string line;
    for (const auto key : index.keys(id)) {
        const auto size = std::min(index.read(id, key, blob.data(), blob.size()), blob.size());
        line.assign(name).append(" ").append(hexadecimal(key)).append(" ");
        for (std::size_t i = 0; i < size; ++i) line.append({digits[blob[i] >> 4], digits[blob[i] & 15]});
        std::cout << line << '\n';
    }
}

}  // namespace

std::string hexadecimal(std::uint64_t key) {
    std::string text(16, '0');
    for (auto it = text.rbegin(); it != text.rend(); ++it, key >>= 4) *it = digits[key & 15];
    return text;
}

std::string key_text(const services::index_manager_impl& index, const metadb_handle& track) {
    if (index.registrations().empty()) return {};
    const auto key = services::index_manager_impl::key_of(index.registrations().front(), track);
    return key ? hexadecimal(*key) : std::string{};
}

void run(run_context& context, const show_keys& arguments) {
    if (context.player.index.registrations().empty())
        throw std::runtime_error("No component has registered an index; see 'ostrevan components'.");
    for (const auto& track : tracks_of(context, arguments.tracks)) {
        const auto key = key_text(context.player.index, *track);
        std::cout << (key.empty() ? std::string(16, '-') : key) << ' ' << track->location().path;
        if (track->location().subsong != 0) std::cout << '|' << track->location().subsong;
        std::cout << '\n';
    }
}

void run(run_context& context, const index_dump& arguments) {
    if (!arguments.index) {
        for (const auto& id : context.player.stored_indexes()) dump(context.player.index, id);
        return;
    }
    const auto id = nuv::parse_guid(*arguments.index);
    if (!id) throw usage_error("\"" + *arguments.index + "\" is not a GUID; 'ostrevan index dump' shows those in use.");
    dump(context.player.index, *id);
}

void run(run_context& context, const index_prune& /*arguments*/) {
    const auto old = context.player.old_records();
    std::size_t number = 0;
    for (const auto& records : old) number += records.keys.size();
    if (number == 0) return context.screen.note("No record is old enough.");
    const std::string which = std::to_string(number) + (number == 1 ? " record" : " records");
    popup_message_v3::query_t question;
    question.title = "Prune the index";
    question.text = which + (number == 1 ? " belongs" : " belong") +
                    " to tracks that left the library longer ago than the components want them kept. Remove " +
                    (number == 1 ? "it" : "them") + "? A copy of the index is put into the folder backup first.";
    question.style = popup_message_v3::style_yes_no;
    if (context.screen.ask(question) != popup_message_v3::answer_yes) return;
    context.player.index.drop(old);
    context.screen.note(which + " removed.");
}

void run(run_context& context, const list_components& /*arguments*/) {
    table out({{"Name"}, {"Version"}, {"File"}});
    for (const auto& component : context.player.components) {
        const auto* const version = core::version_of(component);
        out.add_row(
            {version != nullptr ? version->name() : "", version != nullptr ? version->version() : "", component.path});
    }
    std::cout << out.text(0);
}

}  // namespace ostrevan::terminal

#include <algorithm>
#include <optional>

#include "player/system/counted.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/key_text.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* index_examples =
    "Examples:\n"
    "  ostrevan index dump\n"
    "  ostrevan index dump '{C653739F-14B3-4EF2-819B-A3E2883230AE}'\n"
    "  ostrevan index prune\n"
    "Records are kept until you prune them; the index is backed up first.";

void dump(run_context& context, const nuv::guid& id) {
    const auto& index = context.player.index;
    const auto name = nuv::guid_text(id);
    std::vector<unsigned char> blob(index::index_store::max_record_size);
    std::string line;
    constexpr char digits[] = "0123456789abcdef";
    for (const auto key : index.keys(id)) {
        const auto size = std::min(index.read(id, key, blob.data(), blob.size()), blob.size());
        line.assign(name).append(" ").append(hexadecimal(key)).append(" ");
        for (std::size_t i = 0; i < size; ++i) line.append({digits[blob[i] >> 4], digits[blob[i] & 15]});
        context.out << line << '\n';
    }
}

void dump_index(run_context& context, const std::optional<std::string>& wanted) {
    if (!wanted) {
        for (const auto& id : context.player.stored_indexes()) dump(context, id);
        return;
    }
    const auto id = nuv::parse_guid(*wanted);
    if (!id) throw system::user_error("\"" + *wanted + "\" is not a GUID; 'ostrevan index dump' shows those in use.");
    dump(context, *id);
}

void prune(run_context& context) {
    const auto old = context.player.old_records();
    std::size_t number = 0;
    for (const auto& records : old) number += records.keys.size();
    if (number == 0) return context.screen.note("No record is old enough.");
    const std::string which = system::counted(number, "record");
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

const command_file index_commands(130, [](declared_command& program) {
    auto index = program.add("index", "Inspect the track-information index", index_examples);
    index.require_command();
    const auto guid = std::make_shared<std::optional<std::string>>();
    auto dumped = index.add("dump", "GUID, key and bytes of every stored record");
    dumped.add_option("GUID", guid.get(), "Only this index");
    dumped.run([guid](run_context& context) { dump_index(context, *guid); });
    index.add("prune", "Remove records of tracks that left the library long ago").run(prune);
});

}  // namespace
}  // namespace ostrevan::terminal

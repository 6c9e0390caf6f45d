#include "ostrevan/tag_update.h"
#include "player/cli/commands.h"

namespace ostrevan::cli {
namespace {

class tag_edit_filter : public file_info_filter {
public:
    explicit tag_edit_filter(const edit_tags& wanted) : wanted_(wanted) {}

    bool apply_filter(const metadb_handle_ptr& /*track*/, file_info& info) override {
        const file_info before = info;
        for (const auto& name : wanted_.remove) info.meta_remove_field(name);
        for (const auto& [name, value] : values()) info.meta_set_values(name, value);
        return !(info == before);
    }

private:
    /// A field that is set more than once gets several values.
    [[nodiscard]] std::vector<std::pair<std::string, std::vector<std::string>>> values() const {
        file_info gathered;
        for (const auto& [name, value] : wanted_.set) gathered.meta_add(name, value);
        std::vector<std::pair<std::string, std::vector<std::string>>> out;
        for (std::size_t i = 0; i < gathered.meta_count(); ++i)
            out.emplace_back(gathered.meta_name(i), gathered.meta_values(i));
        return out;
    }

    const edit_tags wanted_;
};

}  // namespace

void run(run_context& context, const edit_tags& arguments) {
    const auto tracks = tracks_of(context, arguments.tracks);
    auto* const service = context.player.services().at(tag_update_service::class_guid, 0);
    static_cast<tag_update_service*>(service)->update_async(tracks, service_new<tag_edit_filter>(arguments), nullptr, 0, {});
    context.player.run_until_idle();
}

}  // namespace ostrevan::cli

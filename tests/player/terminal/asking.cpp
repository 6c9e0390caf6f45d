// A component whose ratings ask first.
#include "ostrevan/component.h"
#include "ostrevan/console.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"

namespace {

class asking_rating : public ostrevan::context_menu_item {
public:
    std::size_t get_item_count() const noexcept override { return 1; }
    std::string get_item_name(std::size_t) const override { return "3"; }
    nuv::guid get_item_guid(std::size_t) const override { return nuv::guid_of("{0B4C1B7C-5D0E-4E55-9A55-3C60A0C1D2E3}"); }
    std::string get_item_default_path(std::size_t) const override { return "Asking/Rating"; }
    bool get_item_description(std::size_t, std::string&) const override { return false; }
    nuv::guid get_parent() const noexcept override { return {}; }
    void context_command(std::size_t, ostrevan::metadb_handle_list_cref, const nuv::guid&) override {
        using ostrevan::popup_message_v3;
        const auto print = [](unsigned answer) {
            ostrevan::get_service<ostrevan::console_service>()->print(answer == popup_message_v3::answer_yes ? "Sure"
                                                                                                             : "Not sure");
        };
        ostrevan::query_service<popup_message_v3>(*ostrevan::get_service<ostrevan::popup_message>())
            ->messageBoxAsync({.parent = nullptr,
                               .text = "Are you sure?",
                               .title = "Rating",
                               .style = popup_message_v3::style_yes_no,
                               .reply = print});
    }
};
ostrevan::service_factory_single_t<asking_rating> the_rating;

}  // namespace

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player) {
    return ostrevan::component_entry(player);
}

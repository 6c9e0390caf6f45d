#include "ostrevan/advanced_settings.h"

#include "ostrevan/registration.h"
#include "quorvel/common/settings.h"

namespace quorvel {
namespace {

struct setting_texts {
    nuv::guid id;
    nuv::guid parent;
    const char* label;
};

constexpr setting_texts branch_texts{
    .id = nuv::guid_of("{502BC959-89A0-4DC2-B73A-E7A54DDB2075}"),
    .parent = ostrevan::advanced_branch_components,
    .label = "Playback Statistics",
};
constexpr setting_texts tag_sync_texts{
    .id = nuv::guid_of("{BE5DDEBA-0A25-4AAB-B60F-B597991C582C}"),  // that of the setting it shows
    .parent = branch_texts.id,
    .label =
        "Automatically synchronize file tags with statistics (causes file tag rewrites during playback, "
        "disrecommended)",
};

template <typename Interface, const setting_texts& Texts>
class setting_entry : public Interface {
public:
    nuv::guid id() const noexcept override { return Texts.id; }
    nuv::guid parent() const noexcept override { return Texts.parent; }
    std::string label() const override { return Texts.label; }
    double sort_priority() const noexcept override { return 0.0; }
};

using branch = setting_entry<ostrevan::advanced_setting, branch_texts>;

class tag_sync_checkbox : public setting_entry<ostrevan::advanced_checkbox, tag_sync_texts> {
public:
    bool get_state() const override { return tag_sync_enabled.get(); }
    void set_state(bool checked) override { tag_sync_enabled.set(checked); }
    bool default_state() const noexcept override { return false; }
};

ostrevan::service_factory_single_t<branch> g_branch;
ostrevan::service_factory_single_t<tag_sync_checkbox, ostrevan::advanced_setting> g_tag_sync_checkbox;

}  // namespace
}  // namespace quorvel

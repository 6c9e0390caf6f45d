// A whole component: one title formatting field, %loudness%, "loud" for tracks whose genre is Metal and "quiet" for others.
#include <string>

#include "ostrevan/component.h"
#include "ostrevan/component_version.h"
#include "ostrevan/core_api.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/registration.h"

namespace {

class hello_version : public ostrevan::component_version {
public:
    const char* name() const noexcept override { return "Hello"; }
    const char* version() const noexcept override { return "1.0"; }
    const char* about() const noexcept override { return "An example.\n\nSays how loud a track is."; }
    const char* file_name() const noexcept override { return "hello.dll"; }
    bool test_installation() override { return true; }
};

class loudness_field : public ostrevan::field_provider {
public:
    std::size_t get_field_count() const noexcept override { return 1; }

    const char* get_field_name(std::size_t index) const override {
        if (index != 0) ostrevan::uBugCheck();
        return "loudness";
    }

    // May be called on any thread: the snapshot never changes, and nothing else is touched.
    bool process_field(std::size_t index, ostrevan::metadb_handle* track, ostrevan::titleformat_text_out& out) override {
        if (index != 0) ostrevan::uBugCheck();
        const auto snapshot = track == nullptr ? ostrevan::metadb_info_ptr() : track->info();
        if (!snapshot) return false;
        const auto genre = snapshot->info().meta_find("genre");
        if (genre == ostrevan::file_info::npos || snapshot->info().meta_value_count(genre) == 0) return false;
        const bool loud = snapshot->info().meta_value(genre, 0) == "Metal";
        out.write(text_kind, loud ? "loud" : "quiet");
        return true;
    }

private:
    static constexpr auto text_kind = nuv::guid_of("{0E08FE14-01FF-4118-878A-30B441531DBF}");
};

// The static objects are the registration: the player finds them when it loads the module.
ostrevan::service_factory_single_t<hello_version> the_version;
ostrevan::service_factory_single_t<loudness_field> the_field;

}  // namespace

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player) {
    return ostrevan::component_entry(player);
}

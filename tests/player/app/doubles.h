#pragma once

#include "ostrevan/advanced_settings.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/library_columns.h"
#include "ostrevan/main_menu.h"
#include "ostrevan/startup.h"
#include "ostrevan/statistics_collector.h"
#include "ostrevan/tag_edit.h"
#include "ostrevan/track_properties.h"
#include "player/app/session.h"

namespace ostrevan::app {

using lines = std::vector<std::string>;
using fault = void (*)();

/// Fails on request, otherwise counts its calls.
struct tally {
    fault fails = nullptr;
    mutable int calls = 0;
    void meet() const {
        if (fails != nullptr) fails();
        ++calls;
    }
};

struct collector : playback_statistics_collector, tally {
    struct outcomes : playback_statistics_outcome {
        std::function<void(reply_t reply)> say;
        void on_item_played(const metadb_handle_ptr&, reply_t reply) override { say(std::move(reply)); }
    };
    service_uncounted_t<outcomes> outcome;
    void on_item_played(const metadb_handle_ptr&) override { meet(); }
    service_base* service_query(const nuv::guid& id) noexcept override {
        return outcome.say && id == playback_statistics_outcome::class_guid ? &outcome : nullptr;
    }
};

struct follower : tag_edit_callback, tally {
    struct answer : tag_edit_outcome {
        bool has_followed = true;
        bool all_followed() noexcept override { return has_followed; }
    };
    service_uncounted_t<answer> outcome;
    service_base* service_query(const nuv::guid& id) noexcept override {
        return id == tag_edit_outcome::class_guid ? &outcome : nullptr;
    }
    void on_tags_edited(const nuv::list_base_const_t<tag_edit>&) override { meet(); }
};

struct notified : startup_notification, tally {
    void on_startup() override { meet(); }
    void on_shutdown() override { meet(); }
};

struct staged : initialisation_stage, tally {
    unsigned stage() const noexcept override { return 0; }
    void on_stage() override { meet(); }
};

struct variable final : config_variable, tally {
    variable() : config_variable({}) {}
    void load() override { meet(); }
    void save() override { meet(); }
};

struct named_fields : field_provider, tally {
    std::size_t get_field_count() const noexcept override { return 1; }
    const char* get_field_name(std::size_t) const override { return meet(), "f"; }
    std::function<void(metadb_handle& track)> work;
    bool process_field(std::size_t, metadb_handle* track, titleformat_text_out& out) override {
        out.write({}, "part");
        return work(*track), true;
    }
};

struct columns : library_column_provider, tally {
    std::vector<std::pair<std::string, std::string>> scripts{{"%a%", "%b%"}};
    std::size_t get_column_count() const noexcept override { return scripts.size(); }
    nuv::guid get_column_id(std::size_t) const override { return {}; }
    std::string get_column_name(std::size_t i) const override { return meet(), "C" + std::to_string(i); }
    std::string get_display_script(std::size_t i) const override { return scripts[i].first; }
    std::string get_sort_script(std::size_t i) const override { return scripts[i].second; }
    unsigned get_column_flags(std::size_t i) const override { return i == 0 ? unsigned{column_align_right} : 0; }
};

struct properties : track_property_provider, tally {
    std::function<void(track_property_sink& out)> fill = [](auto&) {};
    void enumerate_groups(metadb_handle_list_cref, track_property_groups&, track_property_sink& out) override {
        meet(), fill(out);
    }
    void enumerate_properties(metadb_handle_list_cref, track_property_sink&) override {}
};

struct commands : main_menu_commands, tally {
    std::size_t get_command_count() const noexcept override { return 1; }
    nuv::guid get_command(std::size_t) const override { return {}; }
    std::string get_name(std::size_t) const override { return meet(), "A"; }
    bool get_description(std::size_t, std::string&) const override { return false; }
    nuv::guid get_parent() const noexcept override { return {}; }
    void execute(std::size_t) override {}
};

struct items : context_menu_item, tally {
    std::size_t get_item_count() const noexcept override { return 1; }
    std::string get_item_name(std::size_t) const override { return "Item"; }
    nuv::guid get_item_guid(std::size_t) const override { return {}; }
    std::string get_item_default_path(std::size_t) const override { return meet(), "Double/Sub"; }
    bool get_item_description(std::size_t, std::string&) const override { return false; }
    nuv::guid get_parent() const noexcept override { return {}; }
    void context_command(std::size_t, metadb_handle_list_cref, const nuv::guid&) override {}
};

struct setting : advanced_checkbox, tally {
    static constexpr nuv::guid class_guid = advanced_setting::class_guid;
    std::uint32_t number, above;
    const char* text;
    double priority;
    explicit setting(const char* name = "x", std::uint32_t own = 0, std::uint32_t parent = 9, double place = 0)
        : number(own), above(parent), text(name), priority(place) {}
    nuv::guid id() const noexcept override { return {.data1 = number}; }
    nuv::guid parent() const noexcept override { return {.data1 = above}; }
    std::string label() const override { return meet(), text; }
    double sort_priority() const noexcept override { return priority; }
    bool get_state() const override { return false; }
    void set_state(bool) override {}
    bool default_state() const noexcept override { return false; }
};

/// Records its calls and replies at once.
struct screen final : view::front_end {
    lines said;
    std::optional<std::string> file;
    std::shared_ptr<view::open_dialog> dialog;
    void print_line(const std::string& line) override { said.push_back(line); }
    void show_message(const std::string& text, const std::string&, popup_message::icon_t) override { said.push_back(text); }
    void ask(popup_message_v3::query_t query) override { said.push_back(query.text), query.reply(query.style); }
    void show_dialog(std::shared_ptr<view::open_dialog> opened) override { dialog = std::move(opened); }
    void ask_file(file_dialog_service::query_t query) override { query.reply(file); }
    void show_listing(const view::track_listing&) override {}
    void show_progress(const std::string&, std::size_t, std::size_t) override {}
    void end_progress() override {}
    void beep() override {}
    void note_failure() override { said.emplace_back("failed"); }
};

/// A player with one component, made of everything added.
struct world {
    struct api final : component_api {
        std::vector<service_entry> entries;
        std::vector<config_variable*> variables;
        std::size_t service_count() const noexcept override { return entries.size(); }
        service_entry service_at(std::size_t i) const noexcept override { return entries[i]; }
        std::size_t config_variable_count() const noexcept override { return variables.size(); }
        config_variable& config_variable_at(std::size_t i) const noexcept override { return *variables[i]; }
        void set_library_path(const char*) override {}
    } component;
    screen ui;
    const std::function<void(const std::string&)> sink = [this](const std::string& message) { ui.said.push_back(message); };
    core::main_loop loop{sink};
    core::service_registry services{sink};
    titleformat::component_fields fields{
        [this](const field_provider& of, const std::string& doing) { services.guard().report(typeid(of), doing); }};
    const std::vector<core::loaded_component> components{{"/c/double.dll", &component}};

    template <typename T>
    void add(T& service) {
        component.entries.push_back({T::class_guid, &service});
        services.add(service);
    }
    void add(variable& setting) { component.variables.push_back(&setting); }
};

}  // namespace ostrevan::app

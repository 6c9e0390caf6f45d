#include "tests/support/memory_player.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "ostrevan/startup.h"
#include "tests/support/text_doubles.h"

namespace support {
namespace {

std::vector<ostrevan::initialisation_stage*> stages_in_order(const memory_player& player) {
    std::vector<ostrevan::initialisation_stage*> stages;
    const auto& wanted = ostrevan::initialisation_stage::class_guid;
    for (std::size_t i = 0; i < player.service_count(wanted); ++i)
        stages.push_back(static_cast<ostrevan::initialisation_stage*>(player.service_at(wanted, i)));
    std::ranges::stable_sort(stages, {}, &ostrevan::initialisation_stage::stage);
    return stages;
}

}  // namespace

memory_player::memory_player(ostrevan::get_interface_function entry, const char* library_path)
    : services_{{index.class_guid, &index},
                {main_queue.class_guid, &main_queue},
                {threads.class_guid, &threads},
                {popups.class_guid, &popups},
                {console.class_guid, &console},
                {crash_log.class_guid, &crash_log},
                {clipboard.class_guid, &clipboard},
                {beeps.class_guid, &beeps},
                {configuration.class_guid, &configuration},
                {library.class_guid, &library},
                {metadb.class_guid, &metadb},
                {playlists.class_guid, &playlists},
                {decoders.class_guid, &decoders},
                {titleformat.class_guid, &titleformat},
                {local_files.class_guid, &local_files},
                {remote_files.class_guid, &remote_files},
                {tag_updates.class_guid, &tag_updates},
                {reloads.class_guid, &reloads},
                {open_dialogs.class_guid, &open_dialogs},
                {dialogs.class_guid, &dialogs},
                {file_dialog.class_guid, &file_dialog},
                {searches.class_guid, &searches},
                {progress.class_guid, &progress},
                {ostrevan::hash_service::class_guid, &md5_hash()},
                {ostrevan::text_helper_service::class_guid, &text_helper()}} {
    const ostrevan::player_interface block{ostrevan::player_magic, ostrevan::interface_version, this};
    const auto* answer = entry(&block);
    if (answer == nullptr) throw std::runtime_error("the component refused the player");
    component_ = answer->api;
    component_->set_library_path(library_path);
    ostrevan::core_api::set_player(this);  // a library has a core of its own
}

memory_player::~memory_player() {
    shut_down();
    ostrevan::core_api::set_player(nullptr);
}

void memory_player::offer(const nuv::guid& service_class, ostrevan::service_base& service) {
    services_.insert(services_.begin(), {service_class, &service});
}

void memory_player::withdraw(const nuv::guid& service_class) {
    std::erase_if(services_, [&](const auto& entry) { return entry.service_class == service_class; });
}

void memory_player::start() {
    started_ = true;
    const auto stages = stages_in_order(*this);
    const auto late = std::ranges::find_if(stages, [](auto* stage) { return stage->stage() >= 40; });
    std::for_each(stages.begin(), late, [](auto* stage) { stage->on_stage(); });
    ostrevan::for_each_service<ostrevan::startup_notification>([](auto& notification) { notification.on_startup(); });
    std::for_each(late, stages.end(), [](auto* stage) { stage->on_stage(); });
}

void memory_player::shut_down() {
    settle();
    if (!std::exchange(started_, false)) return;
    shutting_down = true;
    ostrevan::for_each_service<ostrevan::startup_notification>([](auto& notification) { notification.on_shutdown(); });
}

void memory_player::settle() {
    for (;;) {
        threads.join();
        if (threads.run_waiting() + main_queue.run() == 0) return;
    }
}

std::size_t memory_player::service_count(const nuv::guid& service_class) const noexcept {
    std::size_t count = 0;
    while (service_at(service_class, count) != nullptr) ++count;
    return count;
}

ostrevan::service_base* memory_player::service_at(const nuv::guid& service_class, std::size_t which) const noexcept {
    for (const auto& entry : services_)
        if (entry.service_class == service_class && which-- == 0) return entry.service;
    for (std::size_t i = 0; component_ != nullptr && i < component_->service_count(); ++i) {
        const auto entry = component_->service_at(i);
        if (entry.service_class == service_class && which-- == 0) return entry.service;
    }
    return nullptr;
}

void memory_player::bug_check(const char* text) noexcept {
    std::fprintf(stderr, "%s\n", text);
    std::abort();
}

}  // namespace support

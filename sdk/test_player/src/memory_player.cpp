#include "ostrevan_test/memory_player.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "ostrevan/startup.h"

namespace ostrevan_test {
namespace {

template <typename... Services>
std::vector<ostrevan::component_api::service_entry> entries_of(Services&... services) {
    return {{Services::class_guid, &services}...};
}

}  // namespace

ostrevan::service_uncounted_t<memory_hash> memory_player::hash;
ostrevan::service_uncounted_t<memory_letters> memory_player::letters;

memory_player::memory_player(ostrevan::get_interface_function entry, const char* library_path)
    : services_(entries_of(index, main_queue, threads, popups, console, crash_log, clipboard, beeps, configuration, library,
                           metadb, playlists, decoders, titleformat, local_files, remote_files, tag_updates, reloads,
                           open_dialogs, dialogs, file_dialog, searches, progress, hash, letters)) {
    const ostrevan::player_interface block{.api = this};
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
    std::vector<ostrevan::initialisation_stage*> stages;
    ostrevan::for_each_service<ostrevan::initialisation_stage>([&](auto& stage) { stages.push_back(&stage); });
    std::ranges::stable_sort(stages, {}, &ostrevan::initialisation_stage::stage);
    const auto late = std::ranges::find_if(stages, [](auto* stage) { return stage->stage() > 30; });
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

}  // namespace ostrevan_test

#include "bench/bench_player.h"

#include <stdlib.h>
#include <time.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "player/app/component_start.h"
#include "quorvel/store/key.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace bench {
namespace {

namespace fs = std::filesystem;

/// A bench that fails measures nothing.
[[noreturn]] void give_up(const std::string& message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    std::abort();
}

/// Console lines need not be failures; each bench checks its outcome.
void show(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

class temporary_folder {
public:
    temporary_folder() {
        std::string pattern = fs::current_path() / "component_bench_XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
        path_ = pattern;
    }
    ~temporary_folder() { fs::remove_all(path_); }
    temporary_folder(const temporary_folder&) = delete;
    temporary_folder& operator=(const temporary_folder&) = delete;

    [[nodiscard]] const fs::path& path() const noexcept { return path_; }

private:
    fs::path path_;
};

}  // namespace

const fs::path& folder() {
    static const temporary_folder made;
    return made.path();
}

fs::path new_folder() {
    static int made = 0;
    const auto path = folder() / std::to_string(++made);
    fs::create_directories(path);
    return path;
}

void use_summer_time() {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
}

bench_player::bench_player(const fs::path& profile)
    : loop(give_up),
      crash_log_(profile / "crash.log"),
      console_(show),
      host_(loop, services, crash_log_, profile, true),
      block_(host_.interface_block()),
      configuration_(profile / "configuration.json"),
      main_thread_(loop),
      threads_(loop),
      records(profile / "index.sqlite", give_up, {.cause = [] { return ostrevan::index::change_cause{.text = "bench"}; }}),
      index(
          records, [](const ostrevan::service_base& /*client*/) { return std::string("the bench"); },
          [this](const nuv::guid& /*index*/, const std::vector<std::uint64_t>& keys) {
              ++refreshes;
              refreshed_keys += keys.size();
          }) {
    use_summer_time();
    services.add<ostrevan::configuration_store>(configuration_);
    services.add<ostrevan::console_service>(console_);
    services.add<ostrevan::index_manager>(index);
    services.add<ostrevan::main_thread_callback_service>(main_thread_);
    services.add<ostrevan::thread_service>(threads_);
    services.add<ostrevan::hash_service>(hash_);
    services.add<ostrevan::text_helper_service>(text_);
    services.add<ostrevan::filesystem>(files_);

    const auto* const answer = ostrevan_get_interface(&block_);
    if (answer == nullptr) throw std::runtime_error("the component refused the player");
    components_.push_back({"quorvel.dll", answer->api});
    ostrevan::app::register_components(components_, services, fields_);
    ostrevan::app::start_components(components_, services, give_up);
    loop.run_until_idle();
    static_cast<void>(records.keys(nuv::guid()));  // waits until the index is in memory
}

bench_player::~bench_player() {
    loop.run_until_idle();
    host_.begin_shutdown();
    ostrevan::app::end_components(components_, services, give_up);
    records.flush();
}

void bench_player::note_play(const ostrevan::metadb_handle& track) {
    const auto key = *quorvel::KeyOf(track);
    const auto& place = track.location();
    records.note(std::vector<ostrevan::index::known_track>{{.index = quorvel::statistics_index_guid,
                                                            .key = key,
                                                            .artist = "An artist",
                                                            .album = "An album",
                                                            .title = "A title",
                                                            .path = place.path,
                                                            .subsong = place.subsong}});
    records.note({.time = std::time(nullptr),
                  .path = place.path,
                  .subsong = place.subsong,
                  .seconds = 200,
                  .is_counted = true,
                  .keys = {{quorvel::statistics_index_guid, key}}});
}

}  // namespace bench

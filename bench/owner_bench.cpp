// The longest piece of work of the main thread while the owner of a profile carries out commands, in a library of 100,000
// files.
#include <benchmark/benchmark.h>
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/ratio.h"
#include "player/app/session.h"
#include "player/core/profile_folder.h"
#include "player/system/temporary_folder.h"
#include "player/terminal/command_line.h"
#include "player/terminal/running.h"
#include "player/terminal/terminal_front_end.h"

namespace {

namespace fs = std::filesystem;
namespace core = ostrevan::core;
namespace terminal = ostrevan::terminal;
using steady = std::chrono::steady_clock;
using words = std::vector<std::string>;

constexpr std::size_t files = 100'000;
constexpr std::size_t tracks_an_album = 12;
constexpr double goal_ms = 16;

double milliseconds(steady::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

std::string little_endian(std::uint32_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> 8 * i);
    return bytes;
}

std::string chunk(const char* name, std::string content) {
    if (content.size() % 2 != 0) content += '\0';
    return name + little_endian(static_cast<std::uint32_t>(content.size())) + content;
}

std::string text_frame(const char* name, const std::string& text) {
    return std::string(name) + std::string(3, '\0') + static_cast<char>(text.size() + 1) + std::string(3, '\0') + text;
}

/// A tenth of a second of sound, another one for each number, and tags. Smaller than a block of the disk.
std::string wave_file(std::size_t number, const std::string& edition) {
    constexpr std::uint32_t rate = 8000;
    const auto format =
        std::string("\1\0\1\0", 4) + little_endian(rate) + little_endian(rate) + std::string("\1\0\x08\0", 4);
    auto sound = std::string(rate / 10, '\x80');
    sound.replace(0, 8, std::to_string(10'000'000 + number));
    const auto frames = text_frame("TIT2", "Title " + std::to_string(number) + edition) +
                        text_frame("TPE1", "Artist " + std::to_string(number / (10 * tracks_an_album))) +
                        text_frame("TALB", "Album " + std::to_string(number / tracks_an_album)) +
                        text_frame("TRCK", std::to_string(number % tracks_an_album + 1));
    const std::string size{'\0', '\0', static_cast<char>(frames.size() >> 7), static_cast<char>(frames.size() & 127)};
    const auto content =
        "WAVE" + chunk("fmt ", format) + chunk("data", sound) + chunk("id3 ", std::string("ID3\4\0\0", 6) + size + frames);
    return chunk("RIFF", content);
}

/// The music, the profile and the session on it, in the working directory.
class owner {
public:
    owner()
        : player_({profile_, fs::read_symlink("/proc/self/exe").parent_path() / "components", true},
                  *core::profile_lock::take(profile_), ui_) {
        for (std::size_t number = 0; number < files; ++number) write(number, "");
    }

    [[nodiscard]] std::string music() const { return folder_.path() + "/music"; }
    [[nodiscard]] std::string path(std::size_t number) const {
        const auto album = number / tracks_an_album;
        return music() + "/" + std::to_string(album / 100) + "/" + std::to_string(album) + "/" + std::to_string(number) +
               ".wav";
    }
    void write(std::size_t number, const std::string& edition) const {
        const auto file = path(number);
        fs::create_directories(fs::path(file).parent_path());
        std::ofstream(file, std::ios::binary) << wave_file(number, edition);
    }

    ostrevan::app::session& player() { return player_; }

    /// Carries out a command like that of a client. [another thread]
    void carry_out(const words& command) {
        const auto job = std::make_shared<core::job>();
        const core::job::scope scope(job);
        const auto parsed = terminal::parse_arguments(command);
        const auto& chosen = std::get<terminal::arguments>(parsed).chosen;
        terminal::terminal screen({.input = nothing_.get(), .output = nothing_.get(), .error = nothing_.get()}, job, true,
                                  {});
        player_.add_front_end(job, std::make_shared<terminal::terminal_front_end>(job, screen));
        terminal::run_context context{player_, screen, screen.out(), *job, ownership_, false};
        const int status = terminal::run_to_end(chosen, context);
        player_.remove_front_end(job);
        if (status != terminal::exit_done) throw std::runtime_error(command.front() + " has failed");
    }

private:
    const ostrevan::system::temporary_folder folder_ = *ostrevan::system::temporary_folder::in(fs::current_path());
    const std::string profile_ = core::prepare_profile(folder_.path() + "/profile");
    const ostrevan::system::descriptor nothing_{::open("/dev/null", O_RDWR | O_CLOEXEC)};
    const core::job_ptr nobody_ = std::make_shared<core::job>();
    terminal::terminal screen_{{}, nobody_, true, {}};
    terminal::terminal_front_end ui_{nobody_, screen_};
    terminal::ownership ownership_{.components = {}, .is_lasting = true};
    ostrevan::app::session player_;
};

owner& the_owner() {
    static owner made;
    return made;
}

/// Milliseconds for which this thread could have run while others had the processors.
double milliseconds_in_line() {
    std::ifstream file("/proc/thread-self/schedstat");
    double running = 0;
    double in_line = 0;
    file >> running >> in_line;
    return in_line / 1e6;
}

/// A task that posts itself again and again on the main thread measures what runs between.
class piece_watch {
public:
    explicit piece_watch(core::main_loop& loop) : loop_(loop) { post(); }

    void stop() { stops_ = true; }
    /// Without the time in line for a processor.
    [[nodiscard]] double longest_ms() const { return longest_; }
    [[nodiscard]] double longest_in_line_ms() const { return in_line_; }
    [[nodiscard]] double processor_ms() const { return processor_; }

private:
    void post() {
        computed_ = bench::processor_seconds();
        waited_ = milliseconds_in_line();
        since_ = steady::now();
        loop_.post([this] { note(); });
    }

    void note() {
        const double time = milliseconds(steady::now() - since_);
        const double in_line = milliseconds_in_line() - waited_;
        longest_ = std::max(longest_, time - in_line);
        in_line_ = std::max(in_line_, in_line);
        processor_ = std::max(processor_, 1000 * (bench::processor_seconds() - computed_));
        if (stops_) return;
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        post();
    }

    core::main_loop& loop_;
    std::atomic<bool> stops_ = false;
    steady::time_point since_;
    double computed_ = 0;
    double waited_ = 0;
    double longest_ = 0;
    double in_line_ = 0;
    double processor_ = 0;
};

/// Runs `work` on another thread beside the main loop.
void beside_the_loop(const std::function<void()>& work) {
    auto& loop = the_owner().player().loop;
    std::exception_ptr failure;
    std::thread working([&, busy = core::main_loop::activity(loop)] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    });
    loop.run_until_idle();
    working.join();
    if (failure) std::rethrow_exception(failure);
}

void carry_out(const words& command) {
    beside_the_loop([&] { the_owner().carry_out(command); });
}

void measure(benchmark::State& state, const std::function<void()>& work) {
    piece_watch watch(the_owner().player().loop);
    const auto begin = steady::now();
    beside_the_loop([&] {
        work();
        watch.stop();
    });
    state.SetIterationTime(milliseconds(steady::now() - begin) / 1000);
    state.SetLabel("16 ms");
    state.counters["ratio"] = watch.longest_ms() / goal_ms;
    state.counters["goal"] = 1;
    state.counters["longest_ms"] = watch.longest_ms();
    state.counters["processor_ms"] = watch.processor_ms();
    state.counters["in_line_ms"] = watch.longest_in_line_ms();
}

void measure(benchmark::State& state, const words& command) {
    measure(state, [&] { the_owner().carry_out(command); });
}

/// The library has everything.
void fill() {
    auto& there = the_owner();
    if (there.player().library.unordered_items()->size() != files) carry_out({"library", "add", there.music()});
}

void empty() {
    auto& there = the_owner();
    if (!there.player().library.unordered_items()->empty()) carry_out({"library", "remove", there.music()});
}

const words list{"list"};
const words search{"list", "title", "77", "artist"};
words rating() { return {"context", "Playback Statistics/Rating/5", the_owner().path(7)}; }
words play() { return {"play", "--audio", "null", "--fast", the_owner().path(8)}; }

void owner_adds_a_folder(benchmark::State& state) {
    for (auto _ : state) {
        empty();
        measure(state, {"library", "add", the_owner().music()});
    }
}

/// Others use the library meanwhile. `list_ms` and the like are the longest times of their commands.
void owner_serves_during_a_scan(benchmark::State& state) {
    for (auto _ : state) {
        empty();
        auto& there = the_owner();
        std::map<std::string, double> longest;
        measure(state, [&] {
            std::atomic<bool> is_done = false;
            std::thread others([&] {
                while (!is_done)
                    for (const auto& [name, command] :
                         {std::pair("list_ms", list), std::pair("rating_ms", rating()), std::pair("play_ms", play())}) {
                        const auto begin = steady::now();
                        there.carry_out(command);
                        longest[name] = std::max(longest[name], milliseconds(steady::now() - begin));
                    }
            });
            there.carry_out({"library", "add", there.music()});
            is_done = true;
            others.join();
        });
        for (const auto& [name, time] : longest) state.counters[name] = time;
    }
}

void owner_lists(benchmark::State& state) {
    fill();
    for (auto _ : state) measure(state, list);
}

void owner_searches(benchmark::State& state) {
    fill();
    for (auto _ : state) measure(state, search);
}

void owner_rates_a_track(benchmark::State& state) {
    fill();
    for (auto _ : state) measure(state, rating());
}

void owner_counts_a_play(benchmark::State& state) {
    fill();
    for (auto _ : state) measure(state, play());
}

/// A fifth has other tags, a fifth is gone.
void owner_rescans(benchmark::State& state) {
    static int edition = 0;
    for (auto _ : state) {
        fill();
        auto& there = the_owner();
        const auto suffix = " of edition " + std::to_string(++edition);
        for (std::size_t number = 0; number < files; number += 5) {
            there.write(number, suffix);
            fs::remove(there.path(number + 1));
        }
        measure(state, {"library", "rescan"});
        for (std::size_t number = 0; number < files; number += 5) there.write(number + 1, "");
        carry_out({"library", "rescan"});
    }
}

void owner_ignores_files(benchmark::State& state) {
    for (auto _ : state) {
        fill();
        words half;
        for (int folder = 0; folder < 42; ++folder) half.push_back(the_owner().music() + "/" + std::to_string(folder));
        const auto with_half = [&](words command) {
            command.insert(command.end(), half.begin(), half.end());
            return command;
        };
        measure(state, with_half({"library", "ignore"}));
        carry_out(with_half({"library", "ignore", "--undo"}));
        carry_out({"library", "rescan"});
    }
}

void owner_removes_a_folder(benchmark::State& state) {
    for (auto _ : state) {
        fill();
        measure(state, {"library", "remove", the_owner().music()});
    }
}

BENCHMARK(owner_adds_a_folder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_serves_during_a_scan)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_lists)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_searches)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_rates_a_track)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_counts_a_play)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_rescans)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_ignores_files)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(owner_removes_a_folder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

// The promises of the contract, kept by the player in memory and by the real one.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <thread>

#include "ostrevan/clipboard.h"
#include "ostrevan/filesystem.h"
#include "ostrevan/thread_service.h"
#include "ostrevan_test/memory_player.h"
#include "player/core/profile_folder.h"
#include "tests/player/app/doubles.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan {
namespace {

constexpr const char* probe_path = PROBE_FOLDER "/probe.dll";
constexpr auto mine = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
constexpr auto other = nuv::guid_of("{11111111-2222-3333-4444-555555555555}");

void* symbol(const char* name) { return ::dlsym(::dlopen(probe_path, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE), name); }
std::string events() { return reinterpret_cast<const char* (*)()>(symbol("probe_events"))(); }

/// A player that has started with the probe.
struct running_player {
    std::shared_ptr<void> player;
    std::function<void()> settle;
    std::function<std::vector<std::string>()> said;
};

running_player in_memory(const std::string& /*profile*/) {
    using ostrevan_test::memory_player;
    static auto& players = *new std::vector<memory_player*>;  // never destroyed: the probe keeps their services
    auto& player =
        *players.emplace_back(new memory_player(reinterpret_cast<get_interface_function>(symbol(entry_name)), probe_path));
    player.start();
    const std::shared_ptr<memory_player> made(&player, [](memory_player* ended) { ended->shut_down(); });
    return {made, [&] { player.settle(); }, [&] { return player.console.lines; }};
}

running_player real(const std::string& profile) {
    const auto screen = std::make_shared<app::screen>();
    const auto session = std::make_shared<app::session>(app::session_options{profile, PROBE_FOLDER, true},
                                                        *core::profile_lock::take(core::prepare_profile(profile)), *screen);
    return {session, [=] { session->run_until_idle(); }, [=] { return screen->said; }};
}

class contract : public temporary_folder, public testing::WithParamInterface<const char*> {
protected:
    std::string stored(std::uint64_t key, const nuv::guid& index = mine) const {
        char bytes[16] = {};
        return {bytes, index_->read(index, key, bytes, sizeof bytes)};
    }
    void store(std::uint64_t key, const std::string& bytes) { index_->write(mine, key, bytes.data(), bytes.size()); }

    const bool is_real_ = GetParam() == std::string("real");
    running_player player_ = (is_real_ ? real : in_memory)(path("profile"));
    const service_ptr_t<index_manager> index_ = get_service<index_manager>();
    const service_ptr_t<index_manager_transactions> transactions_ = query_service<index_manager_transactions>(*index_);
};
INSTANTIATE_TEST_SUITE_P(players, contract, testing::Values("memory", "real"), [](const auto& of) { return of.param; });

/// A callback or a task.
template <typename Base>
struct work_of : Base {
    std::function<void()> work;
    explicit work_of(std::function<void()> given) : work(std::move(given)) {}
    void callback_run() { work(); }
    void run() { work(); }
};
void post(std::function<void()> work) {
    get_service<main_thread_callback_service>()->add_callback(service_new<work_of<main_thread_callback>>(std::move(work)));
}
struct any_client : index_client {
    std::uint64_t key_of(const file_info&, const playable_location&) override { return 7; }
};

TEST_P(contract, services_are_found_stages_surround_the_start_and_nothing_posted_is_lost_or_late) {
    EXPECT_EQ(events(), "5 30 startup 31 40 ");
    EXPECT_THROW((void)get_service<index_manager_backup>(), exception_service_not_found);
    EXPECT_FALSE(query_service<index_manager>(*index_));
    EXPECT_EQ(core_api::player()->service_at(metadb::class_guid, 1), nullptr);
    EXPECT_EQ(core_api::player()->service_count(initialisation_stage::class_guid), 4U);
    player_.settle();
    player_ = {};
    EXPECT_EQ(events(), "5 30 startup 31 40 posted shutdown ");
}

TEST_P(contract, callbacks_run_in_order_on_the_main_thread_whatever_one_throws) {
    int posted = 0;
    std::string order;
    for (int i = 0; i < 20; ++i)
        get_service<thread_service>()->start(service_new<work_of<thread_task>>([&] {
            EXPECT_FALSE(core_api::is_main_thread());
            post([&] { posted += core_api::is_main_thread() ? 1 : 0; });
            throw std::runtime_error("lost");
        }));
    player_.settle();
    EXPECT_EQ(posted, 20);
    post([&] {
        post([&] { order += " 3"; });
        order += " 1";
        throw std::runtime_error("broken");
    });
    post([&] { order += " 2"; });
    EXPECT_EQ(order, "");
    player_.settle();
    EXPECT_EQ(order, " 1 2 3");
    const auto said = player_.said();
    for (const char* reason : {"lost", "broken"})
        EXPECT_TRUE(std::ranges::any_of(said, [&](const std::string& line) { return line.ends_with(reason); })) << reason;
}

TEST_P(contract, transactions_take_effect_at_commit_and_as_a_whole) {
    index_->register_index(service_new<any_client>(), mine, 0);
    store(1, "old");
    transactions_->begin()->write(mine, 1, "new", 3);
    EXPECT_EQ(stored(1), "old") << "dropped without commit";

    const auto transaction = transactions_->begin();
    transaction->write(mine, 1, "", 0);
    transaction->write(mine, 2, "two", 3);
    for (const char* last_wins : {"1", "2"}) transaction->write(other, 2, last_wins, 1);
    EXPECT_EQ(stored(1) + stored(2), "old") << "not even its own thread sees it before";
    EXPECT_THROW(transaction->write(mine, 3, "", index_manager::max_blob_size + 1), std::invalid_argument);
    transaction->commit();
    EXPECT_EQ(stored(1) + stored(2) + stored(2, other), "two2");
    index_->save_now(mine);
    index_->refresh(mine, nuv::list_t<std::uint64_t>{2});
    index_->remove_index(mine);
    player_.settle();
    EXPECT_EQ(index_->keys(mine), std::vector<std::uint64_t>{2}) << "whatever the retention and the registration";
}

TEST_P(contract, writers_wait_for_each_other_and_lose_no_update) {
    std::vector<std::jthread> adders;
    for (int i = 0; i < 4; ++i)
        adders.emplace_back([&] {
            for (int n = 0; n < 200; ++n) {
                const auto transaction = transactions_->begin();
                const auto count = stored(1) + (n % 50 == 0 ? "x" : "");
                transaction->write(mine, 1, count.data(), count.size());
                transaction->commit();
            }
        });
    adders.clear();
    EXPECT_EQ(stored(1).size(), 16U);
}

TEST_P(contract, reads_copy_what_fits_and_keys_come_in_order_and_in_portions) {
    std::set<std::uint64_t> all;
    const auto transaction = transactions_->begin();
    for (std::uint64_t i = 0; i < 500; ++i)
        for (const std::uint64_t key : {i, i << 55, ~i, (i << 55) + 1 + i}) {
            transaction->write(mine, key, "12345", 5);
            all.insert(key);
        }
    transaction->commit();
    char bytes[] = "......";
    EXPECT_EQ(index_->read(mine, ~std::uint64_t{0}, bytes, 3), 5U);
    EXPECT_STREQ(bytes, "123...");
    EXPECT_EQ(index_->read(mine, 12345, bytes, 3), 0U);
    const std::vector<std::uint64_t> sorted(all.begin(), all.end());
    EXPECT_EQ(index_->keys(mine), sorted);
    EXPECT_TRUE(index_->keys(other).empty());
    for (const std::size_t at_most : {1U, 300U, 5000U}) {
        std::vector<std::uint64_t> walked, part;
        for (std::uint64_t next = 0; !(part = index_->keys_from(mine, next, at_most)).empty();) {
            EXPECT_LE(part.size(), at_most);
            walked.insert(walked.end(), part.begin(), part.end());
            if ((next = walked.back() + 1) == 0) break;
        }
        EXPECT_EQ(walked, sorted) << at_most;
    }
}

TEST_P(contract, misuse_of_transactions_is_a_bug_check) {
    const std::string said = "bug check: .*transaction|memory_index: ";
    const auto transaction = transactions_->begin();
    EXPECT_DEATH((void)transactions_->begin(), said);
    EXPECT_DEATH(store(1, "x"), said);
    transaction->commit();
    EXPECT_DEATH(transaction->commit(), said);
    EXPECT_DEATH(transaction->write(mine, 1, "x", 1), said);
}

#ifndef NDEBUG
TEST_P(contract, methods_for_the_main_thread_are_a_bug_check_on_another) {
    metadb_handle_list tracks;
    const std::function<void()> calls[] = {
        [&] { index_->register_index(service_new<any_client>(), mine, 0); },
        [&] { index_->remove_index(mine); },
        [&] { index_->refresh(mine, nuv::list_t<std::uint64_t>{}); },
        [&] { query_service<index_manager_backup>(*index_)->back_up("x", nullptr); },
        [] { (void)get_service<library_manager>()->is_library_enabled(); },
        [&] { get_service<library_manager>()->get_all_items(tracks); },
        [&] { get_service<playlist_manager>()->get_all_items(tracks); },
        [] { get_service<popup_message>()->show("x", "x"); },
        [] { query_service<popup_message_v3>(*get_service<popup_message>())->messageBoxAsync({}); },
        [] { (void)get_service<clipboard_service>()->has_format("x"); },
        [] { get_service<clipboard_service>()->set("x", {}); },
        [] { get_service<beep_service>()->beep(); },
        [] { (void)get_service<dialog_registry>()->can_create_new(); },
        [] { (void)get_service<dialog_registry>()->poke_existing(); },
        [] { get_service<dialog_service>()->open({}); },
        [] { (void)get_service<file_dialog_service>()->ask({}); },
        [] { (void)get_service<progress_service>()->start("x"); },
        [] { get_service<library_search>()->show("x"); },
        [&] { get_service<info_reload_service>()->reload_async(tracks, 0, nullptr, 0, {}); },
        [&] { get_service<tag_update_service>()->update_async(tracks, {}, nullptr, 0, {}); },
        [] { (void)core_api::main_window(); }};
    std::thread([&] {
        for (std::size_t i = 0; const auto& call : calls) EXPECT_DEATH(call(), "called off the main thread: ") << i++;
    }).join();
}
#endif

TEST_P(contract, a_new_file_replaces_the_older_one_at_its_flush_and_the_protocol_decides_who_opens_it) {
    const auto name = path("file");
    const auto opened = [&](auto mode) { return filesystem::g_open(name.c_str(), mode); };
    for (const char* text : {"one", "three"}) {
        const auto file = opened(filesystem::open_mode::write_new);
        file->write(text, std::strlen(text));
        file->flush();
    }
    opened(filesystem::open_mode::write_new)->write("lost", 4);
    EXPECT_EQ(opened(filesystem::open_mode::read)->size(), 5U);
    filesystem::g_get(name.c_str())->remove_retrying(name.c_str());
    EXPECT_THROW((void)opened(filesystem::open_mode::read), ostrevan_io::exception_io_not_found);
    for (const auto& [where, is_remote] : {std::pair{"/a", false}, {"File:///a", false}, {"HTTP://a", true}})
        EXPECT_EQ(filesystem::g_get(where)->is_remote(where), is_remote) << where;
    EXPECT_THROW(filesystem::g_get("tone://440"), ostrevan_io::exception_io_no_handler_for_path);
}

TEST_P(contract, tracks_have_one_handle_and_fields_of_components) {
    const auto handles = get_service<metadb>();
    const auto track = handles->handle_create({"/a.flac", 0});
    EXPECT_EQ(handles->handle_create({"/a.flac", 0}), track);
    EXPECT_NE(handles->handle_create({"/a.flac", 1}), track);
    EXPECT_FALSE(track->info());
    EXPECT_EQ(get_service<titleformat_service>()->format(*track, "%probe%"), "at /a.flac");
    EXPECT_EQ(get_service<titleformat_service>()->format(*track, "%nosuch%"), "");
}

TEST_P(contract, digests_are_md5_and_letters_become_small) {
    const std::string million(1'000'000, 'a');
    // The last of the algorithm's published test vectors that is longer than any buffer.
    const hash_digest wanted{0x77, 0x07, 0xD6, 0xAE, 0x4E, 0x02, 0x7C, 0x70, 0xEE, 0xA2, 0xA9, 0x35, 0xC2, 0x29, 0x6F, 0x21};
    const auto hash = get_service<hash_service>();
    EXPECT_EQ(hash->digest(million.data(), million.size()), wanted);
    const auto stream = hash->open();
    for (std::size_t done = 0; done < million.size(); done += 257)
        stream->update(million.data() + done, std::min<std::size_t>(257, million.size() - done));
    EXPECT_EQ(stream->finish(), wanted);

    const auto letters = get_service<text_helper_service>();
    std::u32string upper = U"AzÉ×İŸŽĸŁΣЯЁ", lower = U"azé×iÿžĸłσяё";
    if (is_real_) {
        upper += U"\u1E9E\u212A\u2C2F\u2FFF\u3000\uA640\uFF21\U00010400\U0001E921\U0010FFFF";
        lower += U"\u00DFk\u2C5F\u2FFF\u3000\uA641\uFF41\U00010428\U0001E943\U0010FFFF";
        EXPECT_EQ(letters->lower(0xFFFFFFFF), 0xFFFFFFFF);
    }
    for (std::size_t i = 0; i < upper.size(); ++i) {
        EXPECT_EQ(letters->lower(upper[i]), lower[i]);
        EXPECT_TRUE(upper[i] >= letters->lower_table_size || letters->lower_table()[upper[i]] == lower[i]);
    }
}

}  // namespace
}  // namespace ostrevan

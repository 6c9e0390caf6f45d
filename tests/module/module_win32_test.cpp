#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>

#include "ostrevan/component_version.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/main_menu.h"
#include "ostrevan/statistics_collector.h"
#include "tests/support/memory_player.h"

namespace {

namespace fs = std::filesystem;

/// A loaded library file, unloaded with the object.
class loaded_library {
public:
    explicit loaded_library(const fs::path& path) : handle_(LoadLibraryW(path.c_str())) {
        if (handle_ == nullptr) throw std::runtime_error("the library cannot be loaded");
    }
    ~loaded_library() { FreeLibrary(handle_); }
    loaded_library(const loaded_library&) = delete;
    loaded_library& operator=(const loaded_library&) = delete;

    template <typename Function>
    [[nodiscard]] Function address_of(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
    }

private:
    HMODULE handle_;
};

/// Services in memory, and the component loaded from its file as by a player.
struct tiny_player {
    tiny_player(const fs::path& path, const std::string& utf8_path)
        : library(std::make_unique<loaded_library>(path)),
          player(std::make_unique<support::memory_player>(
              library->address_of<ostrevan::get_interface_function>(ostrevan::entry_name), utf8_path.c_str())) {}
    support::memory_player* operator->() const noexcept { return player.get(); }
    /// Whether the command of the context menu can be chosen. The linker decides the order of the groups.
    bool run_context(const std::string& name, const ostrevan::metadb_handle_list& tracks) const {
        for (std::size_t which = 0;; ++which) {
            auto& group = player->component_service<ostrevan::context_menu_item>(which);
            for (std::size_t i = 0; i < group.get_item_count(); ++i) {
                if (group.get_item_name(i) != name) continue;
                ostrevan::context_menu_node::display_t shown;
                group.item_get_display_data(shown, i, tracks, ostrevan::context_caller::selection);
                group.context_command(i, tracks, ostrevan::context_caller::selection);
                return shown.flags == 0;
            }
        }
    }

    std::unique_ptr<loaded_library> library;
    std::unique_ptr<support::memory_player> player;  // holds objects with the library's code
};

std::string utf8(const fs::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
}

/// A copy of the library at a given path, removed with the object.
class copied_library {
public:
    explicit copied_library(const fs::path& name) : folder_(fs::temp_directory_path() / u8"quorvel tests \u00e9\u97f3") {
        fs::create_directories(folder_);
        path_ = folder_ / name;
        fs::copy_file(QUORVEL_MODULE, path_, fs::copy_options::overwrite_existing);
    }
    ~copied_library() { fs::remove_all(folder_); }

    [[nodiscard]] tiny_player load() const { return tiny_player(path_, utf8(path_)); }

private:
    fs::path folder_;
    fs::path path_;
};

/// Bytes in use on all heaps; the C library has its own.
std::size_t heap_in_use() {
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    EXPECT_LE(count, heaps.size());
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry))
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

DWORD handles_in_use() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

constexpr const char* copy = "Copy statistics";
constexpr const char* paste = "Paste statistics";

/// Loads the component, uses all of it, and unloads it.
void one_life(const copied_library& library) {
    const tiny_player player = library.load();
    const auto tracks = support::make_tracks(3);
    player->library.items = tracks.items();
    player->start();
    for (const auto& track : tracks.items())
        player->component_service<ostrevan::playback_statistics_collector>().on_item_played(track);
    player->settle();
    player->file_dialog.answer = "/out.xml";
    for (const std::size_t export_or_import : {3, 4}) {
        player->component_service<ostrevan::main_menu_commands>().execute(export_or_import);
        player->settle();
        player->dialogs.press(ostrevan::dialog_ok);
        player->settle();
    }
    EXPECT_TRUE(player.run_context(copy, tracks));
    EXPECT_TRUE(player.run_context(paste, tracks));
    player->popups.answer(ostrevan::popup_message_v3::answer_ok);
    player->settle();
    EXPECT_NE(player->local_files.files.at("/out.xml").find("Count=\"1\""), std::string::npos);
    EXPECT_TRUE(player->component_service<ostrevan::component_version>().test_installation());
    EXPECT_EQ(player->crash_log.lines, std::vector<std::string>{});
}

}  // namespace

TEST(module, says_that_its_file_was_renamed) {
    const copied_library library(u8"Qu\u00f6rvel copy.dll");
    const tiny_player player = library.load();
    EXPECT_FALSE(player->component_service<ostrevan::component_version>().test_installation());
    EXPECT_EQ(player->crash_log.lines,
              std::vector<std::string>{"Component rename detected: quorvel.dll >> Qu\xC3\xB6rvel copy.dll"});
}

/// Heap growth of a number of runs, after some that fill the caches of the system and of this program.
std::size_t left_by(const std::function<void()>& life) {
    for (int i = 0; i < 3; ++i) life();
    const auto before = heap_in_use();
    for (int i = 0; i < 20; ++i) life();
    return (heap_in_use() - before) / 20;
}

TEST(module, leaves_no_more_behind_than_a_library_that_does_nothing) {
    const copied_library library("quorvel.dll");
    const auto left_by_runtime = left_by([] {
        const loaded_library bare(BARE_LIBRARY);
        bare.address_of<int (*)()>("use_the_runtime")();
    });
    const auto handles_before = handles_in_use();
    // The runtime's share of the component's own variables of a thread comes on top.
    EXPECT_LE(left_by([&] { one_life(library); }), left_by_runtime + 256);
    EXPECT_LE(handles_in_use(), handles_before);
    EXPECT_EQ(GetModuleHandleW(L"quorvel.dll"), nullptr);
}

/// The dialog drawn by the component for this owner, or null.
HWND dialog_of(HWND owner) {
    const HWND front = GetLastActivePopup(owner);
    return front == owner ? nullptr : front;
}

/// One player that ends, and one that unloads the component while it runs.
TEST(module, takes_its_open_dialog_along) {
    const HWND owner = CreateWindowW(L"Static", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 900, 700, nullptr, nullptr,
                                     nullptr, nullptr);
    for (const bool shuts_down : {true, false, true, false}) {
        tiny_player player(fs::path(QUORVEL_MODULE), QUORVEL_MODULE);
        player->withdraw(player->dialogs.class_guid);
        player->window = owner;
        if (shuts_down) player->start();
        player->component_service<ostrevan::main_menu_commands>().execute(3);
        ASSERT_NE(dialog_of(owner), nullptr);
        EXPECT_EQ(reinterpret_cast<HMODULE>(GetWindowLongPtrW(dialog_of(owner), GWLP_HINSTANCE)),
                  GetModuleHandleW(L"quorvel.dll"));
        if (shuts_down) player->shut_down();
        else player.library.reset();
        EXPECT_EQ(dialog_of(owner), nullptr);
        EXPECT_TRUE(player->open_dialogs.can_create_new());
        player.player.reset();
        player.library.reset();
        EXPECT_EQ(GetModuleHandleW(L"quorvel.dll"), nullptr);
    }
    DestroyWindow(owner);
}

/// Copied statistics outlive the component and its library.
TEST(module, leaves_what_it_has_copied_on_the_clipboard) {
    const copied_library library("quorvel.dll");
    {
        const tiny_player player = library.load();
        player->start();
        (void)player.run_context(copy, support::make_tracks(2));
    }
    EXPECT_EQ(GetModuleHandleW(L"quorvel.dll"), nullptr);
    ASSERT_TRUE(OpenClipboard(nullptr));
    const HANDLE block = GetClipboardData(RegisterClipboardFormatA("{9B7A2C92-BC1E-4a96-BB97-B19884AB2141}"));
    EXPECT_GE(GlobalSize(block), 4U + 2 * 36);
    CloseClipboard();
}

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <functional>
#include <set>

#include "ostrevan/component_version.h"
#include "ostrevan/statistics_collector.h"
#include "tests/module/loaded_component.h"

namespace {

namespace fs = std::filesystem;
using module_test::tiny_player;

std::string utf8(const fs::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
}

/// A copy of the library under a path of our choice, which goes when this does.
class copied_library {
public:
    explicit copied_library(const fs::path& name) : folder_(fs::temp_directory_path() / u8"quorvel tests \u00e9\u97f3") {
        fs::create_directories(folder_);
        path_ = folder_ / name;
        fs::copy_file(QUORVEL_MODULE, path_, fs::copy_options::overwrite_existing);
    }
    ~copied_library() { fs::remove_all(folder_); }

    [[nodiscard]] std::string path() const { return utf8(path_); }

private:
    fs::path folder_;
    fs::path path_;
};

/// The file mapped as the loader lays it out, none of its code run.
class mapped_image {
public:
    mapped_image() : module_(LoadLibraryExW(fs::path(QUORVEL_MODULE).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES)) {
        if (module_ == nullptr) throw std::runtime_error("the library cannot be mapped");
    }
    ~mapped_image() { FreeLibrary(module_); }

    template <typename T>
    [[nodiscard]] const T* at(DWORD offset) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module_) + offset);
    }
    template <typename T>
    [[nodiscard]] const T* directory(unsigned which) const {
        const auto* const headers = at<IMAGE_NT_HEADERS>(static_cast<DWORD>(at<IMAGE_DOS_HEADER>(0)->e_lfanew));
        return at<T>(headers->OptionalHeader.DataDirectory[which].VirtualAddress);
    }

private:
    HMODULE module_;
};

/// Bytes in use on all heaps; that of the C library is one of its own.
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

/// Loads the component, lets it work with everything it has, and unloads it.
void one_life(const std::string& path) {
    tiny_player player(path);
    const auto tracks = support::make_tracks(3);
    player->library.items = tracks.items();
    player->start();
    for (const auto& track : tracks.items())
        player->component_service<ostrevan::playback_statistics_collector>().on_item_played(track);
    player->settle();
    player->file_dialog.answer = "/out.xml";
    player.run_main("Export statistics...");
    player->dialogs.press(ostrevan::dialog_ok);
    player.run_main("Import statistics...");
    player->dialogs.press(ostrevan::dialog_ok);
    player.run_context("Copy statistics", tracks);
    player.run_context("Paste statistics", tracks);
    player->popups.answer(ostrevan::popup_message_v3::answer_ok);
    player->settle();
    EXPECT_NE(player->local_files.files.at("/out.xml").find("Count=\"1\""), std::string::npos);
    EXPECT_TRUE(player->component_service<ostrevan::component_version>().test_installation());
    EXPECT_EQ(player->crash_log.lines, std::vector<std::string>{});
}

}  // namespace

TEST(module, needs_nothing_but_the_system) {
    const std::set<std::string> of_the_system{"ADVAPI32.dll", "GDI32.dll",   "KERNEL32.dll",
                                              "USER32.dll",   "UxTheme.dll", "msvcrt.dll"};
    const mapped_image image;
    std::size_t imported = 0;
    for (const auto* table = image.directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); table->Name != 0;
         ++table, ++imported)
        EXPECT_TRUE(of_the_system.contains(image.at<char>(table->Name))) << image.at<char>(table->Name);
    EXPECT_GT(imported, 0U);
}

TEST(module, exports_its_entry_and_nothing_else) {
    const mapped_image image;
    const auto* const exported = image.directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    ASSERT_EQ(exported->NumberOfFunctions, 1U);
    EXPECT_STREQ(image.at<char>(*image.at<DWORD>(exported->AddressOfNames)), "ostrevan_get_interface");
}

TEST(module, says_that_its_file_was_renamed) {
    const copied_library library(u8"Qu\u00f6rvel copy.dll");
    tiny_player player(library.path());
    EXPECT_FALSE(player->component_service<ostrevan::component_version>().test_installation());
    EXPECT_EQ(player->crash_log.lines,
              std::vector<std::string>{"Component rename detected: quorvel.dll >> Qu\xC3\xB6rvel copy.dll"});
}

/// What a number of lives leaves on the heaps, after some that fill the caches of the system and of this program.
std::size_t left_by(const std::function<void()>& life) {
    for (int i = 0; i < 3; ++i) life();
    const auto before = heap_in_use();
    for (int i = 0; i < 20; ++i) life();
    return (heap_in_use() - before) / 20;
}

TEST(module, leaves_no_more_behind_than_a_library_that_does_nothing) {
    const copied_library library("quorvel.dll");
    const auto left_by_runtime = left_by([] {
        const module_test::loaded_library bare(BARE_LIBRARY);
        bare.call("use_the_runtime");
    });
    const auto handles_before = handles_in_use();
    // The runtime's share of the component's own variables of a thread comes on top.
    EXPECT_LE(left_by([&] { one_life(library.path()); }), left_by_runtime + 256);
    EXPECT_LE(handles_in_use(), handles_before);
    EXPECT_EQ(GetModuleHandleW(L"quorvel.dll"), nullptr);
}

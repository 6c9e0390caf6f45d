#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "ostrevan/main_menu.h"
#include "tests/module/loaded_component.h"

namespace {

/// The one that the component drew for this owner, or null.
HWND dialog_of(HWND owner) {
    const HWND front = GetLastActivePopup(owner);
    return front == owner ? nullptr : front;
}

/// A player that ends, and one that takes the component away in the middle of its life.
TEST(module, takes_its_open_dialog_along) {
    const HWND owner = CreateWindowW(L"Static", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 900, 700, nullptr, nullptr,
                                     nullptr, nullptr);
    for (const bool shuts_down : {true, false, true, false}) {
        auto library = std::make_unique<module_test::loaded_library>(QUORVEL_MODULE);
        auto player = std::make_unique<support::memory_player>(library->entry(), QUORVEL_MODULE);
        player->withdraw(player->dialogs.class_guid);
        player->window = owner;
        if (shuts_down) player->start();
        player->component_service<ostrevan::main_menu_commands>().execute(3);
        ASSERT_NE(dialog_of(owner), nullptr);
        EXPECT_EQ(reinterpret_cast<HMODULE>(GetWindowLongPtrW(dialog_of(owner), GWLP_HINSTANCE)),
                  GetModuleHandleW(L"quorvel.dll"));
        if (shuts_down) player->shut_down();
        else library.reset();
        EXPECT_EQ(dialog_of(owner), nullptr);
        EXPECT_TRUE(player->open_dialogs.can_create_new());
        player.reset();  // what it holds is made of the library's code
        library.reset();
        EXPECT_EQ(GetModuleHandleW(L"quorvel.dll"), nullptr);
    }
    DestroyWindow(owner);
}

}  // namespace

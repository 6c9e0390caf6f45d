#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/configuration.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/dialog.h"
#include "ostrevan/file_dialog.h"
#include "ostrevan/file_info_builder.h"
#include "ostrevan/main_menu.h"
#include "ostrevan/popup.h"
#include "ostrevan/tag_edit.h"
#include "ostrevan/track.h"

namespace ostrevan {

/// One thing that a build decides and that must be the same on both sides, because objects cross the boundary by their
/// layout. Characters of fixed number, so that it can be read whatever the build of the reader.
struct build_property {
    char name[32];   ///< empty after the last property
    char value[48];  ///< completes "it was built with": "the debug mode of the standard library"
};

/// The causes come first and the sizes that follow from them later.
struct build_fingerprint {
    build_property properties[32];
};

/// The values of the first property in which two builds differ. They live as long as the fingerprints.
struct build_difference {
    std::string_view first;
    std::string_view second;
};
/// None when objects are laid out alike. A property that only one side knows was added later and does not count.
std::optional<build_difference> difference_of(const build_fingerprint& first, const build_fingerprint& second) noexcept;

/// Fills a fingerprint while the program is compiled. A text that does not fit stops the compiler.
class build_fingerprint_writer {
public:
    constexpr void add(std::string_view name, std::string_view value) {
        auto& property = result_.properties[count_++];
        copy(name, property.name);
        copy(value, property.value);
    }
    template <typename T>
    constexpr void add_size(std::string_view name) {
        auto& property = result_.properties[count_++];
        copy(name, property.name);
        std::size_t end = copy(name, property.value);
        end += copy(" of ", std::span(property.value).subspan(end));
        end += copy_number(sizeof(T), std::span(property.value).subspan(end));
        copy(" bytes", std::span(property.value).subspan(end));
    }
    [[nodiscard]] constexpr build_fingerprint result() const { return result_; }

private:
    static constexpr std::size_t copy(std::string_view text, std::span<char> to) {
        if (text.size() >= to.size()) throw std::length_error("does not fit");
        for (std::size_t i = 0; i < text.size(); ++i) to[i] = text[i];
        return text.size();
    }
    static constexpr std::size_t copy_number(std::size_t number, std::span<char> to) {
        const std::size_t leading = number < 10 ? 0 : copy_number(number / 10, to);
        to[leading] = static_cast<char>('0' + number % 10);
        return leading + 1;
    }

    build_fingerprint result_{};
    std::size_t count_ = 0;
};

/// The build of the file that calls it, since it leaves nothing for the linker to merge with that of another.
consteval build_fingerprint this_build() {
    build_fingerprint_writer writer;
#if defined(__GXX_ABI_VERSION)
    writer.add("compiler", "the Itanium C++ ABI");
#else
    writer.add("compiler", "the C++ ABI of the platform");
#endif
    // The version is that of the library's binary interface, which outlives many releases.
#if defined(_LIBCPP_ABI_VERSION)
    writer.add("library", _LIBCPP_ABI_VERSION > 1 ? "a libc++ with an unstable ABI" : "libc++ 1");
#elif defined(__GLIBCXX__)
    writer.add("library", _GLIBCXX_INLINE_VERSION ? "libstdc++ 8" : "libstdc++ 6");
#elif defined(_MSVC_STL_VERSION)
    writer.add("library", _MSVC_STL_VERSION / 10 == 14 ? "the standard library 14" : "a standard library after 14");
#endif
#if defined(_GLIBCXX_DEBUG) || defined(_LIBCPP_ENABLE_DEBUG_MODE) || \
    (defined(_ITERATOR_DEBUG_LEVEL) && _ITERATOR_DEBUG_LEVEL > 0)
    writer.add("mode", "the debug mode of the standard library");
#else
    writer.add("mode", "the standard library in its usual mode");
#endif
#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
    writer.add("strings", "the string ABI from before C++11");
#else
    writer.add("strings", "the string ABI of C++11");
#endif
    writer.add_size<void*>("pointers");
    writer.add_size<std::exception>("std::exception");
    writer.add_size<std::string>("std::string");
    writer.add_size<std::vector<std::string>>("std::vector");
    writer.add_size<std::span<const std::uint8_t>>("std::span");
    writer.add_size<std::optional<std::uint64_t>>("std::optional");
    writer.add_size<std::function<void()>>("std::function");
    writer.add_size<std::unique_ptr<context_menu_node>>("std::unique_ptr");
    writer.add_size<nuv::guid>("guid");
    writer.add_size<service_base>("service_base");
    writer.add_size<file_info>("file_info");
    writer.add_size<file_info_builder>("file_info_builder");
    writer.add_size<playable_location>("playable_location");
    writer.add_size<metadb_info>("metadb_info");
    writer.add_size<tag_edit>("tag_edit");
    writer.add_size<config_variable>("config_variable");
    writer.add_size<context_menu_node::display_t>("context_menu_node::display_t");
    writer.add_size<main_menu_commands::display_t>("main_menu_commands::display_t");
    writer.add_size<dialog_layout>("dialog_layout");
    writer.add_size<file_dialog_service::query_t>("file_dialog_service::query_t");
    writer.add_size<popup_message_v3::query_t>("popup_message_v3::query_t");
    return writer.result();
}

/// The build of the including file. Each file has its own.
constexpr build_fingerprint own_build = this_build();

}  // namespace ostrevan

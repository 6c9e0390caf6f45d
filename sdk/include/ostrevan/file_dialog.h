#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ostrevan/service.h"

namespace ostrevan {

/// Asks the user for a file, without waiting. [main-thread]
class file_dialog_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{8A4D3B0E-2D5A-47B1-9E36-5B1C0F7E4D22}");

    struct query_t {
        void* parent = nullptr;
        /// Names and patterns in turn, separated by "|": "XML files|*.xml".
        std::string filter{};
        /// Appended to a name for saving that has no extension.
        std::string default_extension{};
        std::string title{};
        /// For writing: the user is asked before an existing file is replaced.
        bool save = false;
        /// Called once on the main thread, after `ask` has returned, with the path that the user chose; none when the user
        /// cancels. Never called when the player ends before the answer.
        std::function<void(const std::optional<std::string>& path)> reply{};
    };
    virtual void ask(query_t query) = 0;
};

/// Asks through the player. Throws `exception_service_not_found` when the player cannot ask. [main-thread]
void uGetOpenFileName(file_dialog_service::query_t query);

}  // namespace ostrevan

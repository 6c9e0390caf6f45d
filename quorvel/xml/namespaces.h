#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quorvel/xml/xml_parser.h"

namespace Vek {

/// The namespaces of each element of a level in turn. An element without declarations has the context of its parent. For the
/// others one copy is made for the whole level, and their declarations are undone after each.
class namespaces {
public:
    struct resolved {
        const char* uri;    ///< "" when the name is in no namespace
        const char* local;  ///< without the prefix; the whole name when it is in no namespace
    };

    /// `parent` must outlive this object unchanged.
    explicit namespaces(const xmlContext& parent) : parent_(parent) {}

    /// The context of an element with these attributes, from which the declarations are taken out. Good until `leave`.
    const xmlContext& enter(xmlAttributes& attributes);
    /// The name in the context of the element entered; the results live as long as both.
    [[nodiscard]] resolved resolve(const std::string& name);
    void leave();

private:
    void declare(std::string prefix, const std::string& uri);

    const xmlContext& parent_;
    const xmlContext* current_ = &parent_;
    std::optional<xmlContext> own_;
    std::vector<std::pair<std::string, std::optional<std::string>>> former_;
    std::string prefix_;
};

}  // namespace Vek

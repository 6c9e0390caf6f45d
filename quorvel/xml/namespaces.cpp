#include "quorvel/xml/namespaces.h"

#include <algorithm>

namespace Vek {
namespace {

constexpr std::string_view declaration = "xmlns";

bool declares(const xmlAttributes::value_type& attribute) noexcept {
    const std::string& name = attribute.first;
    return name[0] == 'x' && name.starts_with(declaration) &&
           (name.size() == declaration.size() || name[declaration.size()] == ':');
}

}  // namespace

const xmlContext& namespaces::enter(xmlAttributes& attributes) {
    current_ = &parent_;
    if (std::ranges::none_of(attributes, declares)) return parent_;
    if (!own_) own_ = parent_;
    current_ = &*own_;
    for (const auto& attribute : attributes)
        if (declares(attribute))
            declare(attribute.first.substr(std::min(declaration.size() + 1, attribute.first.size())), attribute.second);
    attributes.remove_if(declares);
    return *current_;
}

void namespaces::declare(std::string prefix, const std::string& uri) {
    const auto [place, added] = own_->try_emplace(prefix, uri);
    std::optional<std::string> former;
    if (!added) {
        former = std::move(place->second);
        place->second = uri;
    }
    former_.emplace_back(std::move(prefix), std::move(former));
}

void namespaces::leave() {
    for (; !former_.empty(); former_.pop_back()) {
        auto& [prefix, uri] = former_.back();
        if (uri) (*own_)[prefix] = std::move(*uri);
        else own_->erase(prefix);
    }
    // Copies of this context would copy the empty buckets, too.
    if (own_ && own_->bucket_count() > 4 * own_->size() + 64) own_->rehash(0);
}

namespaces::resolved namespaces::resolve(const std::string& name) {
    if (current_->empty()) return {"", name.c_str()};
    const std::size_t colon = name.find(':');
    prefix_.assign(name, 0, colon == std::string::npos ? 0 : colon);
    const auto found = current_->find(prefix_);
    if (found == current_->end()) return {"", name.c_str()};
    return {found->second.c_str(), name.c_str() + (colon == std::string::npos ? 0 : colon + 1)};
}

}  // namespace Vek

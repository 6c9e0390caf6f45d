#pragma once

#include <map>
#include <mutex>
#include <string>

#include "ostrevan/configuration.h"

namespace ostrevan::services {

/// The configuration store: one JSON object in `configuration.json` of the profile, GUID text to boolean. Written at once
/// and as a whole, so that a kill leaves the old file or the new one.
class configuration_store_impl : public configuration_store {
public:
    /// Throws when the file is there and is not of this form; it is left as it is.
    explicit configuration_store_impl(std::string path);

    [[nodiscard]] bool get_bool(const nuv::guid& id, bool fallback) const override;
    void set_bool(const nuv::guid& id, bool value) override;

private:
    void write(const std::map<std::string, bool>& values) const;

    const std::string path_;
    mutable std::mutex mutex_;
    std::map<std::string, bool> values_;
};

}  // namespace ostrevan::services

#include "tests/support/memory_lookup.h"

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"

namespace support {
namespace {

class reader : public ostrevan::input_info_reader {
public:
    reader(const memory_decoders& owner, std::string path) : owner_(owner), path_(std::move(path)) {}
    ostrevan::file_info get_info(std::uint32_t subsong) override { return owner_.files.at({path_, subsong}); }

private:
    const memory_decoders& owner_;
    std::string path_;
};

}  // namespace

ostrevan::metadb_handle_ptr memory_metadb::handle_create(const ostrevan::playable_location& location) {
    auto& known = tracks[location];
    if (!known) known = ostrevan::service_new<memory_track>(location);
    return known;
}

ostrevan::service_ptr_t<ostrevan::input_info_reader> memory_decoders::open_for_info_read(const char* path) {
    if (ostrevan::core_api::is_main_thread()) ostrevan::uBugCheck("files are read on the main thread");
    opened.emplace_back(path);
    const auto first = files.lower_bound({path, 0});
    if (first == files.end() || first->first.path != path) throw ostrevan_io::exception_io_not_found(path);
    return ostrevan::service_new<reader>(*this, path);
}

}  // namespace support

// Seeds: fuzz/seeds/legacy_file
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "fuzz/check.h"
#include "ostrevan/exceptions.h"
#include "quorvel/store/legacy_file.h"

namespace {

class bytes_in_memory : public ostrevan::file {
public:
    explicit bytes_in_memory(std::string_view bytes) noexcept : rest_(bytes) {}
    std::optional<std::uint64_t> size() override { return std::nullopt; }
    void seek(std::uint64_t) override { fuzz::check(false, "the file is read from front to back"); }
    std::size_t read(void* buffer, std::size_t bytes) override {
        const auto count = std::min(bytes, rest_.size());
        std::memcpy(buffer, rest_.data(), count);
        rest_.remove_prefix(count);
        return count;
    }
    void write(const void*, std::size_t) override { fuzz::check(false, "nothing is written"); }
    void flush() override {}

private:
    std::string_view rest_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ostrevan::service_uncounted_t<bytes_in_memory> file(std::string_view(reinterpret_cast<const char*>(data), size));
    try {
        std::size_t told = 20;
        for (const auto& [location, stats] : quorvel::read_legacy_file(file)) {
            told += location.path.size() + 32;
            fuzz::check(stats.first_played == 0 || (stats.added != 0 && stats.added <= stats.first_played),
                        "nothing is played before it is added");
        }
        fuzz::check(told <= size, "every record stands in the file");
    } catch (const ostrevan_io::exception_io_data&) {
    }
    return 0;
}

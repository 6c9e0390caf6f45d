#include "bench/bare_digest.h"

#include <openssl/evp.h>

#include <array>
#include <cstdlib>

#include "ostrevan/hash_service.h"
#include "quorvel/store/mappings.h"

namespace bench {
namespace {

/// Records the bytes instead of digesting them.
class byte_recorder : public ostrevan::hash_service {
public:
    explicit byte_recorder(std::string& bytes) : bytes_(bytes) {}
    ostrevan::hash_digest digest(const void* bytes, std::size_t size) override {
        bytes_.assign(static_cast<const char*>(bytes), size);
        return {};
    }
    /// For tags larger than one block; there are none here.
    ostrevan::service_ptr_t<ostrevan::hash_stream> open() override { std::abort(); }

private:
    std::string& bytes_;
};

}  // namespace

struct bare_digest::context {
    EVP_MD* algorithm = EVP_MD_fetch(nullptr, "MD5", nullptr);
    EVP_MD_CTX* state = EVP_MD_CTX_new();
    context() {
        if (algorithm == nullptr || state == nullptr) std::abort();
    }
    ~context() {
        EVP_MD_CTX_free(state);
        EVP_MD_free(algorithm);
    }
    context(const context&) = delete;
    context& operator=(const context&) = delete;
};

bare_digest::bare_digest() : context_(std::make_unique<context>()) {}
bare_digest::~bare_digest() = default;

std::uint64_t bare_digest::of(const std::string& bytes) {
    std::array<std::uint64_t, 2> digest;
    EVP_DigestInit_ex2(context_->state, context_->algorithm, nullptr);
    EVP_DigestUpdate(context_->state, bytes.data(), bytes.size());
    EVP_DigestFinal_ex(context_->state, reinterpret_cast<unsigned char*>(digest.data()), nullptr);
    return digest[0] ^ digest[1];
}

std::vector<std::string> key_bytes_of(const std::vector<ostrevan::metadb_handle_ptr>& tracks) {
    std::vector<std::string> all;
    std::string bytes;
    ostrevan::service_uncounted_t<byte_recorder> recorder(bytes);
    ostrevan::service_uncounted_t<quorvel::TitleMapping> mapping(recorder);
    for (const auto& track : tracks) {
        static_cast<void>(mapping.key_of(track->info()->info(), track->location()));
        all.push_back(bytes);
    }
    return all;
}

}  // namespace bench

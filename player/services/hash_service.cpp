#include "player/services/hash_service.h"

#include <openssl/evp.h>

#include <memory>
#include <stdexcept>

namespace ostrevan::services {
namespace {

class md5_context {
public:
    md5_context() : context_(EVP_MD_CTX_new()) {
        if (!context_) throw std::bad_alloc();
    }
    void start() { check(EVP_DigestInit_ex2(context_.get(), algorithm(), nullptr)); }
    void update(const void* bytes, std::size_t size) { check(EVP_DigestUpdate(context_.get(), bytes, size)); }
    hash_digest finish() {
        hash_digest result;
        check(EVP_DigestFinal_ex(context_.get(), result.data(), nullptr));
        return result;
    }

private:
    struct free_context {
        void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
    };
    static const EVP_MD* algorithm() {
        static EVP_MD* const fetched = EVP_MD_fetch(nullptr, "MD5", nullptr);
        if (fetched == nullptr)
            throw std::runtime_error("OpenSSL on this machine offers no MD5; enable its default provider in openssl.cnf");
        return fetched;
    }
    static void check(int result) {
        if (result != 1) throw std::runtime_error("OpenSSL failed to compute an MD5 digest");
    }

    std::unique_ptr<EVP_MD_CTX, free_context> context_;
};

class md5_stream : public hash_stream {
public:
    md5_stream() { context_.start(); }
    void update(const void* bytes, std::size_t size) override { context_.update(bytes, size); }
    hash_digest finish() override { return context_.finish(); }

private:
    md5_context context_;
};

}  // namespace

hash_digest hash_service_impl::digest(const void* bytes, std::size_t size) {
    static thread_local md5_context context;
    context.start();
    context.update(bytes, size);
    return context.finish();
}

service_ptr_t<hash_stream> hash_service_impl::open() { return service_new<md5_stream>(); }

}  // namespace ostrevan::services

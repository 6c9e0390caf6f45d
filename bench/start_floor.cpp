#include <openssl/evp.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <thread>

#include "player/library/library_store.h"

// The floor of a start, in seconds: steps through the rows of a library with SQLite alone, and makes one MD5 a track, on two
// threads. start_floor PROFILE

namespace {

using ostrevan::sqlite::database;

constexpr std::size_t bytes_of_key = 260;  // of a typical track: 65 characters and separators

/// Steps through the tracks of these files.
void digest_tracks(const database& library, std::int64_t first, std::int64_t last) {
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> digest(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    const auto* const md5 = EVP_md5();
    unsigned char result[EVP_MAX_MD_SIZE];
    auto rows =
        library.prepare("SELECT file, subsong, info FROM tracks WHERE file BETWEEN ?1 AND ?2 ORDER BY file, subsong");
    rows.bind(1, first).bind(2, last);
    while (rows.step()) {
        const auto info = rows.blob(2);
        EVP_DigestInit_ex2(digest.get(), md5, nullptr);
        EVP_DigestUpdate(digest.get(), info.data(), std::min(info.size(), bytes_of_key));
        EVP_DigestFinal_ex(digest.get(), result, nullptr);
    }
}

double seconds_of_floor(const std::filesystem::path& profile) {
    const ostrevan::library::library_store store((profile / "library.sqlite").string());
    const auto files = store.second_connection(), half = store.second_connection(), rest = store.second_connection();
    const auto began = std::chrono::steady_clock::now();
    auto rows = files->prepare("SELECT id, folder, path, size, mtime, device, sound, arrived FROM files ORDER BY id");
    std::int64_t last = 0;
    while (rows.step()) last = rows.integer(0);
    {
        const std::jthread other([&] { digest_tracks(*half, 0, last / 2); });
        digest_tracks(*rest, last / 2 + 1, last);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

}  // namespace

int main(int count, char** values) {
    if (count != 2) {
        std::fprintf(stderr, "start_floor PROFILE\n");
        return 2;
    }
    try {
        std::printf("%.4f\n", seconds_of_floor(values[1]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "start_floor: %s\n", error.what());
        return 1;
    }
    return 0;
}

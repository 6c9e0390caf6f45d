#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::tags {

class file_stream;

/// The four objects of a Windows Media header that hold tags, in the order in which their values count.
enum class asf_place { description, extended, metadata, library };

enum class asf_type : unsigned { text = 0, bytes = 1, boolean = 2, number32 = 3, number64 = 4, number16 = 5, guid = 6 };

struct asf_attribute {
    asf_place place{};
    std::string name;
    asf_type type{};
    /// The value's bytes as in the file.
    std::string value;
    /// Stream and language, which only the metadata objects have; four bytes.
    std::string scope;
    /// The name's bytes as in the file. They need not end with a zero or be well-formed.
    std::string name_bytes;
};

/// An object of the header: its 16-byte identifier, and the bytes after its size.
struct asf_object {
    std::string id;
    std::string body;
};

/// The header object at the beginning of the file, taken apart; objects without tags keep their bytes.
struct asf_header {
    std::vector<asf_object> objects;
    std::string reserved;
    /// In the order of `asf_place`, and within one place in that of the file.
    std::vector<asf_attribute> attributes;
    std::size_t size = 0;
};

/// @throws edit_error when it is damaged.
asf_header take_apart_asf(const std::string& bytes);
asf_header read_asf_header(file_stream& stream);

/// The header's bytes with the attributes in place of the old ones; `file_size` is the size of the file around the old
/// header, which the header states. Of several objects of one kind the first takes all attributes. @throws edit_error
std::string put_together_asf(const asf_header& header, std::uint64_t file_size);

/// The objects of the header that hold no tags, without the size of the file.
std::string bytes_without_tags(const asf_header& header);

/// Names in the content description, which are no attributes of their own: "Title", "Author", "Copyright", "Description".
bool is_description_name(std::string_view name) noexcept;

/// UTF-8 of a text in the header, which is UTF-16 and may end with zeros; and its bytes there, with one zero.
std::string asf_text(std::string_view bytes);
std::string asf_bytes_of(std::string_view text);

}  // namespace ostrevan::tags

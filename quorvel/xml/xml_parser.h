#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

#include "quorvel/xml/attributes.h"

/// A small XML library: a reader that walks one nesting level at a time over the caller's buffer, entities, and a writer.
namespace Vek {

/// Input that the library cannot use.
class invalid_input : public std::runtime_error {
public:
    invalid_input() : std::runtime_error("invalid input") {}

protected:
    explicit invalid_input(const char* text) : std::runtime_error(text) {}
};

/// The namespaces in force for one element: from prefix to URI, the empty prefix for the default namespace.
using xmlContext = std::unordered_map<std::string, std::string>;

/// Reads one nesting level of a buffer and hands over each element of it with the bytes between its tags; a handler that
/// wants the children parses those bytes again with the parser of the next level. It keeps nothing between calls. Text is
/// UTF-8; nothing is converted, and nothing is read outside the buffer. Used by one thread at a time.
class xmlParser {
public:
    /// The text is not well-formed. There is one message and no position.
    class error : public invalid_input {
    public:
        error() : invalid_input("XML error") {}
    };

    /// Calls the functions below in document order and returns at the end of the buffer. `parent` is empty at the top level;
    /// inside an element it is the context that its `onElem` received. Throws `error` at the first mistake, and whatever the
    /// functions throw; the calls made before are not undone.
    void parse(const xmlContext& parent, const char* buffer, std::size_t length);

    /// An element. All arguments live until the call returns. `ns` is empty if the name is in no namespace. `content` is the
    /// raw bytes between the tags; null with length 0 for an element that has none.
    virtual void onElem(const xmlContext& context, const char* ns, const char* name, const xmlAttributes& attributes,
                        const char* content, std::size_t length) = 0;
    /// Text between the elements of this level, raw: entities are not decoded and white space is kept.
    virtual void onText(const char* /*text*/, std::size_t /*length*/) {}
    /// Whether elements of this name never have content or an end tag.
    virtual bool isEmptyElement(const char* /*name*/) { return false; }
    /// Whether the content of elements of this name is opaque and ends at the first literal end tag. `length` is that of the
    /// buffer, `position` where the content starts in it.
    virtual bool isRawContent(const char* /*name*/, std::size_t /*length*/, std::size_t /*position*/) { return false; }
    /// Whether an element whose end cannot be found is handed over all the same, with everything that follows its start tag,
    /// before `error` is thrown.
    virtual bool takesUnfinished(const char* /*name*/) { return false; }

    virtual ~xmlParser() = default;
};

}  // namespace Vek

// Seeds: tests/quorvel/xml/corpus/good tests/quorvel/xml/corpus/lax tests/quorvel/xml/corpus/bad
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/check.h"
#include "quorvel/xml/xml_parser.h"

namespace {

constexpr int deepest = 30;

/// Reads every level below its own and checks the arguments of each call.
class level : public Vek::xmlParser {
public:
    level(std::string_view text, const Vek::xmlContext& context, int depth)
        : text_(text), context_(context), depth_(depth) {}

    void read() {
        parse(context_, text_.data(), text_.size());
        fuzz::check(text_.empty() || at_ != nullptr || text_.find('<') != std::string_view::npos, "text is handed over");
    }

    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        for (const auto& [key, value] : attributes) {
            fuzz::check(attributes.find(key) == &value, "an attribute is found by its name, which it has alone");
            fuzz::check(key != "xmlns" && !key.starts_with("xmlns:"), "declarations are no attributes");
        }
        for (const auto& [prefix, uri] : context_)
            fuzz::check(context.contains(prefix), "what the parent declares is in force");
        fuzz::check(*ns == 0 || std::ranges::any_of(context, [&](const auto& entry) { return entry.second == ns; }),
                    "a namespace is a declared one");
        fuzz::check(*name == 0 || !isEmptyElement(name) || content == nullptr || *ns != 0,
                    "an empty element has no content");
        if (content == nullptr) {
            fuzz::check(length == 0, "no content has no length");
            return;
        }
        const std::string_view inside(content, length);
        pass(inside, "content lies in order inside the buffer");
        if (isRawContent(name, 0, 0) || depth_ == deepest) return;
        try {
            level(inside, context, depth_ + 1).read();
        } catch (const error&) {
            // The search for the end tag does not look at everything: the mistakes of a level show when it is read.
        }
    }

    void onText(const char* text, std::size_t length) override {
        pass({text, length}, "text lies in order inside the buffer");
        fuzz::check(length > 0, "text is not empty");
        fuzz::check(std::string_view(text, length).find('<') == std::string_view::npos, "no tag is taken for text");
    }

    bool isEmptyElement(const char* name) override { return std::string_view(name) == "br"; }
    bool isRawContent(const char* name, std::size_t, std::size_t) override { return std::string_view(name) == "raw"; }
    bool takesUnfinished(const char* name) override { return std::string_view(name) == "open"; }

private:
    void pass(std::string_view part, const char* promise) {
        fuzz::check(part.data() >= text_.data() && part.data() + part.size() <= text_.data() + text_.size(), promise);
        fuzz::check(at_ == nullptr || part.data() >= at_, promise);
        at_ = part.data() + part.size();
    }

    std::string_view text_;
    const Vek::xmlContext& context_;
    int depth_;
    const char* at_ = nullptr;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        level({reinterpret_cast<const char*>(data), size}, {}, 0).read();
    } catch (const Vek::xmlParser::error&) {
    }
    return 0;
}

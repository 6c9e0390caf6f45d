#pragma once

#include "quorvel/interchange/import_globals.h"
#include "quorvel/xml/xml_parser.h"

/// The levels of a statistics file. Each throws what parsing and numbers throw; what was read before it stands in the
/// globals. They keep a reference to these.
namespace quorvel {

/// The top level: finds the root and, by its version and mapping, the handler for what is in it. Throws
/// `ostrevan_io::exception_io_data` for those that are not known. Other documents are passed over.
class XMLParser_Root : public Vek::xmlParser {
public:
    explicit XMLParser_Root(ParseGlobals& globals) noexcept : globals_(globals) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;
    /// The first records of a file that breaks off are worth having.
    bool takesUnfinished(const char* /*name*/) override { return true; }

private:
    ParseGlobals& globals_;
};

/// Records by key. Under the active mapping they are edited at once, under an older one the edits are kept until the tracks
/// are known that have these keys.
class XMLParser_Entries : public Vek::xmlParser {
public:
    /// `old_edits` is null for the active mapping.
    XMLParser_Entries(ParseGlobals& globals, OldKeyEdits* old_edits) noexcept : globals_(globals), old_edits_(old_edits) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;

private:
    ParseGlobals& globals_;
    OldKeyEdits* old_edits_;
};

/// Records by path, elements of any name: they are kept until their tracks have been found.
class XMLParser_Tracks : public Vek::xmlParser {
public:
    explicit XMLParser_Tracks(ParseGlobals& globals) noexcept : globals_(globals) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;

private:
    ParseGlobals& globals_;
};

}  // namespace quorvel

// Feeds arbitrary bytes to the dictation replacements parser and checks what it makes of them.
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "protocol/Json.h"
#include "userfiles/FileText.h"
#include "userfiles/ReplacementsFile.h"

namespace {

void check(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

// The escaped form of a text, as the app would write it.
std::string escape(std::string_view text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '\\':
                out += "\\\\";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                out.push_back(c);
        }
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const orvo::ReplacementsFile file = orvo::parseReplacements(bytes);

    std::set<std::size_t> entryLines;
    std::size_t previous = 0;
    for (const orvo::Replacement& entry : file.entries) {
        check(entry.line > previous);
        previous = entry.line;
        entryLines.insert(entry.line);
        check(!entry.spoken.empty() && orvo::trimWhitespace(entry.spoken) == entry.spoken);
        check(orvo::isValidUTF8(entry.spoken) && orvo::isValidUTF8(entry.written));
    }
    previous = 0;
    for (const orvo::InvalidLine& line : file.invalidLines) {
        check(line.line > previous && !entryLines.contains(line.line));
        check(orvo::isValidUTF8(line.reason));
        previous = line.line;
    }

    // What the parser kept, written back in the escaped form, reads back the same. A phrase that
    // starts with "#" cannot be written back: its line would read as a comment.
    std::string rewritten = std::string(orvo::kReplacementEscapesMarker) + "\n";
    std::vector<const orvo::Replacement*> kept;
    for (const orvo::Replacement& entry : file.entries) {
        if (!entry.spoken.starts_with('#')) {
            rewritten += escape(entry.spoken) + "\t" + escape(entry.written) + "\n";
            kept.push_back(&entry);
        }
    }
    const orvo::ReplacementsFile reread = orvo::parseReplacements(rewritten);
    check(reread.escapes && reread.invalidLines.empty() && reread.entries.size() == kept.size());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        check(reread.entries[i].spoken == kept[i]->spoken);
        check(reread.entries[i].written == kept[i]->written);
    }
    // Serialising the listing never fails on what the parser produced.
    static_cast<void>(orvo::dumpCompact(orvo::json{{"spoken", rewritten}}));
    return 0;
}

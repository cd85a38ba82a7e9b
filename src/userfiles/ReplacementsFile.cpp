// The user's dictation replacements: spoken phrases and the text written in their place.
#include "userfiles/ReplacementsFile.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include <utf8proc.h>

#include "userfiles/FileText.h"

namespace orvo {
namespace {

// Enough to point the user at the broken lines without flooding the agent.
constexpr std::size_t kMaxInvalidLinesListed = 50;

constexpr std::string_view kUTF8ByteOrderMark = "\xEF\xBB\xBF";

// Case-folded and composed, so that "Café" written either way matches "CAFÉ".
std::string foldCase(std::string_view text) {
    utf8proc_uint8_t* folded = nullptr;
    const utf8proc_ssize_t length = utf8proc_map(
        reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
        static_cast<utf8proc_ssize_t>(text.size()), &folded,
        static_cast<utf8proc_option_t>(UTF8PROC_CASEFOLD | UTF8PROC_COMPOSE | UTF8PROC_STABLE));
    if (length < 0) {
        return std::string(text);
    }
    std::string result(reinterpret_cast<const char*>(folded), static_cast<std::size_t>(length));
    std::free(folded);
    return result;
}

// The text of one escaped field, or the reason it has none.
bool unescape(std::string_view field, std::string& out, std::string& reason) {
    out.clear();
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\') {
            out.push_back(field[i]);
            continue;
        }
        if (++i == field.size()) {
            reason = "ends inside an escape; write a backslash as \\\\";
            return false;
        }
        switch (field[i]) {
            case '\\':
                out.push_back('\\');
                break;
            case 't':
                out.push_back('\t');
                break;
            case 'n':
                out.push_back('\n');
                break;
            case 'r':
                out.push_back('\r');
                break;
            default:
                // Only ASCII is echoed, so that the reason is always valid text.
                reason = static_cast<unsigned char>(field[i]) < 0x80
                             ? "unknown escape \\" + std::string(1, field[i])
                             : "unknown escape: a backslash before a non-ASCII character";
                return false;
        }
    }
    return true;
}

// One entry line into `entry`; the reason when the line cannot be used.
std::optional<std::string> parseEntry(std::string_view line, bool escapes, Replacement& entry) {
    if (!isValidUTF8(line)) {
        return "not valid UTF-8";
    }
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) {
        return "no tab between the spoken phrase and its replacement";
    }
    std::string_view spoken = line.substr(0, tab);
    std::string_view written = line.substr(tab + 1);
    if (escapes) {
        if (written.find('\t') != std::string_view::npos) {
            return "more than one tab; write a tab inside a text as \\t";
        }
        std::string reason;
        if (!unescape(spoken, entry.spoken, reason) || !unescape(written, entry.written, reason)) {
            return reason;
        }
    } else {
        entry.spoken = std::string(spoken);
        entry.written = std::string(written);
    }
    entry.spoken = std::string(trimWhitespace(entry.spoken));
    if (entry.spoken.empty()) {
        return "empty spoken phrase";
    }
    return std::nullopt;
}

}  // namespace

std::filesystem::path replacementsFilePath(const std::filesystem::path& home) {
    return home / ".config" / "orvo-agent" / "replacements.txt";
}

ReplacementsFile parseReplacements(std::string_view bytes) {
    ReplacementsFile file;
    if (bytes.starts_with(kUTF8ByteOrderMark)) {
        bytes.remove_prefix(kUTF8ByteOrderMark.size());
    }
    // Where each folded spoken phrase was last seen, to let a later line override an earlier.
    std::map<std::string, std::size_t> seen;
    std::vector<bool> overridden;
    std::size_t number = 0;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        ++number;
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (number == 1 && trimWhitespace(line) == kReplacementEscapesMarker) {
            file.escapes = true;
            continue;
        }
        const std::string_view trimmed = trimWhitespace(line);
        if (trimmed.empty() || trimmed.starts_with('#')) {
            continue;
        }
        Replacement entry{number, {}, {}};
        if (std::optional<std::string> reason = parseEntry(line, file.escapes, entry)) {
            file.invalidLines.push_back({number, std::move(*reason)});
            continue;
        }
        auto [it, inserted] = seen.try_emplace(foldCase(entry.spoken), file.entries.size());
        if (!inserted) {
            overridden[it->second] = true;
            file.invalidLines.push_back(
                {file.entries[it->second].line, "replaced by line " + std::to_string(number) +
                                                    ", which has the same spoken phrase"});
            it->second = file.entries.size();
        }
        file.entries.push_back(std::move(entry));
        overridden.push_back(false);
    }
    std::vector<Replacement> kept;
    for (std::size_t i = 0; i < file.entries.size(); ++i) {
        if (!overridden[i]) {
            kept.push_back(std::move(file.entries[i]));
        }
    }
    file.entries = std::move(kept);
    std::stable_sort(file.invalidLines.begin(), file.invalidLines.end(),
                     [](const InvalidLine& a, const InvalidLine& b) { return a.line < b.line; });
    return file;
}

json listReplacements(const std::filesystem::path& file, const ReplacementsQuery& query) {
    FileRead read = readSmallFile(file, kMaxReplacementsFileBytes);
    if (read.outcome == FileRead::Outcome::failed) {
        return json{{"error", "could not read dictionary"},
                    {"details", read.failure},
                    {"fix",
                     "Ask the user to check ~/.config/orvo-agent/replacements.txt: it must be a "
                     "readable file of at most 1 MB. Entries can be edited in the Dashboard."}};
    }
    const ReplacementsFile parsed = parseReplacements(read.bytes);
    const std::string needle = query.text ? foldCase(*query.text) : std::string();
    json entries = json::array();
    std::int64_t total = 0;
    for (const Replacement& entry : parsed.entries) {
        if (!needle.empty() && foldCase(entry.spoken).find(needle) == std::string::npos &&
            foldCase(entry.written).find(needle) == std::string::npos) {
            continue;
        }
        if (total >= query.offset && total < query.offset + query.limit) {
            entries.push_back(
                {{"line", entry.line}, {"spoken", entry.spoken}, {"written", entry.written}});
        }
        ++total;
    }
    json invalid = json::array();
    for (const InvalidLine& line : parsed.invalidLines) {
        if (invalid.size() == kMaxInvalidLinesListed) {
            break;
        }
        invalid.push_back({{"line", line.line}, {"reason", line.reason}});
    }
    json result = {{"file", "~/.config/orvo-agent/replacements.txt"},
                   {"escapes", parsed.escapes},
                   {"total", total},
                   {"offset", query.offset},
                   {"entries", std::move(entries)},
                   {"invalidLines", std::move(invalid)}};
    if (query.offset + query.limit < total) {
        result["nextOffset"] = query.offset + query.limit;
    }
    if (parsed.invalidLines.size() > kMaxInvalidLinesListed) {
        result["invalidLineCount"] = parsed.invalidLines.size();
    }
    return result;
}

}  // namespace orvo

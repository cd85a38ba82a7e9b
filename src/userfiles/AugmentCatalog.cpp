// The augment catalog: the built-in augments shipped with the program and the user's own files.
#include "userfiles/AugmentCatalog.h"

#include <algorithm>
#include <map>
#include <set>
#include <system_error>

#include "protocol/Diagnostics.h"
#include "userfiles/FileText.h"

namespace orvo {
namespace {

constexpr std::size_t kMaxIdBytes = 64;
constexpr std::size_t kMaxNameBytes = 80;
constexpr std::size_t kMaxKindBytes = 32;
constexpr std::size_t kMaxDescriptionBytes = 300;
// Entries of any kind read from one directory before it counts as too large to list.
constexpr std::size_t kMaxDirectoryEntries = 10000;

constexpr std::string_view kUTF8ByteOrderMark = "\xEF\xBB\xBF";

std::string_view sourceName(AugmentSource source) {
    return source == AugmentSource::builtin ? "builtin" : "user";
}

// Lowercase ASCII letters, digits and inner hyphens.
bool isSlug(std::string_view text, std::size_t maxBytes) {
    if (text.empty() || text.size() > maxBytes || text.front() == '-' || text.back() == '-') {
        return false;
    }
    return std::ranges::all_of(
        text, [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-'; });
}

// The next line of `text` without its line ending; `text` moves past it.
std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

std::string_view unquote(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

std::string tooLong(std::string_view what, std::size_t maxBytes) {
    return std::string(what) + " is longer than " + std::to_string(maxBytes) + " bytes";
}

struct DirectoryListing {
    std::vector<std::string> names;  // sorted
    std::optional<std::string> failure;
    bool truncated = false;
};

// The augment file names of a directory: "<id>.md", hidden files and other names left out.
DirectoryListing listAugmentFiles(const std::filesystem::path& directory) {
    namespace fs = std::filesystem;
    DirectoryListing listing;
    std::error_code error;
    fs::directory_iterator entries(directory, error);
    if (error) {
        if (error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
            listing.failure = "cannot list the directory: " + errnoDescription(error.value());
        }
        return listing;
    }
    std::size_t seen = 0;
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        if (++seen > kMaxDirectoryEntries) {
            listing.truncated = true;
            break;
        }
        const std::string name = entries->path().filename().string();
        if (!name.starts_with('.') && name.ends_with(".md")) {
            listing.names.push_back(name);
        }
    }
    std::ranges::sort(listing.names);
    if (listing.names.size() > kMaxAugmentFiles) {
        listing.names.resize(kMaxAugmentFiles);
        listing.truncated = true;
    }
    return listing;
}

void loadDirectory(const std::filesystem::path& directory, AugmentSource source,
                   const std::set<std::string>& reservedIds, AugmentCatalog& catalog) {
    DirectoryListing listing = listAugmentFiles(directory);
    catalog.truncated = catalog.truncated || listing.truncated;
    if (listing.failure) {
        catalog.invalidFiles.push_back({"", source, *listing.failure});
    }
    for (const std::string& file : listing.names) {
        const std::string id = file.substr(0, file.size() - 3);
        const auto invalid = [&](std::string reason) {
            catalog.invalidFiles.push_back({file, source, std::move(reason)});
        };
        if (!isSlug(id, kMaxIdBytes)) {
            invalid("the file name must be lowercase letters, digits and hyphens, then .md");
            continue;
        }
        if (reservedIds.contains(id)) {
            invalid("the id is taken by a built-in augment; rename the file");
            continue;
        }
        FileRead read = readSmallFile(directory / file, kMaxAugmentFileBytes);
        if (read.outcome == FileRead::Outcome::missing) {
            continue;  // removed while we looked, or a dangling link
        }
        if (read.outcome == FileRead::Outcome::failed) {
            invalid(read.failure);
            continue;
        }
        std::variant<Augment, std::string> parsed = parseAugmentFile(id, read.bytes);
        if (std::string* reason = std::get_if<std::string>(&parsed)) {
            invalid(std::move(*reason));
            continue;
        }
        Augment augment = std::get<Augment>(std::move(parsed));
        augment.source = source;
        catalog.augments.push_back(std::move(augment));
    }
}

}  // namespace

std::filesystem::path userAugmentsDirectory(const std::filesystem::path& home) {
    return home / ".config" / "orvo-agent" / "augments";
}

std::variant<Augment, std::string> parseAugmentFile(std::string_view id, std::string_view text) {
    if (!isValidUTF8(text)) {
        return std::string("not valid UTF-8");
    }
    if (text.starts_with(kUTF8ByteOrderMark)) {
        text.remove_prefix(kUTF8ByteOrderMark.size());
    }
    if (nextLine(text) != "---") {
        return std::string("the file must start with a line --- that opens the frontmatter");
    }
    std::map<std::string, std::string, std::less<>> fields;
    for (int number = 2;; ++number) {
        if (text.empty()) {
            return std::string("the frontmatter is not closed by a line ---");
        }
        const std::string_view line = nextLine(text);
        if (line == "---") {
            break;
        }
        const std::string_view trimmed = trimWhitespace(line);
        if (trimmed.empty() || trimmed.starts_with('#')) {
            continue;
        }
        const std::size_t colon = trimmed.find(':');
        const std::string_view key = colon == std::string_view::npos
                                         ? std::string_view()
                                         : trimWhitespace(trimmed.substr(0, colon));
        if (key.empty()) {
            return "line " + std::to_string(number) + " is not \"key: value\"";
        }
        const std::string_view value = unquote(trimWhitespace(trimmed.substr(colon + 1)));
        if (!fields.emplace(std::string(key), std::string(value)).second) {
            return "the key " + std::string(key) + " appears twice";
        }
    }
    Augment augment;
    augment.id = std::string(id);
    const auto field = [&](std::string_view key) -> std::optional<std::string> {
        auto it = fields.find(key);
        if (it == fields.end() || it->second.empty()) {
            return std::nullopt;
        }
        return it->second;
    };
    std::optional<std::string> name = field("name");
    if (!name) {
        return std::string("no name in the frontmatter");
    }
    if (name->size() > kMaxNameBytes) {
        return tooLong("the name", kMaxNameBytes);
    }
    augment.name = std::move(*name);
    augment.kind = field("kind");
    if (augment.kind && !isSlug(*augment.kind, kMaxKindBytes)) {
        return "the kind must be lowercase letters, digits and hyphens, at most " +
               std::to_string(kMaxKindBytes) + " bytes";
    }
    augment.description = field("description");
    if (augment.description && augment.description->size() > kMaxDescriptionBytes) {
        return tooLong("the description", kMaxDescriptionBytes);
    }
    augment.directive = std::string(trimWhitespace(text));
    if (augment.directive.empty()) {
        return std::string("no directive after the frontmatter");
    }
    if (augment.directive.size() > kMaxAugmentDirectiveBytes) {
        return tooLong("the directive", kMaxAugmentDirectiveBytes);
    }
    return augment;
}

AugmentCatalog loadAugmentCatalog(const std::optional<std::filesystem::path>& builtinDirectory,
                                  const std::filesystem::path& userDirectory) {
    AugmentCatalog catalog;
    if (builtinDirectory) {
        loadDirectory(*builtinDirectory, AugmentSource::builtin, {}, catalog);
    }
    std::set<std::string> builtinIds;
    for (const Augment& augment : catalog.augments) {
        builtinIds.insert(augment.id);
    }
    loadDirectory(userDirectory, AugmentSource::user, builtinIds, catalog);
    return catalog;
}

json listAugments(const AugmentCatalog& catalog, const std::optional<std::string>& kind,
                  bool includeDirectives) {
    json augments = json::array();
    for (const Augment& augment : catalog.augments) {
        if (kind && augment.kind != kind) {
            continue;
        }
        json entry = {
            {"id", augment.id}, {"name", augment.name}, {"source", sourceName(augment.source)}};
        if (augment.kind) {
            entry["kind"] = *augment.kind;
        }
        if (augment.description) {
            entry["description"] = *augment.description;
        }
        if (includeDirectives) {
            entry["directive"] = augment.directive;
        }
        augments.push_back(std::move(entry));
    }
    json invalid = json::array();
    for (const InvalidAugmentFile& file : catalog.invalidFiles) {
        invalid.push_back(
            {{"file", file.file}, {"source", sourceName(file.source)}, {"reason", file.reason}});
    }
    json result = {{"augments", std::move(augments)},
                   {"invalidFiles", std::move(invalid)},
                   {"userDirectory", "~/.config/orvo-agent/augments"}};
    if (catalog.truncated) {
        result["truncated"] = true;
    }
    return result;
}

}  // namespace orvo

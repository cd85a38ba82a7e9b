// The augment catalog: the built-in augments shipped with the program and the user's own files.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "protocol/Json.h"

namespace orvo {

inline constexpr std::size_t kMaxAugmentFileBytes = 16384;
inline constexpr std::size_t kMaxAugmentDirectiveBytes = 2000;
// Files looked at per directory; a catalog is tens of augments.
inline constexpr std::size_t kMaxAugmentFiles = 200;

enum class AugmentSource { builtin, user };

struct Augment {
    std::string id;  // the file name without ".md"
    std::string name;
    std::optional<std::string> kind;  // augments of one kind are alternatives to each other
    std::optional<std::string> description;
    std::string directive;
    AugmentSource source = AugmentSource::builtin;
};

struct InvalidAugmentFile {
    std::string file;  // the file name within its directory
    AugmentSource source = AugmentSource::builtin;
    std::string reason;
};

struct AugmentCatalog {
    std::vector<Augment> augments;  // built-in first, each source by id
    std::vector<InvalidAugmentFile> invalidFiles;
    bool truncated = false;  // a directory held more than kMaxAugmentFiles augment files
};

// `home`/.config/orvo-agent/augments
std::filesystem::path userAugmentsDirectory(const std::filesystem::path& home);

// One augment file's text, or the reason it is not an augment. `id` is taken from the file name.
std::variant<Augment, std::string> parseAugmentFile(std::string_view id, std::string_view text);

// Reads both directories afresh; a missing directory holds no augments. A user augment may not
// take a built-in id.
AugmentCatalog loadAugmentCatalog(const std::optional<std::filesystem::path>& builtinDirectory,
                                  const std::filesystem::path& userDirectory);

// The `list_augments` result.
json listAugments(const AugmentCatalog& catalog, const std::optional<std::string>& kind,
                  bool includeDirectives);

}  // namespace orvo

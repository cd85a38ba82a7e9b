// Which version of the product is installed, from the VERSION file laid out beside the executable.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvo {

inline constexpr std::string_view kFallbackVersion = "0.0.0-dev";

// `programPath` is the first command-line argument; relative paths are taken from the current
// directory and symbolic links are resolved. Never empty.
std::string lookupVersion(std::string_view programPath);

// The Resources directory of an installation: beside the directory that holds the executable
// (bin/../Resources), from `programPath` taken as above. Absent when the path cannot be made
// absolute; the directory itself may not exist.
std::optional<std::filesystem::path> installedResourcesDirectory(std::string_view programPath);

}  // namespace orvo

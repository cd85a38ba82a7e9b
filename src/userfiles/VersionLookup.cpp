// Which version of the product is installed, from the VERSION file laid out beside the executable.
#include "userfiles/VersionLookup.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "protocol/Json.h"
#include "userfiles/FileText.h"

namespace orvo {
namespace {

// A version is a short line; anything larger is not a version file.
constexpr std::size_t kMaxVersionFileBytes = 4096;
// Directories searched upwards, counting the executable's own.
constexpr int kMaxWalkSteps = 6;

std::optional<std::string> readVersionFile(const std::filesystem::path& path) {
    std::optional<std::string> bytes = readRegularFile(path, kMaxVersionFileBytes);
    if (!bytes || !isValidUTF8(*bytes)) {
        return std::nullopt;
    }
    std::string_view version = trimWhitespace(*bytes);
    if (version.empty()) {
        return std::nullopt;
    }
    return std::string(version);
}

// The executable's own directory, links resolved.
std::optional<std::filesystem::path> programDirectory(std::string_view programPath) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::path program = fs::absolute(fs::path(programPath), error);
    if (error) {
        return std::nullopt;
    }
    fs::path resolved = fs::weakly_canonical(program, error);
    if (!error) {
        program = resolved;
    }
    return program.parent_path();
}

}  // namespace

std::optional<std::filesystem::path> installedResourcesDirectory(std::string_view programPath) {
    std::optional<std::filesystem::path> directory = programDirectory(programPath);
    if (!directory) {
        return std::nullopt;
    }
    return directory->parent_path() / "Resources";
}

std::string lookupVersion(std::string_view programPath) {
    namespace fs = std::filesystem;
    std::optional<fs::path> programDir = programDirectory(programPath);
    if (!programDir) {
        return std::string(kFallbackVersion);
    }
    fs::path directory = *programDir;
    if (auto version = readVersionFile(directory.parent_path() / "Resources" / "VERSION")) {
        return *version;
    }
    for (int step = 0; step < kMaxWalkSteps; ++step) {
        if (auto version = readVersionFile(directory / "VERSION")) {
            return *version;
        }
        fs::path parent = directory.parent_path();
        if (parent == directory) {
            break;
        }
        directory = parent;
    }
    return std::string(kFallbackVersion);
}

}  // namespace orvo

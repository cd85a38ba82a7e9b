// The user's preference notes: one Markdown file that agents read and append one-line notes to.
#include "userfiles/PreferenceNotes.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utf8proc.h>

#include "protocol/Diagnostics.h"
#include "protocol/Graphemes.h"
#include "protocol/UniqueFd.h"
#include "userfiles/FileText.h"

namespace orvo {
namespace {

// Hand-edited files may outgrow the append cap and are read whole; this bound only keeps a
// runaway file from exhausting memory.
constexpr std::size_t kMaxPreferencesReadBytes = std::size_t{64} * 1024 * 1024;
// As many links as the system itself follows before it calls a chain a loop.
constexpr int kMaxLinksFollowed = 32;
// A temporary file this old belongs to a write that will never finish: no write takes a minute.
constexpr std::chrono::minutes kStaleTemporaryAge{1};
// How many directory entries one clean-up looks at.
constexpr int kMaxEntriesExamined = 1000;

constexpr std::string_view kReadFix =
    "Open ~/.config/orvo-agent/preferences.md, fix permissions or contents, then retry.";
constexpr std::string_view kEncodingFix =
    "Open ~/.config/orvo-agent/preferences.md and re-save as UTF-8 before remembering more \u2014 "
    "appending now would overwrite the file.";
constexpr std::string_view kFullFix =
    "Ask the user to prune preferences.md before remembering more.";

json failure(std::string_view error) {
    return json{{"error", error}};
}

json failure(std::string_view error, std::string_view details) {
    return json{{"error", error}, {"details", details}};
}

bool isWhitespaceOrNewline(utf8proc_int32_t codepoint) {
    if ((codepoint >= 0x09 && codepoint <= 0x0D) || codepoint == 0x85) {
        return true;
    }
    const utf8proc_category_t category = utf8proc_category(codepoint);
    return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

// Trims whole code points; an undecodable byte is never trimmed.
std::string_view trimUnicodeWhitespace(std::string_view text) {
    std::size_t keepFrom = text.size();
    std::size_t keepTo = 0;
    forEachCodePoint(text, [&](std::size_t offset, std::size_t length, std::int32_t codepoint) {
        if (codepoint < 0 || !isWhitespaceOrNewline(codepoint)) {
            keepFrom = std::min(keepFrom, offset);
            keepTo = offset + length;
        }
        return true;
    });
    if (keepFrom >= keepTo) {
        return {};
    }
    return text.substr(keepFrom, keepTo - keepFrom);
}

std::string describe(const std::error_code& error) {
    if (error.category() == std::generic_category() || error.category() == std::system_category()) {
        return errnoDescription(error.value());
    }
    return error.message();
}

// A link to the notes (kept in a dotfiles repository, say) stays a link: the file it points to is
// the one replaced, or created when the link dangles. A loop of links ends at one of them, which
// reading then refuses.
std::filesystem::path resolveLink(const std::filesystem::path& file) {
    std::filesystem::path path = file;
    for (int followed = 0; followed < kMaxLinksFollowed; ++followed) {
        std::error_code error;
        if (!std::filesystem::is_symlink(path, error)) {
            break;
        }
        const std::filesystem::path next = std::filesystem::read_symlink(path, error);
        if (error) {
            break;
        }
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return path;
}

std::string temporaryPrefix(const std::filesystem::path& target) {
    std::string prefix = ".";
    prefix.append(target.filename().string()).append(".tmp-");
    return prefix;
}

// Temporary files of writes that were killed before they could move their file into place.
// Younger ones may belong to a write that is still running, in this process or another.
void removeStaleTemporaries(const std::filesystem::path& target) {
    namespace fs = std::filesystem;
    const std::string prefix = temporaryPrefix(target);
    const fs::file_time_type cutoff = fs::file_time_type::clock::now() - kStaleTemporaryAge;
    std::error_code error;
    fs::directory_iterator entries(target.parent_path(), error);
    int examined = 0;
    for (; !error && entries != fs::directory_iterator() && examined < kMaxEntriesExamined;
         entries.increment(error), ++examined) {
        const fs::path& path = entries->path();
        if (!path.filename().string().starts_with(prefix)) {
            continue;
        }
        std::error_code ignored;
        const fs::file_time_type written = fs::last_write_time(path, ignored);
        if (!ignored && written < cutoff && entries->is_regular_file(ignored)) {
            fs::remove(path, ignored);
        }
    }
}

// A new file beside `target`, its path in `path`; closed with the errno in `error` on failure.
UniqueFd createTemporary(const std::filesystem::path& target, std::filesystem::path& path,
                         int& error) {
    static std::atomic<unsigned> counter{0};
    const std::string prefix = temporaryPrefix(target) + std::to_string(::getpid()) + "-";
    for (int attempt = 0;; ++attempt) {
        path = target.parent_path() / (prefix + std::to_string(counter.fetch_add(1)));
        UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        error = errno;
        // EEXIST: a name left by a killed process whose id this one now has; take the next.
        if (fd || error != EEXIST || attempt == 8) {
            return fd;
        }
    }
}

// Held for the life of each temporary file; held for good once the process is ending.
std::mutex& temporaryFileLock() {
    static std::mutex lock;
    return lock;
}

// Writes `text` to a new file beside `target` and moves it over `target`, so that readers see
// the old file or the new one, never a part. Returns the failure, if any.
std::optional<std::string> replaceFile(const std::filesystem::path& target, std::string_view text) {
    const std::lock_guard<std::mutex> writing(temporaryFileLock());
    removeStaleTemporaries(target);
    std::filesystem::path temporary;
    int createError = 0;
    UniqueFd fd = createTemporary(target, temporary, createError);
    if (!fd) {
        return "creating a temporary file beside " + target.filename().string() + ": " +
               errnoDescription(createError);
    }
    const auto fail = [&](const std::string& what) -> std::optional<std::string> {
        const std::string description = errnoDescription(errno);
        ::unlink(temporary.c_str());
        return what + ": " + description;
    };
    // The user's choice of who may read the notes survives the rewrite.
    struct stat existing {};
    if (::stat(target.c_str(), &existing) == 0 &&
        ::fchmod(fd.get(), existing.st_mode & 07777) != 0) {
        return fail("keeping the file's permissions");
    }
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(fd.get(), text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return fail("writing the temporary file");
        }
        written += static_cast<std::size_t>(n);
    }
    // On disk before the move: after a power loss the file is the old or the new, never empty.
    if (::fsync(fd.get()) != 0) {
        return fail("flushing the temporary file");
    }
    fd.reset();
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
        return fail("moving the temporary file into place");
    }
    return std::nullopt;
}

}  // namespace

std::filesystem::path preferencesFilePath(const std::filesystem::path& home) {
    return home / ".config" / "orvo-agent" / "preferences.md";
}

std::string normalizePreferenceNote(std::string_view note) {
    std::string joined;
    joined.reserve(note.size());
    for (std::size_t i = 0; i < note.size(); ++i) {
        if (note[i] == '\r' && i + 1 < note.size() && note[i + 1] == '\n') {
            joined.push_back(' ');
            ++i;
        } else if (note[i] == '\n') {
            joined.push_back(' ');
        } else {
            joined.push_back(note[i]);
        }
    }
    return std::string(trimUnicodeWhitespace(joined));
}

json readPreferences(const std::filesystem::path& file) {
    FileRead read = readSmallFile(file, kMaxPreferencesReadBytes);
    switch (read.outcome) {
        case FileRead::Outcome::missing:
            return json{{"content", ""}, {"char_count", 0}};
        case FileRead::Outcome::failed:
            return failure("could not read preferences", read.failure);
        case FileRead::Outcome::read:
            break;
    }
    if (!isValidUTF8(read.bytes)) {
        return failure("could not read preferences", "the file is not valid UTF-8");
    }
    const std::size_t characters = countGraphemes(read.bytes);
    return json{{"content", std::move(read.bytes)}, {"char_count", characters}};
}

json rememberPreference(const std::filesystem::path& file, std::optional<std::string_view> note) {
    if (!note) {
        return failure("note is required");
    }
    const std::string normalized = normalizePreferenceNote(*note);
    if (normalized.empty()) {
        return failure("note must be non-empty after trimming");
    }
    if (normalized.size() > kMaxPreferenceNoteBytes) {
        return failure("note exceeds 1 KB limit");
    }
    std::error_code directoryError;
    std::filesystem::create_directories(file.parent_path(), directoryError);
    if (directoryError) {
        return failure("could not write preferences",
                       "creating " + file.parent_path().string() + ": " + describe(directoryError));
    }
    const std::filesystem::path target = resolveLink(file);
    FileRead existing = readSmallFile(target, kMaxPreferencesReadBytes);
    if (existing.outcome == FileRead::Outcome::failed) {
        json result = failure("could not read existing preferences", existing.failure);
        result["fix"] = kReadFix;
        return result;
    }
    if (!isValidUTF8(existing.bytes)) {
        return json{{"error", "preferences file is not valid UTF-8"}, {"fix", kEncodingFix}};
    }
    std::string text = std::move(existing.bytes);
    if (!text.empty() && text.back() != '\n') {
        text.push_back('\n');
    }
    text.append("- ").append(normalized).push_back('\n');
    if (text.size() > kMaxPreferencesFileBytes) {
        return json{{"error", "preferences file is full (32 KB cap)"}, {"fix", kFullFix}};
    }
    if (std::optional<std::string> writeFailure = replaceFile(target, text)) {
        return failure("could not write preferences", *writeFailure);
    }
    return json{{"ok", true}, {"char_count", countGraphemes(text)}};
}

void holdPreferenceWrites() {
    temporaryFileLock().lock();  // NOLINT: released only by the end of the process
}

}  // namespace orvo

// A system user made for this test run with a temporary home, so that tests never touch a real
// home.
#include "support/ThrowawayUser.h"

#include <cstdlib>
#include <memory>

#include <pwd.h>
#include <unistd.h>

#include "support/Platform.h"

namespace orvo::test {
namespace {

std::unique_ptr<ThrowawayUser> gUser;

void removeUser() {
    if (gUser) {
        removeSystemUser(gUser->name);
        std::error_code error;
        std::filesystem::remove_all(gUser->home, error);
    }
}

}  // namespace

const ThrowawayUser* ThrowawayUser::get(std::string& whyNot) {
    if (gUser) {
        return gUser.get();
    }
    if (::geteuid() != 0) {
        whyNot =
            "this test runs the binary as a throwaway user with a temporary home, which "
            "needs root (CI runs as root); skipped so the real home is never touched";
        return nullptr;
    }
    std::string pattern =
        (std::filesystem::temp_directory_path() / "orvo-e2e-home-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        whyNot = "mkdtemp failed";
        return nullptr;
    }
    auto user = std::make_unique<ThrowawayUser>();
    user->name = "orvoe2e" + std::to_string(::getpid());
    user->home = pattern;
    if (addSystemUser(user->name, user->home, whyNot) != 0) {
        std::filesystem::remove_all(user->home);
        return nullptr;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the one lookup, before any test thread starts
    const passwd* entry = ::getpwnam(user->name.c_str());
    if (entry == nullptr) {
        whyNot = "the new user is not in the user database";
        return nullptr;
    }
    user->uid = entry->pw_uid;
    user->gid = entry->pw_gid;
    [[maybe_unused]] const int ignored = ::lchown(user->home.c_str(), user->uid, user->gid);
    std::filesystem::permissions(user->home, std::filesystem::perms(0755));
    gUser = std::move(user);
    static_cast<void>(std::atexit(removeUser));
    return gUser.get();
}

void ThrowawayUser::resetHome() const {
    for (const auto& entry : std::filesystem::directory_iterator(home)) {
        std::filesystem::remove_all(entry.path());
    }
}

}  // namespace orvo::test

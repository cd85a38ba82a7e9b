// A system user made for this test run with a temporary home, so that tests never touch a real
// home.
#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

namespace orvo::test {

struct ThrowawayUser {
    std::string name;
    uid_t uid = 0;
    gid_t gid = 0;
    std::filesystem::path home;

    // The user for this process, made on first use; null when that is impossible (not root),
    // with the reason in `whyNot`.
    static const ThrowawayUser* get(std::string& whyNot);

    // Empties the home, so that every test starts from nothing.
    void resetHome() const;
};

}  // namespace orvo::test

// A throwaway user with an empty home and a fake app answering on that user's own socket, for
// runs of the real binary; a test without an app resets it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "protocol/MCPSocketPath.h"
#include "support/FakeApp.h"
#include "support/ServerProcess.h"
#include "support/ThrowawayUser.h"

namespace orvo::test {

class UserAppTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string whyNot;
        user_ = ThrowawayUser::get(whyNot);
        if (user_ == nullptr) {
            GTEST_SKIP() << whyNot;
        }
        user_->resetHome();
        // The app makes its socket as the user, so in a directory of the user's.
        const std::filesystem::path socket = MCPSocketPath::resolve(user_->home);
        std::filesystem::create_directories(socket.parent_path());
        ASSERT_EQ(::chown(socket.parent_path().c_str(), user_->uid, user_->gid), 0);
        app_ = std::make_unique<FakeApp>(socket, std::pair{user_->uid, user_->gid});
    }
    // A process of the real binary run as the user.
    ProcessOptions asUser(std::vector<std::string> arguments = {},
                          std::vector<std::pair<std::string, std::string>> environment = {}) const {
        ProcessOptions options;
        options.arguments = std::move(arguments);
        options.environment = std::move(environment);
        options.uid = user_->uid;
        options.gid = user_->gid;
        return options;
    }

    const ThrowawayUser* user_ = nullptr;
    std::unique_ptr<FakeApp> app_;
};

}  // namespace orvo::test

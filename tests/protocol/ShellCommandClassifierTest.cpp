// How the shell-command classifier reads a command line: separators, wrappers, nesting, exemptions,
// merging by category, details, and hostile input.
#include <chrono>

#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

using ActionHoldClassifier::classifyCommand;

constexpr std::string_view kPush = "publishing|Pushing the branch|Push the branch";
constexpr std::string_view kForcePush = "publishing|Force-pushing the branch|Force-push the branch";
constexpr std::string_view kDeleteFiles = "deleting|Deleting files|Delete files";

struct Case {
    std::string_view command;
    std::string_view held;
};

void expectHeld(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        EXPECT_EQ(heldActionText(classifyCommand(c.command)), c.held);
    }
}

TEST(ShellCommandClassifierTest, WrappersAssignmentsAndKeywordsAreSkipped) {
    expectHeld({
        {"sudo -u deploy git push", kPush},
        {"env -u HOME -C /repo GIT_DIR=.git git push", kPush},
        {"command git push", kPush},
        {"timeout -s KILL -k 5 30s git push", kPush},
        {"timeout --signal=TERM -- 10 git push", kPush},
        {"xargs -n 1 -P 4 -I {} git push origin {}", kPush},
        {"npx -p wrangler wrangler deploy",
         "publishing|Deploying to Cloudflare|Deploy to Cloudflare"},
        {"pnpm exec --filter web -- wrangler deploy",
         "publishing|Deploying to Cloudflare|Deploy to Cloudflare"},
        {"npm exec --package x -- wrangler@3 deploy",
         "publishing|Deploying to Cloudflare|Deploy to Cloudflare"},
        {"/usr/bin/sudo /usr/bin/env A=1 /opt/homebrew/bin/git push", kPush},
        {"if true; then git push; fi", kPush},
        {"while true; do rm -rf src; done", kDeleteFiles},
        {"! git push", kPush},
        {"env -S 'ls -la'", ""},
        {"env", ""},
        {"timeout 30", ""},
        {"command -v git", ""},
        {"A=1 B=2", ""},
    });
}

TEST(ShellCommandClassifierTest, HowTheCommandIsWrittenDoesNotHideIt) {
    expectHeld({
        {"(cd repo && git push)", kPush},
        {"'git' \"push\" '-f'", kForcePush},
        {"\\rm -rf src", kDeleteFiles},
        {"git push >/dev/null 2>&1 | tail -5", kPush},
        {"rm -rf node_modules 2>/dev/null", ""},
        {"x=$(git push origin HEAD)", kPush},
        {"echo \"$(rm -rf ~/x)\"", kDeleteFiles},
        {"bash -c 'git push'", kPush},
        {"bash -eo pipefail -c 'git push'", kPush},
        {"bash <<< 'git push'", kPush},
        {"bash -s <<'EOF'\ngit push\nEOF", kPush},
        {"eval git push", kPush},
        {"ssh prod git push", kPush},
        {"ssh -i ~/.ssh/key -p 2222 -o StrictHostKeyChecking=no deploy@prod 'rm -rf /srv/old'",
         kDeleteFiles},
        {"ssh -p2222 -- prod 'cd /srv && git reset --hard'",
         "deleting|Discarding local changes|Discard local changes"},
        {"ssh prod <<EOF\ngit push\nEOF", kPush},
        {"ssh prod bash -s <<'EOF'\nrm -rf /srv/app\nEOF", kDeleteFiles},
        {"cat <<'EOF' | ssh prod\ngit reset --hard\nEOF",
         "deleting|Discarding local changes|Discard local changes"},
        {"ls | xargs rm -f", ""},
        {"echo 'git push' || bash", ""},
        {"echo hi | bash script.sh", ""},
        {"ssh -L 8080:localhost:80 -N prod", ""},
        {"ssh prod 'cat > notes' <<EOF\ngit push\nEOF", ""},
        {"cat <<EOF > deploy.sh\ngit push\nEOF", ""},
        {"echo 'git push' '$(rm -rf src)'", ""},
    });
}

// Where the hook holds more than the words of its tables: the same action written another way
// (launched by another program, run by find or parallel, named through a variable, fed to a
// shell), and the same words used as data, which stay unheld.
TEST(ShellCommandClassifierTest, HoldsTheActionHoweverItIsWritten) {
    constexpr std::string_view kPublish = "publishing|Publishing the package|Publish the package";
    constexpr std::string_view kUnpublish =
        "publishing|Unpublishing the package|Unpublish the package";
    expectHeld({
        {"doas -n -u root git push -f", kForcePush},
        {"stdbuf -oL -e L git push -f", kForcePush},
        {"gstdbuf --output=L git push -f", kForcePush},
        {"ionice -c3 -n 7 chronic -ev unbuffer -p git push -f", kForcePush},
        {"arch -x86_64 -e VAR=1 -arch arm64 git push -f", kForcePush},
        {"sandbox-exec -f p.sb time -o t.txt git push -f", kForcePush},
        {"busybox rm -rf src", kDeleteFiles},
        {"gtimeout -s INT 30 doas -- git push -f", kForcePush},
        {"uv run --with twine twine upload dist/*", kPublish},
        {"env -S 'git push --force' origin main", kForcePush},
        {"npx -c 'wrangler deploy'", "publishing|Deploying to Cloudflare|Deploy to Cloudflare"},
        {"python3 -m twine upload dist/*", kPublish},
        {"git branch -d -f topic", "deleting|Deleting a branch|Delete a branch"},
        {"rm -rf node_modules/../src; find /tmp/../etc -delete", kDeleteFiles},
        {"find . -print0 | xargs -0 rm -rf", kDeleteFiles},
        {"parallel rm -rf ::: a b", kDeleteFiles},
        {"parallel -j4 'git push -f {}' ::: r1", kForcePush},
        {"parallel -q sh -c 'git push -f' ::: a", kForcePush},
        {"parallel git ::: push", kPush},
        {"ls | parallel rm -rf", kDeleteFiles},
        {"echo 'git push -f' | parallel", kForcePush},
        {"parallel ::: 'git push -f'", kForcePush},
        {"parallel rm -rf ::: build dist", ""},
        {"parallel echo ::: 'a; git push'", ""},
        {"find . -execdir sh -c 'git push -f' \\;", kForcePush},
        {"find . -exec bash -c 'rm -rf \"$1\"' _ {} +", kDeleteFiles},
        {"find /tmp/x -exec rm -rf {} + -exec git push \\;", kPush},
        {"find . -exec grep -l 'rm -rf' {} + -exec echo git push \\;", ""},
        {"G=git; $G push -f", kForcePush},
        {"G=git && \"${G}\" push --force", kForcePush},
        {"export RM=\"rm -rf\"; sudo $RM src", kDeleteFiles},
        {"G=$(which git); $G push -f", kForcePush},
        {"G=git; echo $G push -f; $G log; X=1 $Y push", ""},
        {"npm unpublish pkg@1.0.0", kUnpublish},
        {"yarn npm unpublish", kUnpublish},
        {"cargo yank --version 1.0.0", kUnpublish},
        {"npm unpublish --dry-run", ""},
        {"poetry publish --build", kPublish},
        {"\"$(command -v git)\" push", kPush},
        {"sh -c \"$(printf 'git push')\"", kPush},
        {"echo 'git push --force' | bash", kForcePush},
        {"echo 'git push' | cat", ""},
        {"echo git push", ""},
        {"printf 'sh -c \"rm -rf /\"'", ""},
        {"grep -r \"rm -rf\" . && git commit -m 'npm unpublish; git push -f'", ""},
        {"cat > notes.md <<EOF\ngit push --force\nEOF", ""},
        {"doas --help; parallel --dry-run rm -rf ::: a; find . -name '*.rm'", ""},
    });
}

TEST(ShellCommandClassifierTest, HelpAndDryRunAreNeverHeld) {
    expectHeld({
        {"git push --help", ""},
        {"git push -h", ""},
        {"rm -rf src --help", ""},
        {"git push --dry-run", ""},
        {"npm publish --dry-run=server", ""},
        {"npm publish --dry-run=false", "publishing|Publishing the package|Publish the package"},
        {"npm publish --dry-run=none", "publishing|Publishing the package|Publish the package"},
        {"bash -c 'git push --dry-run'", ""},
        {"git push --dry-run && rm -rf src", kDeleteFiles},
        // A substitution runs whatever the command around it is asked.
        {"echo $(git push) --help", kPush},
    });
}

TEST(ShellCommandClassifierTest, NestedTextIsReadThreeLevelsDeep) {
    expectHeld({
        {R"(bash -c "bash -c \"bash -c 'git push'\"")", kPush},
        {R"(bash -c "bash -c \"bash -c 'bash -c \\\"git push\\\"'\"")", ""},
        {"echo $(echo $(echo $(git push)))", kPush},
        {"echo $(echo $(echo $(echo $(git push))))", ""},
        {"eval eval eval git push", kPush},
        {"eval eval eval eval git push", ""},
    });
}

// A force push names its category whatever comes first; details are kept once each, and nested
// text is shown as the outermost command that holds it.
TEST(ShellCommandClassifierTest, MergesByCategoryWithTheOuterDetails) {
    const std::string push(kPush), force(kForcePush);
    const struct {
        std::string_view command;
        std::string merged;  // each match as its held text and " @ " its detail
    } cases[] = {
        {"git push origin dev; git push -f origin main",
         force + " @ git push origin dev \xC2\xB7 git push -f origin main"},
        {"rm -rf a && git push && rm -rf b && git push\n git push",
         std::string(kDeleteFiles) + " @ rm -rf a \xC2\xB7 rm -rf b; " + push + " @ git push"},
        {"  ssh prod \"bash -c 'git push'\"  \n&& ls", push + " @ ssh prod \"bash -c 'git push'\""},
        {"ls && echo 'git push' | sh && echo done", push + " @ echo 'git push' | sh"},
        {"bash -c \"echo 'git push' | sh; gh pr create\"",
         push + " @ bash -c \"echo 'git push' | sh; gh pr create\""},
        {"", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.command);
        std::string merged;
        for (const ActionHoldMatch& match : classifyCommand(c.command)) {
            merged.append(merged.empty() ? "" : "; ").append(heldActionText({match}));
            merged.append(" @ ").append(match.detail);
        }
        EXPECT_EQ(merged, c.merged);
    }
}

TEST(ShellCommandClassifierTest, DetailIsTheTrimmedCommandCutTo240Characters) {
    std::string longCommand = "git push origin ";
    for (int i = 0; i < 300; ++i) {
        longCommand += "e\xCC\x81";  // one character of two code points
    }
    const std::vector<ActionHoldMatch> matches = classifyCommand("\t " + longCommand + " \n");
    ASSERT_EQ(matches.size(), 1u);
    EXPECT_EQ(matches[0].detail, longCommand.substr(0, 16 + 224 * 3));
}

TEST(ShellCommandClassifierTest, HostileInputStaysFast) {
    const std::string inputs[] = {
        std::string(200000, '('),
        [] {
            std::string deep;
            for (int i = 0; i < 50000; ++i) {
                deep += "$(bash -c \"eval '";
            }
            return deep + "git push";
        }(),
        [] {
            std::string many;
            for (int i = 0; i < 20000; ++i) {
                many += "git push origin b" + std::to_string(i % 7) + " && ";
            }
            return many;
        }(),
        std::string(200000, '\\'),
        [] {
            // One character of 100000 code points in the detail of 20000 nested matches.
            std::string wide = "X=e";
            for (int i = 0; i < 100000; ++i) {
                wide += "\xCC\x81";
            }
            wide += " bash -c '";
            for (int i = 0; i < 20000; ++i) {
                wide += "git push;";
            }
            return wide + "'";
        }(),
        "cat <<" + std::string(100000, '<'),
        [] {
            // Every argument goes in at every "{}", at every level of nested parallels.
            std::string places;
            for (int i = 0; i < 30000; ++i) {
                places += "{}";
            }
            return "parallel \"parallel '" + places + "' ::: " + places +
                   "\" ::: " + std::string(100000, 'x') + " y z";
        }(),
    };
    for (const std::string& input : inputs) {
        SCOPED_TRACE(input.substr(0, 40));
        const auto start = std::chrono::steady_clock::now();
        const std::vector<ActionHoldMatch> matches = classifyCommand(input);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        EXPECT_LE(matches.size(), 1u);
    }
    // Repeated details are kept once: seven branches, seven details.
    const std::vector<ActionHoldMatch> pushes = classifyCommand(inputs[2]);
    ASSERT_EQ(pushes.size(), 1u);
    EXPECT_EQ(std::ranges::count(pushes[0].detail, '\xB7'), 6);
}

}  // namespace
}  // namespace orvo

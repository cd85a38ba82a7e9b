// How the shell-command classifier reads a command line: separators, wrappers, nesting, exemptions,
// merging by category, details, and hostile input.
#include <chrono>

#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

using ActionHoldClassifier::classifyCommand;

std::string repeated(std::string_view text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) {
        out += text;
    }
    return out;
}

TEST(ShellCommandClassifierTest, LaunchersAssignmentsAndKeywordsAreSkipped) {
    expectHeld({
        {"env -u HOME -C /repo GIT_DIR=.git git push", kPush},
        {"timeout -s KILL -k 5 30s doas -n -u root -- git push -f", kForcePush},
        {"stdbuf -oL -e L gstdbuf --output=L git push -f", kForcePush},
        {"ionice -c3 -n 7 chronic -ev unbuffer -p git push -f", kForcePush},
        {"arch -x86_64 -e VAR=1 -arch arm64 git push -f", kForcePush},
        {"sandbox-exec -f p.sb time -o t.txt git push -f", kForcePush},
        {"busybox rm -rf src", kDeleteFiles},
        {"uv run --with twine twine upload dist/*", kPublish},
        {"npm exec --package x -- wrangler@3 deploy", kCloudflare},
        {"/usr/bin/sudo -u ci /usr/bin/env A=1 /opt/homebrew/bin/git push", kPush},
        {"if true; then ! git push; fi", kPush},
        // xargs adds targets from its input, so a safe-looking one does not make it safe.
        {"ls | xargs -n 1 rm -rf build", kDeleteFiles},
        {"env", ""},
        {"timeout 30", ""},
        {"A=1 B=2", ""},
    });
}

// The same action written another way: run by a shell, ssh, find or parallel, named through a
// variable or a substitution, printed into a shell. The same words used as data stay unheld.
TEST(ShellCommandClassifierTest, HoldsTheActionHoweverItIsWritten) {
    expectHeld({
        {"bash -eo pipefail -c 'git push'", kPush},
        {"bash <<< 'git push'", kPush},
        {"eval eval eval git push", kPush},
        {"env -S 'git push --force' origin main", kForcePush},
        {"npx -c 'wrangler deploy'", kCloudflare},
        {"python3 -m twine upload dist/*", kPublish},
        {"ssh -i k -p 2222 -o A=no u@prod 'rm -rf /srv/old'", kDeleteFiles},
        {"ssh -p2222 -- prod 'cd /srv && git reset --hard'", kDiscard},
        {"ssh prod bash -s <<'EOF'\nrm -rf /srv/app\nEOF", kDeleteFiles},
        {"cat <<'EOF' | ssh prod\ngit reset --hard\nEOF", kDiscard},
        {"echo 'git push' || bash", ""},
        {"echo hi | bash script.sh", ""},
        {"ssh prod 'cat > notes' <<EOF\ngit push\nEOF", ""},
        {"parallel rm -rf ::: a b", kDeleteFiles},
        {"parallel -j4 'git push -f {}' ::: r1", kForcePush},
        {"parallel -q sh -c 'git push -f' ::: a", kForcePush},
        {"ls | parallel rm -rf", kDeleteFiles},
        {"echo 'git push -f' | parallel", kForcePush},
        {"parallel ::: 'git push -f'", kForcePush},
        {"parallel rm -rf ::: build dist", ""},
        {"parallel echo ::: 'a; git push'", ""},
        {"find . -execdir sh -c 'git push -f' \\;", kForcePush},
        {"find /tmp/x -exec rm -rf {} + -exec git push \\;", kPush},
        {"find . -exec grep -l 'rm -rf' {} + -exec echo git push \\;", ""},
        {"G=git; $G push -f", kForcePush},
        {"G=git && \"${G}\" push --force", kForcePush},
        {"export RM=\"rm -rf\"; sudo $RM src", kDeleteFiles},
        {"G=$(which git); $G push -f", kForcePush},
        {"G=git; echo $G push -f; $G log; X=1 $Y push", ""},
        {"\"$(command -v git)\" push", kPush},
        {"sh -c \"$(printf 'git push')\"", kPush},
        {"echo 'git push' | cat", ""},
        {"printf 'sh -c \"rm -rf /\"'", ""},
        {"grep -r \"rm -rf\" . && git commit -m 'npm unpublish; git push -f'", ""},
        {"cat > notes.md <<EOF\ngit push --force\nEOF", ""},
        {"doas --help; parallel --dry-run rm -rf ::: a; find . -name '*.rm'", ""},
        // Nested text is read three levels deep.
        {R"(bash -c "bash -c \"bash -c 'git push'\"")", kPush},
        {R"(bash -c "bash -c \"bash -c 'bash -c \\\"git push\\\"'\"")", ""},
        {"echo $(echo $(echo $(git push)))", kPush},
        {"echo $(echo $(echo $(echo $(git push))))", ""},
    });
}

TEST(ShellCommandClassifierTest, HelpAndDryRunAreNeverHeld) {
    expectHeld({
        {"git push --help; rm -rf src -h", ""},
        {"git push --dry-run", ""},
        {"npm publish --dry-run=server", ""},
        {"npm publish --dry-run=false", kPublish},
        {"npm publish --dry-run=none", kPublish},
        {"git push --dry-run && rm -rf src", kDeleteFiles},
        // A substitution runs whatever the command around it is asked.
        {"echo $(git push) --help", kPush},
    });
}

// A force push names its category whatever comes first; details are kept once each, and nested
// text is shown as the outermost command that holds it, trimmed and cut to 240 characters.
TEST(ShellCommandClassifierTest, MergesByCategoryWithTheOuterDetails) {
    const std::string push(kPush), force(kForcePush);
    const std::string longCommand = "git push origin " + repeated("e\xCC\x81", 300);  // e + acute
    const struct {
        std::string command;
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
        {"\t " + longCommand + " \n", push + " @ " + longCommand.substr(0, 16 + 224 * 3)},
        {"", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.command.substr(0, 80));
        std::string merged;
        for (const ActionHoldMatch& match : classifyCommand(c.command)) {
            merged.append(merged.empty() ? "" : "; ").append(heldActionText({match}));
            merged.append(" @ ").append(match.detail);
        }
        EXPECT_EQ(merged, c.merged);
    }
}

TEST(ShellCommandClassifierTest, HostileInputStaysFast) {
    const std::string places = repeated("{}", 30000);
    const std::string inputs[] = {
        std::string(200000, '('),
        repeated("$(bash -c \"eval '", 50000) + "git push",
        repeated("git push 1 && git push 2 && git push 3 && git push 4 && git push 5 && git push 6 "
                 "&& git push 7 && ",
                 3000),
        std::string(200000, '\\'),
        // One character of 100000 code points in the detail of 20000 nested matches.
        "X=e" + repeated("\xCC\x81", 100000) + " bash -c '" + repeated("git push;", 20000) + "'",
        "cat <<" + std::string(100000, '<'),
        // Every argument goes in at every "{}", at every level of nested parallels.
        "parallel \"parallel '" + places + "' ::: " + places +
            "\" ::: " + std::string(100000, 'x') + " y z",
    };
    for (const std::string& input : inputs) {
        SCOPED_TRACE(input.substr(0, 40));
        const auto start = std::chrono::steady_clock::now();
        const std::vector<ActionHoldMatch> matches = classifyCommand(input);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        EXPECT_LE(matches.size(), 1u);
    }
}

}  // namespace
}  // namespace orvo

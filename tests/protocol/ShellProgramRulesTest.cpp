// Every program rule of the shell-command classifier, each branch with held and not-held
// neighbours.
#include "protocol/ShellProgramRules.h"

#include <gtest/gtest.h>

#include "protocol/ActionHoldClassifier.h"
#include "support/HeldActionText.h"

namespace orvo {
namespace {

struct Case {
    std::string_view command;
    std::string_view held;  // heldActionText of the result; empty when nothing is held
};

// Each command is one simple command, so every match carries the command as its detail.
void expectHeld(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        const std::vector<ActionHoldMatch> matches =
            ActionHoldClassifier::classifyCommand(c.command);
        EXPECT_EQ(heldActionText(matches), c.held);
        for (const ActionHoldMatch& match : matches) {
            EXPECT_EQ(match.detail, c.command);
        }
    }
}

constexpr std::string_view kPush = "publishing|Pushing the branch|Push the branch";
constexpr std::string_view kForcePush = "publishing|Force-pushing the branch|Force-push the branch";
constexpr std::string_view kDeleteRemote =
    "deleting|Deleting a remote branch|Delete a remote branch";
constexpr std::string_view kDiscardLocal =
    "deleting|Discarding local changes|Discard local changes";
constexpr std::string_view kDiscardFiles = "deleting|Discarding file changes|Discard file changes";
constexpr std::string_view kDeleteBranch = "deleting|Deleting a branch|Delete a branch";
constexpr std::string_view kPublishPackage =
    "publishing|Publishing the package|Publish the package";
constexpr std::string_view kCloudflare = "publishing|Deploying to Cloudflare|Deploy to Cloudflare";
constexpr std::string_view kRelease = "publishing|Running the release|Run the release";
constexpr std::string_view kDeployProject = "publishing|Deploying the project|Deploy the project";
constexpr std::string_view kDeleteFiles = "deleting|Deleting files|Delete files";
constexpr std::string_view kGitHubAPI = "services|Calling the GitHub API|Call the GitHub API";
constexpr std::string_view kWebRequest = "services|Sending a web request|Send a web request";

TEST(ShellProgramRulesTest, Git) {
    expectHeld({
        {"git push", kPush},
        {"git -C ../repo -c push.default=current --git-dir=.git push", kPush},
        {"git push origin :", kPush},
        {"git push -fn", ""},
        {"git push --delete origin topic", kDeleteRemote},
        {"git push -d origin topic", kDeleteRemote},
        {"git push origin :topic", kDeleteRemote},
        {"git push --force origin :topic", kDeleteRemote},
        {"git push -uf origin main", kForcePush},
        {"git push --force-with-lease=main:abc origin", kForcePush},
        {"git push origin +main", kForcePush},
        {"git reset --hard HEAD~1", kDiscardLocal},
        {"git reset --soft HEAD~1", ""},
        {"git clean -fd", "deleting|Deleting untracked files|Delete untracked files"},
        {"git clean -fn", ""},
        {"git clean -d", ""},
        {"git branch -D topic", kDeleteBranch},
        {"git branch -d topic", ""},
        {"git branch -f topic main", ""},
        {"git switch --discard-changes main", kDiscardLocal},
        {"git switch -c topic", ""},
        {"git checkout -f main", kDiscardLocal},
        {"git checkout .", kDiscardFiles},
        {"git checkout -- src/a.c", kDiscardFiles},
        {"git checkout main", ""},
        {"git checkout main --", ""},
        {"git restore src/a.c", kDiscardFiles},
        {"git restore --staged --worktree a.c", kDiscardFiles},
        {"git restore -S a.c", ""},
        {"git restore --source=HEAD", ""},
        {"git stash clear", "deleting|Dropping a stash|Drop a stash"},
        {"git stash pop", ""},
        {"git worktree remove ../wt", "deleting|Deleting a worktree|Delete a worktree"},
        {"git worktree add ../wt", ""},
        {"git commit -m 'git push --force'", ""},
        {"git -C repo", ""},
    });
}

TEST(ShellProgramRulesTest, GitHub) {
    expectHeld({
        {"gh pr create --fill", "publishing|Opening a pull request|Open a pull request"},
        {"gh issue comment 3 -b hi", "messages|Posting a GitHub comment|Post a GitHub comment"},
        {"gh issue close 3", "services|Changing an issue|Change an issue"},
        {"gh repo delete o/r --yes", "deleting|Deleting a GitHub repo|Delete a GitHub repo"},
        {"gh pr view 12", ""},
        {"gh create pr", ""},
        {"gh pr", ""},
        {"gh", ""},
        // gh api writes by its method, its body, or a GraphQL mutation.
        {"gh api repos/o/r", ""},
        {"gh api repos/o/r/issues -f title=x", kGitHubAPI},
        {"gh api repos/o/r/issues --raw-field=title=x", kGitHubAPI},
        {"gh api repos/o/r/issues -Ftitle=x", kGitHubAPI},
        {"gh api repos/o/r/issues --input body.json", kGitHubAPI},
        {"gh api -X DELETE repos/o/r/git/refs/heads/x", kGitHubAPI},
        {"gh api --method=PATCH repos/o/r", kGitHubAPI},
        {"gh api --method put repos/o/r/topics", kGitHubAPI},
        {"gh api --method GET search/issues -f q=bug", ""},
        {"gh api -H 'Accept: x' --jq .name -t '{{.}}' repos/o/r", ""},
        {"gh api graphql -f query='mutation { addStar(input: {}) { clientMutationId } }'",
         kGitHubAPI},
        {"gh api /graphql -f query=mutation{x}", kGitHubAPI},
        {"gh api graphql -f query='query { viewer { login } }'", ""},
        {"gh api graphql -X POST -f query='{ mutations }'", ""},
        {"gh api --hostname graphql repos/o/r -f a=b", kGitHubAPI},
    });
}

TEST(ShellProgramRulesTest, PackagePublishing) {
    expectHeld({
        {"npm publish", kPublishPackage},
        {"pnpm --filter web publish --access public", kPublishPackage},
        {"npm --prefix publish install", ""},
        {"twine upload dist/*", kPublishPackage},
        {"gem push orvo.gem", kPublishPackage},
        {"yarn npm publish", kPublishPackage},
        {"npm run deploy", kPublishPackage},
        {"npm run-script release:patch", kPublishPackage},
        {"pnpm -C web run Deploy", kPublishPackage},
        {"yarn release", kPublishPackage},
        {"npm run build", ""},
        {"npm release", ""},
        {"cargo run release", ""},
        {"wrangler pages deploy dist", kCloudflare},
        {"wrangler secret put KEY", kCloudflare},
        {"wrangler secret list", ""},
    });
}

TEST(ShellProgramRulesTest, ReleaseTargetsAndScriptsByName) {
    expectHeld({
        {"make release", kRelease},
        {"make deploy", kDeployProject},
        {"make -j 4 build deploy-staging", "publishing|Deploying staging|Deploy staging"},
        {"make Deploy:web.prod", "publishing|Deploying web prod|Deploy web prod"},
        {"make deployment", kDeployProject},
        {"make deploy-a-very-long-target-name-that-goes-on-and-on-and-on",
         "publishing|Deploying a very long target name that goes on and|Deploy a very long target "
         "name that goes on and"},
        {"make -f deploy.mk -C release build", ""},
        {"make build RELEASE=1", ""},
        {"./deploy.sh", kDeployProject},
        {"./scripts/deploy-prod.sh", "publishing|Deploying prod|Deploy prod"},
        {"release.sh", kRelease},
        {"publish-site", "publishing|Publishing site|Publish site"},
        {"./deploy.rb", kDeployProject},
        {"deploy.rb", ""},
        {"./build.sh", ""},
        {"bash deploy.sh", kDeployProject},
        {"python -u -W ignore publish_site.py", "publishing|Publishing site|Publish site"},
        {"python3.12 release.py", kRelease},
        {"python3 -c 'import deploy'", ""},
        {"python3 - < deploy.py", ""},
    });
}

TEST(ShellProgramRulesTest, RecursiveDeletionOutsideBuildAndTemporaryPlaces) {
    expectHeld({
        {"rm -rf src", kDeleteFiles},
        {"rm -R src", kDeleteFiles},
        {"rm --recursive src", kDeleteFiles},
        {"rm src -fr", kDeleteFiles},
        {"rm -rf node_modules src", kDeleteFiles},
        {"rm -rf /tmp", kDeleteFiles},
        {"rm -rf buildings", kDeleteFiles},
        {"rm -rf -- -weird", kDeleteFiles},
        {"rm src/a.txt", ""},
        {"rm -rf", ""},
        {"rm -rf ./build/ dist packages/web/.next", ""},
        {"rm -rf /tmp/x /var/folders/ab/z \"$TMPDIR/x\" ${TMPDIR:-/tmp}/y", ""},
        {"find . -name '*.log' -delete", kDeleteFiles},
        {"find . -type f -exec rm -f {} +", kDeleteFiles},
        {"find . -execdir /bin/rm {} \\;", kDeleteFiles},
        {"find -delete", kDeleteFiles},
        {"find /tmp/x . -delete", kDeleteFiles},
        {"find -L $TMPDIR/x /var/folders/y -delete", ""},
        {"find . -exec cat {} \\;", ""},
    });
}

TEST(ShellProgramRulesTest, WorkspaceToolTmuxAndAppleScript) {
    constexpr std::string_view kCloseWindow = "closing|Closing a window|Close a window";
    constexpr std::string_view kTmux = "closing|Closing a tmux session|Close a tmux session";
    expectHeld({
        {"quarn pane close", "closing|Closing a pane|Close a pane"},
        {"quarn agent prompt a 'fix it'",
         "agent_prompts|Sending instructions to an agent|Send instructions to an agent"},
        {"quarn pane list", ""},
        {"quarn close pane", ""},
        {"quarn pane", ""},
        {"tmux kill-session -t x", kTmux},
        {"tmux -L sock kill-server", kTmux},
        {"tmux send-keys -t x kill-server", ""},
        {"osascript -e 'tell application \"Safari\" to quit'",
         "closing|Quitting an app|Quit an app"},
        {"osascript -e 'QUIT APP \"Mail\"'", "closing|Quitting an app|Quit an app"},
        {"osascript -e 'tell application \"Finder\" to close every window'", kCloseWindow},
        {"osascript -e 'tell app \"Terminal\"' -e 'close window 1' -e 'end tell'", kCloseWindow},
        {"osascript -e 'display dialog \"quitting soon\"'", ""},
    });
}

TEST(ShellProgramRulesTest, WebRequestsThatWriteToOtherHosts) {
    expectHeld({
        {"curl -X POST https://api.example.com/items", kWebRequest},
        {"curl -XPUT https://api.example.com/items/1", kWebRequest},
        {"curl --request DELETE https://api.example.com/items/1", kWebRequest},
        {"curl -sSd a=1 https://api.example.com", kWebRequest},
        {"curl --data-urlencode q=x https://api.example.com", kWebRequest},
        {"curl --json '{}' https://api.example.com", kWebRequest},
        {"curl -T a.bin https://api.example.com", kWebRequest},
        {"curl -X POST \"$API_URL/items\"", kWebRequest},
        {"curl -X POST -H 'Host: localhost' https://api.example.com", kWebRequest},
        {"curl -X POST http://localhost:3000 https://api.example.com", kWebRequest},
        {"curl -fsSL -o out.html -H 'X-Data: 1' https://example.com", ""},
        {"curl -G -d q=1 https://api.example.com", ""},
        {"curl -I https://api.example.com", ""},
        {"curl -X GET -d x https://api.example.com", ""},
        {"curl -X POST http://localhost:3000/api", ""},
        {"curl -d x http://127.0.0.1:8080", ""},
        {"curl -d x http://[::1]:3000/x", ""},
        {"curl -d x http://user@0.0.0.0/x", ""},
        {"curl -d x -H 'Content-Type: a/b' LOCALHOST:8080/api", ""},
        {"wget --post-data=x https://api.example.com", kWebRequest},
        {"wget --method=PUT https://api.example.com/x", kWebRequest},
        {"wget https://example.com/a.tar.gz", ""},
        {"wget -O out.html --post-data=x http://localhost/x", ""},
        {"http POST api.example.com", kWebRequest},
        {"xh post api.example.com", kWebRequest},
        {"http --auth user:pass PUT api.example.com", kWebRequest},
        {"http api.example.com name=x", kWebRequest},
        {"xh api.example.com tags:='[1]'", kWebRequest},
        {"http api.example.com q==x X-Token:abc", ""},
        {"http PUT :3000/items", ""},
    });
}

}  // namespace
}  // namespace orvo

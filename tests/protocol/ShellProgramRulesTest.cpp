// Every program rule of the shell-command classifier: each branch, held and not held.
#include "protocol/ShellProgramRules.h"

#include <gtest/gtest.h>

#include "support/HeldActionText.h"

namespace orvo {
namespace {

constexpr std::string_view kRemote = "deleting|Deleting a remote branch|Delete a remote branch";
constexpr std::string_view kDiscardFiles = "deleting|Discarding file changes|Discard file changes";
constexpr std::string_view kDeleteBranch = "deleting|Deleting a branch|Delete a branch";
constexpr std::string_view kUnpublish = "publishing|Unpublishing the package|Unpublish the package";
constexpr std::string_view kRelease = "publishing|Running the release|Run the release";
constexpr std::string_view kDeployProject = "publishing|Deploying the project|Deploy the project";
constexpr std::string_view kGitHubAPI = "services|Calling the GitHub API|Call the GitHub API";
constexpr std::string_view kWebRequest = "services|Sending a web request|Send a web request";

TEST(ShellProgramRulesTest, Git) {
    expectHeld({
        {"git push", kPush},
        {"git -C ../repo -c push.default=current --git-dir=.git push", kPush},
        {"git push origin :", kPush},
        {"git push -fn", ""},
        {"git push --delete origin topic", kRemote},
        {"git push -d origin topic", kRemote},
        {"git push --force origin :topic", kRemote},
        {"git push -uf origin main", kForcePush},
        {"git push --force-with-lease=main:abc origin", kForcePush},
        {"git push origin +main", kForcePush},
        {"git reset --hard HEAD~1", kDiscard},
        {"git clean -fd", "deleting|Deleting untracked files|Delete untracked files"},
        {"git clean -fn", ""},
        {"git clean -d", ""},
        {"git branch -D topic", kDeleteBranch},
        {"git branch -d -f topic", kDeleteBranch},
        {"git branch -d topic", ""},
        {"git branch -f topic main", ""},
        {"git switch --discard-changes main", kDiscard},
        {"git checkout -f main", kDiscard},
        {"git checkout .", kDiscardFiles},
        {"git checkout -- src/a.c", kDiscardFiles},
        {"git checkout main --", ""},
        {"git restore --staged --worktree a.c", kDiscardFiles},
        {"git restore -S a.c", ""},
        {"git restore --source=HEAD", ""},
        {"git stash clear", "deleting|Dropping a stash|Drop a stash"},
        {"git worktree remove ../wt", "deleting|Deleting a worktree|Delete a worktree"},
        {"git -C repo", ""},
    });
}

TEST(ShellProgramRulesTest, GitHub) {
    expectHeld({
        {"gh pr create --fill", "publishing|Opening a pull request|Open a pull request"},
        {"gh issue comment 3 -b hi", "messages|Posting a GitHub comment|Post a GitHub comment"},
        {"gh repo delete o/r --yes", "deleting|Deleting a GitHub repo|Delete a GitHub repo"},
        {"gh create pr", ""},
        {"gh", ""},
        // gh api writes by its method, its body, or a GraphQL mutation.
        {"gh api repos/o/r", ""},
        {"gh api repos/o/r/issues -f title=x", kGitHubAPI},
        {"gh api repos/o/r/issues -Ftitle=x", kGitHubAPI},
        {"gh api -X DELETE repos/o/r/git/refs/heads/x", kGitHubAPI},
        {"gh api --method=PATCH repos/o/r", kGitHubAPI},
        {"gh api --method put repos/o/r/topics", kGitHubAPI},
        {"gh api --method GET search/issues -f q=bug", ""},
        {"gh api -H 'Accept: x' --jq .name -t '{{.}}' repos/o/r", ""},
        {"gh api graphql -f query='mutation { addStar }'", kGitHubAPI},
        {"gh api /graphql -f query=mutation{x}", kGitHubAPI},
        {"gh api graphql -f query='query { viewer { login } }'", ""},
        {"gh api graphql -X POST -f query='{ mutations }'", ""},
        {"gh api --hostname graphql repos/o/r -f a=b", kGitHubAPI},
    });
}

TEST(ShellProgramRulesTest, PackagePublishing) {
    expectHeld({
        {"npm publish", kPublish},
        {"npm --prefix publish install", ""},
        {"twine upload dist/*", kPublish},
        {"gem push orvo.gem", kPublish},
        {"yarn npm publish", kPublish},
        {"npm unpublish pkg@1.0.0", kUnpublish},
        {"yarn npm unpublish", kUnpublish},
        {"cargo yank --version 1.0.0", kUnpublish},
        {"npm run deploy", kPublish},
        {"npm run-script release:patch", kPublish},
        {"pnpm -C web run Deploy", kPublish},
        {"yarn release", kPublish},
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
        // Cut at 40 characters, just after a separator.
        {"make deploy-a-very-long-target-name-that-goes-ahead-and-on",
         "publishing|Deploying a very long target name that goes ahead|Deploy a very long target "
         "name that goes ahead"},
        {"make -f deploy.mk -C release build", ""},
        {"make build RELEASE=1", ""},
        {"./scripts/deploy-prod.sh", "publishing|Deploying prod|Deploy prod"},
        {"release.sh", kRelease},
        {"publish-site", "publishing|Publishing site|Publish site"},
        {"./deploy.rb", kDeployProject},
        {"deploy.rb", ""},
        {"bash deploy.sh", kDeployProject},
        {"python -u -W ignore publish_site.py", "publishing|Publishing site|Publish site"},
        {"python3.12 release.py", kRelease},
        {"python3 -c 'import deploy'", ""},
        {"python3 - < deploy.py", ""},
    });
}

// ".." could climb out of a place that is safe to delete.
TEST(ShellProgramRulesTest, RecursiveDeletionOutsideBuildAndTemporaryPlaces) {
    expectHeld({
        {"rm -rf src", kDeleteFiles},
        {"rm --recursive src", kDeleteFiles},
        {"rm -R src", kDeleteFiles},
        {"rm src -fr", kDeleteFiles},
        {"rm -rf node_modules src", kDeleteFiles},
        {"rm -rf /tmp", kDeleteFiles},
        {"rm -rf buildings", kDeleteFiles},
        {"rm -rf node_modules/../src", kDeleteFiles},
        {"rm -rf -- -weird", kDeleteFiles},
        {"rm src/a.txt", ""},
        {"rm -rf", ""},
        {"rm -rf ./build/ dist packages/web/.next", ""},
        {"rm -rf /tmp/x /var/folders/ab/z \"$TMPDIR/x\" ${TMPDIR:-/tmp}/y", ""},
        {"find . -name '*.log' -delete", kDeleteFiles},
        {"find . -execdir /bin/rm {} \\;", kDeleteFiles},
        {"find -delete", kDeleteFiles},
        {"find /tmp/x . -delete", kDeleteFiles},
        {"find /tmp/../etc -delete", kDeleteFiles},
        {"find -L $TMPDIR/x /var/folders/y -delete", ""},
        {"find . -exec cat {} \\;", ""},
    });
}

TEST(ShellProgramRulesTest, WorkspaceToolTmuxAndAppleScript) {
    constexpr std::string_view kQuit = "closing|Quitting an app|Quit an app";
    constexpr std::string_view kCloseWindow = "closing|Closing a window|Close a window";
    expectHeld({
        {"quarn pane close", "closing|Closing a pane|Close a pane"},
        {"quarn agent prompt a 'fix it'",
         "agent_prompts|Sending instructions to an agent|Send instructions to an agent"},
        {"quarn close pane", ""},
        {"quarn pane", ""},
        {"tmux -L sock kill-server", "closing|Closing a tmux session|Close a tmux session"},
        {"tmux send-keys -t x kill-server", ""},
        {"osascript -e 'tell application \"Safari\" to quit'", kQuit},
        {"osascript -e 'QUIT APP \"Mail\"'", kQuit},
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
        {"curl -X POST -H 'Host: localhost' https://api.example.com", kWebRequest},
        {"curl -X POST http://localhost:3000 https://api.example.com", kWebRequest},
        {"curl -fsSL -o out.html -H 'X-Data: 1' https://example.com", ""},
        {"curl -G -d q=1 https://api.example.com", ""},
        {"curl -X GET -d x https://api.example.com", ""},
        {"curl -d x http://127.0.0.1:8080", ""},
        {"curl -d x http://[::1]:3000/x", ""},
        {"curl -d x http://user@0.0.0.0/x", ""},
        {"curl -d x -H 'Content-Type: a/b' LOCALHOST:8080/api", ""},
        {"wget --post-data=x https://api.example.com", kWebRequest},
        {"wget https://example.com/a.tar.gz", ""},
        {"wget -O out.html --post-data=x http://localhost/x", ""},
        {"http --auth user:pass put api.example.com", kWebRequest},
        {"http api.example.com name=x", kWebRequest},
        {"xh api.example.com tags:='[1]'", kWebRequest},
        {"http api.example.com q==x X-Token:abc", ""},
        {"http PUT :3000/items", ""},
    });
}

}  // namespace
}  // namespace orvo

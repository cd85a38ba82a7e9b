// Every program rule of the shell-command classifier, each row with held and not-held neighbours.
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
constexpr std::string_view kDeleteRemoteBranch =
    "deleting|Deleting a remote branch|Delete a remote branch";
constexpr std::string_view kDiscardLocal =
    "deleting|Discarding local changes|Discard local changes";
constexpr std::string_view kDiscardFiles = "deleting|Discarding file changes|Discard file changes";
constexpr std::string_view kPublishPackage =
    "publishing|Publishing the package|Publish the package";
constexpr std::string_view kDeployCloudflare =
    "publishing|Deploying to Cloudflare|Deploy to Cloudflare";
constexpr std::string_view kRelease = "publishing|Running the release|Run the release";
constexpr std::string_view kDeployProject = "publishing|Deploying the project|Deploy the project";
constexpr std::string_view kDeleteFiles = "deleting|Deleting files|Delete files";
constexpr std::string_view kCallGitHubAPI = "services|Calling the GitHub API|Call the GitHub API";
constexpr std::string_view kWebRequest = "services|Sending a web request|Send a web request";

TEST(ShellProgramRulesTest, GitPush) {
    expectHeld({
        {"git push", kPush},
        {"git push -u origin feature", kPush},
        {"git -C ../repo -c push.default=current --git-dir=.git push", kPush},
        {"git push origin :", kPush},
        {"git push -n origin main", ""},
        {"git push -fn", ""},
        {"git push --delete origin topic", kDeleteRemoteBranch},
        {"git push -d origin topic", kDeleteRemoteBranch},
        {"git push origin :topic", kDeleteRemoteBranch},
        {"git push --force", kForcePush},
        {"git push --force-with-lease=main:abc origin", kForcePush},
        {"git push -uf origin main", kForcePush},
        {"git push origin +main", kForcePush},
        {"git push --force origin :topic", kDeleteRemoteBranch},
    });
}

TEST(ShellProgramRulesTest, GitLocalChanges) {
    expectHeld({
        {"git reset --hard HEAD~1", kDiscardLocal},
        {"git reset --soft HEAD~1", ""},
        {"git clean -fd", "deleting|Deleting untracked files|Delete untracked files"},
        {"git clean --force build", "deleting|Deleting untracked files|Delete untracked files"},
        {"git clean -fn", ""},
        {"git clean -d", ""},
        {"git branch -D topic", "deleting|Deleting a branch|Delete a branch"},
        {"git branch --delete --force topic", "deleting|Deleting a branch|Delete a branch"},
        {"git branch --delete -f topic", "deleting|Deleting a branch|Delete a branch"},
        {"git branch -d -f topic", "deleting|Deleting a branch|Delete a branch"},
        {"git branch -d topic", ""},
        {"git branch -f topic main", ""},
        {"git switch --discard-changes main", kDiscardLocal},
        {"git switch -f main", kDiscardLocal},
        {"git switch -c topic", ""},
        {"git checkout --force main", kDiscardLocal},
        {"git checkout -f main", kDiscardLocal},
        {"git checkout .", kDiscardFiles},
        {"git checkout -- src/a.c", kDiscardFiles},
        {"git checkout HEAD~1 -- a.c", kDiscardFiles},
        {"git checkout main", ""},
        {"git checkout -b topic", ""},
        {"git checkout main --", ""},
        {"git restore src/a.c", kDiscardFiles},
        {"git restore --staged --worktree a.c", kDiscardFiles},
        {"git restore -S -W a.c", kDiscardFiles},
        {"git restore --staged a.c", ""},
        {"git restore -S a.c", ""},
        {"git restore --source=HEAD", ""},
        {"git stash drop", "deleting|Dropping a stash|Drop a stash"},
        {"git stash clear", "deleting|Dropping a stash|Drop a stash"},
        {"git stash pop", ""},
        {"git worktree remove ../wt", "deleting|Deleting a worktree|Delete a worktree"},
        {"git worktree add ../wt", ""},
        {"git status", ""},
        {"git commit -m 'git push --force'", ""},
        {"git -C repo", ""},
    });
}

TEST(ShellProgramRulesTest, GitHubCommands) {
    expectHeld({
        {"gh pr create --fill", "publishing|Opening a pull request|Open a pull request"},
        {"gh pr merge 12 --squash", "publishing|Merging the pull request|Merge the pull request"},
        {"gh pr close 12", "publishing|Closing the pull request|Close the pull request"},
        {"gh pr ready 12", "publishing|Marking the pull request ready|Mark the pull request ready"},
        {"gh pr comment 12 -b hi", "messages|Posting a GitHub comment|Post a GitHub comment"},
        {"gh pr review --approve", "messages|Posting a GitHub comment|Post a GitHub comment"},
        {"gh issue comment 3 -b hi", "messages|Posting a GitHub comment|Post a GitHub comment"},
        {"gh pr edit 12 --title x", "services|Editing the pull request|Edit the pull request"},
        {"gh issue create -t x", "services|Opening an issue|Open an issue"},
        {"gh issue close 3", "services|Changing an issue|Change an issue"},
        {"gh issue edit 3", "services|Changing an issue|Change an issue"},
        {"gh issue delete 3", "services|Changing an issue|Change an issue"},
        {"gh repo create o/r", "publishing|Creating a GitHub repo|Create a GitHub repo"},
        {"gh repo fork o/r", "publishing|Forking the repo|Fork the repo"},
        {"gh repo rename x", "publishing|Renaming the repo|Rename the repo"},
        {"gh repo archive o/r", "publishing|Archiving the repo|Archive the repo"},
        {"gh repo edit --visibility public",
         "publishing|Changing the repo settings|Change the repo settings"},
        {"gh repo delete o/r --yes", "deleting|Deleting a GitHub repo|Delete a GitHub repo"},
        {"gh release create v1", "publishing|Publishing a release|Publish a release"},
        {"gh release delete v1", "deleting|Deleting a release|Delete a release"},
        {"gh gist create a.txt", "publishing|Creating a gist|Create a gist"},
        {"gh workflow run ci.yml", "services|Starting a GitHub workflow|Start a GitHub workflow"},
        {"gh run rerun 42", "services|Starting a GitHub workflow|Start a GitHub workflow"},
        {"gh run cancel 42", "services|Starting a GitHub workflow|Start a GitHub workflow"},
        {"gh secret set TOKEN", "services|Changing a GitHub secret|Change a GitHub secret"},
        {"gh secret delete TOKEN", "services|Changing a GitHub secret|Change a GitHub secret"},
        {"gh variable set X", "services|Changing a GitHub secret|Change a GitHub secret"},
        {"gh variable delete X", "services|Changing a GitHub secret|Change a GitHub secret"},
        {"gh pr view 12", ""},
        {"gh pr list", ""},
        {"gh issue list", ""},
        {"gh repo clone o/r", ""},
        {"gh release list", ""},
        {"gh gist list", ""},
        {"gh workflow list", ""},
        {"gh run view 42", ""},
        {"gh secret list", ""},
        {"gh variable list", ""},
        {"gh create pr", ""},
        {"gh pr", ""},
        {"gh", ""},
    });
}

TEST(ShellProgramRulesTest, GitHubAPIWritesByMethodBodyOrMutation) {
    expectHeld({
        {"gh api repos/o/r", ""},
        {"gh api repos/o/r/issues -f title=x", kCallGitHubAPI},
        {"gh api repos/o/r/issues --raw-field=title=x", kCallGitHubAPI},
        {"gh api repos/o/r/issues -Ftitle=x", kCallGitHubAPI},
        {"gh api repos/o/r/issues --input body.json", kCallGitHubAPI},
        {"gh api -X DELETE repos/o/r/git/refs/heads/x", kCallGitHubAPI},
        {"gh api --method=PATCH repos/o/r", kCallGitHubAPI},
        {"gh api --method put repos/o/r/topics", kCallGitHubAPI},
        {"gh api --method GET search/issues -f q=bug", ""},
        {"gh api -X HEAD repos/o/r", ""},
        {"gh api -H 'Accept: x' --jq .name -t '{{.}}' repos/o/r", ""},
        {"gh api graphql -f query='mutation { addStar(input: {}) { clientMutationId } }'",
         kCallGitHubAPI},
        {"gh api /graphql -f query=mutation{x}", kCallGitHubAPI},
        {"gh api graphql -f query='query { viewer { login } }'", ""},
        {"gh api graphql -X POST -f query='{ mutations }'", ""},
        {"gh api --hostname graphql repos/o/r -f a=b", kCallGitHubAPI},
    });
}

TEST(ShellProgramRulesTest, PackagePublishing) {
    expectHeld({
        {"npm publish", kPublishPackage},
        {"pnpm --filter web publish --access public", kPublishPackage},
        {"yarn --cwd packages/a publish", kPublishPackage},
        {"npm --prefix publish install", ""},
        {"bun publish", kPublishPackage},
        {"cargo publish", kPublishPackage},
        {"cargo build --release", ""},
        {"twine upload dist/*", kPublishPackage},
        {"twine check dist/*", ""},
        {"gem push orvo.gem", kPublishPackage},
        {"gem install orvo", ""},
        {"yarn npm publish", kPublishPackage},
        {"npm run deploy", kPublishPackage},
        {"npm run-script release:patch", kPublishPackage},
        {"bun run publish-docs", kPublishPackage},
        {"pnpm -C web run Deploy", kPublishPackage},
        {"yarn release", kPublishPackage},
        {"npm run build", ""},
        {"npm release", ""},
        {"pnpm build", ""},
        {"npm install", ""},
        {"cargo run release", ""},
        {"wrangler deploy", kDeployCloudflare},
        {"wrangler pages deploy dist", kDeployCloudflare},
        {"wrangler secret put KEY", kDeployCloudflare},
        {"wrangler secret delete KEY", kDeployCloudflare},
        {"wrangler secret list", ""},
        {"wrangler dev", ""},
    });
}

TEST(ShellProgramRulesTest, ReleaseTargetsAndScriptsByName) {
    expectHeld({
        {"make release", kRelease},
        {"make deploy", kDeployProject},
        {"make -j 4 build deploy-staging", "publishing|Deploying staging|Deploy staging"},
        {"make publish_docs", "publishing|Publishing docs|Publish docs"},
        {"make Deploy:web.prod", "publishing|Deploying web prod|Deploy web prod"},
        {"make deployment", kDeployProject},
        {"make deploy-a-very-long-target-name-that-goes-on-and-on-and-on",
         "publishing|Deploying a very long target name that goes on and|Deploy a very long target "
         "name that goes on and"},
        {"make -f deploy.mk -C release build", ""},
        {"make --directory=deploy test", ""},
        {"make build RELEASE=1", ""},
        {"make", ""},
        {"./deploy.sh", kDeployProject},
        {"./scripts/deploy-prod.sh", "publishing|Deploying prod|Deploy prod"},
        {"scripts/release.py --minor", kRelease},
        {"release.sh", kRelease},
        {"deploy", kDeployProject},
        {"publish-site", "publishing|Publishing site|Publish site"},
        {"./deploy.rb", kDeployProject},
        {"deploy.rb", ""},
        {"./build.sh", ""},
        {"ls -la", ""},
        {"bash deploy.sh", kDeployProject},
        {"sh -x ./scripts/release.sh", kRelease},
        {"bash build.sh", ""},
        {"python3 scripts/deploy.py", kDeployProject},
        {"python -u -W ignore publish_site.py", "publishing|Publishing site|Publish site"},
        {"python3.12 release.py", kRelease},
        {"python3 -X dev build.py", ""},
        {"python3 -c 'import deploy'", ""},
        {"python3 -m twine upload dist/*", kPublishPackage},
        {"python3 -m http.server", ""},
        {"python3 - < deploy.py", ""},
    });
}

TEST(ShellProgramRulesTest, RecursiveDeletionOutsideBuildAndTemporaryPlaces) {
    expectHeld({
        {"rm -rf src", kDeleteFiles},
        {"rm -r src", kDeleteFiles},
        {"rm -R src", kDeleteFiles},
        {"rm --recursive src", kDeleteFiles},
        {"rm src -fr", kDeleteFiles},
        {"rm -rf node_modules src", kDeleteFiles},
        {"rm -rf node_modules/../src", kDeleteFiles},
        {"rm -rf /tmp", kDeleteFiles},
        {"rm -rf /tmp/../Users/me", kDeleteFiles},
        {"rm -rf buildings", kDeleteFiles},
        {"rm -rf -- -weird", kDeleteFiles},
        {"rm src/a.txt", ""},
        {"rm -f a.txt", ""},
        {"rm -rf", ""},
        {"rm -rf node_modules", ""},
        {"rm -rf ./build/ dist out target coverage", ""},
        {"rm -rf packages/web/.next .turbo .cache .build DerivedData __pycache__", ""},
        {"rm -rf /tmp/x /private/tmp/y /var/folders/ab/z /private/var/folders/c", ""},
        {"rm -rf \"$TMPDIR/x\" ${TMPDIR:-/tmp}/y", ""},
        {"find . -name '*.log' -delete", kDeleteFiles},
        {"find . -type f -exec rm -f {} +", kDeleteFiles},
        {"find . -execdir /bin/rm {} \\;", kDeleteFiles},
        {"find . -ok rm {} \\;", kDeleteFiles},
        {"find src -okdir rm {} \\;", kDeleteFiles},
        {"find -delete", kDeleteFiles},
        {"find / -name x -delete", kDeleteFiles},
        {"find /tmp/x . -delete", kDeleteFiles},
        {"find /tmp/../etc -delete", kDeleteFiles},
        {"find /tmp/cache -delete", ""},
        {"find -L $TMPDIR/x /var/folders/y -delete", ""},
        {"find . -name '*.log'", ""},
        {"find . -exec cat {} \\;", ""},
    });
}

TEST(ShellProgramRulesTest, WorkspaceToolTmuxAndAppleScript) {
    constexpr std::string_view kClosePane = "closing|Closing a pane|Close a pane";
    constexpr std::string_view kCloseWorkspace = "closing|Closing a workspace|Close a workspace";
    constexpr std::string_view kStopAgent = "closing|Stopping an agent|Stop an agent";
    constexpr std::string_view kInstruct =
        "agent_prompts|Sending instructions to an agent|Send instructions to an agent";
    constexpr std::string_view kQuit = "closing|Quitting an app|Quit an app";
    constexpr std::string_view kCloseWindow = "closing|Closing a window|Close a window";
    expectHeld({
        {"quarn pane close", kClosePane},
        {"quarn pane kill p1", kClosePane},
        {"quarn tab close", "closing|Closing a tab|Close a tab"},
        {"quarn workspace close w", kCloseWorkspace},
        {"quarn workspace delete w", kCloseWorkspace},
        {"quarn agent stop a", kStopAgent},
        {"quarn agent kill a", kStopAgent},
        {"quarn server stop", "closing|Stopping Quarn|Stop Quarn"},
        {"quarn agent prompt a 'fix it'", kInstruct},
        {"quarn pane run p1 make", kInstruct},
        {"quarn pane send-keys p1 Enter", kInstruct},
        {"quarn pane send-text p1 hi", kInstruct},
        {"quarn pane list", ""},
        {"quarn tab new", ""},
        {"quarn workspace list", ""},
        {"quarn agent list", ""},
        {"quarn server start", ""},
        {"quarn close pane", ""},
        {"quarn pane", ""},
        {"tmux kill-session -t x", "closing|Closing a tmux session|Close a tmux session"},
        {"tmux -L sock kill-server", "closing|Closing a tmux session|Close a tmux session"},
        {"tmux list-sessions", ""},
        {"tmux send-keys -t x kill-server", ""},
        {"osascript -e 'tell application \"Safari\" to quit'", kQuit},
        {"osascript -e 'QUIT APP \"Mail\"'", kQuit},
        {"osascript -e 'tell application \"Finder\" to close every window'", kCloseWindow},
        {"osascript -e 'tell app \"Terminal\"' -e 'close window 1' -e 'end tell'", kCloseWindow},
        {"osascript -e 'tell application \"Safari\" to close tab 2 of window 1'", kCloseWindow},
        {"osascript -e 'tell application \"Finder\" to activate'", ""},
        {"osascript -e 'display dialog \"quitting soon\"'", ""},
    });
}

TEST(ShellProgramRulesTest, WebRequestsThatWriteToOtherHosts) {
    expectHeld({
        {"curl -X POST https://api.example.com/items", kWebRequest},
        {"curl -XPUT https://api.example.com/items/1", kWebRequest},
        {"curl --request DELETE https://api.example.com/items/1", kWebRequest},
        {"curl -d a=1 https://api.example.com", kWebRequest},
        {"curl -sSd a=1 https://api.example.com", kWebRequest},
        {"curl --data-urlencode q=x https://api.example.com", kWebRequest},
        {"curl --json '{}' https://api.example.com", kWebRequest},
        {"curl -F file=@a.png https://api.example.com", kWebRequest},
        {"curl -T a.bin https://api.example.com", kWebRequest},
        {"curl --upload-file a.bin https://api.example.com", kWebRequest},
        {"curl --form x=1 https://api.example.com", kWebRequest},
        {"curl -X POST \"$API_URL/items\"", kWebRequest},
        {"curl -X POST -H 'Host: localhost' https://api.example.com", kWebRequest},
        {"curl -X POST http://localhost:3000 https://api.example.com", kWebRequest},
        {"curl https://example.com", ""},
        {"curl -fsSL -o out.html -H 'X-Data: 1' https://example.com", ""},
        {"curl -G -d q=1 https://api.example.com", ""},
        {"curl -I https://api.example.com", ""},
        {"curl --head -X POST https://api.example.com", ""},
        {"curl -X GET -d x https://api.example.com", ""},
        {"curl -X POST http://localhost:3000/api", ""},
        {"curl -d x http://127.0.0.1:8080", ""},
        {"curl -d x http://[::1]:3000/x", ""},
        {"curl -d x http://user@0.0.0.0/x", ""},
        {"curl -d x -H 'Content-Type: a/b' LOCALHOST:8080/api", ""},
        {"wget --post-data=x https://api.example.com", kWebRequest},
        {"wget --post-file body.json https://api.example.com", kWebRequest},
        {"wget --method=PUT https://api.example.com/x", kWebRequest},
        {"wget https://example.com/a.tar.gz", ""},
        {"wget -T 10 https://example.com", ""},
        {"wget -O out.html --post-data=x http://localhost/x", ""},
        {"http POST api.example.com", kWebRequest},
        {"https DELETE api.example.com/items/1", kWebRequest},
        {"xh post api.example.com", kWebRequest},
        {"http --auth user:pass PUT api.example.com", kWebRequest},
        {"http api.example.com name=x", kWebRequest},
        {"xh api.example.com tags:='[1]'", kWebRequest},
        {"http api.example.com", ""},
        {"http api.example.com q==x X-Token:abc", ""},
        {"http GET api.example.com", ""},
        {"http PUT :3000/items", ""},
    });
}

}  // namespace
}  // namespace orvo

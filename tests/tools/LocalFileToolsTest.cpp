#include <algorithm>

#include <gtest/gtest.h>

#include "support/ServerProcess.h"
#include "tools/ToolCatalog.h"
#include "userfiles/ContextAuditLog.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

const MCPTool& tool(std::string_view name) {
    return **std::ranges::find(registeredTools(), name, &MCPTool::name);
}

class LocalFileToolsTest : public ::testing::Test {
protected:
    // A record still queued would recreate the home after the test removed it.
    void TearDown() override { EXPECT_TRUE(log_.drain(10s)); }

    json call(std::string_view name, const json& arguments = json::object()) {
        const Result<std::string> text =
            tool(name).call(arguments, ToolContext{home_.path(), programPath_, nullptr, &log_});
        return text ? json::parse(*text) : json(nullptr);
    }
    // The audit lines so far, without their time.
    json records() {
        EXPECT_TRUE(log_.drain(10s));
        json lines = json::array();
        for (const std::string& line :
             test::splitLines(test::readFile(home_.path() / "reads.jsonl").value_or(""))) {
            lines.push_back(json::parse(line));
            lines.back().erase("ts");
        }
        return lines;
    }

    test::TempDir home_;
    std::string programPath_;
    ContextAuditLog log_{ContextAuditLogOptions{home_.path() / "reads.jsonl"}};
};

TEST_F(LocalFileToolsTest, EachContextReadLeavesOneRecordOfItsOutcome) {
    test::writeFile(home_.path() / ".config/orvo-agent/replacements.txt", "a\tb\nc\td\n");
    EXPECT_EQ(call("remember_preference", {{"note", 7}}), json({{"error", "note is required"}}));
    EXPECT_EQ(call("remember_preference", {{"note", "x"}}),
              json({{"ok", true}, {"char_count", 4}}));
    EXPECT_EQ(call("read_preferences")["content"], "- x\n");
    const json listed = call("list_dictionary", {{"limit", 1}});
    EXPECT_EQ(call("current_settings")["repliesMuted"], false);  // not the user's context
    json expected = json::parse(R"([
        {"tool":"remember_preference","result":"error: note is required"},
        {"tool":"remember_preference","result":"ok","output_bytes":4},
        {"tool":"read_preferences","result":"ok","output_bytes":4},
        {"tool":"list_dictionary","result":"ok","entries":1}])");
    expected[3]["output_bytes"] = dumpPretty(listed).size();
    EXPECT_EQ(records(), expected);
}

TEST_F(LocalFileToolsTest, ListingArgumentsAreCheckedBeforeAnythingIsRead) {
    const struct {
        json arguments;
        std::optional<std::string> error;
    } cases[] = {
        {{{"limit", 1}, {"offset", 1000000}, {"query", nullptr}}, std::nullopt},
        {{{"limit", 500.0}}, std::nullopt},
        {{{"limit", 0}}, "limit must be a whole number from 1 to 500"},
        {{{"limit", 501}}, "limit must be a whole number from 1 to 500"},
        {{{"limit", 2.5}}, "limit must be a whole number from 1 to 500"},
        {{{"offset", -1}}, "offset must be a whole number from 0 to 1000000"},
        {{{"query", 5}}, "query must be a string"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.dump());
        const json result = call("list_dictionary", c.arguments);
        EXPECT_EQ(c.error ? result : result.value("entries", json()),
                  (c.error ? json{{"error", *c.error}} : json::array()));
    }
}

TEST_F(LocalFileToolsTest, AugmentsComeFromBesideTheExecutableAndFromTheHome) {
    test::writeFile(home_.path() / "bin/orvo-agent-mcp", "");
    test::writeFile(home_.path() / "Resources/augments/brief.md", "---\nname: Brief\n---\nx");
    test::writeFile(home_.path() / ".config/orvo-agent/augments/mine.md",
                    "---\nname: Mine\n---\nx");
    programPath_ = (home_.path() / "bin/orvo-agent-mcp").string();
    // "source:id" of each augment listed, "+" when its directive is given, or the error.
    const auto names = [&](const json& arguments) {
        const json result = call("list_augments", arguments);
        std::string found = result.value("error", "");
        for (const json& augment : result.value("augments", json::array())) {
            found.append(augment["source"]).append(":").append(augment["id"]);
            found.append(augment.contains("directive") ? "+ " : " ");
        }
        return found;
    };
    EXPECT_EQ(names(json::object()), "builtin:brief user:mine ");
    EXPECT_EQ(names({{"includeDirectives", true}, {"kind", nullptr}}),
              "builtin:brief+ user:mine+ ");
    EXPECT_EQ(names({{"includeDirectives", "yes"}}), "includeDirectives must be true or false");
    EXPECT_EQ(records(), json::array()) << "the catalog is not the user's context";
}

}  // namespace
}  // namespace orvo

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

json parsed(const Result<std::string>& text) {
    return text ? json::parse(*text) : json(nullptr);
}

class LocalFileToolsTest : public ::testing::Test {
protected:
    // A record still queued would recreate the home after the test removed it.
    void TearDown() override { EXPECT_TRUE(log_.drain(10s)); }

    json call(std::string_view name, const json& arguments = json::object()) {
        ToolContext context{home_.path(), "", nullptr, &log_};
        return parsed(tool(name).call(arguments, context));
    }
    // The audit lines so far, without their time.
    std::vector<json> records() {
        EXPECT_TRUE(log_.drain(10s));
        std::vector<json> lines;
        for (const std::string& line :
             test::splitLines(test::readFile(home_.path() / "reads.jsonl").value_or(""))) {
            json record = json::parse(line);
            record.erase("ts");
            lines.push_back(std::move(record));
        }
        return lines;
    }

    test::TempDir home_;
    ContextAuditLog log_{ContextAuditLogOptions{home_.path() / "reads.jsonl"}};
};

TEST_F(LocalFileToolsTest, EachContextReadLeavesOneRecordOfItsOutcome) {
    test::writeFile(home_.path() / ".config/orvo-agent/replacements.txt", "a\tb\nc\td\n");
    EXPECT_EQ(call("remember_preference", {{"note", 7}}), json({{"error", "note is required"}}));
    EXPECT_EQ(call("remember_preference", {{"note", "x"}}),
              json({{"ok", true}, {"char_count", 4}}));
    EXPECT_EQ(call("read_preferences")["content"], "- x\n");
    const json listed = call("list_dictionary", {{"limit", 1}});
    EXPECT_EQ(listed["total"], 2);
    EXPECT_EQ(call("current_settings")["repliesMuted"], false);  // not the user's context
    EXPECT_EQ(records(),
              (std::vector<json>{
                  {{"tool", "remember_preference"}, {"result", "error: note is required"}},
                  {{"tool", "remember_preference"}, {"result", "ok"}, {"output_bytes", 4}},
                  {{"tool", "read_preferences"}, {"result", "ok"}, {"output_bytes", 4}},
                  {{"tool", "list_dictionary"},
                   {"result", "ok"},
                   {"output_bytes", dumpPretty(listed).size()},
                   {"entries", 1}},
              }));
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
        {{{"offset", 1e300}}, "offset must be a whole number from 0 to 1000000"},
        {{{"query", 5}}, "query must be a string"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.dump());
        const json result = call("list_dictionary", c.arguments);
        if (c.error) {
            EXPECT_EQ(result, json({{"error", *c.error}}));
        } else {
            EXPECT_EQ(result["entries"], json::array());
        }
    }
}

TEST_F(LocalFileToolsTest, AugmentsComeFromBesideTheExecutableAndFromTheHome) {
    test::TempDir install;
    test::writeFile(install.path() / "bin/orvo-agent-mcp", "");
    test::writeFile(install.path() / "Resources/augments/brief.md",
                    "---\nname: Brief\n---\nBe brief.");
    test::writeFile(home_.path() / ".config/orvo-agent/augments/mine.md",
                    "---\nname: Mine\n---\nx");
    ToolContext context{home_.path(), (install.path() / "bin/orvo-agent-mcp").string(), nullptr,
                        &log_};
    const auto names = [&](const json& arguments) {
        const json result = parsed(tool("list_augments").call(arguments, context));
        std::vector<std::string> found;
        for (const json& augment : result.value("augments", json::array())) {
            found.push_back(augment["source"].get<std::string>() + ":" +
                            augment["id"].get<std::string>() +
                            (augment.contains("directive") ? "+" : ""));
        }
        return result.contains("error") ? std::vector<std::string>{result["error"]} : found;
    };
    EXPECT_EQ(names(json::object()), (std::vector<std::string>{"builtin:brief", "user:mine"}));
    EXPECT_EQ(names({{"includeDirectives", true}, {"kind", nullptr}}),
              (std::vector<std::string>{"builtin:brief+", "user:mine+"}));
    EXPECT_EQ(names({{"kind", "tone"}}), std::vector<std::string>{});
    EXPECT_EQ(names({{"includeDirectives", "yes"}}),
              std::vector<std::string>{"includeDirectives must be true or false"});
    EXPECT_EQ(names({{"kind", 1}}), std::vector<std::string>{"kind must be a string"});
    EXPECT_TRUE(records().empty()) << "the catalog is not the user's context";
}

}  // namespace
}  // namespace orvo

// The Playbook schemas: every document the app validates is the same open object, and the calls
// that name one Playbook name it alike.
#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(playbookTools());

TEST(PlaybookToolsTest, DocumentsAreOneOpenSchemaAndIdentitiesAgree) {
    const json& document = kTools.property("computer_playbook_propose", "definition");
    EXPECT_EQ(document.value("additionalProperties", false), true);
    const struct {
        std::string_view tool;
        std::string parameter;
    } documents[] = {
        {"computer_playbook_propose", "surface"},       {"computer_playbook_save", "surface"},
        {"computer_playbook_save", "definition"},       {"computer_playbook_update", "definition"},
        {"computer_playbook_add_evidence", "evidence"},
    };
    for (const auto& d : documents) {
        SCOPED_TRACE(std::string(d.tool) + " " + d.parameter);
        EXPECT_EQ(kTools.property(d.tool, d.parameter), document);
    }
    EXPECT_EQ(kTools.schema("computer_playbook_get"), kTools.schema("computer_playbook_archive"));
}

}  // namespace
}  // namespace orvo::test

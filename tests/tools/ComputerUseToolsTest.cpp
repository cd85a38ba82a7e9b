// The Computer Use family: every tool goes to the app, and each has a docs page of its own name.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tools/ForwardingTool.h"
#include "tools/ToolCatalog.h"

namespace orvo {
namespace {

TEST(ComputerUseToolsTest, EveryToolForwardsAndPointsAtItsOwnDocs) {
    for (const MCPTool* tool : computerUseTools()) {
        SCOPED_TRACE(tool->name());
        EXPECT_NE(dynamic_cast<const ForwardingTool*>(tool), nullptr);
        EXPECT_TRUE(tool->name().starts_with("computer_"));
        std::string docs = "computer-use-permissions.md";
        if (tool->name() != "computer_delegation") {
            docs = tool->name();
            std::ranges::replace(docs, '_', '-');
            docs += ".md";
        }
        EXPECT_TRUE(tool->description().ends_with("Docs: " + docs)) << tool->description();
    }
}

}  // namespace
}  // namespace orvo

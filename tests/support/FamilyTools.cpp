// One tool family's tools looked up by name, for tests of what the family advertises.
#include "support/FamilyTools.h"

#include <gtest/gtest.h>

namespace orvo::test {
namespace {

const json& missing() {
    static const json kMissing = json::object();
    return kMissing;
}

}  // namespace

const MCPTool* FamilyTools::find(std::string_view name) const {
    for (const MCPTool* tool : family_) {
        if (tool->name() == name) {
            return tool;
        }
    }
    ADD_FAILURE() << "the family has no tool " << name;
    return nullptr;
}

std::string_view FamilyTools::description(std::string_view name) const {
    const MCPTool* tool = find(name);
    return tool != nullptr ? tool->description() : std::string_view{};
}

const json& FamilyTools::schema(std::string_view name) const {
    const MCPTool* tool = find(name);
    return tool != nullptr ? tool->inputSchema() : missing();
}

const json& FamilyTools::property(std::string_view name, const std::string& parameter) const {
    const json* properties = objectMember(schema(name), "properties");
    const json* found = properties != nullptr ? objectMember(*properties, parameter) : nullptr;
    if (found == nullptr) {
        ADD_FAILURE() << name << " has no parameter " << parameter;
        return missing();
    }
    return *found;
}

}  // namespace orvo::test

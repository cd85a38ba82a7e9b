// One tool family's tools looked up by name, for tests of what the family advertises.
#pragma once

#include <span>
#include <string_view>

#include "protocol/Json.h"
#include "tools/MCPTool.h"

namespace orvo::test {

class FamilyTools {
public:
    explicit FamilyTools(std::span<const MCPTool* const> family) : family_(family) {}

    // A name the family lacks fails the current test and reads as an empty text or schema, so
    // the remaining checks still run.
    std::string_view description(std::string_view name) const;
    const json& schema(std::string_view name) const;
    const json& property(std::string_view name, const std::string& parameter) const;

private:
    const MCPTool* find(std::string_view name) const;

    std::span<const MCPTool* const> family_;
};

}  // namespace orvo::test

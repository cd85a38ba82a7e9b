// Builders for tool argument schemas, shared by every family.
#pragma once

#include <initializer_list>
#include <string_view>

#include "protocol/Json.h"

namespace orvo {

// {"type": "object", "properties": ..., "required": ... (left out when empty),
//  "additionalProperties": false}: the shape of every tool's arguments.
json objectSchema(json properties, std::initializer_list<std::string_view> required = {});

// The schema of every tool that takes no arguments.
const json& emptyInputSchema();

}  // namespace orvo

// Builders for tool argument schemas, shared by every family.
#include "tools/ToolSchema.h"

namespace orvo {

json objectSchema(json properties, std::initializer_list<std::string_view> required) {
    json schema = {
        {"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
    if (required.size() > 0) {
        json names = json::array();
        for (std::string_view name : required) {
            names.push_back(name);
        }
        schema["required"] = std::move(names);
    }
    return schema;
}

const json& emptyInputSchema() {
    static const json kSchema = objectSchema(json::object());
    return kSchema;
}

}  // namespace orvo

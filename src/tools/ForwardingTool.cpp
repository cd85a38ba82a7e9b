// The common shape of tools that the app carries out: their arguments go to the app as they are.
#include "tools/ForwardingTool.h"

#include <cassert>

#include "applink/AppClient.h"

namespace orvo {

Result<ToolOutput> ForwardingTool::call(const json& arguments, const ToolContext& context) const {
    assert(context.app != nullptr);
    return context.app->callApp(name(), arguments);
}

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

}  // namespace orvo

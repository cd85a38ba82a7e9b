// The record in which an agent's lifecycle hooks, with the terminal and processes the agent runs
// in, are reported to the app. This program defines it for the app's side and never sends it.
#include "protocol/AgentHookEvent.h"

#include <limits>

#include <nlohmann/json.hpp>

#include "protocol/Json.h"

namespace orvo {
namespace {

using OrderedJson = nlohmann::ordered_json;

// Deep enough for event → host → ancestors → process → field, and no deeper.
constexpr int kMaxEventDepth = 6;

template <class Value>
void putOptional(OrderedJson& object, const char* key, const std::optional<Value>& value) {
    if (value) {
        object[key] = *value;
    }
}

OrderedJson encodeProcess(const AgentHookProcess& process) {
    OrderedJson object = OrderedJson::object();
    object["pid"] = process.pid;
    object["parentPID"] = process.parentPID;
    putOptional(object, "executablePath", process.executablePath);
    putOptional(object, "tty", process.tty);
    putOptional(object, "startTime", process.startTime);
    return object;
}

OrderedJson encodeHost(const AgentHookHostContext& host) {
    OrderedJson object = OrderedJson::object();
    putOptional(object, "tty", host.tty);
    OrderedJson ancestors = OrderedJson::array();
    for (const AgentHookProcess& process : host.ancestors) {
        ancestors.push_back(encodeProcess(process));
    }
    object["ancestors"] = std::move(ancestors);
    OrderedJson environment = OrderedJson::object();
    for (const auto& [key, value] : host.environment) {
        if (AgentHookWire::isAllowedEnvironmentKey(key)) {
            environment[key] = value;
        }
    }
    object["environment"] = std::move(environment);
    putOptional(object, "terminalProgram", host.terminalProgram);
    putOptional(object, "appPID", host.appPID);
    putOptional(object, "appBundleID", host.appBundleID);
    return object;
}

// Reading fails as a whole on the first field that is missing or of the wrong type.
class Reader {
public:
    bool ok = true;

    std::string string(const json& object, std::string_view key) {
        std::optional<std::string_view> value = stringMember(object, key);
        ok = ok && value.has_value();
        return std::string(value.value_or(""));
    }

    std::optional<std::string> optionalString(const json& object, std::string_view key) {
        const json* value = present(object, key);
        if (value == nullptr) {
            return std::nullopt;
        }
        ok = ok && value->is_string();
        return value->is_string() ? std::optional(value->get<std::string>()) : std::nullopt;
    }

    std::optional<double> optionalNumber(const json& object, std::string_view key) {
        const json* value = present(object, key);
        if (value == nullptr) {
            return std::nullopt;
        }
        ok = ok && value->is_number();
        return value->is_number() ? std::optional(value->get<double>()) : std::nullopt;
    }

    double number(const json& object, std::string_view key) {
        std::optional<double> value = optionalNumber(object, key);
        ok = ok && value.has_value();
        return value.value_or(0);
    }

    template <class Integer>
    std::optional<Integer> optionalInteger(const json& object, std::string_view key) {
        const json* value = present(object, key);
        if (value == nullptr) {
            return std::nullopt;
        }
        std::optional<Integer> result;
        if (value->is_number_unsigned()) {
            const auto n = value->get<std::uint64_t>();
            if (n <= static_cast<std::uint64_t>(std::numeric_limits<Integer>::max())) {
                result = static_cast<Integer>(n);
            }
        } else if (value->is_number_integer()) {
            const auto n = value->get<std::int64_t>();
            if (n >= std::numeric_limits<Integer>::min() &&
                n <= std::numeric_limits<Integer>::max()) {
                result = static_cast<Integer>(n);
            }
        }
        ok = ok && result.has_value();
        return result;
    }

    template <class Integer>
    Integer integer(const json& object, std::string_view key) {
        std::optional<Integer> value = optionalInteger<Integer>(object, key);
        ok = ok && value.has_value();
        return value.value_or(0);
    }

    const json& object(const json& parent, std::string_view key) {
        static const json kEmpty = json::object();
        const json* value = objectMember(parent, key);
        ok = ok && value != nullptr;
        return value != nullptr ? *value : kEmpty;
    }

private:
    // A member that is there and not null.
    static const json* present(const json& object, std::string_view key) {
        const json* value = member(object, key);
        return value != nullptr && !value->is_null() ? value : nullptr;
    }
};

AgentHookProcess decodeProcess(Reader& reader, const json& object) {
    AgentHookProcess process;
    reader.ok = reader.ok && object.is_object();
    process.pid = reader.integer<std::int32_t>(object, "pid");
    process.parentPID = reader.integer<std::int32_t>(object, "parentPID");
    process.executablePath = reader.optionalString(object, "executablePath");
    process.tty = reader.optionalString(object, "tty");
    process.startTime = reader.optionalNumber(object, "startTime");
    return process;
}

AgentHookHostContext decodeHost(Reader& reader, const json& object) {
    AgentHookHostContext host;
    host.tty = reader.optionalString(object, "tty");
    const json* ancestors = member(object, "ancestors");
    reader.ok = reader.ok && ancestors != nullptr && ancestors->is_array();
    if (reader.ok) {
        for (const json& process : *ancestors) {
            host.ancestors.push_back(decodeProcess(reader, process));
        }
    }
    for (const auto& [key, value] : reader.object(object, "environment").items()) {
        reader.ok = reader.ok && value.is_string();
        if (value.is_string() && AgentHookWire::isAllowedEnvironmentKey(key)) {
            host.environment.emplace(key, value.get<std::string>());
        }
    }
    host.terminalProgram = reader.optionalString(object, "terminalProgram");
    host.appPID = reader.optionalInteger<std::int32_t>(object, "appPID");
    host.appBundleID = reader.optionalString(object, "appBundleID");
    return host;
}

// The longest prefix of at most `limit` bytes that does not end inside a UTF-8 sequence.
std::string_view prefixBytes(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) {
        return text;
    }
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

}  // namespace

std::optional<AgentHookProvider> parseAgentHookProvider(std::string_view raw) {
    for (AgentHookProvider provider : kAllAgentHookProviders) {
        if (rawValue(provider) == raw) {
            return provider;
        }
    }
    return std::nullopt;
}

std::optional<AgentHookKind> parseAgentHookKind(std::string_view raw) {
    for (AgentHookKind kind : kAllAgentHookKinds) {
        if (rawValue(kind) == raw) {
            return kind;
        }
    }
    return std::nullopt;
}

void AgentHookEvent::setFinalMessage(std::string_view message) {
    const std::string_view kept = prefixBytes(message, AgentHookWire::kMaxFinalMessageBytes);
    finalMessage = std::string(kept);
    finalMessageTruncated = kept.size() < message.size();
}

std::optional<std::string> AgentHookEvent::encode() const {
    OrderedJson object = OrderedJson::object();
    object["schemaVersion"] = schemaVersion;
    object["provider"] = rawValue(provider);
    object["kind"] = rawValue(kind);
    object["sessionID"] = sessionID;
    putOptional(object, "turnID", turnID);
    object["eventID"] = eventID;
    putOptional(object, "cwd", cwd);
    object["host"] = encodeHost(host);
    object["timestamp"] = timestamp;
    // A message assigned directly rather than through setFinalMessage is cut all the same.
    bool truncated = finalMessageTruncated;
    if (finalMessage) {
        const std::string_view kept =
            prefixBytes(*finalMessage, AgentHookWire::kMaxFinalMessageBytes);
        truncated = truncated || kept.size() < finalMessage->size();
        object["finalMessage"] = kept;
    }
    putOptional(object, "permissionDescription", permissionDescription);
    putOptional(object, "failure", failure);
    object["finalMessageTruncated"] = truncated;
    // A time that is not finite would be written as null, which reading refuses.
    if (!isRepresentable(object)) {
        return std::nullopt;
    }
    std::string text = object.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
    if (text.size() > AgentHookWire::kMaxEventBytes) {
        return std::nullopt;
    }
    return text;
}

std::optional<AgentHookEvent> AgentHookEvent::decode(std::string_view text) {
    if (text.size() > AgentHookWire::kMaxEventBytes) {
        return std::nullopt;
    }
    const BoundedParse parsed = parseJsonBounded(text, kMaxEventDepth);
    if (parsed.status != JsonParseStatus::ok || !parsed.value.is_object()) {
        return std::nullopt;
    }
    const json& object = parsed.value;
    Reader reader;
    AgentHookEvent event;
    event.schemaVersion = reader.integer<std::int64_t>(object, "schemaVersion");
    std::optional<AgentHookProvider> provider =
        parseAgentHookProvider(stringMember(object, "provider").value_or(""));
    std::optional<AgentHookKind> kind =
        parseAgentHookKind(stringMember(object, "kind").value_or(""));
    reader.ok = reader.ok && provider && kind;
    event.provider = provider.value_or(AgentHookProvider::claude);
    event.kind = kind.value_or(AgentHookKind::sessionStart);
    event.sessionID = reader.string(object, "sessionID");
    event.turnID = reader.optionalString(object, "turnID");
    event.eventID = reader.string(object, "eventID");
    event.cwd = reader.optionalString(object, "cwd");
    event.host = decodeHost(reader, reader.object(object, "host"));
    event.timestamp = reader.number(object, "timestamp");
    event.finalMessage = reader.optionalString(object, "finalMessage");
    event.permissionDescription = reader.optionalString(object, "permissionDescription");
    event.failure = reader.optionalString(object, "failure");
    const std::optional<bool> truncated = boolMember(object, "finalMessageTruncated");
    reader.ok = reader.ok && truncated.has_value();
    event.finalMessageTruncated = truncated.value_or(false);
    if (!reader.ok) {
        return std::nullopt;
    }
    return event;
}

}  // namespace orvo

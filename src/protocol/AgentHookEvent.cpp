// The record in which an agent's lifecycle hooks, with the terminal and processes the agent runs
// in, are reported to the app. This program defines it for the app's side and never sends it.
#include "protocol/AgentHookEvent.h"

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

// Reading fails as a whole on the first field that is missing or of the wrong type; null reads
// as missing.
class Reader {
public:
    bool ok = true;

    template <class T>
    std::optional<T> optional(const json& object, std::string_view key) {
        Result<std::optional<T>> value = read<T>(object, key, key);
        ok = ok && value.has_value();
        return value ? std::move(*value) : std::nullopt;
    }

    template <class T>
    T required(const json& object, std::string_view key) {
        std::optional<T> value = optional<T>(object, key);
        ok = ok && value.has_value();
        return value ? std::move(*value) : T{};
    }

    const json& object(const json& parent, std::string_view key) {
        static const json kEmpty = json::object();
        const json* value = required<JsonObject>(parent, key).value;
        return value != nullptr ? *value : kEmpty;
    }
};

AgentHookProcess decodeProcess(Reader& reader, const json& object) {
    AgentHookProcess process;
    reader.ok = reader.ok && object.is_object();
    process.pid = reader.required<std::int32_t>(object, "pid");
    process.parentPID = reader.required<std::int32_t>(object, "parentPID");
    process.executablePath = reader.optional<std::string>(object, "executablePath");
    process.tty = reader.optional<std::string>(object, "tty");
    process.startTime = reader.optional<double>(object, "startTime");
    return process;
}

AgentHookHostContext decodeHost(Reader& reader, const json& object) {
    AgentHookHostContext host;
    host.tty = reader.optional<std::string>(object, "tty");
    const json* ancestors = reader.required<JsonArray>(object, "ancestors").value;
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
    host.terminalProgram = reader.optional<std::string>(object, "terminalProgram");
    host.appPID = reader.optional<std::int32_t>(object, "appPID");
    host.appBundleID = reader.optional<std::string>(object, "appBundleID");
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
    event.schemaVersion = reader.required<std::int64_t>(object, "schemaVersion");
    std::optional<AgentHookProvider> provider =
        parseAgentHookProvider(stringMember(object, "provider").value_or(""));
    std::optional<AgentHookKind> kind =
        parseAgentHookKind(stringMember(object, "kind").value_or(""));
    reader.ok = reader.ok && provider && kind;
    event.provider = provider.value_or(AgentHookProvider::claude);
    event.kind = kind.value_or(AgentHookKind::sessionStart);
    event.sessionID = reader.required<std::string>(object, "sessionID");
    event.turnID = reader.optional<std::string>(object, "turnID");
    event.eventID = reader.required<std::string>(object, "eventID");
    event.cwd = reader.optional<std::string>(object, "cwd");
    event.host = decodeHost(reader, reader.object(object, "host"));
    event.timestamp = reader.required<double>(object, "timestamp");
    event.finalMessage = reader.optional<std::string>(object, "finalMessage");
    event.permissionDescription = reader.optional<std::string>(object, "permissionDescription");
    event.failure = reader.optional<std::string>(object, "failure");
    event.finalMessageTruncated = reader.required<bool>(object, "finalMessageTruncated");
    if (!reader.ok) {
        return std::nullopt;
    }
    return event;
}

}  // namespace orvo

// The metadata table: groups, annotations and concurrency for every tool name, in registration
// order.
#include <algorithm>
#include <vector>

#include "tools/MCPToolMetadata.h"
#include "userfiles/FileText.h"

namespace orvo {
namespace {

// Hint patterns as read-only/destructive/idempotent/open-world.
constexpr MCPToolAnnotations kReading{true, false, true, false};
constexpr MCPToolAnnotations kComputerUse{false, true, false, true};
constexpr MCPToolAnnotations kCreating{false, false, false, false};
constexpr MCPToolAnnotations kDestructive{false, true, false, false};
constexpr MCPToolAnnotations kIdempotentChange{false, false, true, false};

// clang-format off
const MCPToolMetadataRow kToolMetadata[] = {
    {"current_settings", {{MCPToolset::state}, kReading, true}},
    {"list_dictionary", {{MCPToolset::state}, kReading, true}},
    {"list_augments", {{MCPToolset::state, MCPToolset::augments}, kReading, true}},
    {"orvo_version", {{MCPToolset::state}, kReading, true}},
    {"computer_delegation", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_list_apps", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_list_displays", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_inspect", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_read", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_wait_for", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_get_screenshot", {{MCPToolset::computer}, kComputerUse, true}},
    {"computer_open", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_click", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_drag", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_hover", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_pinch", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_deliver_text", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_deliver_grid", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_press_key", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_scroll", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_select", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_terminal_click", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_arrange_window", {{MCPToolset::computer}, kComputerUse, false}},
    {"computer_playbook_authoring_guide", {{MCPToolset::playbooks}, kReading, true}},
    {"computer_playbook_list", {{MCPToolset::playbooks}, kReading, true}},
    {"computer_playbook_get", {{MCPToolset::playbooks}, kReading, true}},
    {"computer_playbook_propose", {{MCPToolset::playbooks}, kReading, true}},
    {"computer_playbook_save", {{MCPToolset::playbooks}, kCreating, false}},
    {"computer_playbook_update", {{MCPToolset::playbooks}, kCreating, false}},
    {"computer_playbook_archive", {{MCPToolset::playbooks}, kDestructive, false}},
    {"computer_playbook_add_evidence", {{MCPToolset::playbooks}, kCreating, false}},
    {"read_preferences", {{MCPToolset::state}, kReading, true}},
    {"remember_preference", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"list_personas", {{MCPToolset::state, MCPToolset::augments}, kReading, true}},
    {"schedule_create", {{MCPToolset::state}, kCreating, false}},
    {"schedule_list", {{MCPToolset::state}, kReading, true}},
    {"schedule_update", {{MCPToolset::state}, kIdempotentChange, false}},
    {"schedule_set_enabled", {{MCPToolset::state}, kIdempotentChange, false}},
    {"schedule_run_now", {{MCPToolset::state}, kCreating, false}},
    {"schedule_delete", {{MCPToolset::state}, kDestructive, false}},
    {"follow_up_create", {{MCPToolset::state}, kCreating, false}},
    {"follow_up_list", {{MCPToolset::state}, kReading, true}},
    {"session_search", {{MCPToolset::state}, kReading, true}},
    {"session_read", {{MCPToolset::state}, kReading, true}},
    {"follow_up_cancel", {{MCPToolset::state}, kIdempotentChange, false}},
    {"list_input_devices", {{MCPToolset::state}, kReading, true}},
    {"list_tts_voices", {{MCPToolset::state, MCPToolset::voice}, kReading, true}},
    {"get_insights", {{MCPToolset::state}, kReading, true}},
    {"list_meeting_addons", {{MCPToolset::meetings}, kReading, true}},
    {"create_meeting_addon", {{MCPToolset::meetings}, kCreating, false}},
    {"edit_meeting_addon", {{MCPToolset::meetings}, kDestructive, false}},
    {"delete_meeting_addon", {{MCPToolset::meetings}, kDestructive, false}},
    {"set_meeting_notes_addons", {{MCPToolset::meetings}, kIdempotentChange, false}},
    {"regenerate_meeting_notes", {{MCPToolset::meetings}, kDestructive, false}},
    {"list_meetings", {{MCPToolset::meetings}, kReading, true}},
    {"search_meetings", {{MCPToolset::meetings}, kReading, true}},
    {"get_meeting", {{MCPToolset::meetings}, kReading, true}},
    {"get_meeting_notes", {{MCPToolset::meetings}, kReading, true}},
    {"get_meeting_transcript", {{MCPToolset::meetings}, kReading, true}},
    {"get_current_meeting", {{MCPToolset::meetings}, kReading, true}},
    {"get_live_transcript", {{MCPToolset::meetings}, kReading, true}},
    {"get_recent_ignored_speech", {{MCPToolset::state}, kReading, true}},
    {"set_active_persona", {{MCPToolset::settings, MCPToolset::augments}, kIdempotentChange, false}},
    {"save_character", {{MCPToolset::settings, MCPToolset::augments}, kDestructive, false}},
    {"set_tts_voice", {{MCPToolset::voice}, kIdempotentChange, false}},
    {"set_assistant_backend", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_assistant_trigger_word", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_ambient_listening_level", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_ambient_learn_from_dictation", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_ambient_ducks_replies", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"tip_shown", {{MCPToolset::state}, kIdempotentChange, false}},
    {"set_input_device", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_selection_edit_enabled", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_text_processing_engines", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"panel", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"speak", {{MCPToolset::voice}, kCreating, false}},
    {"add_meeting_note", {{MCPToolset::meetings}, kCreating, false}},
    {"update_meeting_note", {{MCPToolset::meetings}, kDestructive, false}},
    {"activate_augment", {{MCPToolset::augments}, kIdempotentChange, false}},
    {"deactivate_augment", {{MCPToolset::augments}, kIdempotentChange, false}},
    {"slate_open", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_close", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_clear", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_save", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_set_routing", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_set_frontmatter", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"slate_remove_frontmatter", {{MCPToolset::slate}, kIdempotentChange, false}},
    {"get_slate", {{MCPToolset::state, MCPToolset::slate}, kReading, true}},
    {"read_open_file", {{MCPToolset::state}, kReading, true}},    // Names that no tool implements; kept so the table stays the app's one source of truth.
    {"set_assistant_ack_mode", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"set_assistant_content_acknowledgments", {{MCPToolset::settings}, kIdempotentChange, false}},
    {"computer_playbook_run", {{MCPToolset::computer}, kComputerUse, false}},
};
// clang-format on

struct MetadataIndex {
    std::vector<const MCPToolMetadataRow*> byName;  // sorted by name, for binary search
};

const MetadataIndex& metadataIndex() {
    static const MetadataIndex index = [] {
        MetadataIndex built;
        for (const MCPToolMetadataRow& row : kToolMetadata) {
            built.byName.push_back(&row);
        }
        std::ranges::sort(built.byName, {}, &MCPToolMetadataRow::name);
        return built;
    }();
    return index;
}

const MCPToolMetadataRow* findRow(std::string_view name) {
    const auto& byName = metadataIndex().byName;
    auto it = std::ranges::lower_bound(byName, name, {}, &MCPToolMetadataRow::name);
    return it != byName.end() && (*it)->name == name ? *it : nullptr;
}

}  // namespace

json MCPToolAnnotations::encode() const {
    json encoded = json::object();
    encoded["readOnlyHint"] = readOnlyHint;
    if (destructiveHint) {
        encoded["destructiveHint"] = *destructiveHint;
    }
    if (idempotentHint) {
        encoded["idempotentHint"] = *idempotentHint;
    }
    if (openWorldHint) {
        encoded["openWorldHint"] = *openWorldHint;
    }
    return encoded;
}

std::span<const MCPToolMetadataRow> toolMetadataRows() {
    return kToolMetadata;
}

const MCPToolMetadata* toolMetadata(std::string_view name) {
    const MCPToolMetadataRow* row = findRow(name);
    return row == nullptr ? nullptr : &row->metadata;
}

std::size_t registrationIndex(std::string_view name) {
    const MCPToolMetadataRow* row = findRow(name);
    return row == nullptr ? std::size(kToolMetadata)
                          : static_cast<std::size_t>(row - kToolMetadata);
}

MCPToolsets parseToolsets(std::string_view value) {
    value = trimWhitespace(value);
    if (value.empty()) {
        return MCPToolsets::all();
    }
    MCPToolsets enabled;
    while (!value.empty()) {
        const auto comma = value.find(',');
        const std::string_view piece = trimWhitespace(value.substr(0, comma));
        value = comma == std::string_view::npos ? std::string_view{} : value.substr(comma + 1);
        if (piece == "all") {
            return MCPToolsets::all();
        }
        for (std::size_t i = 0; i < kToolsetRawValues.size(); ++i) {
            if (piece == kToolsetRawValues[i]) {
                enabled.insert(static_cast<MCPToolset>(i));
            }
        }
    }
    return enabled;
}

}  // namespace orvo

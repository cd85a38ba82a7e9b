// The persona, panel, augment and Slate schemas where a slip would mislead the agent.
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "support/FamilyTools.h"
#include "tools/ToolCatalog.h"

namespace orvo::test {
namespace {

const FamilyTools kTools(slateAndPersonaTools());

TEST(SlateToolsTest, RequiredParametersAreOnlyWhatEveryCallNeeds) {
    using Names = std::vector<std::string>;
    const struct {
        std::string_view tool;
        std::optional<Names> required;  // absent: the schema has no "required" key at all
    } cases[] = {
        {"set_active_persona", std::nullopt},  // mode "clear" alone is a whole call
        {"save_character", Names{"id", "markdown"}},
        {"panel", Names{"action"}},
        {"activate_augment", Names{"id"}},
        {"deactivate_augment", Names{"id"}},
        {"slate_save", std::nullopt},
        {"slate_set_frontmatter", Names{"key", "value"}},
        {"read_open_file", Names{"path"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        const json& schema = kTools.schema(c.tool);
        if (c.required) {
            EXPECT_EQ(schema.value("required", json()), json(*c.required));
        } else {
            EXPECT_FALSE(schema.contains("required"));
        }
    }
}

TEST(SlateToolsTest, PanelOffersEveryPlacementAndSize) {
    EXPECT_EQ(kTools.schema("panel").value("properties", json()).size(), 15u);
    json places = kTools.property("panel", "spot").value("enum", json());
    ASSERT_EQ(places.size(), 6u);
    places.push_back("center");
    EXPECT_EQ(kTools.property("panel", "companion_at").value("enum", json()), places);
    const struct {
        std::string parameter;
        int minimum, maximum;
    } ranges[] = {{"speech_volume", 0, 100}, {"face_size", 56, 224}};
    for (const auto& r : ranges) {
        SCOPED_TRACE(r.parameter);
        const json& schema = kTools.property("panel", r.parameter);
        EXPECT_EQ(schema.value("type", ""), "integer");
        EXPECT_EQ(schema.value("minimum", -1), r.minimum);
        EXPECT_EQ(schema.value("maximum", -1), r.maximum);
    }
}

TEST(SlateToolsTest, TextsWithQuotesAndMarkupAreExact) {
    EXPECT_EQ(
        kTools.description("panel"),
        R"(Read or change the Orvo panel and its companion (the small face or card stack). "state" returns open, collapsed (only the face or card stack), or closed, plus view, pin, mute, speech volume, presence, sizes, its display, and every display's id and name. "set" changes any field and returns the new state. "Make it the small version" is state collapsed, which also brings back a hidden companion. muted sets repliesMuted, which persists across restarts; replies still show as text and speak returns queued=false, muted=true. Only when the user asks to unmute, call panel(action: "set", muted: false). speech_volume (0 to 100) is reply loudness, separate from the Mac's volume; above 0 it also unmutes. Mute is not "be quiet" (stop current speech) or "stop listening" (set_ambient_listening_level). Docs: panel.md)");
    EXPECT_EQ(
        kTools.description("activate_augment"),
        R"(Activate an augment (a short directive that shapes assistant behavior) by id or name from list_augments. exclusive: true turns every other augment off first. A full slot budget returns slot_budget_full with the loadout so you can suggest what to deactivate. `conflicts` names active augments of the same kind. Docs: augments.md)");
    EXPECT_EQ(kTools.property("set_active_persona", "id").value("description", ""),
              R"(Persona ID or name (e.g. "pirate"). Required unless mode is "clear".)");
    EXPECT_EQ(kTools.property("set_active_persona", "mode").value("description", ""),
              R"(Default "replace".)");
    EXPECT_EQ(kTools.property("save_character", "markdown").value("description", ""),
              "The whole file: --- frontmatter ---, core section, then ## Examples last.");
}

}  // namespace
}  // namespace orvo::test

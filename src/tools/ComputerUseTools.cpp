// The computer-use tools that find, observe and arrange apps and windows. Each tool forwards its
// arguments as received; the app checks them and owns every state id. The tools that act on a
// target are in ComputerInputTools.cpp.
#include "tools/ComputerInputTools.h"
#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"

namespace orvo {
namespace {

constexpr MCPToolMetadata kComputerActing{{MCPToolset::computer}, kComputerUse, false};
constexpr MCPToolMetadata kComputerObserving{{MCPToolset::computer}, kComputerUse, true};

constexpr ToolRow kRows[] = {
    {"computer_arrange_window", kComputerActing,
     "Move/resize an inspected window by position, display, or frame within the display's visible "
     "area. Use instead of AppleScript, System Events, or the Window menu. Does not raise unless "
     "raise:true. verified:false means the app stopped short. Docs: computer-arrange-window.md",
     [] {
         const json coordinate = {{"type", "number"}};
         const json extent = {{"type", "number"}, {"minimum", 1}};
         json frame = objectSchema(
             {{"x", coordinate}, {"y", coordinate}, {"width", extent}, {"height", extent}},
             {"x", "y", "width", "height"});
         frame["description"] =
             "Points from the visible area's top-left, fitted inside it. Not with position.";
         return objectSchema(
             {
                 {"state_id",
                  {{"type", "string"},
                   {"description", "computer_state_id whose window is arranged."}}},
                 {"position",
                  {{"type", "string"},
                   {"enum",
                    {"left_half", "right_half", "top_half", "bottom_half", "top_left", "top_right",
                     "bottom_left", "bottom_right", "left_third", "center_third", "right_third",
                     "left_two_thirds", "center_two_thirds", "right_two_thirds", "center",
                     "maximize", "restore"}},
                   {"description",
                    "center keeps size; maximize fills the visible area without full screen; "
                    "restore undoes this tool's last move."}}},
                 {"display",
                  {{"type", "string"},
                   {"description",
                    "next, previous, primary, built_in, external, or an id or name from "
                    "computer_list_displays. Alone, keeps the window's relative place and "
                    "size. Default current display."}}},
                 {"frame", std::move(frame)},
                 {"unminimize",
                  {{"type", "boolean"},
                   {"description", "Default false. Required to arrange a minimized window."}}},
                 {"raise",
                  {{"type", "boolean"},
                   {"description",
                    "Default false. Raise and activate; only when the user asked to bring it "
                    "forward."}}},
             },
             {"state_id"});
     }},
    // computer_arrange_window.
    {"computer_delegation", kComputerActing,
     "Request explicit owner-granted, temporary access for this exact external MCP helper session, "
     "inspect status, or revoke it. After computer_inspect, request with state_id and an honest "
     "task label. The request returns pending immediately; the owner reviews it on the Mac in "
     "Settings > Computer Use > Delegated access. Do not continue until status is active. No owner "
     "provenance is inherited. Browser scope is the exact app and host, all pages. Only drafts and "
     "navigation are allowed by default; allow_submissions asks separately for autosaves, routine "
     "saves, sends and posts. High-risk actions still need confirmation, and credentials and "
     "security remain owner-only. The phone cannot approve this class of access. Docs: "
     "computer-use-permissions.md",
     [] {
         return objectSchema(
             {
                 {"action", {{"type", "string"}, {"enum", {"request", "status", "revoke"}}}},
                 {"state_id", stateIdParameter()},
                 {"task",
                  {{"type", "string"},
                   {"minLength", 1},
                   {"maxLength", 200},
                   {"description",
                    "An honest task description for the owner's review, not an authority claim."}}},
                 {"duration_minutes",
                  {{"type", "integer"}, {"enum", {15, 30, 60}}, {"default", 30}}},
                 {"allow_submissions",
                  {{"type", "boolean"},
                   {"default", false},
                   {"description",
                    "Ask the owner to include autosaves and routine form saves, submissions, sends "
                    "and posts. Always confirm still wins."}}},
                 {"delegation_id",
                  {{"type", "string"},
                   {"description",
                    "Required for status/revoke; bound to this exact helper process."}}},
             },
             {"action"});
     }},
    {"computer_get_screenshot", kComputerObserving,
     "PNG screenshot of an inspected state. Use only when visual information is needed rather than "
     "text. Docs: computer-get-screenshot.md",
     [] {
         return objectSchema({{"state_id", stateIdParameter()}}, {"state_id"});
     },
     kAppRead},
    {"computer_inspect", kComputerObserving,
     "Inspect the current or named app/window. Returns a short-lived computer_state_id, safe "
     "metadata, ranked targets, and matching Playbook pointers; detail full adds diagnostics and "
     "task summaries. Interaction diagnostics separate activation and focus from hover readiness. "
     "Incomplete discovery does not prove a control is absent. Private text, full URLs, and "
     "screenshots need computer_read or computer_get_screenshot. Docs: computer-inspect.md",
     [] {
         return objectSchema({
             {"target",
              {{"type", "string"},
               {"description",
                "App name or bundle id, such as Slack. Omit for the current context."}}},
             {"window_id",
              {{"type", "integer"},
               {"description",
                "Bind to this window (from computer_list_apps or a prior inspect's windows[]) "
                "instead of the focused one, without bringing it forward."}}},
             {"origin",
              {{"type", "string"},
               {"enum", {"turn_context", "explicit_target"}},
               {"description", "Default turn_context without target, explicit_target with it."}}},
             {"detail", detailParameter()},
             {"filter",
              {{"type", "string"},
               {"description",
                "Case-insensitive label filter for top_targets; finds one row in a long list (such "
                "as a country in an open dropdown) that the ranked limit would cut."}}},
             {"limit",
              {{"type", "integer"},
               {"minimum", 1},
               {"description",
                "Maximum top_targets. Default 10 with detail summary, 40 with full."}}},
             {"compact",
              {{"type", "boolean"},
               {"description",
                "Return only target ids, roles, labels, and parents. Default false in release, may "
                "be true in development builds. Pass false when route hints matter."}}},
             {"include_tree",
              {{"type", "boolean"},
               {"description",
                "Include a bounded target_tree of Accessibility parent/child relationships, for "
                "dropdowns, listboxes, menus, and selectors."}}},
             {"order",
              {{"type", "string"},
               {"enum", {"score", "page"}},
               {"description",
                "Default score. page lists targets top to bottom, left to right, so the first "
                "match "
                "is the first on screen, and adds row_label to a target whose label others share, "
                "such as a row's Play button."}}},
         });
     },
     appRead("target")},
    {"computer_list_apps", kComputerObserving,
     "List running apps before targeting a background app. Restricted apps, including password "
     "managers, cannot be inspected or acted on. Docs: computer-list-apps.md",
     [] {
         return objectSchema({
             {"query",
              {{"type", "string"},
               {"description",
                "Match app names, bundle ids, and window titles across all Spaces, including "
                "minimized. Returns only matching apps, each with windows: [{window_id, title, "
                "on_screen}] for computer_inspect."}}},
             {"include_helpers",
              {{"type", "boolean"},
               {"description", "Include helper processes and agents. Default false."}}},
             {"include_system",
              {{"type", "boolean"},
               {"description",
                "Include /System, /usr, and developer service processes. Default false."}}},
         });
     }},
    {"computer_list_displays", kComputerObserving,
     "List displays left to right for computer_arrange_window: id, name, primary, built_in, scale, "
     "frame, visible_frame (without menu bar/Dock), in points from the primary display's top-left. "
     "Docs: computer-list-displays.md",
     nullptr},
    {"computer_open", kComputerActing,
     "Open an app or URL in the background, then computer_inspect it for a state id. Bring it to "
     "the foreground only when the user explicitly asked or just approved it. Docs: "
     "computer-open.md",
     [] {
         return objectSchema(
             {
                 {"kind",
                  {{"type", "string"},
                   {"enum", {"app", "url"}},
                   {"description", "app by name or bundle id, or url with the default handler."}}},
                 {"value",
                  {{"type", "string"},
                   {"description", "App display name, bundle id, or absolute URL."}}},
                 {"activate",
                  {{"type", "boolean"},
                   {"description",
                    "Default false. True brings it to the foreground; only when the user asked or "
                    "approved a focus-taking repair. Do not set true merely because inspect, "
                    "click, select, or text delivery failed."}}},
             },
             {"kind", "value"});
     }},
    {"computer_read", kComputerObserving,
     "Read selection, visible_text, page, url, or permission_options from an inspected state; full "
     "URLs and private content need this step. Selection uses Accessibility, then a transient "
     "copy-and-restore fallback. Page with the same state_id, mode, content_hash, and next_offset; "
     "changed content or scope is rejected. Docs: computer-read.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"mode",
                  {{"type", "string"},
                   {"enum", {"selection", "visible_text", "page", "url", "permission_options"}},
                   {"description",
                    "What to read. selection may copy transiently and restores the prior "
                    "pasteboard before returning."}}},
                 {"max_chars",
                  {{"type", "integer"},
                   {"minimum", 1},
                   {"maximum", 20000},
                   {"description", "Maximum Unicode scalars returned. Default 6,000."}}},
                 {"offset",
                  {{"type", "integer"},
                   {"minimum", 0},
                   {"description",
                    "Unicode-scalar offset. Default 0. For later pages pass next_offset with "
                    "content_hash."}}},
                 {"from_end",
                  {{"type", "boolean"},
                   {"description",
                    "Return the last max_chars scalars without a prior hash; not with a nonzero "
                    "offset. If source_truncated, this is not the true source tail."}}},
                 {"region",
                  {{"type", "string"},
                   {"enum", {"window", "main"}},
                   {"description",
                    "visible_text only. main reads the main-content landmark, skipping navigation "
                    "and sidebars; fails if none is exposed."}}},
                 {"target_id",
                  {{"type", "string"},
                   {"description",
                    "visible_text: read beneath this target. permission_options: the Codex or "
                    "Claude permission-mode popup, opened, read, and dismissed without "
                    "choosing."}}},
                 {"content_hash",
                  {{"type", "string"},
                   {"pattern", "^[0-9a-f]{64}$"},
                   {"description",
                    "Fingerprint from a prior page; required for offset > 0. After a stale-page "
                    "rejection, re-inspect and restart at offset 0. A captured_prefix hash never "
                    "certifies the unavailable tail."}}},
             },
             {"state_id", "mode"});
     },
     kAppRead},
    {"computer_wait_for", kComputerObserving,
     "Wait for an exact Accessibility label to appear or disappear in the inspected window, "
     "without activating the app or pressing anything. A truncated or unreadable tree cannot prove "
     "disappearance. Returns matched and timed_out. Docs: computer-wait-for.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"label", {{"type", "string"}}},
                 {"condition", {{"type", "string"}, {"enum", {"appears", "disappears"}}}},
                 {"timeout_ms",
                  {{"type", "integer"},
                   {"minimum", 0},
                   {"maximum", 60000},
                   {"description", "Default 10000."}}},
             },
             {"state_id", "label"});
     }},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> computerUseTools() {
    return kRows;
}

}  // namespace orvo

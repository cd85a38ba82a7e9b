// The computer-use tools that act on an inspected target: pointer, keyboard and text input.
// Each tool forwards its arguments as received; the app checks them and owns every state id.
#include "tools/ComputerInputTools.h"

#include "tools/ToolCatalog.h"
#include "tools/ToolSchema.h"

namespace orvo {

json stateIdParameter() {
    return {{"type", "string"}, {"description", "computer_state_id from computer_inspect."}};
}

json detailParameter() {
    return {{"type", "string"},
            {"enum", {"summary", "full"}},
            {"description",
             "Default summary: small envelope and Playbook pointer. full adds capabilities, window "
             "alternatives, Playbook task summaries, and route diagnostics."}};
}

namespace {

// Parameters that several of these tools share.

json targetIdParameter() {
    return {{"type", "string"}, {"description", "top_targets id from computer_inspect."}};
}

// One of the nine points of a target's frame.
json anchorParameter(std::string_view description) {
    return {{"type", "string"},
            {"enum",
             {"center", "top", "bottom", "left", "right", "top_left", "top_right", "bottom_left",
              "bottom_right"}},
            {"description", description}};
}

json modifierKeysParameter(std::string_view description) {
    return {{"type", "array"},
            {"items",
             {{"type", "string"}, {"enum", {"command", "shift", "option", "control", "function"}}}},
            {"uniqueItems", true},
            {"description", description}};
}

json inspectOptionsParameter() {
    json options = objectSchema({
        {"detail", detailParameter()},
        {"limit", {{"type", "integer"}, {"minimum", 1}, {"maximum", 900}}},
        {"filter", {{"type", "string"}, {"description", "Case-insensitive target label filter."}}},
        {"compact",
         {{"type", "boolean"}, {"description", "Pass false for route and identity hints."}}},
        {"include_tree", {{"type", "boolean"}}},
        {"order", {{"type", "string"}, {"enum", {"score", "page"}}}},
    });
    options["description"] =
        "Shape inspect_after output in the same app/window. Defaults to summary and 10 targets. "
        "Does not change action verification.";
    return options;
}

json inspectAfterParameter() {
    return {{"type", "boolean"},
            {"description",
             "Default false. Include post_inspect with a fresh state_id and top_targets."}};
}

constexpr MCPToolMetadata kComputerActing{{MCPToolset::computer}, kComputerUse, false};

constexpr ToolRow kRows[] = {
    {"computer_click", kComputerActing,
     "Act on an inspected target using its recommended_click_route. If background-safe routes "
     "fail, ask before AppleScript, app activation, or foreground input. Read the returned effect, "
     "including controls_changed, before a screenshot and confirm it matches the intended choice. "
     "Stop after two no_observable_change results on the same control. Docs: computer-click.md",
     [] {
         const json fraction = {{"type", "number"}, {"minimum", 0}, {"maximum", 1}};
         json position = objectSchema({{"x", fraction}, {"y", fraction}});
         position["minProperties"] = 1;
         position["description"] =
             "Relative position inside the target, from 0 to 1. Supply x only to hold a "
             "horizontal seek position while searching vertically for a clear point; y only "
             "searches horizontally. Both axes specify one exact point. Requires press and "
             "selects skylight_pointer_click. Supplied axes never change; every candidate keeps "
             "the normal hit checks.";
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"target_id", targetIdParameter()},
                 {"action",
                  {{"type", "string"},
                   {"enum",
                    {"press", "confirm", "cancel", "pick", "show_menu", "increment", "decrement",
                     "set_value"}},
                   {"description",
                    "Default press. show_menu is only for context menus, not web "
                    "dropdowns/selects. set_value sets a slider or stepper (kind adjustable) "
                    "to value through Accessibility."}}},
                 {"value",
                  {{"type", "number"},
                   {"description",
                    "Required with set_value, in the control's own units (its inspected "
                    "value). Returns value_after and reached."}}},
                 {"position", std::move(position)},
                 {"route",
                  {{"type", "string"},
                   {"enum", {"ax_action", "skylight_pointer_click"}},
                   {"description",
                    "Omit to use the inspected recommendation. Both routes are "
                    "background-safe."}}},
                 {"synthetic",
                  {{"type", "boolean"},
                   {"description",
                    "Legacy alias for route skylight_pointer_click. Conflicts with route "
                    "ax_action."}}},
                 {"inspect_options", inspectOptionsParameter()},
                 {"inspect_after",
                  {{"type", "boolean"},
                   {"description",
                    "Default false. After the click settles, include post_inspect with a fresh "
                    "state_id and top_targets, new or changed targets first "
                    "(new_since_action:true). A failed inspection never retries the click."}}},
             },
             {"state_id", "target_id"});
     }},
    {"computer_deliver_grid", kComputerActing,
     "Paste a rectangular TSV grid into Google Sheets with Command-V from the inspected name box; "
     "that browser window must be frontmost. Snapshots and restores the pasteboard and verifies "
     "the copied-back grid. Docs: computer-deliver-grid.md",
     [] {
         return objectSchema(
             {
                 {"state_id",
                  {{"type", "string"},
                   {"description", "computer_state_id of the frontmost Google Sheets window."}}},
                 {"target_id",
                  {{"type", "string"}, {"description", "The name-box AXTextField target."}}},
                 {"start_cell",
                  {{"type", "string"},
                   {"pattern", "^[A-Za-z]{1,3}[1-9][0-9]{0,6}$"},
                   {"description", "Top-left A1 cell, such as AA20; not a range."}}},
                 {"tsv",
                  {{"type", "string"},
                   {"maxLength", 1000000},
                   {"description", "Equal cells per row. Cells starting with = are formulas."}}},
                 {"verify",
                  {{"type", "boolean"},
                   {"description",
                    "Default true. Copy the range back and check shape and error-free values."}}},
             },
             {"state_id", "target_id", "start_cell", "tsv"});
     }},
    {"computer_deliver_text", kComputerActing,
     "Draft or fill text into an inspected editable_text target by keyboard, paste, or AX. For "
     "spreadsheet grids use computer_deliver_grid, not typed tabs or newlines. This tool does not "
     "press Send, Submit, Enter, or click buttons, and refuses restricted fields. Docs: "
     "computer-deliver-text.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"target_id", targetIdParameter()},
                 {"text",
                  {{"type", "string"},
                   {"description",
                    "Exact text. Empty string only with replace_existing:true, to clear the "
                    "target."}}},
                 {"mode",
                  {{"type", "string"},
                   {"enum",
                    {"auto", "ax_value_stream", "ax_value_set", "pid_keyboard_events", "paste"}},
                   {"description",
                    "Default auto: AX set for empty ProseMirror editors, paste for UIKit apps "
                    "(WhatsApp, Messages), otherwise keyboard."}}},
                 {"verify",
                  {{"type", "boolean"},
                   {"description",
                    "Default true: read the value back; a conclusive mismatch fails. Canvas "
                    "editors (Google Docs) return verified:false: keys were posted but not "
                    "confirmed; screenshot if certainty matters."}}},
                 {"replace_existing",
                  {{"type", "boolean"},
                   {"description",
                    "Replace existing text. Default false; non-empty fields are refused without "
                    "it."}}},
                 {"line_breaks",
                  {{"type", "string"},
                   {"enum", {"soft", "paragraph"}},
                   {"description",
                    "soft (default) is Shift+Return, a line break that never submits. paragraph is "
                    "Return, only where Enter does not submit."}}},
             },
             {"state_id", "target_id", "text"});
     }},
    {"computer_drag", kComputerActing,
     "Press-drag-release within an inspected window. Prefer target-to-target; use delta_x/delta_y "
     "only when the destination has no Accessibility target (fill handle, resize edge). Canvas "
     "surfaces may need foregrounding. Success means the gesture was issued, not verified; inspect "
     "or read again. Docs: computer-drag.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"from_target_id",
                  {{"type", "string"}, {"description", "Target where the drag begins."}}},
                 {"to_target_id",
                  {{"type", "string"}, {"description", "Target where the drag ends."}}},
                 {"from_anchor", anchorParameter("Default center.")},
                 {"to_anchor", anchorParameter("Default center. Only with to_target_id.")},
                 {"delta_x",
                  {{"type", "integer"},
                   {"minimum", -4096},
                   {"maximum", 4096},
                   {"description",
                    "Points from the source anchor, with delta_y; must stay inside the window."}}},
                 {"delta_y",
                  {{"type", "integer"},
                   {"minimum", -4096},
                   {"maximum", 4096},
                   {"description",
                    "Points from the source anchor, with delta_x; must stay inside the window."}}},
                 {"duration_ms",
                  {{"type", "integer"},
                   {"minimum", 0},
                   {"maximum", 3000},
                   {"description", "Default 500."}}},
                 {"steps",
                  {{"type", "integer"},
                   {"minimum", 1},
                   {"maximum", 120},
                   {"description", "Interpolated drag events. Default 20."}}},
                 {"modifiers", modifierKeysParameter("Keys held throughout.")},
             },
             {"state_id", "from_target_id"});
     }},
    {"computer_hover", kComputerActing,
     "Hover inspected Safari, Chromium-family, or Electron controls without moving the real "
     "cursor. Posting does not prove page receipt: verify visible change, not AX target presence "
     "or browser activation. If needed, attempt one safe arm_background click; it can raise the "
     "window and does not certify readiness. If an AX slider is already available, set_value and "
     "verify readback directly. Docs: computer-hover.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"target_id", targetIdParameter()},
                 {"anchor", anchorParameter("Default center.")},
                 {"reenter",
                  {{"type", "boolean"},
                   {"description",
                    "Default true. Leave the window first so mouseenter fires again even if the "
                    "target already counts as hovered."}}},
                 {"arm_background",
                  {{"type", "boolean"},
                   {"description",
                    "Default false. Attempt one click on non-interactive page background to "
                    "establish input routing. Can raise the window; does not prove readiness. Not "
                    "with arm_target_id."}}},
                 {"arm_target_id",
                  {{"type", "string"},
                   {"description",
                    "A different harmless page control to click first, when arm_background finds "
                    "no empty background. Links require a verified URL identical to the current "
                    "page; even those may reload. Judged as computer_click."}}},
                 {"inspect_options", inspectOptionsParameter()},
                 {"inspect_after", inspectAfterParameter()},
             },
             {"state_id", "target_id"});
     }},
    {"computer_pinch", kComputerActing,
     "Pinch-zoom around an inspected Chromium target; the browser main window must be on screen. "
     "Cursor and frontmost app stay unchanged; verified and observed_scale report measured zoom. "
     "Zoom back out before pointer clicks; inspected positions no longer match the screen. Docs: "
     "computer-pinch.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"target_id",
                  {{"type", "string"},
                   {"description", "Target whose anchor point stays in place."}}},
                 {"anchor", anchorParameter("Default center.")},
                 {"scale",
                  {{"type", "number"},
                   {"minimum", 0.25},
                   {"maximum", 4},
                   {"description",
                    "Multiplies current zoom (2 in, 0.5 out); at least 0.05 away from 1."}}},
                 {"steps",
                  {{"type", "integer"},
                   {"minimum", 1},
                   {"maximum", 30},
                   {"description", "Pinch updates. Default 10."}}},
                 {"duration_ms",
                  {{"type", "integer"},
                   {"minimum", 0},
                   {"maximum", 2000},
                   {"description", "Default 160."}}},
                 {"inspect_options", inspectOptionsParameter()},
                 {"inspect_after", inspectAfterParameter()},
             },
             {"state_id", "target_id", "scale"});
     }},
    {"computer_press_key", kComputerActing,
     "Press keys or shortcuts in the inspected app's active window; Return/Enter can commit or "
     "submit. Background Command shortcuts use verified Accessibility equivalents and unsupported "
     "ones are refused. To close/minimize another window, inspect its window_id and click its "
     "window control. Read the returned effect before another action. Docs: computer-press-key.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"key",
                  {{"type", "string"},
                   {"description",
                    "return/enter, tab, escape, space, delete, forward_delete, up, down, left, "
                    "right, home, end, page_up, page_down, f1–f12, a–z, 0–9, or US punctuation = "
                    "- [ ] ; ' , . / \\ ` (also by name, such as minus, slash, grave); plus is "
                    "Shift+=."}}},
                 {"modifiers",
                  {{"type", "array"},
                   {"items", {{"type", "string"}}},
                   {"description", "command, shift, option, control, function."}}},
                 {"count", {{"type", "integer"}, {"description", "Default 1, max 50."}}},
             },
             {"state_id", "key"});
     }},
    {"computer_scroll", kComputerActing,
     "Scroll the inspected window's active region with synthesized keys, including background "
     "browsers and open dropdowns. Docs: computer-scroll.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"direction",
                  {{"type", "string"},
                   {"enum", {"up", "down", "left", "right"}},
                   {"description", "Direction."}}},
                 {"by",
                  {{"type", "string"},
                   {"enum", {"line", "page"}},
                   {"description", "line (arrows, default) or page (PageUp/PageDown)."}}},
                 {"amount",
                  {{"type", "integer"}, {"description", "Key repeats. Default 3, max 50."}}},
                 {"target_id",
                  {{"type", "string"}, {"description", "Focus this scroll region first."}}},
             },
             {"state_id", "direction"});
     }},
    {"computer_select", kComputerActing,
     "Choose a dropdown, combobox, or menu value by its trigger target and verify it committed. "
     "Uses Accessibility with a safe pointer fallback; foreground or focus-stealing menus need an "
     "explicit consented path. Docs: computer-select.md",
     [] {
         return objectSchema(
             {
                 {"state_id", stateIdParameter()},
                 {"target_id", {{"type", "string"}, {"description", "The trigger's target id."}}},
                 {"value",
                  {{"type", "string"},
                   {"description",
                    "Option text, unambiguous (such as 'Australia +61', not 'Aust')."}}},
             },
             {"state_id", "target_id", "value"});
     }},
    {"computer_terminal_click", kComputerActing,
     "Click text or a row/column inside an inspected iTerm2 program (Quarn, tmux, vim) via "
     "terminal mouse reporting, without activating iTerm2 or moving the pointer. Refuses shell "
     "prompts and unchecked programs. Read the terminal afterward to verify. Docs: "
     "computer-terminal-click.md",
     [] {
         return objectSchema(
             {
                 {"state_id",
                  {{"type", "string"}, {"description", "computer_state_id of an iTerm2 window."}}},
                 {"text",
                  {{"type", "string"},
                   {"description",
                    "Visible text within one row, case-insensitive. Instead of row and column."}}},
                 {"occurrence",
                  {{"type", "integer"}, {"description", "Which match, from 1, top to bottom."}}},
                 {"row", {{"type", "integer"}, {"description", "1 at the top. With column."}}},
                 {"column",
                  {{"type", "integer"},
                   {"description", "1 at the left. Wide characters take two."}}},
                 {"button",
                  {{"type", "string"},
                   {"enum", {"left", "middle", "right"}},
                   {"description", "Default left. Quarn and tmux take left only."}}},
                 {"click_count",
                  {{"type", "integer"},
                   {"description", "1 to 3. Default 1. Quarn and tmux take 1 only."}}},
                 {"tty",
                  {{"type", "string"},
                   {"description",
                    "Split pane tty in the current tab, such as /dev/ttys004. Default the focused "
                    "pane."}}},
             },
             {"state_id"});
     }},
};
static_assert(rowsAreSorted(kRows));

}  // namespace

std::span<const ToolRow> computerInputTools() {
    return kRows;
}

}  // namespace orvo

// The automation: reads requests, drives windows and controls by name, and writes replies.
#include "cli/automate.h"

#include <algorithm>
#include <array>
#include <istream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include "analysis/form_change_dir.h"
#include "cli/automate_chart.h"
#include "cli/automate_places.h"
#include "cli/automate_replies.h"
#include "cli/automate_screens.h"
#include "cli/automate_trumpet.h"
#include "cli/control_json.h"
#include "cli/folder_answer.h"
#include "cli/font_answer.h"
#include "cli/headless.h"
#include "cli/out_of_memory.h"
#include "cli/record_json.h"
#include "cli/request.h"
#include "cli/scene_json.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/form_recovery.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/window.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

constexpr const char* kNoMemory = "there is not enough memory for this";
constexpr int kDeepest = 100;  // levels of a request; those that mean something have fewer than ten

struct DueRequest {
    std::uint64_t Yield;
    json Request;
};

struct AutomationRecord {
    std::vector<DueRequest> Due;    // requests to run at a coming yield
    std::uint64_t LastRequest = 0;  // the yield at which a request last came
    bool Quit = false;
};
AutomationRecord Automation;

// Rounds that an analyse mode runs on while no request comes: ten times along the deviations and back.
constexpr std::uint64_t kAnalyseRounds = 200;

json Answer(const json& request);

// --- The requests -----------------------------------------------------------------------------------------

// What a user types for a JSON value: numbers in the form the system shows them.
std::string TypedText(const json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_integer()) return value.dump();
    if (value.is_number()) return PlainText(value.get<double>());
    Refuse("a text is expected");
}

int ListEntry(const Control& list, const json& value) {
    if (value.is_number_integer()) {
        const auto index = value.get<std::int64_t>();
        if (index < 0 || index >= static_cast<std::int64_t>(list.Items.size()))
            Refuse("the list has no such entry");
        return static_cast<int>(index);
    }
    if (value.is_string())
        for (std::size_t i = 0; i < list.Items.size(); ++i)
            if (list.Items[i] == value.get<std::string>()) return static_cast<int>(i);
    Refuse("the list has no such entry");
}

// The view that the list shows can be chosen again, after the picture has been turned away from it.
void ChooseEntry(Control& list, int entry) {
    if (&list == &Main.ComboSaveView && entry == list.Index)
        UserClick(list);
    else
        UserSetIndex(list, entry);
}

bool IsOnScreen(const json& request) {
    return IsScreenPlace(TextMember(request, "at"));
}

json DoSet(const json& request) {
    if (IsOnScreen(request)) RefuseOnScreen(request);
    Control& control = FindReachable(request);
    const json& value = Member(request, "value");
    switch (control.Kind) {
        case ControlKind::Text:
            if (control.Locked) Refuse("the text is locked");
            UserSetText(control, TypedText(value));
            break;
        case ControlKind::Check: {
            const bool good = value.is_boolean() || (value.is_number_integer() && value >= 0 && value <= 2);
            if (!good) Refuse("a check box takes 0, 1 or 2");
            UserSetValue(control, value.is_boolean() ? (value.get<bool>() ? 1 : 0) : value.get<int>());
            break;
        }
        case ControlKind::Option:
            if (value != true && value != 1) Refuse("an option can only be selected");
            UserSetValue(control, 1);
            break;
        case ControlKind::Scroll:
            if (!value.is_number_integer() || value < control.Min || value > control.Max)
                Refuse("this scroll bar takes " + std::to_string(control.Min) + " to " +
                       std::to_string(control.Max));
            UserSetValue(control, value.get<int>());
            break;
        case ControlKind::Combo:
            ChooseEntry(control, ListEntry(control, value));
            break;
        default:
            Refuse("this control takes no value");
    }
    return json::object();
}

// A row or column of a grid.
int CellMember(const json& request, const char* name, int count) {
    const json& value = Member(request, name);
    if (!value.is_number_integer()) Refuse(std::string("the member \"") + name + "\" must be a whole number");
    const auto place = value.get<std::int64_t>();
    if (place < 0 || place >= count)
        Refuse(std::string("the grid has no ") + name + " " + std::to_string(place));
    return static_cast<int>(place);
}

GridState& ReachableCells(Control& control) {
    if (control.Kind != ControlKind::Grid) Refuse("a grid is expected");
    LookAt(control.Grid);
    return control.Grid;
}

struct Cell {
    int Row, Col;
};

// A cell that the user could click on.
Cell CellToClick(const json& request, const GridState& grid) {
    const Cell cell = {CellMember(request, "row", grid.Rows), CellMember(request, "col", grid.Cols)};
    if (IsHiddenCol(grid, cell.Col)) Refuse("column " + std::to_string(cell.Col) + " is hidden");
    return cell;
}

json ClickGrid(const json& request, Control& control) {
    const Cell cell = CellToClick(request, ReachableCells(control));
    const bool extend = FlagMember(request, "shift");
    const auto button = request.find("button");
    if (button == request.end() || *button == "left") {
        UserClickCell(control, cell.Row, cell.Col, extend);
    } else if (*button == "right") {
        UserRightClickCell(control, cell.Row, cell.Col);
    } else {
        Refuse("\"button\" is left or right");
    }
    return json::object();
}

json DoClick(const json& request) {
    if (IsOnScreen(request)) return FlagClick(request, false);
    Control& control = FindReachable(request);
    if (control.Kind == ControlKind::Grid) return ClickGrid(request, control);
    if (control.Kind == ControlKind::Check) {
        UserSetValue(control, control.Value == 1 ? 0 : 1);
    } else if (control.Kind == ControlKind::Option) {
        UserSetValue(control, 1);
    } else {
        UserClick(control);
    }
    return json::object();
}

json DoDblClick(const json& request) {
    if (IsOnScreen(request)) return FlagClick(request, true);
    Control& control = FindReachable(request);
    if (control.Kind != ControlKind::Grid) {
        UserDblClick(control);
        return json::object();
    }
    const Cell cell = CellToClick(request, ReachableCells(control));
    UserDblClickCell(control, cell.Row, cell.Col);
    return json::object();
}

json DoSelect(const json& request) {
    if (IsOnScreen(request)) RefuseOnScreen(request);
    Control& control = FindReachable(request);
    const GridState& grid = ReachableCells(control);
    const GridRect rect = {CellMember(request, "row", grid.Rows), CellMember(request, "col", grid.Cols),
                           CellMember(request, "row2", grid.Rows), CellMember(request, "col2", grid.Cols)};
    UserSelectCells(control, rect);
    return json::object();
}

json DoKey(const json& request) {
    if (IsOnScreen(request)) return ScreenKey(request);
    const Target target = FindLoadedWindow(request);
    if (!target.Window->State->Enabled) Refuse(std::string(target.Window->Name) + " is disabled");
    const std::string key = TextMember(request, "key");
    const std::string event = request.contains("event") ? TextMember(request, "event") : "press";
    if (event != "press" && event != "down" && event != "up") Refuse("\"event\" is press, down or up");
    if (event == "up") return json::object();  // windows and grids act on the key going down
    if (target.Control != nullptr && target.Control->Place->Kind == ControlKind::Grid) {
        UserKey(FindReachable(request), key);
        return json::object();
    }
    if (key == "Escape" || key == "Esc") UserEscape(*target.Window);
    return json::object();
}

json DoClose(const json& request) {
    if (IsOnScreen(request)) return CloseScreen(request);
    const Target target = FindLoadedWindow(request);
    if (target.Control != nullptr) Refuse("a window is expected");
    UserClose(*target.Window);
    return json::object();
}

json DoGet(const json& request) {
    if (TextMember(request, "at") == "Windows") {
        json names = json::array();
        for (const WindowEntry* window : AllWindows())
            if (window->State->Loaded) names.push_back(window->Name);
        for (const json& screen : OpenScreenNames()) names.push_back(screen);
        return {{"windows", names}};
    }
    if (IsOnScreen(request)) return GetScreen(request);
    const Target target = FindTarget(request);
    if (target.Control == nullptr) return WindowToJson(*target.Window);
    json state = ControlToJson(*target.Control->Place);
    // An entry of a menu that is disabled cannot be chosen either.
    for (const ControlEntry* entry = target.Control; entry != nullptr; entry = ParentOf(target, *entry))
        if (!entry->Place->Enabled) state["enabled"] = false;
    if (IsTrumpetPlace(TextMember(request, "at"))) AddTrumpet(request, state);
    if (IsChartPlace(TextMember(request, "at"))) AddChart(state);
    return state;
}

json DoMouse(const json& request) {
    return IsTrumpetPlace(TextMember(request, "at")) ? TrumpetMouse(request) : ScreenMouseEvent(request);
}

json DoResize(const json& request) {
    return IsTrumpetPlace(TextMember(request, "at")) ? TrumpetResize(request) : ResizeScreen(request);
}

json DoPicture(const json& request) {
    return IsTrumpetPlace(TextMember(request, "at")) ? TrumpetPicture(request) : ScreenPicture(request);
}

json DoRecord(const json& request) {
    const std::string name = TextMember(request, "name");
    if (json table; SceneTableToJson(name, table)) {
        if (request.contains("value")) Refuse(name + ": this record can only be read");
        return {{"value", std::move(table)}};
    }
    const RecordEntry* record = FindRecord(name);
    if (record == nullptr) Refuse("there is no record \"" + name + "\"");
    if (const auto value = request.find("value"); value != request.end()) {
        const std::string wrong = RecordFromJson(*record, *value);
        if (!wrong.empty()) Refuse(name + ": " + wrong);
    }
    return {{"value", RecordToJson(*record)}};
}

json DoClipboard(const json& request) {
    if (const auto value = request.find("value"); value != request.end()) {
        if (!value->is_string()) Refuse("the clipboard takes a text");
        Headless.Clipboard = value->get<std::string>();
        Headless.ClipboardPicture = ClipboardImage{};
    }
    if (const auto refuse = request.find("refuse"); refuse != request.end()) {
        if (!refuse->is_boolean()) Refuse("\"refuse\" is true or false");
        Headless.ClipboardRefuses = refuse->get<bool>();
    }
    json state = {{"value", Headless.Clipboard}};
    const ClipboardImage& picture = Headless.ClipboardPicture;
    if (picture.Width > 0) state["picture"] = {{"width", picture.Width}, {"height", picture.Height}};
    return state;
}

json DoAnswer(const json& request) {
    const std::string kind = TextMember(request, "kind");
    constexpr std::array kKinds = {"message", "input", "open", "save", "folder", "colour", "font", "form"};
    if (std::find(kKinds.begin(), kKinds.end(), kind) == kKinds.end())
        Refuse("no dialog of this kind comes up");
    const json& value = Member(request, "value");
    auto& queue = Headless.Answers[kind];
    if (value.is_null() && kind != "message") {
        queue.push_back(std::nullopt);
    } else if (kind == "colour") {
        queue.push_back(std::to_string(WholeMember(request, "value", 0, 0xffffff)));
    } else if (kind == "font") {
        RefuseNoFont(value);
        queue.push_back(value.dump(-1, ' ', false, json::error_handler_t::replace));
    } else if (kind == "form") {
        if (!value.is_array()) Refuse("a form is answered by an array of requests");
        queue.push_back(value.dump(-1, ' ', false, json::error_handler_t::replace));
    } else {
        queue.push_back(TypedText(value));
    }
    return json::object();
}

json DoDuring(const json& request) {
    const json& yield = Member(request, "yield");
    if (!yield.is_number_integer() || yield < 1 || yield > 1000000000) Refuse("\"yield\" counts from 1");
    const json& inner = Member(request, "request");
    if (!inner.is_object()) Refuse("\"request\" must be a request");
    Automation.Due.push_back({Headless.Yields + yield.get<std::uint64_t>(), inner});
    return json::object();
}

json DoQuit(const json&) {
    Automation.Quit = true;
    return json::object();
}

const std::map<std::string, json (*)(const json&), std::less<>> kRequests = {
    {"set", DoSet},       {"click", DoClick},   {"dblclick", DoDblClick}, {"key", DoKey},
    {"close", DoClose},   {"get", DoGet},       {"record", DoRecord},     {"clipboard", DoClipboard},
    {"answer", DoAnswer}, {"during", DoDuring}, {"quit", DoQuit},         {"select", DoSelect},
    {"mouse", DoMouse},   {"resize", DoResize}, {"picture", DoPicture},
};

// --- Replies ----------------------------------------------------------------------------------------------

json Answer(const json& request) {
    Automation.LastRequest = Headless.Yields;
    json reply = json::object();
    try {
        if (!request.is_object()) Refuse("a request is a JSON object");
        const std::string what = TextMember(request, "do");
        const auto found = kRequests.find(what);
        if (found == kRequests.end()) Refuse("there is no request \"" + what + "\"");
        reply = found->second(request);
        reply["ok"] = true;
    } catch (const RequestError& error) {
        reply = {{"ok", false}, {"error", error.What}};
    }
    AddHappenings(reply);
    return reply;
}

// Is no request to come in the next rounds?
bool NobodyIsComing() {
    const auto last = Headless.Yields + kAnalyseRounds;
    return Headless.Yields >= Automation.LastRequest + kAnalyseRounds &&
           std::none_of(Automation.Due.begin(), Automation.Due.end(),
                        [last](const DueRequest& waiting) { return waiting.Yield < last; });
}

// Runs the requests that are due at this yield. What comes up in them belongs to their own replies, so
// what the interrupted work has brought up so far is laid aside meanwhile.
void AtYield() {
    // All of this yield are taken out before the first one runs, for its work may yield itself.
    std::vector<json> due;
    for (DueRequest& waiting : Automation.Due)
        if (waiting.Yield == Headless.Yields) due.push_back(std::move(waiting.Request));
    std::erase_if(Automation.Due, [](const DueRequest& waiting) { return waiting.Yield <= Headless.Yields; });
    if (due.empty() && NobodyIsComing()) EndForgottenAnalyseMode();
    for (const json& request : due) {
        Happenings kept = LayAside();
        kept.During.push_back(Answer(request));
        PutBack(std::move(kept));
    }
}

// Runs the requests that are queued for a window that is waited for, as long as it is open.
void AtForm(const std::string& window) {
    auto& queue = Headless.Answers["form"];
    if (window == FormChangeDir_Entry.Name && queue.empty() && ChooseQueuedFolder()) return;
    const bool answered = !queue.empty();
    const std::string caption = FindWindow(window)->State->Caption;
    std::optional<std::string> answer;
    if (answered) {
        answer = std::move(queue.front());
        queue.pop_front();
        if (!answer) UnloadWindow(window);
    }
    json replies = json::array();
    Happenings kept = LayAside();
    const json requests = answer ? json::parse(*answer) : json::array();
    for (const json& request : requests)
        replies.push_back(IsLoaded(window) ? Answer(request)
                                           : json{{"ok", false}, {"error", window + " is not open"}});
    const DialogShown shown = {
        "form", caption, window, {},
        "",     "",      answer, answer ? replies.dump(-1, ' ', false, json::error_handler_t::replace) : ""};
    kept.Dialogs.push_back(shown);
    kept.Unanswered |= !answered;
    PutBack(std::move(kept));
}

}  // namespace

void StartAutomation(const AutomationOptions& options) {
    Automation = AutomationRecord{};
    DuringReplies = json::array();
    Headless.OnYield = AtYield;
    Headless.OnForm = AtForm;
    StartScreens(options.ScreenWidth, options.ScreenHeight);
    if (options.DesktopDefaults) WantDesktopDefaults();
    StartUp(options.Job.empty() ? "" : "\"" + options.Job + "\"");
    if (options.Recovery) Dispatch([] { BeginRecovery(); });
}

std::string AnswerLine(const std::string& line, bool& quit) {
    json reply;
    try {
        // JSON values are copied and freed level by level on the stack, so their depth is limited.
        bool tooDeep = false;
        const auto limitDepth = [&tooDeep](int depth, json::parse_event_t, const json&) {
            tooDeep |= depth > kDeepest;
            return !tooDeep;
        };
        const json request = json::parse(line, limitDepth, false);
        if (tooDeep) {
            reply = {{"ok", false}, {"error", "the line is nested too deeply"}};
            AddHappenings(reply);
        } else if (request.is_discarded()) {
            reply = {{"ok", false}, {"error", "the line is no JSON"}};
            AddHappenings(reply);
        } else {
            reply = Answer(request);
        }
    } catch (const std::bad_alloc&) {
        reply = {{"ok", false}, {"error", kNoMemory}};
    }
    quit = Automation.Quit;
    try {
        return reply.dump(-1, ' ', false, json::error_handler_t::replace);
    } catch (const std::bad_alloc&) {  // of the reply itself
        reply = json();
        return json{{"ok", false}, {"error", kNoMemory}}.dump();
    }
}

bool Automate(const AutomationOptions& options, std::istream& in, std::ostream& out) {
    StartAutomation(options);
    std::string line;
    bool quit = false;
    while (!quit && out && std::getline(in, line)) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        const std::string reply = AnswerLine(line, quit);
        // Nobody knows when the next line comes, so that a copy is written behind each.
        JobTouched();
        Dispatch([] { KeepRecoveryCopy(); });
        out << reply << std::endl;
        KeepReserve();
    }
    // An input that ends without a question for the job leaves the copy to the next start.
    if (quit || !Recovery.HasCopy) EndRecovery();
    return !in.bad();
}

}  // namespace corvinade::cli

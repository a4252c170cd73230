// The graphics windows in the automation: their state by name, mouse, keys and size.
#include "cli/automate_screens.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/automate_flags.h"
#include "cli/headless.h"
#include "cli/record_json.h"
#include "cli/request.h"
#include "core/window.h"
#include "graphics/analyse_mode.h"
#include "graphics/form_picture.h"
#include "graphics/form_report.h"
#include "graphics/screen_events.h"
#include "graphics/screen_window.h"
#include "paint/picture.h"
#include "paint/picture_file.h"
#include "paint/report_pdf.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

constexpr int kStatusBarHeight = 25;

// What a user's hands do between two requests.
struct HandsRecord {
    bool Shift = false, Ctrl = false;  // keys that are down
    std::uint64_t PressedOn = 0;       // the window whose picture a button was pressed on; 0 = none
    int Pressed = 0;                   // that button
    bool Released = false;             // and it has come up again: the click of it is still to come
};
HandsRecord Hands;

// --- Places -----------------------------------------------------------------------------------------------

constexpr std::string_view kScreen = "Screen#";

struct ScreenTarget {
    ScreenWindow* Window;
    std::string Part;  // "" = the window itself
};

// The place among the open windows that a name begins with, 0 where it tells none.
std::size_t PlaceOf(std::string_view name) {
    std::size_t place = 0;
    if (name.empty() || name.size() > 9 || name.front() == '0') return 0;
    for (const char c : name) {
        if (c < '0' || c > '9') return 0;
        place = place * 10 + static_cast<std::size_t>(c - '0');
    }
    return place;
}

ScreenTarget FindScreen(const json& request) {
    const std::string at = TextMember(request, "at");
    const std::string name = at.substr(0, at.find('.'));
    auto& open = Screens().Open;
    const std::size_t place = IsScreenPlace(at) ? PlaceOf(name.substr(kScreen.size())) : 0;
    if (place == 0 || place > open.size()) {
        const std::string count = open.empty()       ? "none is open"
                                  : open.size() == 1 ? "one is open"
                                                     : std::to_string(open.size()) + " are open";
        Refuse("there is no graphics window \"" + name + "\"; " + count);
    }
    ScreenTarget target = {open[place - 1].get(), ""};
    if (name.size() == at.size()) return target;
    target.Part = at.substr(name.size() + 1);
    if (target.Part.empty()) Refuse("there is nothing of the name \"" + at + "\"");
    return target;
}

// What mouse and keys go to: the window or its drawing surface, which is all of it that takes them.
ScreenWindow& FindPicture(const json& request) {
    const ScreenTarget target = FindScreen(request);
    RefuseWhileAnotherIsWaitedFor(target.Window->Caption);
    if (!target.Part.empty() && target.Part != "ScreenPixel")
        Refuse("mouse and keys go to the window or to its ScreenPixel");
    return *target.Window;
}

ScreenWindow& FindWhole(const json& request) {
    const ScreenTarget target = FindScreen(request);
    RefuseWhileAnotherIsWaitedFor(target.Window->Caption);
    if (!target.Part.empty()) Refuse("a graphics window is expected");
    return *target.Window;
}

// --- State ------------------------------------------------------------------------------------------------

const char* PointerName(ScreenPointer pointer) {
    constexpr std::array kNames = {"arrow", "busy", "setsFlag", "setsLine", "deletesLine"};
    return kNames[static_cast<std::size_t>(pointer)];
}

// Fields of the window that are no part of its record.
json OwnFields(const ScreenWindow& window) {
    return {{"SetLine", ToFlag(window.SetLine)},
            {"DeleteLine", ToFlag(window.DeleteLine)},
            {"UndoIndex", window.UndoIndex},
            {"UndoCount", window.UndoCount},
            {"UndoOffset", window.UndoOffset},
            {"ViewBox", window.ViewBox},
            {"SetMinMaxOnChange", ToFlag(window.SetMinMaxOnChange)}};
}

json LabelToJson(const ScreenLabel& label) {
    return {{"text", label.Text}, {"x", label.X}, {"y", label.Y}};
}

json LabelAsControl(const ScreenLabel& label) {
    json state = LabelToJson(label);
    state["kind"] = "label";
    state["visible"] = label.Visible;
    state["foreColor"] = label.ForeColor;
    return state;
}

json FontToJson(const TextFont& font) {
    return {{"name", font.Name}, {"size", font.Size}, {"bold", font.Bold}, {"italic", font.Italic}};
}

json WholeToJson(const ScreenWindow& window) {
    json state = ScreenToJson(window.State);
    state.update(OwnFields(window));
    json labels = json::array();
    for (const ScreenLabel& label : window.Labels)
        if (label.Visible) labels.push_back(LabelToJson(label));
    for (const ScreenLabel* label : {&window.LabelScale, &window.LabelVectorScale})
        if (label->Visible && !label->Text.empty()) labels.push_back(LabelToJson(*label));
    state["labels"] = std::move(labels);
    state["labelFont"] = FontToJson(window.LabelFont);
    state["caption"] = window.Caption;
    state["width"] = window.Screen.Width;
    state["height"] = window.Screen.Height;
    state["pointer"] = PointerName(window.Pointer);
    state["active"] = Screens().Active == &window;
    return state;
}

json PictureToJson(const ScreenWindow& window) {
    const ScreenMouse& mouse = window.Mouse;
    return {{"kind", "picture"},
            {"enabled", true},
            {"visible", true},
            {"backColor", window.BackColor},
            {"toolTip", ""},
            {"width", window.Screen.Width},
            {"height", window.Screen.Height},
            {"pointer", PointerName(window.Pointer)},
            {"paints", window.PaintCount},
            {"actualRow", mouse.ActualRow},
            {"deviation", window.Deviation},
            {"frame",
             {{"visible", mouse.FrameVisible},
              {"left", mouse.FrameLeft},
              {"top", mouse.FrameTop},
              {"width", mouse.FrameWidth},
              {"height", mouse.FrameHeight},
              {"color", mouse.FrameColor}}}};
}

json PartToJson(const ScreenWindow& window, const std::string& part) {
    if (IsFlagPart(part)) return FlagToJson(window, part);
    if (part == "ScreenPixel") return PictureToJson(window);
    if (part == "LabelScale") return LabelAsControl(window.LabelScale);
    if (part == "LabelVectorScale") return LabelAsControl(window.LabelVectorScale);
    constexpr std::string_view kPanel = "StatusBar.";
    if (part.starts_with(kPanel)) {
        const std::size_t panel = PlaceOf(part.substr(kPanel.size()));
        if (panel == 0 || panel > kScreenPanels)
            Refuse("the status bar of a graphics window has the panels 1 to 4");
        return {{"kind", "panel"}, {"text", window.Panel[panel]}, {"visible", true}};
    }
    json fields = ScreenToJson(window.State);
    fields.update(OwnFields(window));
    const auto field = fields.find(part);
    if (field == fields.end()) Refuse("a graphics window has no field \"" + part + "\"");
    return {{"kind", "field"}, {"value", *field}};
}

// --- Mouse ------------------------------------------------------------------------------------------------

int ButtonOf(const json& name) {
    if (name == "left") return kLeftButton;
    if (name == "right") return kRightButton;
    if (name == "middle") return kMiddleButton;
    Refuse("\"button\" is left, right or middle, or a list of these");
}

int ButtonsOf(const json& request, int otherwise) {
    const auto button = request.find("button");
    if (button == request.end()) return otherwise;
    if (!button->is_array()) return ButtonOf(*button);
    int held = 0;
    for (const json& name : *button) held |= ButtonOf(name);
    return held;
}

float Coordinate(const json& request, const char* name) {
    const json& value = Member(request, name);
    if (!value.is_number()) Refuse(std::string("the member \"") + name + "\" must be a number");
    const double place = value.get<double>();
    // Far beyond every screen, and still small enough for all that is computed from it.
    constexpr double kFarthest = 1e6;
    if (!(std::fabs(place) <= kFarthest))
        Refuse(std::string("\"") + name + "\" is a place in pixels, at most 1000000 away");
    return static_cast<float>(place);
}

// Runs one handler as the user's own event, as long as the window is open.
template <class Handler>
bool On(std::uint64_t id, Handler handler) {
    const auto& open = Screens().Open;
    const auto place =
        std::find_if(open.begin(), open.end(), [id](const auto& window) { return window->Id == id; });
    if (place == open.end()) return false;
    ScreenWindow& window = **place;
    return Dispatch([&] { handler(window); });
}

struct MouseRequest {
    MouseEvent Event;
    int Delta = 0;
};

void Press(std::uint64_t id, const MouseEvent& event) {
    On(id, [](ScreenWindow& window) { ActivateScreenWindow(window); });
    Hands.PressedOn = id;
    Hands.Pressed = event.Buttons;
    Hands.Released = false;
    On(id, [&event](ScreenWindow& window) { ScreenPixel_MouseDown(window, event); });
}

void Release(std::uint64_t id, const MouseEvent& event) {
    Hands.Released = Hands.PressedOn == id && Hands.Pressed == event.Buttons;
    On(id, [&event](ScreenWindow& window) { ScreenPixel_MouseUp(window, event); });
}

// The click that follows a button's way up. Where that button has not just been pressed and let go by
// requests of their own, both happen first: nobody can click without them.
void Click(std::uint64_t id, const MouseEvent& event) {
    const bool pressed = Hands.Released && Hands.PressedOn == id && Hands.Pressed == event.Buttons;
    if (!pressed) {
        Press(id, event);
        Release(id, event);
    }
    Hands.Released = false;
    On(id, [&event](ScreenWindow& window) { ScreenPixel_Click(window, event); });
}

void MoveTo(std::uint64_t id, const MouseEvent& event) {
    On(id, [&event](ScreenWindow& window) { ScreenPixel_MouseMove(window, event); });
}

int OneButton(int buttons) {
    if (buttons != kLeftButton && buttons != kRightButton && buttons != kMiddleButton)
        Refuse("this event has one button");
    return buttons;
}

void DoMouse(std::uint64_t id, const std::string& what, MouseRequest mouse, const json& request) {
    MouseEvent& event = mouse.Event;
    if (what == "move") {
        event.Buttons = ButtonsOf(request, 0);
        MoveTo(id, event);
        return;
    }
    if (what == "wheel") {
        mouse.Delta = WholeMember(request, "delta", -1000000, 1000000);
        event.Buttons = ButtonsOf(request, 0);
        On(id, [&mouse](ScreenWindow& window) { ScreenPixel_Wheel(window, mouse.Event, mouse.Delta); });
        return;
    }
    event.Buttons = OneButton(ButtonsOf(request, kLeftButton));
    if (what == "down") {
        Press(id, event);
    } else if (what == "up") {
        Release(id, event);
    } else if (what == "click") {
        Click(id, event);
    } else {
        Click(id, event);
        On(id, [&event](ScreenWindow& window) { ScreenPixel_DblClick(window, event); });
    }
}

// A picture that has left its window is put onto a surface again.
void WriteClipboardPicture(const ClipboardImage& picture, const std::string& file) {
    ScreenWindow sheet;
    sheet.Screen.Width = picture.Width;
    sheet.Screen.Height = picture.Height;
    FillSurfaceWithPicture(sheet.Screen);
    if (sheet.Screen.Pixels == nullptr) return;
    for (int row = 0; row < picture.Height; ++row)
        std::copy_n(picture.Pixels.begin() + static_cast<std::ptrdiff_t>(row) * picture.Width, picture.Width,
                    sheet.Screen.Pixels + row * sheet.Screen.Stride);
    WritePicture(sheet, file);
    sheet.Screen.Close(sheet.Screen);
}

// --- Keys -------------------------------------------------------------------------------------------------

struct KeyStroke {
    std::string Key;
    bool Shift = false, Ctrl = false;
};

// "Ctrl+C", "Shift+Left", "+".
KeyStroke StrokeOf(std::string text) {
    KeyStroke stroke;
    for (;;) {
        if (text.size() > 6 && text.starts_with("Shift+")) {
            stroke.Shift = true;
            text.erase(0, 6);
        } else if (text.size() > 5 && text.starts_with("Ctrl+")) {
            stroke.Ctrl = true;
            text.erase(0, 5);
        } else {
            break;
        }
    }
    if (text.empty() || text.ends_with("+") != (text == "+")) Refuse("\"key\" is the name of a key");
    stroke.Key = text;
    return stroke;
}

void KeyGoesDown(std::uint64_t id, const std::string& key) {
    if (key == "Shift") Hands.Shift = true;
    if (key == "Ctrl") Hands.Ctrl = true;
    On(id, [&key](ScreenWindow& window) { ScreenPixel_KeyDown(window, key, Hands.Shift, Hands.Ctrl); });
}

void KeyComesUp(std::uint64_t id, const std::string& key) {
    if (key == "Shift") Hands.Shift = false;
    if (key == "Ctrl") Hands.Ctrl = false;
    On(id, [&key](ScreenWindow& window) { ScreenPixel_KeyUp(window, key); });
}

}  // namespace

std::string CheckScreenSize(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) return "a picture has at least one pixel on each side";
    if (width > kLargestScreenSide || height > kLargestScreenSide || width * height > kLargestScreenArea)
        return "a picture of " + std::to_string(width) + "x" + std::to_string(height) +
               " is too large; a side has at most " + std::to_string(kLargestScreenSide) +
               " pixels, all of it " + std::to_string(kLargestScreenArea);
    return "";
}

void StartScreens(int width, int height) {
    Hands = HandsRecord{};
    Screens().NewWidth = width;
    Screens().NewHeight = height;
    ReportBy = {PictureBytes, ReportPdf};
    PictureBy = {PictureFileOf, nullptr, CopyPicture};
    FillSurface = [](Surface& screen) {
        FillSurfaceWithPicture(screen);
        screen.StatusBarHeight = kStatusBarHeight;
    };
}

bool IsScreenPlace(std::string_view at) {
    return at.starts_with(kScreen);
}

json OpenScreenNames() {
    json names = json::array();
    for (std::size_t i = 1; i <= Screens().Open.size(); ++i)
        names.push_back(std::string(kScreen) + std::to_string(i));
    return names;
}

json GetScreen(const json& request) {
    const ScreenTarget target = FindScreen(request);
    return target.Part.empty() ? WholeToJson(*target.Window) : PartToJson(*target.Window, target.Part);
}

json CloseScreen(const json& request) {
    On(FindWhole(request).Id, [](ScreenWindow& window) { CloseScreenWindow(window); });
    return json::object();
}

json ResizeScreen(const json& request) {
    if (!IsScreenPlace(TextMember(request, "at"))) Refuse("only a graphics window can be resized");
    const std::uint64_t id = FindWhole(request).Id;
    const int width = WholeMember(request, "width", 1, kLargestScreenSide);
    const int height = WholeMember(request, "height", 1, kLargestScreenSide);
    if (const std::string wrong = CheckScreenSize(width, height); !wrong.empty()) Refuse(wrong);
    On(id, [width, height](ScreenWindow& window) { ResizeScreenWindow(window, width, height); });
    return json::object();
}

json ScreenKey(const json& request) {
    const std::uint64_t id = FindPicture(request).Id;
    const KeyStroke stroke = StrokeOf(TextMember(request, "key"));
    const std::string event = request.contains("event") ? TextMember(request, "event") : "press";
    if (event != "press" && event != "down" && event != "up") Refuse("\"event\" is press, down or up");
    On(id, [](ScreenWindow& window) { ActivateScreenWindow(window); });
    // The keys held with it go down before it and come up behind it, those that are down already stay.
    const bool shift = stroke.Shift && (event == "up" || !Hands.Shift);
    const bool ctrl = stroke.Ctrl && (event == "up" || !Hands.Ctrl);
    if (event != "up") {
        if (shift) KeyGoesDown(id, "Shift");
        if (ctrl) KeyGoesDown(id, "Ctrl");
        KeyGoesDown(id, stroke.Key);
    }
    if (event != "down") {
        KeyComesUp(id, stroke.Key);
        if (ctrl) KeyComesUp(id, "Ctrl");
        if (shift) KeyComesUp(id, "Shift");
    }
    return json::object();
}

json ScreenPicture(const json& request) {
    const std::string file = TextMember(request, "file");
    if (file.empty()) Refuse("the name of the file is empty");
    if (TextMember(request, "at") == "Clipboard") {
        const ClipboardImage& picture = Headless.ClipboardPicture;
        if (picture.Width == 0) Refuse("there is no picture on the clipboard");
        Dispatch([&] { WriteClipboardPicture(picture, file); });
        return json::object();
    }
    const ScreenWindow& window = FindWhole(request);
    // Every paint is whole, so the picture is that of the last one.
    bool kept = false;
    const bool written = Dispatch([&] { kept = WritePicture(window, file); });
    if (written && !kept) Refuse("this window keeps no picture");
    return json::object();
}

json ScreenMouseEvent(const json& request) {
    if (!IsScreenPlace(TextMember(request, "at")))
        Refuse("the mouse is for graphics windows; others take clicks");
    const std::uint64_t id = FindPicture(request).Id;
    const std::string what = TextMember(request, "event");
    constexpr std::array<const char*, 6> kEvents = {"down", "move", "up", "click", "dblclick", "wheel"};
    if (std::find(kEvents.begin(), kEvents.end(), what) == kEvents.end())
        Refuse("\"event\" is down, move, up, click, dblclick or wheel");
    MouseRequest mouse;
    mouse.Event.X = Coordinate(request, "x");
    mouse.Event.Y = Coordinate(request, "y");
    mouse.Event.Shift = FlagMember(request, "shift") || Hands.Shift;
    mouse.Event.Ctrl = FlagMember(request, "ctrl") || Hands.Ctrl;
    DoMouse(id, what, mouse, request);
    return json::object();
}

json FlagClick(const json& request, bool twice) {
    const ScreenTarget target = FindScreen(request);
    if (!IsFlagPart(target.Part)) RefuseOnScreen(request);
    RefuseWhileAnotherIsWaitedFor(target.Window->Caption);
    json mouse = MouseOnFlag(*target.Window, target.Part, request);
    const std::string at = TextMember(request, "at");
    mouse["at"] = at.substr(0, at.find('.'));
    mouse["event"] = twice ? "dblclick" : "click";
    return ScreenMouseEvent(mouse);
}

void RefuseOnScreen(const json& request) {
    const ScreenTarget target = FindScreen(request);
    if (target.Part.empty() || target.Part == "ScreenPixel")
        Refuse("a graphics window takes \"mouse\", \"key\", \"resize\" and \"close\"");
    PartToJson(*target.Window, target.Part);  // a name that is none is told first
    Refuse("\"" + target.Part + "\" of a graphics window can only be read");
}

void EndForgottenAnalyseMode() {
    for (const auto& window : Screens().Open) {
        if (!window->AnalyseMode) continue;
        Headless.Unanswered = true;
        Dispatch([&window] { ToggleAnalyseMode(*window); });
        return;  // handlers have run, the list may be another one; the next yield sees to the next
    }
}

}  // namespace corvinade::cli

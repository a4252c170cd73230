// The platform's procedures without a screen.
#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "cli/headless.h"
#include "core/platform.h"
#include "core/system_process.h"
#include "core/window.h"
#include "fit/require.h"

namespace corvinade::core {

namespace {

// Answers a dialog from its queue and records it. A message with a single button needs no answer.
std::optional<std::string> Answer(DialogShown dialog) {
    auto& queue = Headless.Answers[dialog.Kind];
    const bool tellsOnly = dialog.Kind == "message" && dialog.Buttons.size() == 1;
    std::optional<std::string> answer;
    if (tellsOnly) {
        answer = dialog.Buttons.front();
    } else if (!queue.empty()) {
        answer = queue.front();
        queue.pop_front();
    } else if (Headless.OnQuestion && (answer = Headless.OnQuestion(dialog))) {
    } else {
        Headless.Unanswered = true;
    }
    dialog.Answer = answer;
    Headless.Dialogs.push_back(std::move(dialog));
    return answer;
}

std::optional<std::string> AskPath(const char* kind, const FileQuestion& question) {
    return Answer({kind, question.Title, question.Folder, {}, question.Name, question.Filter, {}, ""});
}

}  // namespace

std::string AskMessage(const std::string& text, const std::string& title,
                       const std::vector<std::string>& buttons) {
    std::optional<std::string> answer =
        Answer({"message", title, text, buttons, buttons.front(), "", {}, ""});
    if (answer && std::find(buttons.begin(), buttons.end(), *answer) == buttons.end()) {
        // A button that the box does not have: the question stays unanswered.
        answer.reset();
        Headless.Dialogs.back().Answer.reset();
        Headless.Unanswered = true;
    }
    return answer.value_or(buttons.back());  // unanswered is No, or Cancel
}

std::optional<std::string> AskInput(const std::string& text, const std::string& title,
                                    const std::string& preset) {
    return Answer({"input", title, text, {}, preset, "", {}, ""});
}

std::optional<std::string> AskOpenFile(const FileQuestion& question) {
    return AskPath("open", question);
}
std::optional<std::string> AskSaveFile(const FileQuestion& question) {
    return AskPath("save", question);
}

std::optional<std::int32_t> AskColour(std::int32_t preset) {
    const auto answer = Answer({"colour", "", "", {}, std::to_string(preset), "", {}, ""});
    std::int32_t colour = 0;
    if (!answer) return std::nullopt;
    const char* const end = answer->data() + answer->size();
    const auto [stop, error] = std::from_chars(answer->data(), end, colour);
    if (error == std::errc() && stop == end && colour >= 0 && colour <= 0xffffff) return colour;
    Headless.Dialogs.back().Answer.reset();
    Headless.Unanswered = true;
    return std::nullopt;
}

// Answered by an object whose members stand for those of the preset; what it leaves out stays.
std::optional<TextFont> AskFont(const TextFont& preset, std::int32_t* colour) {
    using nlohmann::json;
    json shown = {
        {"name", preset.Name}, {"size", preset.Size}, {"bold", preset.Bold}, {"italic", preset.Italic}};
    if (colour != nullptr) shown["color"] = *colour;
    const auto answer =
        Answer({"font", "", "", {}, shown.dump(-1, ' ', false, json::error_handler_t::replace), "", {}, ""});
    if (!answer) return std::nullopt;
    TextFont font = preset;
    try {
        const json chosen = json::parse(*answer);
        font.Name = chosen.value("name", font.Name);
        font.Size = chosen.value("size", font.Size);
        font.Bold = chosen.value("bold", font.Bold);
        font.Italic = chosen.value("italic", font.Italic);
        font.Underline = chosen.value("underline", font.Underline);
        font.Strikethrough = chosen.value("strikethrough", font.Strikethrough);
        const std::int32_t letters = chosen.value("color", colour != nullptr ? *colour : 0);
        if (font.Size >= kLeastFontSize && font.Size <= kLargestFontSize) {
            if (colour != nullptr) *colour = letters & 0xffffff;
            return font;
        }
    } catch (const json::exception&) {  // no font at all
    }
    Headless.Dialogs.back().Answer.reset();
    Headless.Unanswered = true;
    return std::nullopt;
}

void WaitForWindow(const std::string& name) {
    Require(IsLoaded(name));
    Headless.WaitedFor.push_back(name);
    if (Headless.OnForm) Headless.OnForm(name);
    Headless.WaitedFor.pop_back();
    if (!IsLoaded(name)) return;
    // Nobody has answered, so it is cancelled as every other dialog.
    Headless.Unanswered = true;
    UnloadWindow(name);
}

std::string ClipboardText() {
    return Headless.Clipboard;
}

bool SetClipboardText(const std::string& text) {
    if (Headless.ClipboardRefuses) return false;
    Headless.Clipboard = text;
    Headless.ClipboardPicture = ClipboardImage{};
    return true;
}

bool SetClipboardPicture(int width, int height, const std::uint32_t* pixels, std::ptrdiff_t stride) {
    Require(width >= 1 && height >= 1 && stride >= width);
    if (Headless.ClipboardRefuses) return false;
    ClipboardImage picture = {width, height, {}};
    picture.Pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int row = 0; row < height; ++row, pixels += stride)
        picture.Pixels.insert(picture.Pixels.end(), pixels, pixels + width);
    Headless.ClipboardPicture = std::move(picture);
    Headless.Clipboard.clear();
    return true;
}

void YieldToEvents() {
    ++Headless.Yields;
    if (Headless.OnYield) Headless.OnYield();
}

void Pause(int milliseconds) {
    Headless.Clock += milliseconds / 1000.0;
    YieldToEvents();
}

void StartFile(const std::string& verb, const std::string& path) {
    Headless.Shell.push_back({verb, path});
}

void ShowStartScreen() {}

std::string OperatingSystemName() {
    return Headless.SystemName;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    if (name == "appdata" && Headless.SettingsDir) return Headless.SettingsDir;
    return VariableOfSystem(name);
}

std::string UserSettingsFolder() {
    if (const auto configured = EnvironmentVariable("XDG_CONFIG_HOME"); configured && !configured->empty())
        return *configured;
    return EnvironmentVariable("HOME").value_or("") + "/.config";
}

std::string ProgramFolder() {
    if (!Headless.ProgramDir.empty()) return Headless.ProgramDir;
    const std::string program = RunningProgram();
    return program.empty()
               ? "."
               : std::filesystem::path(std::u8string(program.begin(), program.end())).parent_path().string();
}

char SystemDecimal() {
    if (!Headless.Decimal) {
        // The locale of the environment is asked once and put back: numbers are converted by our own
        // procedures alone, and nothing else in the program shall depend on it.
        const char* previous = std::setlocale(LC_NUMERIC, nullptr);
        const std::string kept = previous == nullptr ? "C" : previous;
        std::setlocale(LC_NUMERIC, "");
        const std::lconv* conventions = std::localeconv();
        Headless.Decimal = conventions->decimal_point[0] == ',' ? ',' : '.';
        std::setlocale(LC_NUMERIC, kept.c_str());
    }
    return *Headless.Decimal;
}

}  // namespace corvinade::core

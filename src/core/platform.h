// What the logic needs from outside. Declared here once, defined once for each face (with a screen and
// without) and chosen by linking.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/text_font.h"

namespace corvinade::core {

// An operation of the world around the program failed, or a text is no number where one must stand.
// Ends the user's event that met it; one place catches it (Dispatch in core/window.h) and shows What,
// which names what failed: file, line and text. Nothing else is thrown across rooms.
struct PlatformError {
    std::string What;
};

// --- Messages and questions -------------------------------------------------------------------------------

inline constexpr const char* kProgramName = "Corvinade";
inline constexpr const char* kClipboardRefused = "Clipboard coud not be set due unknown error";

// Shows a box and waits. Returns the text of the button that was pressed; closing the box gives the
// last button's text.
std::string AskMessage(const std::string& text, const std::string& title,
                       const std::vector<std::string>& buttons);
inline void ShowMessage(const std::string& text, const std::string& title = kProgramName) {
    AskMessage(text, title, {"OK"});
}
inline bool AskYesNo(const std::string& text, const std::string& title = kProgramName) {
    return AskMessage(text, title, {"Yes", "No"}) == "Yes";
}

// One line of text from the user; nothing when cancelled.
std::optional<std::string> AskInput(const std::string& text, const std::string& title,
                                    const std::string& preset);

struct FileQuestion {
    std::string Title;
    std::string Filter;  // "name|pattern|name|pattern"
    std::string Folder;  // where to begin
    std::string Name;    // preset
    // Of a name for saving: whoever asks has a question of its own for a file that is there already, so the
    // dialog asks none.
    bool AsksBeforeReplacing = false;
};
std::optional<std::string> AskOpenFile(const FileQuestion& question);  // nothing when cancelled
std::optional<std::string> AskSaveFile(const FileQuestion& question);

// A colour, RGB with red in the low byte; nothing when cancelled.
std::optional<std::int32_t> AskColour(std::int32_t preset);

// A font, its size between kLeastFontSize and kLargestFontSize; nothing when cancelled. Where a colour of the
// letters is given, RGB with red in the low byte, it can be chosen as well.
std::optional<TextFont> AskFont(const TextFont& preset, std::int32_t* colour = nullptr);

// Waits, with the event loop running, until the window of this name is closed; it blocks the others
// meanwhile. Require: the window is open.
void WaitForWindow(const std::string& name);

// --- Clipboard, event loop, desktop -----------------------------------------------------------------------

std::string ClipboardText();
bool SetClipboardText(const std::string& text);  // false when the clipboard refuses

// A picture, row by row, pixels as 0xffRRGGBB; `stride` pixels from row to row. False when the clipboard
// refuses.
bool SetClipboardPicture(int width, int height, const std::uint32_t* pixels, std::ptrdiff_t stride);

// The same, with a message when it refuses.
inline void ToClipboard(const std::string& text) {
    if (!SetClipboardText(text)) ShowMessage(kClipboardRefused);
}

// Lets waiting events be handled; their handlers run to the end inside this call. Work that holds on to
// the job compares Run.JobGeneration afterwards.
void YieldToEvents();

// Waits with the event loop running. Where there is no screen the clock runs on at once.
void Pause(int milliseconds);

// Hands a file or folder over to the desktop; `verb` is "Open", "explore" or the path of a program.
void StartFile(const std::string& verb, const std::string& path);

// Shows the start screen for its short time; does nothing for the job, and nothing without a screen.
void ShowStartScreen();

// --- The system -------------------------------------------------------------------------------------------

std::string OperatingSystemName();
std::optional<std::string> EnvironmentVariable(const std::string& name);
std::string UserSettingsFolder();  // the user's folder for settings where "appdata" is not set
std::string ProgramFolder();       // where the program itself stands
char SystemDecimal();              // '.' or ','

}  // namespace corvinade::core

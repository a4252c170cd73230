// What the commands say on standard error.
#include "cli/messages.h"

#include <algorithm>
#include <ostream>

#include "cli/headless.h"
#include "core/notes.h"
#include "core/text.h"

namespace corvinade::cli {

namespace {

constexpr int kLongestNote = 2000;  // characters

}  // namespace

std::string OneParagraph(const std::string& text) {
    std::string result;
    std::string_view rest = text;
    std::string_view line;
    while (CutLine(rest, line)) {
        if (line.find_first_not_of(' ') == std::string_view::npos) continue;
        if (!result.empty()) result += "\n  ";
        result += line;
    }
    return result;
}

void WriteMessages(std::ostream& err) {
    for (const DialogShown& dialog : Headless.Dialogs) {
        if (dialog.Kind != "message" || !dialog.Answer) continue;
        err << OneParagraph(dialog.Text);
        if (dialog.Buttons.size() > 1) err << " " << *dialog.Answer;
        err << "\n";
    }
    Headless.Dialogs.clear();
}

void WriteNotes(std::ostream& err) {
    if (Telling.NotesWait) return;
    if (Headless.NotesTold > Notes.List.size()) Headless.NotesTold = 0;  // another list meanwhile
    for (; Headless.NotesTold < Notes.List.size(); ++Headless.NotesTold) {
        const Note& note = Notes.List[Headless.NotesTold];
        err << SeverityName(note.Weight) << ": " << Printable(NoteLine(note), kLongestNote) << "\n";
    }
}

bool EndsForWarnings(bool strict, std::ostream& err, std::size_t told) {
    WriteNotes(err);
    if (!strict || !HasWarnings()) return false;
    if (Telling.Quiet) {
        Telling.NotesWait = false;  // here they say what is wrong
        WriteNotes(err);
    }
    const auto listed = std::count_if(Notes.List.begin(), Notes.List.end(),
                                      [](const Note& note) { return note.Weight == Severity::Warning; });
    const std::size_t warnings = static_cast<std::size_t>(listed) + told;
    Refuse(err, kUnreadable,
           std::to_string(warnings) + (warnings == 1 ? " warning" : " warnings") +
               ", and --strict lets none pass: nothing was written");
    return true;
}

void TellError(std::ostream& err, const std::string& text) {
    WriteNotes(err);
    err << "corvinade-cli: " << text << "\n";
}

int Refuse(std::ostream& err, ExitStatus status, const std::string& text) {
    TellError(err, text);
    return status;
}

}  // namespace corvinade::cli

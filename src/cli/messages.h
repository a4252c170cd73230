// What the commands say on standard error.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

#include "cli/fit_options.h"
#include "core/rooms.h"

namespace corvinade::cli {

// How the present command tells what it has noticed. With --json and --quiet its notes wait for its end.
struct TellingRecord {
    bool NotesWait = false;
    bool Quiet = false;  // --quiet: they are not told at all, unless --strict ends the command for them
    std::ostream* Live = nullptr;  // what is said waits too, but not how far long work is: that goes here
};
inline TellingRecord Telling;

// Where a command that says its messages on `err` tells how far it is.
inline std::ostream& LiveStream(std::ostream& err) {
    return Telling.Live != nullptr ? *Telling.Live : err;
}

// A message box's text as a paragraph without blank lines.
std::string OneParagraph(const std::string& text);

// The messages that came up, and the questions that an option has answered, which are then forgotten.
void WriteMessages(std::ostream& err);

// The notes that have not been told yet, a line each: "warning: ..." or "note: ...". Nothing while they wait.
void WriteNotes(std::ostream& err);

// The same, before a command writes anything. True, with `strict` alone, where a warning is among them: the
// command then ends with kUnreadable.
//   told  warnings beside those of the list, which have been told
bool EndsForWarnings(bool strict, std::ostream& err, std::size_t told = 0);

// Says what went wrong, behind the notes, while the command goes on.
void TellError(std::ostream& err, const std::string& text);

// Says why a command ends, behind the notes; gives `status`.
int Refuse(std::ostream& err, ExitStatus status, const std::string& text);

}  // namespace corvinade::cli

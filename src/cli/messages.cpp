// What the commands say on standard error.
#include "cli/messages.h"

#include <ostream>

#include "cli/headless.h"
#include "core/text.h"

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

int Refuse(std::ostream& err, ExitStatus status, const std::string& text) {
    err << "corvinade-cli: " << text << "\n";
    return status;
}

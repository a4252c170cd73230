// What came up while a request of the automation ran.
#include "cli/automate_replies.h"

#include <cstdlib>
#include <utility>

#include "core/run.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

// Answers are kept as text; those that are no texts go out as what they are.
json AnswerToJson(const DialogShown& dialog, const std::string& text) {
    if (dialog.Kind == "colour") return std::strtol(text.c_str(), nullptr, 10);
    if (dialog.Kind == "form" || dialog.Kind == "font") return json::parse(text);
    return text;
}

json DialogToJson(const DialogShown& dialog) {
    json shown = {{"kind", dialog.Kind},
                  {"title", dialog.Title},
                  {"text", dialog.Text},
                  {"buttons", dialog.Buttons},
                  {"default", dialog.Default},
                  {"filter", dialog.Filter},
                  {"answer", dialog.Answer ? AnswerToJson(dialog, *dialog.Answer) : json()}};
    if (dialog.Kind == "colour" || dialog.Kind == "font")
        shown["default"] = AnswerToJson(dialog, dialog.Default);
    if (!dialog.Replies.empty()) shown["replies"] = json::parse(dialog.Replies);
    return shown;
}

}  // namespace

void AddHappenings(json& reply) {
    if (!Headless.Dialogs.empty()) {
        json dialogs = json::array();
        for (const DialogShown& dialog : Headless.Dialogs) dialogs.push_back(DialogToJson(dialog));
        reply["dialogs"] = std::move(dialogs);
    }
    if (!Headless.Shell.empty()) {
        json shell = json::array();
        for (const HandedOver& handed : Headless.Shell)
            shell.push_back({{"verb", handed.Verb}, {"path", handed.Path}});
        reply["shell"] = std::move(shell);
    }
    if (Headless.Unanswered) reply["unanswered"] = true;
    if (!Run.LastPlatformError.empty()) reply["platformError"] = Run.LastPlatformError;
    if (!DuringReplies.empty()) reply["during"] = DuringReplies;
    LayAside();
}

Happenings LayAside() {
    return {std::exchange(Headless.Dialogs, {}), std::exchange(Headless.Shell, {}),
            std::exchange(Headless.Unanswered, false), std::exchange(Run.LastPlatformError, {}),
            std::exchange(DuringReplies, json::array())};
}

void PutBack(Happenings kept) {
    Headless.Dialogs = std::move(kept.Dialogs);
    Headless.Shell = std::move(kept.Shell);
    Headless.Unanswered = kept.Unanswered;
    Run.LastPlatformError = std::move(kept.PlatformError);
    DuringReplies = std::move(kept.During);
}

}  // namespace corvinade::cli

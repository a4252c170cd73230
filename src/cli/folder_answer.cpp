// The answer to the choice of a folder by its path alone.
#include "cli/folder_answer.h"

#include <optional>
#include <string>

#include "analysis/form_change_dir.h"
#include "cli/headless.h"
#include "core/window.h"

namespace corvinade::cli {

bool ChooseQueuedFolder() {
    auto& queue = Headless.Answers["folder"];
    if (queue.empty()) return false;
    const std::optional<std::string> path = queue.front();
    queue.pop_front();
    const std::string title = ChangeDir.Window.Caption, begin = ChangeDir.TextPath.Text;
    if (path) {
        UserSetText(ChangeDir.TextPath, *path);
        UserClick(ChangeDir.BtnOK);
    }
    // One that is not there leaves the window open, and nobody else is coming.
    if (IsLoaded(FormChangeDir_Entry.Name)) UnloadWindow(FormChangeDir_Entry.Name);
    Headless.Dialogs.push_back({"folder", title, begin, {}, "", "", path, ""});
    return true;
}

}  // namespace corvinade::cli

// Files that are dropped onto the frame or the input dialog.
#include "ui/drops.h"

#include <QApplication>
#include <QDropEvent>
#include <QMainWindow>
#include <QMimeData>
#include <QUrl>
#include <algorithm>

#include "core/controller.h"
#include "core/files.h"
#include "core/job_commands.h"
#include "core/text.h"
#include "import/form_input_files.h"
#include "import/input_tables.h"
#include "ui/desktop.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

bool IsJob(const std::string& path) {
    return UpperAscii(path).ends_with(".CVN");
}

std::vector<std::string> LocalPaths(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) paths.push_back(url.isLocalFile() ? S(url.toLocalFile()) : "");
    return paths;
}

void TakePaths(TableSide first, const std::vector<std::string>& paths) {
    std::vector<TableSide> sides = {first};
    SetText(PathOfSide(first), paths.front());
    if (paths.size() > 1) {
        SetText(PathOfSide(TableSide::Target), paths[1]);
        sides.push_back(TableSide::Target);
    }
    FilesChosen(sides);
}

// Puts dropped point files into the input dialog: one file into the field that it was dropped onto, two into
// the first two fields.
void TakeIntoInputDialog(const QWidget& target, const std::vector<std::string>& paths) {
    TableSide side = TableSide::Start;
    for (const TableSide other : {TableSide::Target, TableSide::More}) {
        const ControlEntry* entry = PathOfSide(other).Entry;
        if (paths.size() == 1 && entry != nullptr && target.isEnabled() &&
            target.objectName() == QString::fromUtf8(entry->Name))
            side = other;
    }
    UserDid([&] { Dispatch([&] { TakePaths(side, paths); }); });
}

// Files over any part of the frame or the input dialog. Fields would take the text of their address.
class Drops : public QObject {
public:
    explicit Drops(QObject* parent) : QObject(parent) {}
    bool eventFilter(QObject* object, QEvent* event) override {
        const bool drop = event->type() == QEvent::Drop;
        if (!drop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove) return false;
        if (!object->isWidgetType()) return false;
        auto* drag = static_cast<QDropEvent*>(event);
        if (!drag->mimeData()->hasUrls()) return false;
        const auto& target = *static_cast<QWidget*>(object);
        const std::vector<std::string> paths = LocalPaths(*drag->mimeData());
        const QWidget* modal = QApplication::activeModalWidget();
        const QWidget* input = WidgetOf(FormInputFiles_Entry);
        const bool ontoInput = input != nullptr && target.window() == input->window() &&
                               (modal == nullptr || modal == input->window());
        const bool ontoFrame = target.window() == Frame() && modal == nullptr;
        const bool taken = CanBeDropped(paths) && (ontoFrame || (ontoInput && !IsJob(paths.front())));
        drag->setAccepted(taken);
        if (!taken) return true;
        drag->acceptProposedAction();
        if (drop && ontoInput) TakeIntoInputDialog(target, paths);
        if (drop && !ontoInput) OpenDropped(paths);
        return true;
    }
};

}  // namespace

QObject* NewDrops(QObject& parent) {
    return new Drops(&parent);
}

bool CanBeDropped(const std::vector<std::string>& paths) {
    if (paths.empty() || !std::all_of(paths.begin(), paths.end(), File_Exist)) return false;
    return paths.size() == 1 || (paths.size() == 2 && std::none_of(paths.begin(), paths.end(), IsJob));
}

void OpenDropped(const std::vector<std::string>& paths) {
    if (!CanBeDropped(paths)) return;
    UserDid([&] {
        Dispatch([&] {
            if (IsJob(paths.front())) return OpenLastProjekt("&1 " + paths.front());
            ShowWindow(FormInputFiles_Entry.Name);
            TakePaths(TableSide::Start, paths);
        });
    });
}

}  // namespace corvinade::ui

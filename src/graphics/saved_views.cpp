// Saving, restoring and deleting the views of the job.
#include "graphics/saved_views.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/run.h"
#include "engine/undo.h"
#include "graphics/black_planes.h"
#include "graphics/form_save_view.h"
#include "graphics/picture_steps.h"
#include "graphics/projection.h"
#include "graphics/scene.h"
#include "graphics/view_undo.h"

namespace corvinade::graphics {

namespace {

// No screen is larger; a job from elsewhere may hold sizes in other units, and a picture takes its memory.
constexpr int kWidestView = 7680, kHighestView = 4320;  // pixels

std::int16_t ToSize(int pixels) {
    return static_cast<std::int16_t>(std::min<int>(pixels, std::numeric_limits<std::int16_t>::max()));
}

ScreenRecord& SlotOf(int number) {
    return Job.SavedView[static_cast<std::size_t>(number)];
}

bool ViewExists(int number) {
    return number >= 1 && number <= std::min<int>(Job.nSavedViews, kMostViews);
}

// The step of the ring that shows, with the size of the window and a table of flags for all rows. Its black
// planes count from the world's origin, since the centre of rotation goes with the program run.
ScreenRecord PresentView(ScreenWindow& window) {
    SceneForWindow(window);
    ScreenRecord view = window.UndoRing[static_cast<std::size_t>(window.UndoIndex)];
    view.WindowWidth = ToSize(PictureWidth(window));
    view.WindowHeight = ToSize(PictureHeight(window));
    view.FlagIndex.resize(static_cast<std::size_t>(Scene.Rows));
    view.FlagIndexShape.clear();
    KeepPlanesInWorld(view, Scene.RotCenter, Vec3());
    return view;
}

// Shows an entry of the list without restoring its view.
void ShowEntry(int index) {
    Control& list = Main.ComboSaveView;
    list.Index = index;
    list.Text = index < 0 ? "" : list.Items[static_cast<std::size_t>(index)];
}

void InsertView(int number, const ScreenRecord& view, const std::string& name) {
    const auto begin = Job.SavedView.begin();
    std::move_backward(begin + number, begin + Job.nSavedViews + 1, begin + Job.nSavedViews + 2);
    SlotOf(number) = view;
    ++Job.nSavedViews;
    std::vector<std::string>& names = Main.ComboSaveView.Items;
    names.insert(names.begin() + std::min<std::ptrdiff_t>(number - 1, std::ssize(names)), name);
}

void RemoveView(int number) {
    const auto begin = Job.SavedView.begin();
    std::move(begin + number + 1, begin + Job.nSavedViews + 1, begin + number);
    SlotOf(Job.nSavedViews) = ScreenRecord{};
    --Job.nSavedViews;
    std::vector<std::string>& names = Main.ComboSaveView.Items;
    if (number <= static_cast<int>(names.size())) names.erase(names.begin() + (number - 1));
}

std::size_t BytesOf(const ScreenRecord& view) {
    return sizeof view + view.FlagIndex.size() * sizeof(std::int16_t) +
           view.Flags.size() * sizeof(FlagRecord);
}

// A view that one direction of the step inserts and the other one removes.
void KeepViewStep(const char* step, int number, const ScreenRecord& view, const std::string& name,
                  bool backInserts) {
    const auto put = [number, view, name, backInserts](bool back) {
        if (back == backInserts)
            InsertView(number, view, name);
        else
            RemoveView(number);
        ShowEntry(-1);
    };
    KeepUndoStep({.Name = step, .Put = put, .Bytes = BytesOf(view)});
}

void KeepView(const ScreenRecord& view, const std::string& name) {
    std::vector<std::string>& names = Main.ComboSaveView.Items;
    const auto place = std::find(names.begin(), names.end(), name);
    const int number = static_cast<int>(place - names.begin()) + 1;
    if (place == names.end()) {
        InsertView(number, view, name);
        KeepViewStep("Save View", number, view, name, false);
    } else {
        const auto put = [number, before = SlotOf(number), view](bool back) {
            SlotOf(number) = back ? before : view;
            ShowEntry(-1);
        };
        KeepUndoStep({.Name = "Save View", .Put = put, .Bytes = BytesOf(view) + BytesOf(SlotOf(number))});
        SlotOf(number) = view;
    }
    ShowEntry(number - 1);
    Run.JobDirty = kTrue;
}

}  // namespace

void SaveView(ScreenWindow& window) {
    if (Job.nSavedViews >= kMostViews) {
        ShowMessage("max. " + std::to_string(Job.nSavedViews) +
                    " Views to save, you must delete a view to save a new one");
        return;
    }
    if (IsLoaded("FormSaveView")) return;
    const std::uint64_t id = window.Id, generation = Run.JobGeneration;
    ShowWindow("FormSaveView");
    WaitForWindow("FormSaveView");
    const std::string name = SaveViewAnswer.Name;
    const bool asBefore = ScreenIsOpen(id) && Run.JobGeneration == generation && Job.nSavedViews < kMostViews;
    if (!name.empty() && asBefore) KeepView(PresentView(window), name);
}

void DeleteView(int number) {
    if (!ViewExists(number)) return;
    const std::vector<std::string>& names = Main.ComboSaveView.Items;
    const std::string name =
        number <= static_cast<int>(names.size()) ? names[static_cast<std::size_t>(number - 1)] : "";
    KeepViewStep("Delete View", number, SlotOf(number), name, true);
    RemoveView(number);
    ShowEntry(-1);
    Run.JobDirty = kTrue;
}

void GetScreenPropertiesFromSavedView(ScreenWindow& window, int number) {
    if (!ViewExists(number)) return;
    ScreenRecord view = SlotOf(number);
    KeepPlanesInWorld(view, Vec3(), Scene.RotCenter);
    const bool sized = view.WindowWidth > 0 && view.WindowHeight > 0;
    ShowViewAsStep(window, view, sized ? std::min<int>(view.WindowWidth, kWidestView) : 0,
                   sized ? std::min<int>(view.WindowHeight, kHighestView) : 0);
}

}  // namespace corvinade::graphics

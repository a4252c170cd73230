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
#include "graphics/black_planes.h"
#include "graphics/form_save_view.h"
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

void KeepView(const ScreenRecord& view, const std::string& name) {
    std::vector<std::string>& names = Main.ComboSaveView.Items;
    const auto place = std::find(names.begin(), names.end(), name);
    const auto index = static_cast<int>(place - names.begin());
    if (place == names.end()) {
        names.push_back(name);
        ++Job.nSavedViews;
    }
    SlotOf(index + 1) = view;
    ShowEntry(index);
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
    const auto begin = Job.SavedView.begin();
    std::move(begin + number + 1, begin + Job.nSavedViews + 1, begin + number);
    SlotOf(Job.nSavedViews) = ScreenRecord{};
    --Job.nSavedViews;
    std::vector<std::string>& names = Main.ComboSaveView.Items;
    if (number <= static_cast<int>(names.size())) names.erase(names.begin() + (number - 1));
    ShowEntry(-1);
    Run.JobDirty = kTrue;
}

void GetScreenPropertiesFromSavedView(ScreenWindow& window, int number) {
    if (!ViewExists(number)) return;
    ScreenRecord view = SlotOf(number);
    if (view.WindowWidth > 0 && view.WindowHeight > 0)
        ResizeScreenWindow(window, std::min<int>(view.WindowWidth, kWidestView),
                           std::min<int>(view.WindowHeight, kHighestView));
    KeepPlanesInWorld(view, Vec3(), Scene.RotCenter);
    GetScreenPropertiesFromRecord(window, view);
    StoreScreenPropertiesToRecord(window);
}

}  // namespace corvinade::graphics

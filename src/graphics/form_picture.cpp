// The window in which a picture is saved or copied at a size and resolution of its own.
#include "graphics/form_picture.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/form_grafik.h"
#include "analysis/form_trompete.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "graphics/projection.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

FormPicture PictureWindow;

namespace {

FormPicture& w = PictureWindow;

const ControlEntry kControls[] = {
    {"LabelSource", &w.LabelSource, Label("&Picture of")},
    {"ComboSource", &w.ComboSource, ComboBox(), {.Click = FormPicture::ComboSource_Click}},
    {"LabelWidth", &w.LabelWidth, Label("&Width [mm]")},
    {"TextWidth", &w.TextWidth, TextBox(), {.Change = FormPicture::Choice_Change}},
    {"LabelHeight", &w.LabelHeight, Label("&Height [mm]")},
    {"TextHeight", &w.TextHeight, TextBox(), {.Change = FormPicture::Choice_Change}},
    {"LabelResolution", &w.LabelResolution, Label("&Resolution [dots per inch]")},
    {"TextResolution", &w.TextResolution, TextBox(), {.Change = FormPicture::Choice_Change}},
    {"LabelPixels", &w.LabelPixels, Label("")},
    {"CheckBar", &w.CheckBar, CheckBox("Colour &bar"), {.Click = FormPicture::Choice_Change}},
    {"CheckAxes", &w.CheckAxes, CheckBox("A&xes"), {.Click = FormPicture::Choice_Change}},
    {"CheckWhite", &w.CheckWhite, CheckBox("On whi&te"), {.Click = FormPicture::Choice_Change}},
    {"LabelProblem", &w.LabelProblem, Hidden(Label(""))},
    {"BtnSave", &w.BtnSave, Button("S&ave..."), {.Click = FormPicture::BtnSave_Click}},
    {"BtnCopy", &w.BtnCopy, Button("&Copy"), {.Click = FormPicture::BtnCopy_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormPicture::BtnClose_Click}},
};

constexpr std::int32_t kProblemGround = 0x66D1FF;  // amber, as that of warnings
constexpr double kInch_mm = 25.4;

bool IsOfScene(PictureSource what) {
    return what == PictureSource::Screen || what == PictureSource::SavedView;
}

const PictureOrder* ChosenSource() {
    const int index = w.ComboSource.Index;
    return index >= 0 && index < static_cast<int>(w.Sources.size())
               ? &w.Sources[static_cast<std::size_t>(index)]
               : nullptr;
}

bool IsSameSource(const PictureOrder& a, const PictureOrder& b) {
    return a.Of == b.Of && a.Screen == b.Screen && a.View == b.View;
}

// What there is to take a picture of. The window on top stands first.
void ListSources() {
    w.Sources.clear();
    w.ComboSource.Items.clear();
    const auto add = [](const std::string& name, const PictureOrder& source) {
        w.ComboSource.Items.push_back(name);
        w.Sources.push_back(source);
    };
    for (const auto& window : Screens().Open)
        add(window->Caption, {.Of = PictureSource::Screen, .Screen = window->Id});
    if (Screens().Active != nullptr)
        for (std::size_t i = 1; i < w.Sources.size(); ++i)
            if (w.Sources[i].Screen == Screens().Active->Id) {
                std::rotate(w.Sources.begin(), w.Sources.begin() + static_cast<std::ptrdiff_t>(i),
                            w.Sources.begin() + static_cast<std::ptrdiff_t>(i) + 1);
                std::rotate(w.ComboSource.Items.begin(),
                            w.ComboSource.Items.begin() + static_cast<std::ptrdiff_t>(i),
                            w.ComboSource.Items.begin() + static_cast<std::ptrdiff_t>(i) + 1);
            }
    if (Trumpet.Window.Loaded) add("Trumpet Graph", {.Of = PictureSource::Trumpet});
    const bool chart = GrafikWindow.Window.Loaded && GrafikWindow.Min != GrafikWindow.Max;
    if (chart && PictureBy.Chart != nullptr) add("Graph Data", {.Of = PictureSource::Chart});
    const std::vector<std::string>& names = Main.ComboSaveView.Items;
    for (int i = 1; i <= Job.nSavedViews; ++i) {
        const auto place = static_cast<std::size_t>(i - 1);
        const std::string name = place < names.size() ? names[place] : PlainText(i);
        add("Saved view: " + name, {.Of = PictureSource::SavedView, .View = i});
    }
}

// A number of the window's own, from least to most; nothing where the field holds none.
std::optional<double> NumberIn(const Control& field, double least, double most) {
    double value = 0;
    if (!TextToNumber(field.Text, '.', value) && !TextToNumber(field.Text, ',', value)) return {};
    return std::isfinite(value) && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

void Tell(const std::string& problem) {
    w.LabelProblem.Text = problem;
    w.LabelProblem.Visible = !problem.empty();
    w.LabelProblem.BackColor = kProblemGround;
    w.LabelProblem.ForeColor = QbColor(0);
    w.BtnSave.Enabled = w.BtnCopy.Enabled = problem.empty();
}

std::string Between(double least, double most) {
    return " is no number from " + PlainText(least) + " to " + PlainText(most);
}

// What stands in the fields becomes the wish, or the problem is told.
void TakeChoice() {
    const auto width = NumberIn(w.TextWidth, kLeastPicture_mm, kLargestPicture_mm),
               height = NumberIn(w.TextHeight, kLeastPicture_mm, kLargestPicture_mm),
               dots = NumberIn(w.TextResolution, kLeastDots, kMostDots);
    w.LabelPixels.Text.clear();
    if (PictureBy.File == nullptr) return Tell("This program has no pictures");
    if (ChosenSource() == nullptr)
        return Tell("There is no picture: open a graphics window, the trumpet graph or the graph data");
    if (!width) return Tell("The width" + Between(kLeastPicture_mm, kLargestPicture_mm));
    if (!height) return Tell("The height" + Between(kLeastPicture_mm, kLargestPicture_mm));
    if (!dots) return Tell("The resolution" + Between(kLeastDots, kMostDots));
    const double columns = std::round(*width / kInch_mm * *dots),
                 rows = std::round(*height / kInch_mm * *dots);
    w.LabelPixels.Text =
        PlainText(columns) + " x " + PlainText(rows) + " pixels as PNG; SVG and PDF are sharp at any size";
    if (columns * rows > kMostPixels)
        return Tell("A picture has " + PlainText(kMostPixels / 1e6) + " million pixels at most");
    PictureWish = *ChosenSource();
    PictureWish.Width_mm = *width;
    PictureWish.Height_mm = *height;
    PictureWish.Dots = static_cast<int>(std::lround(*dots));
    PictureWish.Bar = w.CheckBar.Value == 1;
    PictureWish.Axes = w.CheckAxes.Value == 1;
    PictureWish.White = w.CheckWhite.Value == 1;
    Tell("");
}

void EnableLook() {
    const PictureOrder* const source = ChosenSource();
    const bool scene = source != nullptr && IsOfScene(source->Of);
    w.CheckBar.Enabled = w.CheckAxes.Enabled = scene;
    w.CheckWhite.Enabled = scene || (source != nullptr && source->Of == PictureSource::Chart);
}

// A height at which the picture shows what its window does.
void TakeShape() {
    const PictureOrder* const source = ChosenSource();
    if (source == nullptr || source->Of != PictureSource::Screen) return;
    const auto& open = Screens().Open;
    const auto shown =
        std::ranges::find_if(open, [source](const auto& window) { return window->Id == source->Screen; });
    const auto width = NumberIn(w.TextWidth, kLeastPicture_mm, kLargestPicture_mm);
    if (shown == open.end() || !width || PictureWidth(**shown) < 1) return;
    const double height = *width * PictureHeight(**shown) / PictureWidth(**shown);
    w.TextHeight.Text = PlainText(std::round(std::clamp(height, kLeastPicture_mm, kLargestPicture_mm)));
}

std::string MakeFile(PictureFormat format) {
    const PictureOrder order = PictureWish;
    const auto make = order.Of == PictureSource::Chart ? PictureBy.Chart : PictureBy.File;
    std::string bytes = make(order, format);
    if (bytes.empty()) throw PlatformError{"There is no memory for a picture of this size"};
    return bytes;
}

std::string NameOfPicture() {
    const std::string name = Run.JobFilePath == kDefaultJobPath ? "picture.cvn" : NameOfFile(Run.JobFilePath);
    return name.substr(0, name.find_last_of('.')) + ".png";
}

}  // namespace

const WindowEntry FormPicture_Entry = {
    .Name = "FormPicture",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormPicture{}; },
    .Load = FormPicture::Form_Load,
    .Escape = FormPicture::Form_Escape,
    .Stand = WindowStand::Beside,
};

void FormPicture::Form_Load() {
    ListSources();
    w.ComboSource.Index = w.Sources.empty() ? -1 : 0;
    w.ComboSource.Text = w.Sources.empty() ? "" : w.ComboSource.Items[0];
    w.TextWidth.Text = PlainText(PictureWish.Width_mm);
    w.TextHeight.Text = PlainText(PictureWish.Height_mm);
    w.TextResolution.Text = PlainText(PictureWish.Dots);
    w.CheckBar.Value = PictureWish.Bar ? 1 : 0;
    w.CheckAxes.Value = PictureWish.Axes ? 1 : 0;
    w.CheckWhite.Value = PictureWish.White ? 1 : 0;
    TakeShape();
    EnableLook();
    TakeChoice();
}

void FormPicture::Form_Escape() {
    UnloadWindow(FormPicture_Entry.Name);
}

void FormPicture::ComboSource_Click() {
    TakeShape();
    EnableLook();
    TakeChoice();
}

void FormPicture::Choice_Change() {
    TakeChoice();
}

void FormPicture::BtnSave_Click() {
    const auto path =
        AskSaveFile({"Save Picture", "PNG (*.png)|*.png|SVG (*.svg)|*.svg|PDF (*.pdf)|*.pdf|",
                     Run.JobFilePath == kDefaultJobPath ? "" : Pfad(Run.JobFilePath), NameOfPicture()});
    // The dialog has let events be handled.
    if (!path || path->empty() || !w.Window.Loaded || !w.BtnSave.Enabled) return;
    const BusyPointer busy;
    const std::string name = UpperAscii(*path);
    if (name.ends_with(".PNG")) return WriteFile(*path, MakeFile(PictureFormat::Png));
    if (name.ends_with(".SVG")) return WriteFile(*path, MakeFile(PictureFormat::Svg));
    if (name.ends_with(".PDF")) return WriteFile(*path, MakeFile(PictureFormat::Pdf));
    ShowMessage("A picture is written as *.png, *.svg or *.pdf; the name has none of these endings.");
}

void FormPicture::BtnCopy_Click() {
    const BusyPointer busy;
    const std::string png = MakeFile(PictureFormat::Png);
    if (PictureBy.Copy == nullptr || !PictureBy.Copy(png)) ShowMessage(kClipboardRefused);
}

void FormPicture::BtnClose_Click() {
    UnloadWindow(FormPicture_Entry.Name);
}

void RenewPictureSources() {
    if (!w.Window.Loaded) return;
    const PictureOrder* const chosen = ChosenSource();
    const PictureOrder before = chosen == nullptr ? PictureOrder{} : *chosen;
    const bool any = chosen != nullptr;
    ListSources();
    const auto same =
        std::ranges::find_if(w.Sources, [&](const PictureOrder& one) { return IsSameSource(one, before); });
    w.ComboSource.Index = w.Sources.empty()                ? -1
                          : any && same != w.Sources.end() ? static_cast<int>(same - w.Sources.begin())
                                                           : 0;
    w.ComboSource.Text =
        w.ComboSource.Index < 0 ? "" : w.ComboSource.Items[static_cast<std::size_t>(w.ComboSource.Index)];
    if (!any) TakeShape();  // the first picture that there is
    EnableLook();
    TakeChoice();
}

void MenuEditPicture_Click() {
    ShowWindow(FormPicture_Entry.Name);
}

}  // namespace corvinade::graphics

// The window of the report.
#include "graphics/form_report.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

#include "core/files.h"
#include "core/folders.h"
#include "core/form_main.h"
#include "core/grid.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "graphics/form_picture.h"
#include "graphics/screen_window.h"

namespace corvinade::graphics {

FormReport ReportWindow;

namespace {

FormReport& w = ReportWindow;

const ControlEntry kControls[] = {
    {"LabelTitle", &w.LabelTitle, Label("Title")},
    {"TextTitle", &w.TextTitle, TextBox(), {.Change = FormReport::Choice_Change}},
    {"LabelProject", &w.LabelProject, Label("Project")},
    {"TextProject", &w.TextProject, TextBox(), {.Change = FormReport::Choice_Change}},
    {"LabelAuthor", &w.LabelAuthor, Label("Author")},
    {"TextAuthor", &w.TextAuthor, TextBox(), {.Change = FormReport::Choice_Change}},
    {"LabelLogo", &w.LabelLogo, Label("Logo")},
    {"TextLogo", &w.TextLogo, TextBox(), {.Change = FormReport::Choice_Change}},
    {"BtnBrowseLogo", &w.BtnBrowseLogo, Button("Browse..."), {.Click = FormReport::BtnBrowseLogo_Click}},
    {"CheckParameters", &w.CheckParameters, CheckBox("Parameters"), {.Click = FormReport::Choice_Change}},
    {"CheckStatistics", &w.CheckStatistics, CheckBox("Statistics"), {.Click = FormReport::Choice_Change}},
    {"CheckPoints", &w.CheckPoints, CheckBox("Points"), {.Click = FormReport::Choice_Change}},
    {"LabelWorst", &w.LabelWorst, Label("the worst (empty: all)")},
    {"TextWorst", &w.TextWorst, TextBox(), {.Change = FormReport::Choice_Change}},
    {"CheckPictures", &w.CheckPictures, CheckBox("Pictures"), {.Click = FormReport::Choice_Change}},
    {"GridPictures",
     &w.GridPictures,
     Grid(1, 0),
     {.Click = FormReport::GridPictures_Click, .Key = FormReport::GridPictures_Key}},
    {"CheckNotes", &w.CheckNotes, CheckBox("Notes"), {.Click = FormReport::Choice_Change}},
    {"CheckProtocol", &w.CheckProtocol, CheckBox("Protocol"), {.Click = FormReport::Choice_Change}},
    {"LabelProblem", &w.LabelProblem, Hidden(Label(""))},
    {"BtnSave", &w.BtnSave, Button("S&ave..."), {.Click = FormReport::BtnSave_Click}},
    {"BtnPrint", &w.BtnPrint, Button("&Print..."), {.Click = FormReport::BtnPrint_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormReport::BtnClose_Click}},
};

constexpr std::int32_t kProblemGround = 0x66D1FF;  // amber, as that of warnings

struct Tick {
    Control& Box;
    bool ReportChoice::*Place;
};
const Tick kTicks[] = {
    {w.CheckParameters, &ReportChoice::Parameters}, {w.CheckStatistics, &ReportChoice::Statistics},
    {w.CheckPoints, &ReportChoice::Points},         {w.CheckPictures, &ReportChoice::Pictures},
    {w.CheckNotes, &ReportChoice::Notes},           {w.CheckProtocol, &ReportChoice::Protocol},
};

// A number of points; 0 where the field is empty, less than 0 where it holds something else.
int WorstWanted() {
    const std::string& text = w.TextWorst.Text;
    if (text.empty()) return 0;
    int count = 0;
    const auto [end, wrong] = std::from_chars(text.data(), text.data() + text.size(), count);
    return wrong == std::errc() && end == text.data() + text.size() && count > 0 ? count : -1;
}

// PNG and JPEG begin with these bytes.
bool IsPicture(std::string_view bytes) {
    return bytes.starts_with("\x89PNG\r\n\x1a\n") || bytes.starts_with("\xff\xd8\xff");
}

// The bytes of the logo; `problem` says why there are none.
std::string LogoBytes(std::string& problem) {
    if (w.TextLogo.Text.empty()) return "";
    try {
        std::string bytes(ReadFile(w.TextLogo.Text).View());
        if (IsPicture(bytes)) return bytes;
        problem = "\"" + w.TextLogo.Text + "\" is no PNG or JPEG picture, and is left out";
    } catch (const PlatformError&) {
        problem = "\"" + w.TextLogo.Text + "\" cannot be read, and is left out";
    }
    return "";
}

void TakeChoice() {
    for (const Tick& tick : kTicks) ReportWish.*tick.Place = tick.Box.Value == 1;
    ReportWish.Title = w.TextTitle.Text;
    ReportWish.Project = w.TextProject.Text;
    ReportWish.Author = w.TextAuthor.Text;
    ReportWish.Logo = w.TextLogo.Text;
    ReportWish.Worst = std::max(WorstWanted(), 0);
}

// A picture that a report may have.
struct ReportItem {
    std::string Name;
    PictureOrder Order;
    bool ByItself = false;  // wanted until somebody says otherwise
};

// The trumpet plot of more pairs would take longer than the rest of the report.
constexpr int kMostTrumpetPoints = 2000;
constexpr int kReportDots = 200;

std::vector<ReportItem> PicturesThere() {
    std::vector<ReportItem> items;
    for (const auto& window : Screens().Open)
        items.push_back({window->Caption, {.Of = PictureSource::Screen, .Screen = window->Id}, true});
    const std::vector<std::string>& names = Main.ComboSaveView.Items;
    for (int i = 1; i <= Job.nSavedViews; ++i) {
        const auto place = static_cast<std::size_t>(i - 1);
        const std::string name = place < names.size() ? names[place] : PlainText(i);
        items.push_back({"Saved view: " + name, {.Of = PictureSource::SavedView, .View = i}});
    }
    if (Job.Pairs() >= 2) items.push_back({"Trumpet graph", {.Of = PictureSource::Trumpet}});
    return items;
}

bool IsWanted(const ReportItem& item) {
    for (const auto& [name, wanted] : ReportWish.PictureTicks)
        if (name == item.Name) return wanted;
    return item.ByItself;
}

void ListPictures() {
    const std::vector<ReportItem> items = PicturesThere();
    GridState& grid = w.GridPictures.Grid;
    SizeGrid(grid, static_cast<int>(items.size()) + 1, 2);
    grid.FixedRows = 1;
    grid.Aligns = {GridAlign::Centre, GridAlign::Left};
    grid.ColWidths = {450, 3000};
    SetCell(grid, 0, 1, "Picture");
    for (std::size_t i = 0; i < items.size(); ++i) {
        SetCell(grid, static_cast<int>(i) + 1, 0, IsWanted(items[i]) ? "\u2713" : "");
        SetCell(grid, static_cast<int>(i) + 1, 1, items[i].Name);
    }
    KeepSelectionInside(grid);
    w.GridPictures.Enabled = ReportWish.Pictures;
}

void TurnPicture(int row) {
    const std::vector<ReportItem> items = PicturesThere();
    if (row < 1 || row > static_cast<int>(items.size())) return;
    const ReportItem& item = items[static_cast<std::size_t>(row - 1)];
    const bool wanted = !IsWanted(item);
    std::erase_if(ReportWish.PictureTicks, [&item](const auto& tick) { return tick.first == item.Name; });
    if (wanted != item.ByItself) ReportWish.PictureTicks.emplace_back(item.Name, wanted);
}

// As the window shows it; the others in the width of the page.
std::string BytesOfPicture(const ReportItem& item) {
    if (item.Order.Of == PictureSource::Screen) {
        for (const auto& window : Screens().Open)
            if (window->Id == item.Order.Screen)
                return ReportBy.Picture != nullptr ? ReportBy.Picture(*window) : "";
        return "";
    }
    if (PictureBy.File == nullptr) return "";
    PictureOrder order = item.Order;
    order.Dots = kReportDots;
    if (order.Of == PictureSource::SavedView) {
        const ScreenRecord& view = Job.SavedView[static_cast<std::size_t>(order.View)];
        if (view.WindowWidth > 0 && view.WindowHeight > 0)
            order.Height_mm = std::clamp(order.Width_mm * view.WindowHeight / view.WindowWidth, 20.0, 200.0);
        order.White = false;
    }
    return PictureBy.File(order, PictureFormat::Png);
}

void AddPictures(Report& report, std::string& problem) {
    ReportSection section{.Title = "Pictures"};
    for (const ReportItem& item : PicturesThere()) {
        if (!IsWanted(item)) continue;
        if (item.Order.Of == PictureSource::Trumpet && Job.Pairs() > kMostTrumpetPoints) {
            problem += (problem.empty() ? "" : " ") + std::string("The trumpet graph of more than ") +
                       PlainText(kMostTrumpetPoints) + " points is left out";
            continue;
        }
        std::string bytes = BytesOfPicture(item);
        if (!bytes.empty()) section.Pictures.push_back({item.Name, std::move(bytes)});
    }
    if (!section.Pictures.empty())
        report.Sections.insert(
            report.Sections.begin() + std::min<std::ptrdiff_t>(3, std::ssize(report.Sections)),
            std::move(section));
}

void MakeReport() {
    ++w.Turn;
    w.Made = Report{};
    std::string problem = WhyNoReport();
    w.BtnSave.Enabled = problem.empty();
    if (problem.empty()) {
        const std::string logo = LogoBytes(problem);
        if (WorstWanted() < 0)
            problem += (problem.empty() ? "" : " ") +
                       std::string("The number of points is no number above 0; all are shown");
        w.Made = ReportOfJob(ReportWish, logo);
        if (ReportWish.Pictures) AddPictures(w.Made, problem);
    }
    w.BtnPrint.Enabled = w.BtnSave.Enabled && ReportBy.Print != nullptr;
    ListPictures();
    w.LabelProblem.Text = problem;
    w.LabelProblem.Visible = !problem.empty();
    w.LabelProblem.BackColor = kProblemGround;
    w.LabelProblem.ForeColor = QbColor(0);
}

std::string Ending(const std::string& path) {
    const std::size_t dot = NameOfFile(path).find_last_of('.');
    if (dot == std::string::npos) return "";
    std::string ending = NameOfFile(path).substr(dot);
    for (char& c : ending)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return ending;
}

std::string FileNameOfReport() {
    const std::string name = Run.JobFilePath == kDefaultJobPath ? "report.cvn" : NameOfFile(Run.JobFilePath);
    return name.substr(0, name.find_last_of('.')) + (ReportBy.Pdf != nullptr ? ".pdf" : ".html");
}

}  // namespace

const WindowEntry FormReport_Entry = {
    .Name = "FormReport",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormReport{}; },
    .Load = FormReport::Form_Load,
    .Escape = FormReport::Form_Escape,
};

void FormReport::Form_Load() {
    for (const Tick& tick : kTicks) tick.Box.Value = ReportWish.*tick.Place ? 1 : 0;
    w.TextTitle.Text = ReportWish.Title;
    w.TextProject.Text = ReportWish.Project;
    w.TextAuthor.Text = ReportWish.Author;
    w.TextLogo.Text = ReportWish.Logo;
    w.TextWorst.Text = ReportWish.Worst > 0 ? PlainText(ReportWish.Worst) : "";
    MakeReport();
}

void FormReport::Form_Escape() {
    UnloadWindow(FormReport_Entry.Name);
}

void FormReport::Choice_Change() {
    TakeChoice();
    MakeReport();
}

void FormReport::BtnBrowseLogo_Click() {
    const auto path = AskOpenFile({"Logo", "Pictures (*.png;*.jpg;*.jpeg)|*.png;*.jpg;*.jpeg|", "", ""});
    if (path && !path->empty()) SetText(w.TextLogo, *path);
}

void FormReport::GridPictures_Click() {
    TurnPicture(w.GridPictures.Grid.MouseRow);
    MakeReport();
}

void FormReport::GridPictures_Key() {
    if (w.GridPictures.Grid.Key != "Space") return;
    TurnPicture(w.GridPictures.Grid.Row);
    MakeReport();
}

void FormReport::BtnPrint_Click() {
    if (ReportBy.Print != nullptr) ReportBy.Print(w.Made);
}

void FormReport::BtnSave_Click() {
    const std::string pdf = ReportBy.Pdf != nullptr ? "PDF (*.pdf)|*.pdf|" : "";
    const auto path =
        AskSaveFile({"Report", pdf + "Page (*.html)|*.html|Table (*.csv)|*.csv|",
                     Run.JobFilePath == kDefaultJobPath ? "" : Pfad(Run.JobFilePath), FileNameOfReport()});
    // The dialog has let events be handled.
    if (!path || path->empty() || !w.Window.Loaded || !w.BtnSave.Enabled) return;
    const Report& report = w.Made;
    const std::string ending = Ending(*path);
    if (ending == ".pdf" && ReportBy.Pdf != nullptr) return WriteFile(*path, ReportBy.Pdf(report));
    if (ending == ".html" || ending == ".htm") return WriteFile(*path, ReportHtml(report));
    if (ending == ".csv") return WriteFile(*path, ReportCsv(report));
    ShowMessage("A report is written as " + std::string(ReportBy.Pdf != nullptr ? "*.pdf, " : "") +
                "*.html or *.csv; the name has none of these endings.");
}

void FormReport::BtnClose_Click() {
    UnloadWindow(FormReport_Entry.Name);
}

void RenewReport() {
    if (w.Window.Loaded) MakeReport();
}

void MenuFileReport_Click() {
    ShowWindow(FormReport_Entry.Name);
}

}  // namespace corvinade::graphics

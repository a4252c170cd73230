// The details window.
#include "engine/form_trafo_details.h"

#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/details_tables.h"
#include "engine/details_texts.h"

namespace corvinade::engine {

FormTrafoDetails DetailsWindow;

namespace {

FormTrafoDetails& w = DetailsWindow;

const ControlEntry kControls[] = {
    {"GridRotMatrix", &w.GridRotMatrix, Grid(0, 0)},
    {"BtnClipR", &w.BtnClipR, Button("Copy"), {.Click = FormTrafoDetails::BtnClipR_Click}},
    {"GridRotXYZ", &w.GridRotXYZ, Grid(1, 1)},
    {"BtnClipRotXYZ", &w.BtnClipRotXYZ, Button("Copy"), {.Click = FormTrafoDetails::BtnClipRotXYZ_Click}},
    {"GridRotZYX", &w.GridRotZYX, Grid(1, 1)},
    {"BtnClipRotZYX", &w.BtnClipRotZYX, Button("Copy"), {.Click = FormTrafoDetails::BtnClipRotZYX_Click}},
    {"GridRotZXY", &w.GridRotZXY, Grid(1, 1)},
    {"BtnClipRotZXY", &w.BtnClipRotZXY, Button("Copy"), {.Click = FormTrafoDetails::BtnClipRotZXY_Click}},
    {"GridRotZXZ", &w.GridRotZXZ, Grid(1, 1)},
    {"BtnClipRotZXZ", &w.BtnClipRotZXZ, Button("Copy"), {.Click = FormTrafoDetails::BtnClipRotZXZ_Click}},
    {"GridRotZYZ", &w.GridRotZYZ, Grid(1, 1)},
    {"BtnClipRotZYZ", &w.BtnClipRotZYZ, Button("Copy"), {.Click = FormTrafoDetails::BtnClipRotZYZ_Click}},
    {"GridHomogen", &w.GridHomogen, Grid(0, 0)},
    {"BtnClipHomogen", &w.BtnClipHomogen, Button("Copy"), {.Click = FormTrafoDetails::BtnClipHomogen_Click}},
    {"GridAffineMatrix", &w.GridAffineMatrix, Grid(0, 0)},
    {"Command1", &w.Command1, Button("Copy"), {.Click = FormTrafoDetails::Command1_Click}},
    {"GridScaleMatrix", &w.GridScaleMatrix, Grid(0, 0)},
    {"Command2", &w.Command2, Button("Copy"), {.Click = FormTrafoDetails::Command2_Click}},
    {"GridInverse", &w.GridInverse, Grid(1, 1)},
    {"Command3", &w.Command3, Button("Copy"), {.Click = FormTrafoDetails::Command3_Click}},
    {"GridQuat", &w.GridQuat, Grid(0, 1)},
    {"BtnClipQuat", &w.BtnClipQuat, Button("Copy"), {.Click = FormTrafoDetails::BtnClipQuat_Click}},
    {"LabelQuat", &w.LabelQuat, Label("")},
    {"GridMonteCarlo", &w.GridMonteCarlo, Grid(1, 1)},
    {"BtnClipMonteCarlo",
     &w.BtnClipMonteCarlo,
     Button("Copy"),
     {.Click = FormTrafoDetails::BtnClipMonteCarlo_Click}},
    {"BtnClipALL", &w.BtnClipALL, Button("Copy &all"), {.Click = FormTrafoDetails::BtnClipALL_Click}},
    {"Check1", &w.Check1, CheckBox("Check for &gimbal lock"), {.Click = FormTrafoDetails::Check1_Click}},
    {"BtnOK", &w.BtnOK, Button("&OK"), {.Click = FormTrafoDetails::BtnOK_Click}},
};

// Columns of numbers stand right, those of labels left. A lone cell without headings is a sentence.
void FillGrid(GridState& grid, const Cells& cells, int fixedRows, int fixedCols) {
    const auto cols = static_cast<int>(cells.front().size());
    SizeGrid(grid, static_cast<int>(cells.size()), cols);
    grid.FixedRows = fixedRows;
    grid.FixedCols = fixedCols;
    grid.Aligns.assign(static_cast<std::size_t>(cols), GridAlign::Right);
    for (int col = 0; col < (cols == 1 ? 1 : fixedCols); ++col)
        grid.Aligns[static_cast<std::size_t>(col)] = GridAlign::Left;
    for (int row = 0; row < grid.Rows; ++row)
        for (int col = 0; col < cols; ++col)
            SetCell(grid, row, col, cells[static_cast<std::size_t>(row)][static_cast<std::size_t>(col)]);
}

Control& GridOf(RotationOrder order) {
    Control* const grids[] = {&w.GridRotXYZ, &w.GridRotZYX, &w.GridRotZXY, &w.GridRotZXZ, &w.GridRotZYZ};
    return *grids[static_cast<std::size_t>(order)];
}

}  // namespace

const WindowEntry FormTrafoDetails_Entry = {
    .Name = "FormTrafoDetails",
    .State = &DetailsWindow.Window,
    .Controls = kControls,
    .Fresh = [] { DetailsWindow = FormTrafoDetails{}; },
    .Load = FormTrafoDetails::Form_Load,
};

void DetailFormFuellen() {
    const BusyPointer busy;
    w.Shown = DetailsOfSolution();
    const SolutionDetails& details = w.Shown;
    FillGrid(w.GridRotMatrix.Grid, MatrixCells(details.Rotation), 0, 0);
    for (const RotationOrder order : kRotationOrders)
        FillGrid(GridOf(order).Grid, RotationCells(details, order), 1, 1);
    FillGrid(w.GridHomogen.Grid, HomogenCells(details), 0, 0);
    FillGrid(w.GridScaleMatrix.Grid, MatrixCells(details.Scale), 0, 0);
    FillGrid(w.GridAffineMatrix.Grid, MatrixCells(details.Affine), 0, 0);
    const Cells inverse = InverseCells(details);
    const int headings = inverse.size() > 1 ? 1 : 0;
    FillGrid(w.GridInverse.Grid, inverse, headings, headings);
    FillGrid(w.GridQuat.Grid, QuaternionCells(details), 0, 1);
    FillGrid(w.GridMonteCarlo.Grid, MonteCarloCells(details), 1, 1);
}

void ShowDetails() {
    if (IsLoaded("FormTrafoDetails")) {
        DetailFormFuellen();
    } else {
        ShowWindow("FormTrafoDetails");
    }
}

void FormTrafoDetails::Form_Load() {
    // Put there directly: the box's handler would fill the window a second time.
    w.Check1.Value = IsTrue(Settings.CheckForGimbalLock) ? 1 : 0;
    w.LabelQuat.Text =
        std::string(
            "qw, qx, qy and qz is the Quaternion of the done Rotation calculated from the Rotation "
            "Matrix. ") +
        kLineEnd +
        "Angel of Rot is the Rotation around the Vector Vec x; Vec y and Vec z, calculated from the "
        "Quaternion" +
        kLineEnd + "Rot x; Rot y' and Rot z'' is the Rotation calculated from the Quaternion";
    DetailFormFuellen();
}

void FormTrafoDetails::BtnClipR_Click() {
    ToClipboard(RotationMatrixText(w.Shown));
}
void FormTrafoDetails::BtnClipRotXYZ_Click() {
    ToClipboard(RotationText(w.Shown, RotationOrder::XYZ));
}
void FormTrafoDetails::BtnClipRotZYX_Click() {
    ToClipboard(RotationText(w.Shown, RotationOrder::ZYX));
}
void FormTrafoDetails::BtnClipRotZXY_Click() {
    ToClipboard(RotationText(w.Shown, RotationOrder::ZXY));
}
void FormTrafoDetails::BtnClipRotZXZ_Click() {
    ToClipboard(RotationText(w.Shown, RotationOrder::ZXZ));
}
void FormTrafoDetails::BtnClipRotZYZ_Click() {
    ToClipboard(RotationText(w.Shown, RotationOrder::ZYZ));
}
void FormTrafoDetails::BtnClipHomogen_Click() {
    ToClipboard(HomogenText(w.Shown));
}
void FormTrafoDetails::Command1_Click() {
    ToClipboard(AffineMatrixText(w.Shown));
}
void FormTrafoDetails::Command2_Click() {
    ToClipboard(ScaleMatrixText(w.Shown));
}
void FormTrafoDetails::Command3_Click() {
    ToClipboard(InverseText(w.Shown));
}
void FormTrafoDetails::BtnClipQuat_Click() {
    ToClipboard(QuaternionText(w.Shown));
}
void FormTrafoDetails::BtnClipMonteCarlo_Click() {
    ToClipboard(MonteCarloText(w.Shown));
}
void FormTrafoDetails::BtnClipALL_Click() {
    ToClipboard(DetailsText(w.Shown));
}

void FormTrafoDetails::Check1_Click() {
    Settings.CheckForGimbalLock = ToFlag(w.Check1.Value == 1);
    if (IsTrue(Run.CalcDone)) DetailFormFuellen();
}

void FormTrafoDetails::BtnOK_Click() {
    SettingsSchreiben({"CheckForGimbalLock"});
    UnloadWindow("FormTrafoDetails");
}

}  // namespace corvinade::engine

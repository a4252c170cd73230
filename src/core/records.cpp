// The table of the records of core/, and the fields of view and flag records.
#include "core/records.h"

#include "core/job.h"
#include "core/job_file_fields.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"

namespace corvinade::core {

namespace {

const RecordEntry kOtherRecords[] = {
    // Of the job, but recomputed or set anew when it is opened.
    {"nMCSOnly", CountPlace{&Job, JobCount::StartOnly}, Storage::Run},
    {"nOCSOnly", CountPlace{&Job, JobCount::TargetOnly}, Storage::Run},
    {"RotXCopy", &Job.RotXCopy, Storage::Run},
    {"RotYCopy", &Job.RotYCopy, Storage::Run},
    {"RotZCopy", &Job.RotZCopy, Storage::Run},
    {"Rvec_x", &Job.Rvec_x, Storage::Run},
    {"Rvec_y", &Job.Rvec_y, Storage::Run},
    {"Rvec_z", &Job.Rvec_z, Storage::Run},
    // Behind the fields of the job file.
    {"Unconverged", &Job.Unconverged, Storage::JobFile},
    {"LeftOpen", NumberRow16{Job.LeftOpen.data(), kParameterEnd}, Storage::JobFile},
    {"Collapsed", &Job.Collapsed, Storage::JobFile},
    // Of the program run.
    {"Notes", &Notes.List, Storage::Run},
    {"JobFilePath", &Run.JobFilePath, Storage::Run},
    {"JobDataValid", &Run.JobDataValid, Storage::Run},
    {"TrafoValid", &Run.TrafoValid, Storage::Run},
    {"JobDirty", &Run.JobDirty, Storage::Run},
    {"ColorBarOpen", &Run.ColorBarOpen, Storage::Run},
    {"LastFile", TextRow{Run.LastFile.data(), 5}, Storage::Run},
    {"CalcDone", &Run.CalcDone, Storage::Run},
    {"StopRequested", &Run.StopRequested, Storage::Run},
    {"Delimiter", &Run.Delimiter, Storage::Run},
    {"IsDefault", &Run.IsDefault, Storage::Run},
    {"IsABBModx", &Run.IsABBModx, Storage::Run},
    {"IsFanuc", &Run.IsFanuc, Storage::Run},
    {"IsXYZABC", &Run.IsXYZABC, Storage::Run},
    {"ImportFailed", &Run.ImportFailed, Storage::Run},
    {"RobotFileHasId", &Run.RobotFileHasId, Storage::Run},
    {"OverwriteQuiet", &Run.OverwriteQuiet, Storage::Run},
    {"SpanA", &Run.SpanA, Storage::Run},
    {"SpanB", &Run.SpanB, Storage::Run},
    {"SpanC", &Run.SpanC, Storage::Run},
    {"Etta", &Run.Etta, Storage::Run},
    {"LengthFactor", &Units.LengthFactor, Storage::Run},
    {"AngleFactor", &Units.AngleFactor, Storage::Run},
    {"FmtLength", &Units.FmtLength, Storage::Run},
    {"FmtAngle", &Units.FmtAngle, Storage::Run},
    {"FmtScale", &Units.FmtScale, Storage::Run},
    {"MaxIteration", &Settings.MaxIteration, Storage::Run},
    {"BestFit_Etta", &Settings.BestFit_Etta, Storage::Run},
    {"ScaleDigits", &Settings.ScaleDigits, Storage::Run},
    {"PhiThetaAsQ", &Settings.PhiThetaAsQ, Storage::Run},
    {"RawScale", &Settings.RawScale, Storage::Run},
    {"ClipboardValue", &Settings.ClipboardValue, Storage::Run},
    {"InvertedBMW", &Settings.InvertedBMW, Storage::Run},
    {"AdTCP", &Settings.AdTCP, Storage::Run},
    {"TabelHeadMainSheet", &Settings.TabelHeadMainSheet, Storage::Run},
    {"SigmaX", &Settings.SigmaX, Storage::Run},
    {"SigmaY", &Settings.SigmaY, Storage::Run},
    {"SigmaZ", &Settings.SigmaZ, Storage::Run},
    {"MonteCarloRuns", &Settings.MonteCarloRuns, Storage::Run},
    {"GimbalLockBorder", &Settings.GimbalLockBorder, Storage::Run},
    {"CheckForGimbalLock", &Settings.CheckForGimbalLock, Storage::Run},
    {"LastDropDownInfoInOCS", &Settings.LastDropDownInfoInOCS, Storage::Run},
    {"LastMCSRoot", &Settings.LastMCSRoot, Storage::Run},
    {"LastOCSRoot", &Settings.LastOCSRoot, Storage::Run},
    {"MCS_FileName", &Settings.MCS_FileName, Storage::Run},
    {"OCS_FileName", &Settings.OCS_FileName, Storage::Run},
    {"DevVecDirection", &Settings.DevVecDirection, Storage::Run},
    {"ShowPointsBigger", &Settings.ShowPointsBigger, Storage::Run},
    {"ShowCoordinateSystemLabels", &Settings.ShowCoordinateSystemLabels, Storage::Run},
    {"ShowPointNames", &Settings.ShowPointNames, Storage::Run},
    {"ShowColorBar", &Settings.ShowColorBar, Storage::Run},
    {"ScreenBackColor", &Settings.ScreenBackColor, Storage::Run},
    {"ViewOnlyIfTrafo", &Settings.ViewOnlyIfTrafo, Storage::Run},
    {"ViewOnlyIfNotTrafo", &Settings.ViewOnlyIfNotTrafo, Storage::Run},
    {"DontViewOOT", &Settings.DontViewOOT, Storage::Run},
    {"VectorThick", &Settings.VectorThick, Storage::Run},
    {"VectorQuat", &Settings.VectorQuat, Storage::Run},
    {"ShowRVec", &Settings.ShowRVec, Storage::Run},
};

// The places of a field of the job file in the open job.
struct OpenJobPlaces {
    std::vector<RecordEntry>& Records;
    const char* Name;

    void Add(const char* name, RecordPlace place) const {
        Records.push_back({name, place, Storage::JobFile});
    }
    void operator()(VersionText) const {}
    void operator()(JobPoints points) const { Add(Name, PointsPlace{&(Job.*points.Set), points.Part}); }
    void operator()(JobCount count) const { Add(Name, CountPlace{&Job, count}); }
    void operator()(SavedViews) const {
        Add("nSavedViews", &Job.nSavedViews);
        Add(Name, ViewRow{Job.SavedView.data(), static_cast<int>(Job.SavedView.size())});
    }
    template <std::size_t N>
    void operator()(std::array<std::string, N> JobRecord::*place) const {
        Add(Name, TextRow{(Job.*place).data(), static_cast<int>(N)});
    }
    template <std::size_t N>
    void operator()(std::array<std::int16_t, N> JobRecord::*place) const {
        Add(Name, NumberRow16{(Job.*place).data(), static_cast<int>(N)});
    }
    template <class Value>
    void operator()(Value JobRecord::*place) const {
        Add(Name, &(Job.*place));
    }
};

// In the order of the job file, and the others behind them.
std::vector<RecordEntry> AllCoreRecords() {
    std::vector<RecordEntry> records;
    for (const JobField& field : JobFields()) std::visit(OpenJobPlaces{records, field.Name}, field.Place);
    records.insert(records.end(), std::begin(kOtherRecords), std::end(kOtherRecords));
    return records;
}

constexpr ScreenField kScreenFields[] = {
    {"VectorMode", &ScreenRecord::VectorMode},
    {"BigNess", &ScreenRecord::BigNess},
    {"FlagMode", &ScreenRecord::FlagMode},
    {"BildFaktor", &ScreenRecord::BildFaktor},
    {"BildOffsetX", &ScreenRecord::BildOffsetX},
    {"BildOffsetY", &ScreenRecord::BildOffsetY},
    {"Vec_Maßstab", &ScreenRecord::Vec_Maßstab},
    {"GridLength", &ScreenRecord::GridLength},
    {"RotAngles",
     &ScreenRecord::RotAngles,
     {.Shape = &ScreenRecord::RotAnglesShape, .Rows = 2, .LowestColumn = 1, .Columns = 3}},
    {"FlagCount", &ScreenRecord::FlagCount},
    {"FlagIndex", &ScreenRecord::FlagIndex, {.Shape = &ScreenRecord::FlagIndexShape, .LowestColumn = 1}},
    {"Flags", &ScreenRecord::Flags, {.Shape = &ScreenRecord::FlagsShape}},
    {"ActiveFlag", &ScreenRecord::ActiveFlag},
    {"WindowWidth", &ScreenRecord::WindowWidth},
    {"WindowHeight", &ScreenRecord::WindowHeight},
    {"AnzKlassenPos", &ScreenRecord::AnzKlassenPos},
    {"AnzKlassenNeg", &ScreenRecord::AnzKlassenNeg},
    {"AusserhalbTol", &ScreenRecord::AusserhalbTol},
    {"Min", &ScreenRecord::Min},
    {"Max", &ScreenRecord::Max},
    {"showVeX", &ScreenRecord::showVeX},
    {"showVeY", &ScreenRecord::showVeY},
    {"showVeZ", &ScreenRecord::showVeZ},
    {"ColorBased", &ScreenRecord::ColorBased},
    {"ShowOnlyUsedComponent", &ScreenRecord::ShowOnlyUsedComponent},
    {"OuterColor", &ScreenRecord::OuterColor},
    {"CS_Type", &ScreenRecord::CS_Type},
    {"BinärModus", &ScreenRecord::BinärModus},
    {"BlackPlane", &ScreenRecord::BlackPlane},
    {"BlackPlaneBorders", &ScreenRecord::BlackPlaneBorders},
    {"BlackInitial", &ScreenRecord::BlackInitial},
    {"FrameOffsetX", &ScreenRecord::FrameOffsetX},
    {"FrameOffsetY", &ScreenRecord::FrameOffsetY},
    {"FrameFactor", &ScreenRecord::FrameFactor},
    {"SlabThickness", &ScreenRecord::SlabThickness},
    {"FrameInverse", &ScreenRecord::FrameInverse},
    {"TopDepth", &ScreenRecord::TopDepth},
    {"GridXY", &ScreenRecord::GridXY},
    {"GridYZ", &ScreenRecord::GridYZ},
    {"GridZX", &ScreenRecord::GridZX},
    {"ADis", &ScreenRecord::ADis},
    {"BDis", &ScreenRecord::BDis},
    {"Cdis", &ScreenRecord::Cdis},
    {"ShowGridDim", &ScreenRecord::ShowGridDim},
    {"LineTable", &ScreenRecord::LineTable, {.Shape = &ScreenRecord::LineTableShape, .Rows = 2}},
    {"LineStartRow", &ScreenRecord::LineStartRow},
    {"LineMode", &ScreenRecord::LineMode},
    {"SelectedLine", &ScreenRecord::SelectedLine},
};

constexpr FlagField kFlagFields[] = {
    {"ShowPointNumber", &FlagRecord::ShowPointNumber},
    {"ShowActual", &FlagRecord::ShowActual},
    {"ShowNominal", &FlagRecord::ShowNominal},
    {"ShowDevXYZ", &FlagRecord::ShowDevXYZ},
    {"showX", &FlagRecord::showX},
    {"showY", &FlagRecord::showY},
    {"showZ", &FlagRecord::showZ},
    {"show3D", &FlagRecord::show3D},
    {"showR", &FlagRecord::showR},
    {"showPhi", &FlagRecord::showPhi},
    {"showRho", &FlagRecord::showRho},
    {"showTheta", &FlagRecord::showTheta},
    {"ShowDev", &FlagRecord::ShowDev},
    {"ShowTolCol", &FlagRecord::ShowTolCol},
    {"ShowLegendeXYZ", &FlagRecord::ShowLegendeXYZ},
    {"ShowLegendeName", &FlagRecord::ShowLegendeName},
    {"ShowUseNotUse", &FlagRecord::ShowUseNotUse},
    {"ShowGrid", &FlagRecord::ShowGrid},
    {"ChangeAll", &FlagRecord::ChangeAll},
    {"SnaptoGrid", &FlagRecord::SnaptoGrid},
    {"WithinScreen", &FlagRecord::WithinScreen},
    {"Left", &FlagRecord::Left},
    {"Top", &FlagRecord::Top},
    {"Bold", &FlagRecord::Bold},
    {"Charset", &FlagRecord::Charset},
    {"Italic", &FlagRecord::Italic},
    {"Name", &FlagRecord::Name},
    {"Size", &FlagRecord::Size},
    {"Strikethrough", &FlagRecord::Strikethrough},
    {"Underline", &FlagRecord::Underline},
    {"Weight", &FlagRecord::Weight},
    {"Forecolor", &FlagRecord::Forecolor},
};

}  // namespace

std::span<const RecordEntry> CoreRecords() {
    static const std::vector<RecordEntry> kRecords = AllCoreRecords();
    return kRecords;
}
std::span<const ScreenField> ScreenFields() {
    return kScreenFields;
}
std::span<const FlagField> FlagFields() {
    return kFlagFields;
}

const RecordEntry* FindRecord(std::string_view name) {
    for (const std::span<const RecordEntry> room : AllRecords())
        for (const RecordEntry& entry : room)
            if (name == entry.Name) return &entry;
    return nullptr;
}

}  // namespace corvinade::core

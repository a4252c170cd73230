// The list of what the program noticed.
#include "core/notes.h"

#include <algorithm>

#include "fit/require.h"

namespace corvinade::core {

namespace {

constexpr NoteKind kKinds[] = {
    {NoteCode::NumberAsZero, "number-as-zero", Severity::Warning, true},
    {NoteCode::ValueKept, "value-kept", Severity::Warning, true},
    {NoteCode::EmptyCoordinate, "empty-coordinate", Severity::Warning, true},
    {NoteCode::NameCut, "name-cut", Severity::Warning, true},
    {NoteCode::ColumnsIgnored, "columns-ignored", Severity::Note, true},
    {NoteCode::DelimitersSideBySide, "delimiters-side-by-side", Severity::Warning, true},
    {NoteCode::DuplicateName, "duplicate-name", Severity::Warning, true},
    {NoteCode::EmptyRow, "empty-row", Severity::Note, true},
    {NoteCode::PosesSkipped, "poses-skipped", Severity::Note, true},
    {NoteCode::PosesByTurn, "poses-by-turn", Severity::Warning, true},
    {NoteCode::PosesDoubtful, "poses-doubtful", Severity::Warning, true},
    {NoteCode::FieldSplit, "field-split", Severity::Warning, true},
    {NoteCode::FieldCut, "field-cut", Severity::Warning, true},
    {NoteCode::OldDelimiter, "old-delimiter", Severity::Note, true},
    {NoteCode::AnglesOfPose, "pose-angles", Severity::Note, true},
    {NoteCode::DigitsCut, "digits-cut", Severity::Warning, true},
    {NoteCode::NoOrientation, "no-orientation", Severity::Warning, true},
    {NoteCode::TableExtended, "table-extended", Severity::Warning, false},
    {NoteCode::NamesShort, "names-short", Severity::Warning, true},
    {NoteCode::NetworkOpen, "network-open", Severity::Warning, true},
    {NoteCode::FlagsBeyondPairs, "flags-beyond-pairs", Severity::Warning, true},
    {NoteCode::BlockLeftOut, "block-left-out", Severity::Warning, true},
    {NoteCode::MemberUnknown, "member-unknown", Severity::Warning, true},
    {NoteCode::NotFinite, "not-finite", Severity::Warning, true},
    {NoteCode::EntrySkipped, "entry-skipped", Severity::Warning, true},
    {NoteCode::DistanceUnknown, "distance-unknown", Severity::Warning, true},
    {NoteCode::DistanceSwapped, "distance-swapped", Severity::Warning, true},
    {NoteCode::DistanceOnePlace, "distance-one-place", Severity::Warning, true},
    {NoteCode::DistanceNotPositive, "distance-not-positive", Severity::Warning, true},
    {NoteCode::HeightSign, "height-sign", Severity::Warning, true},
    {NoteCode::RadiusNegative, "radius-negative", Severity::Warning, true},
    {NoteCode::ShapeUnsorted, "shape-unsorted", Severity::Warning, true},
    {NoteCode::RadiusTwice, "radius-twice", Severity::Warning, true},
    {NoteCode::AngleUnit, "angle-unit", Severity::Warning, true},
    {NoteCode::LengthUnit, "length-unit", Severity::Warning, true},
    {NoteCode::ColumnsChanged, "columns-changed", Severity::Warning, true},
    {NoteCode::Mirrored, "mirrored", Severity::Warning, false},
    {NoteCode::BetterStart, "better-start", Severity::Note, false},
    {NoteCode::BetterElsewhere, "better-elsewhere", Severity::Warning, false},
    {NoteCode::OpenParameters, "open-parameters", Severity::Warning, false},
    {NoteCode::EqualResiduals, "equal-residuals", Severity::Note, false},
    {NoteCode::NoRedundancy, "no-redundancy", Severity::Warning, false},
    {NoteCode::ShapeSigma, "shape-sigma", Severity::Note, false},
    {NoteCode::NormSigma, "norm-sigma", Severity::Note, false},
    {NoteCode::UnsettledFits, "unsettled-fits", Severity::Warning, false},
    {NoteCode::GimbalLock, "gimbal-lock", Severity::Note, false},
    {NoteCode::CollapsedScale, "collapsed-scale", Severity::Warning, false},
    {NoteCode::NotConverged, "not-converged", Severity::Warning, false},
    {NoteCode::ScaleLeftOut, "scale-left-out", Severity::Warning, false},
    {NoteCode::MatrixAngles, "matrix-angles", Severity::Note, false},
    {NoteCode::NearestForm, "nearest-form", Severity::Note, false},
    {NoteCode::PointsTooNear, "points-too-near", Severity::Warning, false},
    {NoteCode::HardlyKnown, "hardly-known", Severity::Warning, false},
    {NoteCode::NoEffect, "no-effect", Severity::Note, false},
    {NoteCode::HeldText, "held-text", Severity::Warning, false},
    {NoteCode::PoseNames, "pose-names", Severity::Note, true},
    {NoteCode::LinesSkipped, "lines-skipped", Severity::Note, true},
    {NoteCode::HeadingUnknown, "heading-unknown", Severity::Warning, true},
    {NoteCode::NameIsNumber, "name-is-number", Severity::Warning, true},
    {NoteCode::CommentedPoints, "commented-points", Severity::Note, true},
    {NoteCode::DecimalTaken, "decimal-taken", Severity::Warning, true},
    {NoteCode::LinesKept, "lines-kept", Severity::Note, true},
    {NoteCode::PointsKept, "points-kept", Severity::Note, true},
    {NoteCode::PointsDisabled, "points-disabled", Severity::Note, true},
    {NoteCode::NoHeight, "no-height", Severity::Note, true},
    {NoteCode::DirectionsKept, "directions-kept", Severity::Warning, true},
    {NoteCode::ViewpointKept, "viewpoint-kept", Severity::Note, true},
    {NoteCode::SingleRounded, "single-rounded", Severity::Warning, true},
    {NoteCode::UnitOfFile, "unit-of-file", Severity::Note, true},
    {NoteCode::FormKept, "form-kept", Severity::Note, true},
    {NoteCode::FileReplaced, "file-replaced", Severity::Note, true},
    {NoteCode::SigmaColumns, "sigma-columns", Severity::Note, true},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(NoteCode::Count_));

}  // namespace

std::span<const NoteKind> NoteKinds() {
    return kKinds;
}

const NoteKind& NoteKindOf(NoteCode code) {
    const NoteKind& kind = kKinds[static_cast<std::size_t>(code)];
    Require(kind.Code == code);
    return kind;
}

void AddNote(NoteCode code, std::string text, std::string file, int line, int count) {
    const NoteKind& kind = NoteKindOf(code);
    for (Note& note : Notes.List) {
        if (note.Code != code || note.File != file || (file.empty() && note.Text != text)) continue;
        note.Count += count;
        return;
    }
    Notes.List.push_back({code, kind.Weight, std::move(text), std::move(file), line, count});
}

void ForgetNotes() {
    Notes.List.clear();
}

void ForgetCalculationNotes() {
    // Digits that an export has cut are those of the result before.
    std::erase_if(Notes.List, [](const Note& note) {
        return !NoteKindOf(note.Code).OfImport || (note.Code == NoteCode::DigitsCut && note.File.empty());
    });
}

bool HasWarnings() {
    return std::any_of(Notes.List.begin(), Notes.List.end(),
                       [](const Note& note) { return note.Weight == Severity::Warning; });
}

std::string NoteLine(const Note& note) {
    std::string where = note.File;
    if (note.Line > 0) where += (where.empty() ? "line " : ", line ") + std::to_string(note.Line);
    if (note.Count > 1) where += (where.empty() ? "" : "; ") + std::to_string(note.Count) + " times";
    return where.empty() ? note.Text : note.Text + " (" + where + ")";
}

const char* SeverityName(Severity weight) {
    return weight == Severity::Warning ? "warning" : "note";
}

}  // namespace corvinade::core

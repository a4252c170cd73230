// What a fit has decided on its own, as notes.
#include "engine/fit_remarks.h"

#include <cmath>
#include <string>

#include "core/notes.h"
#include "core/numbers.h"
#include "engine/norm_table.h"
#include "engine/parameter_kind.h"
#include "engine/result_notes.h"

namespace corvinade::engine {

namespace {

// What the words of a norm's remarks are.
struct NormWords {
    const char* Name;
    const char* Weighted;  // what its loop makes least
    const char* Least;     // what its optimum is the least of
};

NormWords WordsOf(FitNorm fit) {
    const NormRow& norm = NormOfFit(fit);
    return {norm.Told, norm.Weighted, norm.Optimum};
}

std::string TimesText(double times) {
    constexpr double kHardly = 1.001;  // so near to 1 that three decimals show nothing of it
    return std::isinf(times)
               ? "larger by far"
               : FormatNumber(times, times < kHardly ? "0.000000000" : "0.000") + " times as large";
}

std::string OfOtherSolution(const FitRemark& remark) {
    return "Another solution has a smaller sum of squares (" +
           (std::isinf(remark.Times) ? std::string("by far") : "this one's is " + TimesText(remark.Times)) +
           "); the start values that were given keep this one";
}

std::string OfIteration(const FitRemark& remark) {
    return "The iteration from its start values ended in a solution that is not the best (" +
           (remark.Times == 0 ? std::string("a mirrored one that fits as well")
                              : "its sum of squares was " + TimesText(remark.Times)) +
           "); it began again from the best one";
}

std::string ReasonText(FitRemark::Reason why) {
    switch (why) {
        case FitRemark::Reason::MirroredForNothing:
            return "ended in a mirrored solution that fits no better than noise explains";
        case FitRemark::Reason::WorseThanFirstFit:
            return "ended in a solution that is worse than that of least squares";
        case FitRemark::Reason::OtherFromSeeds:
            return "from their start values ended elsewhere";
        default:
            return "found no end";
    }
}

std::string OfOptimum(const FitRemark& remark, const NormWords& words) {
    return "The way from the weightings ended in an optimum that is not the best (" +
           (remark.Times != 0 ? "its " + std::string(words.Least) + " was " + TimesText(remark.Times)
                              : std::string("a mirrored one that fits no better than noise explains")) +
           "); the best one of " + std::to_string(remark.Count) + " starts is taken";
}

std::string OfUnsettled(const FitRemark& remark, const NormWords& words, int limit) {
    const bool one = remark.Count == 1;
    return PlainText(remark.Count) + (one ? " inner fit of " : " inner fits of ") + words.Name +
           " ended at the limit of " + PlainText(limit) +
           " iterations and did not settle; the loop went on with " + (one ? "its" : "their") +
           " weights, and the " + words.Weighted + " may be above the least one";
}

std::string OfHeld(const NormRun& run) {
    const std::string names = NamesOf(run.HeldByFit);
    std::string values;
    int count = 0;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (run.HeldByFit[static_cast<std::size_t>(k)]) {
            values += (values.empty() ? "" : ", ") + ShownAs(KindOf(k), run.Run.Now[k]);
            ++count;
        }
    return names + (count == 1 ? " is" : " are") + " held at " + values + ": left to float " +
           (count == 1 ? "it leads" : "they lead") +
           " to a mirrored result, which fits no better than noise explains, and no proper one is the best; "
           "the points in use, all but on one line or in one plane perhaps, do not determine " +
           (count == 1 ? "it, and it has" : "them, and they have") + " no sigma";
}

}  // namespace

void NoteRemarks(const NormRun& run) {
    const NormWords words = WordsOf(run.Kind);
    for (const FitRemark& remark : run.Remarks) switch (remark.Kind) {
            case FitRemark::What::IterationBeganAgain:
                AddNote(NoteCode::BetterStart, OfIteration(remark));
                break;
            case FitRemark::What::IterationFoundNoEnd:
                AddNote(NoteCode::BetterStart,
                        "The iteration from its start values found no end; it began again from the best "
                        "solution");
                break;
            case FitRemark::What::OtherSolutionIsLess:
                AddNote(NoteCode::BetterElsewhere, OfOtherSolution(remark));
                break;
            case FitRemark::What::LoopBeganAgain:
                AddNote(NoteCode::BetterStart, std::string("The weightings of ") + words.Name + " " +
                                                   ReasonText(remark.Why) +
                                                   "; they began again from the best fit");
                break;
            case FitRemark::What::OptimumFromOtherStart:
                AddNote(NoteCode::BetterStart, OfOptimum(remark, words));
                break;
            case FitRemark::What::OtherOptimumIsLess:
                AddNote(NoteCode::BetterElsewhere,
                        "Another optimum has a smaller " + std::string(words.Least) + " (" +
                            TimesText(remark.Times) + "); the start values that were given keep this one");
                break;
            case FitRemark::What::HeldWhereMirrored:
                AddNote(NoteCode::OpenParameters, OfHeld(run));
                break;
            case FitRemark::What::FitsUnsettled:
                AddNote(NoteCode::UnsettledFits, OfUnsettled(remark, words, run.Run.Limits.MaxIteration));
                break;
        }
}

}  // namespace corvinade::engine

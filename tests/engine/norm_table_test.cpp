// The tables of norms and presets: their rows are what window, command line and calculation make of them.
#include "engine/norm_table.h"

#include <set>

#include "engine/calculation_job.h"
#include "engine/presets.h"
#include "engine/selection.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class NormTable : public CalculationJob {
protected:
    NormTable() { AddPairs(); }
};
using PresetTable = NormTable;

std::vector<int> FloatingSlots() {
    std::vector<int> floating;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (Job.ParamText[static_cast<std::size_t>(k)] == kFloat) floating.push_back(k);
    return floating;
}

std::vector<int> FloatingBoxes() {
    std::vector<int> floating;
    for (const ParameterControls& row : ParameterRows())
        if (row.Check->Value == 1) floating.push_back(row.Parameter);
    return floating;
}

struct Choice {
    const char* Name;
    Control* Option;
    std::vector<int> Floating;
};
// NOLINTNEXTLINE
const std::vector<Choice> kChoices = {{"level", &trafoWindow.OptionHoldLevel, {1, 2, 3, 6}},
                                      {"6", &trafoWindow.Option6Parameter, {1, 2, 3, 4, 5, 6}},
                                      {"7", &trafoWindow.Option7Parameter, {1, 2, 3, 4, 5, 6, 10}},
                                      {"9", &trafoWindow.Option9Parameter, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
                                      {"12", &trafoWindow.Option12, {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13}}};

}  // namespace

// The numbers stand in job files.
TEST_F(NormTable, NumbersAreThoseOfJobFiles) {
    EXPECT_EQ(Norms().size(), 3U);
    EXPECT_STREQ(NormOf(1).Label, "L1");
    EXPECT_STREQ(NormOf(2).Label, "L2");
    EXPECT_STREQ(NormOf(3).Label, "L-infinity");
    for (const int other : {-32768, -1, 0, 4, 32767}) EXPECT_EQ(&NormOf(other), &LeastSquares()) << other;
    Job.NormType = 3;
    EXPECT_EQ(&NormOfJob(), &NormOf(3));
}

TEST_F(NormTable, NoTwoNormsShareANumberANameOrAnOption) {
    std::set<int> numbers;
    std::set<std::string> labels;
    std::set<const Control*> options;
    for (const NormRow& norm : Norms()) {
        EXPECT_TRUE(numbers.insert(norm.Number).second) << norm.Name;
        EXPECT_TRUE(labels.insert(norm.Label).second) << norm.Name;
        EXPECT_TRUE(options.insert(&(trafoWindow.*norm.Option)).second) << norm.Name;
        EXPECT_EQ(norm.ExactName == nullptr, IsLeastSquares(norm)) << "a loop has a way to its optimum";
    }
    const std::vector<std::string> names = NormNames();
    EXPECT_EQ(names, (std::vector<std::string>{"l1", "l2", "loo", "l1-exact", "minimax"}));
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST_F(NormTable, ANameAsksForItsNormAndForTheWayToItsOptimum) {
    struct Asked {
        const char* Name;
        int Number;
        bool Exact;
    };
    for (const Asked& asked : {Asked{"l1", 1, false}, Asked{"l2", 2, false}, Asked{"loo", 3, false},
                               Asked{"l1-exact", 1, true}, Asked{"minimax", 3, true}}) {
        const NormWish wish = NormByName(asked.Name);
        EXPECT_EQ(wish.Norm.Number, asked.Number) << asked.Name;
        EXPECT_EQ(wish.Exact, asked.Exact) << asked.Name;
        EXPECT_NE(std::string(NormsInWords()).find(asked.Name), std::string::npos) << asked.Name;
    }
}

TEST_F(NormTable, AnOptionOfTheWindowChoosesItsNormAndAJobItsOption) {
    Open();
    for (const NormRow& norm : Norms()) {
        UserSetValue(trafoWindow.*norm.Option, 1);
        EXPECT_EQ(Job.NormType, norm.Number) << norm.Name;
        EXPECT_EQ(trafoWindow.CheckMonteCarlo.Enabled, norm.Number == 2) << norm.Name;
        UnloadWindow("FormTrafoBerechnung");
        Open();
        EXPECT_EQ((trafoWindow.*norm.Option).Value, 1) << norm.Name;
        EXPECT_EQ(trafoWindow.OptionL1.Value + trafoWindow.OptionL2.Value + trafoWindow.OptionLoo.Value, 1)
            << norm.Name;
    }
}

TEST_F(NormTable, EveryNormOfTheMathematicsHasItsRow) {
    EXPECT_EQ(NormOfFit(FitNorm::LeastSum).Number, 1);
    EXPECT_EQ(NormOfFit(FitNorm::LeastSquares).Number, 2);
    EXPECT_EQ(NormOfFit(FitNorm::LeastLargest).Number, 3);
    EXPECT_EQ(LeastSquares().Number, 2);
}

TEST_F(PresetTable, TheNameAndTheOptionOfAPresetFloatTheSameParameters) {
    Open();
    std::vector<std::string> names;
    for (const Choice& choice : kChoices) {
        SCOPED_TRACE(choice.Name);
        names.emplace_back(choice.Name);
        Job.ParamText.fill("");
        EXPECT_TRUE(SelectPreset(choice.Name));
        EXPECT_EQ(FloatingSlots(), choice.Floating);
        UserSetValue(*choice.Option, 0);
        UserSetValue(*choice.Option, 1);
        EXPECT_EQ(FloatingBoxes(), choice.Floating);
        EXPECT_NE(std::string(PresetsInWords()).find(choice.Name), std::string::npos);
    }
    EXPECT_EQ(PresetNames(), names);
}

TEST_F(PresetTable, ANameThatThereIsNotChangesNothing) {
    SelectPreset("7");
    const auto before = Job.ParamText;
    for (const char* name : {"", "8", "Level", "affine"}) EXPECT_FALSE(SelectPreset(name));
    EXPECT_EQ(Job.ParamText, before);
}

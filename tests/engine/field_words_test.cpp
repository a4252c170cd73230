// "What is this?" of the fields of a result.
#include "engine/field_words.h"

#include <set>

#include "engine/calculation_job.h"

using namespace corvinade;

using WordsOfFields = CalculationJob;

TEST_F(WordsOfFields, EveryFieldOfAParameterAndOfTheQualityHasItsOwn) {
    AddPairs(6);
    Open();
    std::set<std::string> told;
    int fields = 0;
    const auto look = [&](const Control* field) {
        if (field == nullptr) return;
        const std::string words = WhatIs(*field);
        EXPECT_FALSE(words.empty()) << field->Entry->Name;
        EXPECT_TRUE(words.ends_with('.')) << words;
        told.insert(words);
        ++fields;
    };
    for (const ParameterControls& row : ParameterRows())
        for (const Control* field : {row.Text, row.Sigma, row.Signifikanz}) look(field);
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) look(QualityRow(quality).Field);
    look(&TrafoWindow.LabelVerdict);
    look(&TrafoWindow.LabelResultState);
    EXPECT_GT(fields, 50);
    EXPECT_EQ(told.size(), static_cast<std::size_t>(fields)) << "two fields say the same";
}

TEST_F(WordsOfFields, ControlsThatAreNoResultHaveNone) {
    AddPairs(6);
    Open();
    EXPECT_EQ(WhatIs(TrafoWindow.BtnCalculate), "");
    EXPECT_EQ(WhatIs(TrafoWindow.CheckTraX), "");
    EXPECT_EQ(WhatIs(Main.MenuFile), "");
}

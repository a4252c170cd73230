// The mark of a result that did not converge, from the calculation to what leaves the program.
#include <cmath>

#include "core/job_file.h"
#include "core/notes.h"
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/clipboard_report.h"

using namespace corvinade;

namespace {

class Unconverged : public CalculationJob {
protected:
    // Six parameters of a cloud; one pass does not do.
    Unconverged() {
        AddPairs();
        Job.ParamText.fill(kNotUsed);
        FloatParameters(kRigid);
    }
    static void StopEarly() {
        Settings.MaxIteration = 0;
        ButtonCalcErsatz();
        ASSERT_FALSE(Calculation.Converged);
    }
    static int NotesOfIt() {
        int count = 0;
        for (const Note& note : Notes.List) count += note.Code == NoteCode::NotConverged ? note.Count : 0;
        return count;
    }
};

}  // namespace

TEST_F(Unconverged, TheJobBearsTheMarkAndTheNextResultTakesItOff) {
    StopEarly();
    EXPECT_EQ(Job.Unconverged, kTrue);
    EXPECT_EQ(NotesOfIt(), 1);
    StopEarly();
    EXPECT_EQ(NotesOfIt(), 1);
    Settings.MaxIteration = 100;
    ButtonCalcErsatz();
    ASSERT_TRUE(Calculation.Converged);
    EXPECT_EQ(Job.Unconverged, kFalse);
    EXPECT_EQ(NotesOfIt(), 0);
}

TEST_F(Unconverged, ARefusedCalculationLeavesWhatWas) {
    for (const Flag before : {kTrue, kFalse}) {
        Job.Unconverged = before;
        Job.ParamText[kScaleX] = "0";
        ButtonCalcErsatz();
        ASSERT_TRUE(Calculation.Refused);
        EXPECT_EQ(Job.Unconverged, before);
    }
}

TEST_F(Unconverged, AJobSavedInTheMiddleOfACalculationBearsTheMark) {
    Job.NormType = 1;
    bool saved = false;
    Headless.OnYield = [&] {
        if (saved || Headless.Yields < 5) return;
        saved = true;
        SaveFileAs(PathOf("middle.cvn"));
    };
    ButtonCalcErsatz();
    Headless.OnYield = nullptr;
    ASSERT_TRUE(saved);
    EXPECT_EQ(ReadJobBytes(Contents(PathOf("middle.cvn")), "").Job.Unconverged, kTrue);
    EXPECT_EQ(Job.Unconverged, kFalse);
}

TEST_F(Unconverged, WhatGoesToTheClipboardBeginsWithANotice) {
    const std::string notice =
        "Notice: The calculation did not converge, its result is not the best fit!\r\n";
    for (const auto& text : {CompleteProtocol, BmwParameters, KukaParameters}) {
        Settings.MaxIteration = 100;
        ButtonCalcErsatz();
        EXPECT_EQ(text().find("Notice"), std::string::npos);
        StopEarly();
        const std::string marked = text();
        EXPECT_TRUE(marked.starts_with(notice)) << marked.substr(0, 100);
        Job.Unconverged = kFalse;
        EXPECT_EQ(marked, notice + text()) << "the rest is the same";
    }
}

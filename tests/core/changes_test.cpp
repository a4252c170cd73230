// The table of changes: each row runs once, behind the outermost handler, in the one order.
#include "core/changes.h"

#include <functional>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/platform.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

class ChangeTable : public Program {
protected:
    using Texts = std::vector<std::string>;

    ChangeTable() {
        Changes.Rows = kRows;
        Done.clear();
        InSheet = nullptr;
        Inner.Click = [] {};
        Outer.Click = [] {};
    }
    ~ChangeTable() override {
        Changes = ChangesRecord{};
        Headless.OnYield = nullptr;
    }

    static Texts Happened() { return std::exchange(Done, {}); }
    static void Say(const std::string& text) { Done.push_back(text); }

    static inline Texts Done;                     // what has happened, in order
    static inline std::function<void()> InSheet;  // what the row of the sheet does besides
    static inline Handlers Inner, Outer;

    static constexpr ChangeRow kRows[] = {
        {What::Points | What::Coordinates, Turn::PairTable, [](What) { Say("table"); }},
        {What::Points | What::Counts, Turn::Sheet,
         [](What) {
             Say("sheet");
             if (InSheet) InSheet();
         }},
        {What::Points, Turn::CalculationFields, [](What) { Say("fields"); }, true},
        {What::Points | What::Result, Turn::Commands,
         [](What changed) { Say(Share(changed, What::Counts) ? "commands and counts" : "commands"); }},
    };
};

TEST_F(ChangeTable, OutsideOfAllHandlersAChangeIsShownAtOnce) {
    Changed(What::Counts);
    Say("end");
    EXPECT_EQ(Happened(), (Texts{"sheet", "end"}));
    Changed(What::Points);
    EXPECT_EQ(Happened(), (Texts{"table", "sheet", "fields", "commands"}));
    Changed(What::Use);
    ShowChanges();
    EXPECT_EQ(Happened(), Texts{});
}

TEST_F(ChangeTable, EachRowRunsOnceBehindTheOutermostHandlerInTheOneOrder) {
    static Control box = CheckBox("box");
    Inner.Click = [] {
        Changed(What::Result);
        Changed(What::Counts);
        Say("inner");
    };
    const ControlEntry entry = {"box", &box, Inner};
    box = CheckBox("box");
    box.Entry = &entry;
    Outer.Click = [] {
        Changed(What::Counts);
        SetValue(box, 1);
        Changed(What::Coordinates);
        Say("outer");
    };
    Control button = Button("button");
    const ControlEntry outer = {"button", &button, Outer};
    button.Entry = &outer;
    const Texts once = {"inner", "outer", "table", "sheet", "commands and counts"};
    EXPECT_TRUE(UserClick(button));
    EXPECT_EQ(Happened(), once);
    // A handler that code runs is outermost, too, where no event is about.
    SetValue(box, 0);
    EXPECT_EQ(Happened(), (Texts{"inner", "sheet", "commands and counts"}));
}

TEST_F(ChangeTable, WhatIsShownAtOnceRunsItsOwnRowsAndLeavesTheRestForTheEnd) {
    Dispatch([] {
        Changed(What::Points);
        ShowNow(What::Counts);
        Say("goes on");
        ShowNow(What::Use);  // nobody follows
    });
    EXPECT_EQ(Happened(), (Texts{"sheet", "goes on", "table", "sheet", "fields", "commands"}));
    ShowNow(What::Coordinates | What::Result);
    EXPECT_EQ(Happened(), (Texts{"table", "commands"}));
    EXPECT_TRUE(Changes.Pending == What::Nothing);
}

TEST_F(ChangeTable, AHandlerThatEndsByAnErrorShowsWhatItHadChanged) {
    EXPECT_FALSE(Dispatch([] {
        Changed(What::Coordinates);
        throw PlatformError{"the disk is full"};
    }));
    EXPECT_EQ(Happened(), Texts{"table"});
    EXPECT_EQ(Messages(), Texts{"the disk is full"});
    EXPECT_FALSE(Dispatch([] {
        Changed(What::Counts);
        throw std::bad_alloc{};
    }));
    EXPECT_EQ(Happened(), Texts{"sheet"});
    EXPECT_FALSE(Changes.Handling);
    EXPECT_TRUE(Dispatch([] { Changed(What::Coordinates); }));
    EXPECT_EQ(Happened(), Texts{"table"});  // nothing of the counts is left
}

TEST_F(ChangeTable, AnErrorOfARowIsToldUnlessTheHandlerHasOne) {
    InSheet = [] { throw PlatformError{"no sheet"}; };
    EXPECT_FALSE(Dispatch([] { Changed(What::Points); }));
    EXPECT_EQ(Happened(), (Texts{"table", "sheet"}));
    EXPECT_EQ(LastMessage(), "no sheet");
    EXPECT_FALSE(Dispatch([] {
        Changed(What::Points);
        throw PlatformError{"no points"};
    }));
    EXPECT_EQ(Happened(), (Texts{"table", "sheet"}));
    EXPECT_EQ(Messages(), (Texts{"no sheet", "no points"}));
    EXPECT_TRUE(Changes.Pending == What::Nothing);
    EXPECT_FALSE(Changes.Handling);
}

TEST_F(ChangeTable, AnEventThatArrivesInAYieldShowsItsOwnChangesAndLeavesThoseOfTheHandler) {
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        Say("event");
        Dispatch([] { Changed(What::Counts); });
    };
    Dispatch([] {
        Changed(What::Coordinates);
        YieldToEvents();
        Say("end");
    });
    EXPECT_EQ(Happened(), (Texts{"event", "sheet", "end", "table"}));
}

TEST_F(ChangeTable, AnEventInTheYieldOfARowShowsItsOwnChangesInsideIt) {
    InSheet = [] {
        InSheet = nullptr;
        Dispatch([] { Changed(What::Counts | What::Coordinates); });
        Say("filled");
    };
    Dispatch([] { Changed(What::Points); });
    EXPECT_EQ(Happened(), (Texts{"table", "sheet", "table", "sheet", "filled", "fields", "commands"}));
}

TEST_F(ChangeTable, WhatHasToBeSeenEarlierIsShownOnce) {
    Dispatch([] {
        Changed(What::Counts);
        ShowChanges();
        Say("question");
        ShowChanges();
        Changed(What::Coordinates);
    });
    EXPECT_EQ(Happened(), (Texts{"sheet", "question", "table"}));
}

TEST_F(ChangeTable, WhatIsOfTheJobAloneIsLeftOutWhereOtherPointsComeInWhileARowRuns) {
    const auto change = [] {
        Changed(What::Points);
        ++::Run.JobGeneration;  // of the handler itself
        ShowChanges();
        Say("on");
    };
    Dispatch(change);
    EXPECT_EQ(Happened(), (Texts{"table", "sheet", "fields", "commands", "on"}));
    InSheet = [] { ++::Run.JobGeneration; };
    Dispatch(change);
    EXPECT_EQ(Happened(), (Texts{"table", "sheet", "commands", "on"}));
}

TEST_F(ChangeTable, WhatARowChangesIsShownBehindAllRows) {
    InSheet = [] {
        InSheet = nullptr;
        Changed(What::Counts);
        Changed(What::Coordinates);
    };
    Dispatch([] { Changed(What::Points); });
    EXPECT_EQ(Happened(), (Texts{"table", "sheet", "fields", "commands", "table", "sheet"}));
}

TEST(AllChangeRows, EachHasATurnOfItsOwnAndEveryChangeARow) {
    const auto rows = AllChangeRows();
    What covered = What::Nothing;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(i == 0 || rows[i - 1].Place < rows[i].Place) << i;
        EXPECT_NE(rows[i].Show, nullptr);
        covered = covered | rows[i].Of;
    }
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.back().Place, Turn::Statistic);
    for (auto change = static_cast<std::uint32_t>(What::OpenedJob);
         change <= static_cast<std::uint32_t>(What::ProgramEnd); change <<= 1U)
        EXPECT_TRUE(Share(covered, static_cast<What>(change))) << change;
}

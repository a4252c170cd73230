// Texts in the columns of a terminal.
#include "cli/text_columns.h"

#include <gtest/gtest.h>

using namespace corvinade;

TEST(TextColumns, CountColumnsAsATerminalDoes) {
    EXPECT_EQ(DisplayWidth(""), 0);
    EXPECT_EQ(DisplayWidth("F09"), 3);
    EXPECT_EQ(DisplayWidth("Zäh"), 3);
    EXPECT_EQ(DisplayWidth("a\u0301b"), 2) << "an accent of its own stands over its letter";
    EXPECT_EQ(DisplayWidth("点A"), 3);
    EXPECT_EQ(DisplayWidth("\xff"), 1);
}

TEST(TextColumns, CutWhatIsTooWideAndHideWhatIsNoText) {
    EXPECT_EQ(ForTable("short", 10), "short");
    EXPECT_EQ(ForTable("exactlyten", 10), "exactlyten");
    EXPECT_EQ(ForTable("elevenwidth", 10), "elevenw...");
    EXPECT_EQ(ForTable("点点点点点点", 10), "点点点...");
    EXPECT_EQ(ForTable("red\x1b[31m\n", 20), "red?[31m?");
    EXPECT_LE(ForTable(std::string(10'000'000, 'x'), 40).size(), 40u);
}

TEST(TextColumns, GrowWithTheirWidestCellAndNeverTouch) {
    TextColumns columns{{4, 3}};
    columns.MakeRoom({"点点点", "7"});
    columns.MakeRoom({"a", "12345"});
    EXPECT_EQ(columns.Line({"a", "12345"}), "a       12345");
    EXPECT_EQ(columns.Line({"点点点", "7"}), "点点点      7");
    EXPECT_EQ(columns.Line({"a"}), "a     ") << "missing cells at the end take no room";
}

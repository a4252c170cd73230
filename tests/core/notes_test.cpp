// The list of what the program noticed.
#include "core/notes.h"

#include <gtest/gtest.h>

#include <set>

#include "core/fresh_start.h"

using namespace corvinade;

class NotesTest : public testing::Test {
protected:
    void SetUp() override { FreshStart(); }
};

TEST_F(NotesTest, StartEmpty) {
    EXPECT_TRUE(Notes.List.empty());
    EXPECT_FALSE(HasWarnings());
}

TEST_F(NotesTest, OfOneCodeAboutOneFileAreCountedAndKeepTheFirstLine) {
    AddNote(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0", "a.txt", 7);
    AddNote(NoteCode::NumberAsZero, "\"def\" is no number, x counts as 0", "a.txt", 9);
    AddNote(NoteCode::NumberAsZero, "\"abc\" is no number, x counts as 0", "b.txt", 2);
    ASSERT_EQ(Notes.List.size(), 2u);
    EXPECT_EQ(Notes.List[0].Count, 2);
    EXPECT_EQ(Notes.List[0].Line, 7);
    EXPECT_EQ(NoteLine(Notes.List[0]), "\"abc\" is no number, x counts as 0 (a.txt, line 7; 2 times)");
    EXPECT_EQ(NoteLine(Notes.List[1]), "\"abc\" is no number, x counts as 0 (b.txt, line 2)");
}

TEST_F(NotesTest, OfACalculationAreToldApartByTheirText) {
    AddNote(NoteCode::GimbalLock, "Rot y is 90");
    AddNote(NoteCode::GimbalLock, "Rot y is -90");
    EXPECT_EQ(Notes.List.size(), 2u);
}

TEST_F(NotesTest, OfAnImportOutlastACalculationAndNotAnImport) {
    AddNote(NoteCode::DuplicateName, "two points are named A", "a.txt", 3);
    AddNote(NoteCode::Mirrored, "The result is mirrored");
    ForgetCalculationNotes();
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].Code, NoteCode::DuplicateName);
    ForgetNotes();
    EXPECT_TRUE(Notes.List.empty());
}

TEST_F(NotesTest, AWarningIsOneWhateverStandsBesideIt) {
    AddNote(NoteCode::ColumnsIgnored, "columns beyond the fourth are not read", "a.txt");
    EXPECT_FALSE(HasWarnings());
    AddNote(NoteCode::Mirrored, "The result is mirrored");
    EXPECT_TRUE(HasWarnings());
}

TEST_F(NotesTest, CodesHaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const NoteKind& kind : NoteKinds()) {
        EXPECT_EQ(&NoteKindOf(kind.Code), &kind);
        EXPECT_TRUE(names.insert(kind.Name).second) << kind.Name;
    }
}

TEST_F(NotesTest, OfDigitsThatAnExportCutsGoWithTheNextCalculation) {
    ForgetNotes();
    AddNote(NoteCode::DigitsCut, "a number of a file", "a.txt", 3);
    AddNote(NoteCode::DigitsCut, "a number of a result");
    ForgetCalculationNotes();
    ASSERT_EQ(Notes.List.size(), 1u);
    EXPECT_EQ(Notes.List[0].File, "a.txt");
    ForgetNotes();
}

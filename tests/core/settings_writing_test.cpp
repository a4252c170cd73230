// What one written value leaves in the settings file, byte by byte, and what a refusal leaves.
#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "core/run.h"
#include "core/settings.h"
#include "support/fixture.h"

using namespace corvinade;

class SettingsWriting : public Program {
protected:
    SettingsWriting() { Run.SettingsFilePath = PathOf("Corvinade.ini"); }
    void Hold(const std::string& text) const { Write("Corvinade.ini", text); }
    std::string Held() const { return Contents(Run.SettingsFilePath); }
};

namespace {

std::string WithKey(const std::string& text, const std::string& section, const std::string& key,
                    const std::string& value) {
    return WithIniValue(text, {section, key, value});
}

}  // namespace

// --- Writing one value ------------------------------------------------------------------------------------

TEST_F(SettingsWriting, AnEmptyFileGetsSectionValueAndEndMark) {
    EXPECT_EQ(WithKey("", "A", "k", "1"), CrLf("[A]\nk=1\n[LastEntry]\n"));
    EXPECT_EQ(WithKey("\r\n  \r\n", "A", "k", "1"), CrLf("[A]\nk=1\n[LastEntry]\n"));
}

TEST_F(SettingsWriting, ANewKeyTakesThePlaceOfTheBlankLineBeforeTheNextHead) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n\n[B]\nb=1\n[LastEntry]\n"), "A", "k", "2"),
              CrLf("[A]\na=1\nk=2\n\n[B]\nb=1\n[LastEntry]"));
}

TEST_F(SettingsWriting, ANewKeyNeverJoinsTwoLines) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n[B]\nb=1\n[LastEntry]\n"), "A", "k", "2"),
              CrLf("[A]\na=1\nk=2\n\n[B]\nb=1\n[LastEntry]"));
    EXPECT_EQ(WithKey(CrLf("[A]\n[B]\n"), "A", "k", "2"), CrLf("[A]\nk=2\n\n[B]"));
    EXPECT_EQ(WithKey(CrLf("[A]\n\n[B]\n"), "A", "k", "2"), CrLf("[A]\nk=2\n\n[B]"));
}

TEST_F(SettingsWriting, OnlyOneOfSeveralBlankLinesGivesWay) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n\n\n[B]\nb=1"), "A", "k", "2"), CrLf("[A]\na=1\n\nk=2\n\n[B]\nb=1"));
}

TEST_F(SettingsWriting, ANewKeyOfTheLastSectionStandsBeforeTheEndMark) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n[LastEntry]\n"), "A", "k", "2"), CrLf("[A]\na=1\nk=2\n\n[LastEntry]"));
}

TEST_F(SettingsWriting, ANewKeyOfTheLastSectionWithoutAnEndMarkStandsAtTheEnd) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n\n[B]\nb=1\n\n"), "B", "k", "2"), CrLf("[A]\na=1\n\n[B]\nb=1\nk=2\n"));
    EXPECT_EQ(WithKey("[B]", "B", "k", "2"), CrLf("[B]\nk=2\n"));
}

TEST_F(SettingsWriting, ANewSectionStandsBeforeTheEndMark) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n[LastEntry]\n"), "N", "k", "2"),
              CrLf("[A]\na=1\n\n[N]\nk=2\n[LastEntry]\n"));
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n\n[LastEntry]\n"), "N", "k", "2"),
              CrLf("[A]\na=1\n\n\n[N]\nk=2\n[LastEntry]\n"));
    EXPECT_EQ(WithKey("[LastEntry]", "N", "k", "2"), CrLf("[N]\nk=2\n[LastEntry]\n"));
}

TEST_F(SettingsWriting, ANewSectionWithoutAnEndMarkIsAddedWithOne) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n"), "N", "k", "2"), CrLf("[A]\na=1\n[N]\nk=2\n[LastEntry]\n"));
    EXPECT_EQ(WithKey(CrLf("loose=1"), "N", "k", "2"), CrLf("loose=1\n[N]\nk=2\n[LastEntry]\n"));
}

TEST_F(SettingsWriting, LinesBehindTheEndMarkAreKept) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n[LastEntry]\nx=1\n"), "N", "k", "2"),
              CrLf("[A]\na=1\n\nx=1\n[N]\nk=2\n[LastEntry]\n"));
}

TEST_F(SettingsWriting, AStandingKeyIsReplacedInItsPlace) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\nk=1\nb=1\n\n[B]\nk=1\n[LastEntry]\n"), "A", "k", "new"),
              CrLf("[A]\na=1\nk=new\nb=1\n\n[B]\nk=1\n[LastEntry]"));
    EXPECT_EQ(WithKey(CrLf("[A]\nk=1\n[B]\nk=1\n"), "B", "k", ""), CrLf("[A]\nk=1\n[B]\nk="));
}

TEST_F(SettingsWriting, AKeyTwiceInItsSectionIsReplacedTwice) {
    EXPECT_EQ(WithKey(CrLf("[A]\nk=1\nk=2\n[B]\n"), "A", "k", "3"), CrLf("[A]\nk=3\nk=3\n[B]"));
}

TEST_F(SettingsWriting, ASectionThatComesTwiceTakesTheKeyOnce) {
    EXPECT_EQ(WithKey(CrLf("[A]\na=1\n\n[B]\n\n[A]\nb=1\n\n[C]\n"), "A", "k", "3"),
              CrLf("[A]\na=1\nk=3\n\n[B]\n\n[A]\nb=1\n\n[C]"));
}

TEST_F(SettingsWriting, CaseCountsInSectionsAndKeys) {
    EXPECT_EQ(WithKey(CrLf("[A]\nK=1\n[a]\nk=1\n"), "A", "k", "3"), CrLf("[A]\nK=1\nk=3\n\n[a]\nk=1"));
}

TEST_F(SettingsWriting, ValuesAreSplitAtTheFirstEqualsSign) {
    std::string key;
    std::string value;
    IniZeileTeilen("a=b=c=", key, value);
    EXPECT_EQ(key, "a");
    EXPECT_EQ(value, "b=c=");
    IniZeileTeilen("=x", key, value);
    EXPECT_EQ(key, "");
    EXPECT_EQ(value, "x");
    IniZeileTeilen("a=", key, value);
    EXPECT_EQ(key, "a");
    EXPECT_EQ(value, "");
    IniZeileTeilen("none", key, value);
    EXPECT_EQ(key, "");
    EXPECT_EQ(value, "");
    EXPECT_EQ(WithKey(CrLf("[A]\nk=1=2\n"), "A", "k", "3=4=="), CrLf("[A]\nk=3=4=="));
}

TEST_F(SettingsWriting, RemarksInAnyCaseAndQuotedLinesAreKeptOnWriting) {
    const std::string text = CrLf("[A]\nREM k=1\nrem=1\nRemote=1\n'k=1\n\nk=1\n[LastEntry]\n");
    EXPECT_EQ(WithKey(text, "A", "k", "2"), CrLf("[A]\nREM k=1\nrem=1\nRemote=1\n'k=1\n\nk=2\n[LastEntry]"));
    // A line that begins with these letters is a remark for the writer, whatever its key.
    EXPECT_EQ(WithKey(text, "A", "Remote", "2"),
              CrLf("[A]\nREM k=1\nrem=1\nRemote=1\n'k=1\n\nk=1\nRemote=2\n\n[LastEntry]"));
}

TEST_F(SettingsWriting, BlanksAndLineEndsAtTheEndOfTheFileAreLost) {
    EXPECT_EQ(WithKey("[A]\r\nk=1\r\nb=x  \r\n \r\n\r\n", "A", "k", "2"), "[A]\r\nk=2\r\nb=x");
    EXPECT_EQ(WithKey("[A]\r\nk=1\r\nb=x\t\r\n", "A", "k", "2"), "[A]\r\nk=2\r\nb=x\t");
    EXPECT_EQ(WithKey("[A]\r\nk=1  \r\nb=x\r\n", "A", "b", "y"), "[A]\r\nk=1  \r\nb=y");
}

TEST_F(SettingsWriting, FilesOfLfAloneAreReadAndWrittenWithCrLf) {
    EXPECT_EQ(WithKey("[A]\na=1\n\n[B]\n", "A", "k", "2"), CrLf("[A]\na=1\nk=2\n\n[B]"));
    Hold("[Global]\nMaxIteration=7\nBestFit_Etta=0.5");
    IniLesen();
    EXPECT_EQ(Settings.MaxIteration, 7);
    EXPECT_EQ(Settings.BestFit_Etta, 0.5);
    EXPECT_EQ(IniWertLesen("MaxIteration"), "7");
}

TEST_F(SettingsWriting, BytesOfOtherLinesAreKept) {
    const std::string foreign =
        "x=\xE4\xFF\x80 \xC3\xA4\r\n'\xFC\r\n[\xDC"
        "ber]\r\ny=\x01\x7F\r\n";
    EXPECT_EQ(WithKey("[A]\r\nk=1\r\n" + foreign + "[LastEntry]\r\n", "A", "k", "2"),
              "[A]\r\nk=2\r\n" + foreign + "[LastEntry]");
}

TEST_F(SettingsWriting, KeysWithUmlautsAreFoundInBothEncodings) {
    EXPECT_EQ(WithKey("[A]\r\nBin\xE4rModus=True\r\n", "A", "BinärModus", "False"),
              "[A]\r\nBin\xE4rModus=False");
    EXPECT_EQ(WithKey("[A]\r\nBinärModus=True\r\n", "A", "BinärModus", "False"),
              "[A]\r\nBin\xE4rModus=False");
    EXPECT_EQ(WithKey("[\xDC]\r\nk=1\r\n", "Ü", "k", "2"), "[\xDC]\r\nk=2");
    Hold("ShowPointNumber=True\r\nBin\xE4rModus=True\r\nVec_Ma\xDFstab=2.5\r\nNameMCS=\xC3\xA4\r\n");
    IniLesen();
    EXPECT_EQ(Settings.LocalGraphics.BinärModus, kTrue);
    EXPECT_EQ(Settings.LocalGraphics.Vec_Maßstab, 2.5F);
    EXPECT_EQ(Job.NameMCS, "ä");
}

TEST_F(SettingsWriting, EveryTextSurvivesUnderEveryKey) {
    for (const char* key : {"NameMCS", "Größe"})
        for (const char* value : {"ä", "Ã¤", "Ω", "€=þÿ", "a=b", " leading", "€"}) {
            IniWertSchreiben("Settings", key, value);
            EXPECT_EQ(IniWertLesen(key), value) << key;
        }
}

TEST_F(SettingsWriting, AValueWithALineBreakStaysOneLine) {
    EXPECT_EQ(WithKey(CrLf("[A]\nk=1\n"), "A", "k", "x\r\n[B]\nb=1"), CrLf("[A]\nk=x  [B] b=1"));
}

TEST_F(SettingsWriting, AGroupOfValuesIsWrittenInOneGo) {
    int replacements = 0;
    FileFaults.Refuse = [&](const std::string& operation, const std::string&) {
        if (operation == "rename") ++replacements;
        return std::string();
    };
    IniWerteSchreiben({{"A", "k", "1"}, {"A", "l", "2"}, {"B", "m", "3"}});
    EXPECT_EQ(replacements, 1);
    EXPECT_EQ(Held(), CrLf("[A]\nk=1\nl=2\n\n\n[B]\nm=3\n[LastEntry]\n"));
}

TEST_F(SettingsWriting, SettingsOfTheTableAreWrittenUnderTheirSection) {
    Settings.SigmaX = 1.5;
    Settings.MaxIteration = 20;
    Settings.AdTCP = kTrue;
    Settings.LastDir = "/tmp/ä";
    SettingsSchreiben({"sigmaX", "AdTCP", "MaxIteration", "LastDir"});
    EXPECT_EQ(Held(), CrLf("[Settings]\nsigmaX=1.5\nAdTCP=True\n\n\n[Global]\nMaxIteration=20\n\n[Roots]\n"
                           "LastDir=/tmp/\xE4\n[LastEntry]\n"));
}

// --- Refusals ---------------------------------------------------------------------------------------------

TEST_F(SettingsWriting, ARefusedWriteIsToldOnceAndKeepsTheOldFile) {
    const std::string text = CrLf("[A]\nk=1\n");
    for (const char* operation : {"open", "read", "create", "write", "flush", "rename"}) {
        Hold(text);
        Headless.Dialogs.clear();
        Settings.RefusalTold = false;
        FileFaults.Refuse = [operation](const std::string& asked, const std::string&) {
            return asked == operation ? std::string("no") : std::string();
        };
        IniWertSchreiben("A", "k", "2");
        IniWertSchreiben("A", "k", "3");
        ASSERT_EQ(Messages().size(), 1U) << operation;
        EXPECT_TRUE(LastMessage().starts_with("The settings could not be stored.\r\n\r\nCannot "));
        EXPECT_EQ(Held(), text) << operation;
        FileFaults = FileFaultRecord{};
        IniWertSchreiben("A", "k", "4");
        EXPECT_EQ(Held(), CrLf("[A]\nk=4"));
    }
}

TEST_F(SettingsWriting, ARefusalAfterASuccessIsToldAgain) {
    FileFaults.Refuse = [](const std::string&, const std::string&) { return std::string("no"); };
    IniWertSchreiben("A", "k", "2");
    FileFaults = FileFaultRecord{};
    IniWertSchreiben("A", "k", "2");
    FileFaults.Refuse = [](const std::string&, const std::string&) { return std::string("no"); };
    IniWertSchreiben("A", "k", "2");
    EXPECT_EQ(Messages().size(), 2U);
}

TEST_F(SettingsWriting, WithoutASettingsFileNothingIsWritten) {
    Run.SettingsFilePath.clear();
    IniWertSchreiben("A", "k", "2");
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(IniWertLesen("k"), "1000");
}

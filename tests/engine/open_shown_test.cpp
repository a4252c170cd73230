// How the window and the clipboard show parameters that the points leave open, and the notes of a result.
#include <cmath>

#include "core/notes.h"
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/clipboard_report.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

class OpenShown : public CalculationJob {
protected:
    // A plate in the plane xy, shifted by 1, 2, 3: nothing tells a scale in z. Off the plane stands `height`.
    static void OpenPlate(double height) {
        for (int i = 0; i < 9; ++i) {
            const double x = 100.0 * (i % 3), y = 100.0 * (i / 3), z = i == 4 ? height : 0;
            AddPair({x, y, z}, {x + 1 + 0.01 * (i % 2), y + 2, z + 3});
        }
        const std::size_t size = static_cast<std::size_t>(Job.Pairs()) + 1;
        Job.RVecX.resize(size);
        Job.RVecY.resize(size);
        Job.RVecZ.resize(size);
        ::Run.JobDataValid = kTrue;
        Open();
        SetValue(trafoWindow.Option9Parameter, 1);
        FormTrafoBerechnung::Option9Parameter_Click();
    }
    static std::string LineOf(const std::string& text, const std::string& label) {
        const std::size_t at = text.find("\r\n" + label);
        return at == std::string::npos ? "" : text.substr(at + 2, text.find("\r\n", at + 2) - at - 2);
    }
};

}  // namespace

TEST_F(OpenShown, TheWindowSaysOpenInThePlaceOfANumber) {
    OpenPlate(0);
    Calculate();
    ASSERT_TRUE(std::isnan(Calculation.Sigma[kScaleZ]));
    EXPECT_EQ(trafoWindow.TextSigmaScaleZ.Text, "-");
    EXPECT_EQ(trafoWindow.TextSignifikanzScaleZ.Text, "open");
    EXPECT_FALSE(trafoWindow.TextSigmaScaleX.Text.empty());
    EXPECT_NE(trafoWindow.TextSigmaScaleX.Text, "-");
    EXPECT_NE(trafoWindow.TextSignifikanzScaleX.Text, "open");
}

TEST_F(OpenShown, TheProtocolMarksThemAndEndsWithTheNotes) {
    OpenPlate(0);
    Calculate();
    const std::string text = CompleteProtocol();
    EXPECT_TRUE(LineOf(text, "Scale z ").ends_with("\topen")) << LineOf(text, "Scale z ");
    EXPECT_EQ(LineOf(text, "Scale x ").find("open"), std::string::npos);
    EXPECT_EQ(LineOf(text, "Tra x ").find("open"), std::string::npos);
    std::string notes = "Notes\r\n";
    for (const Note& note : Notes.List)
        notes += std::string(SeverityName(note.Weight)) + "\t" + NoteLine(note) + "\r\n";
    EXPECT_FALSE(Notes.List.empty());
    EXPECT_NE(notes.find("Scale z"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\r\n" + notes)) << text;
    Notes.List.clear();
    EXPECT_EQ(text, CompleteProtocol() + notes) << "what stands before them is the same";
}

TEST_F(OpenShown, AWholeResultIsShownAsEver) {
    OpenPlate(500);
    Calculate();
    ASSERT_TRUE(Notes.List.empty());
    EXPECT_EQ(CompleteProtocol().find("open"), std::string::npos);
    EXPECT_EQ(CompleteProtocol().find("Notes"), std::string::npos);
    for (const auto& text : {BmwParameters, KukaParameters})
        EXPECT_EQ(text().find("Notice: The points"), std::string::npos) << text();
}

TEST_F(OpenShown, TheRobotsTextsBeginWithANotice) {
    OpenPlate(0);
    Calculate();
    const std::string notice =
        "Notice: The points leave Scale z open, what stands here for that is arbitrary!\r\n";
    for (const Flag inverted : {kFalse, kTrue}) {
        Settings.InvertedBMW = inverted;
        EXPECT_TRUE(BmwParameters().starts_with(notice)) << BmwParameters();
    }
    EXPECT_TRUE(KukaParameters().starts_with(notice)) << KukaParameters();
}

// The window of the report: what goes into it, how it will print, and ways to take it along.
#pragma once

#include <cstdint>
#include <string>

#include "analysis/report.h"
#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

struct ScreenWindow;

struct FormReport {
    WindowState Window{.Caption = "Report"};

    Control LabelTitle, TextTitle;
    Control LabelProject, TextProject;
    Control LabelAuthor, TextAuthor;
    Control LabelLogo, TextLogo;
    Control BtnBrowseLogo;
    Control CheckParameters, CheckStatistics, CheckPoints;
    Control LabelWorst, TextWorst;
    Control CheckPictures, CheckNotes, CheckProtocol;
    Control GridPictures;
    Control LabelProblem;
    Control BtnSave, BtnPrint, BtnClose;

    Report Made;             // what the preview shows
    std::uint64_t Turn = 0;  // counts the reports that were made

    static void Form_Load();
    static void Form_Escape();
    static void Choice_Change();
    static void BtnBrowseLogo_Click();
    static void GridPictures_Click();
    static void GridPictures_Key();
    static void BtnSave_Click();
    static void BtnPrint_Click();
    static void BtnClose_Click();
};
extern FormReport ReportWindow;
extern const WindowEntry FormReport_Entry;

// What was chosen last, for the next time that the window opens.
inline ReportChoice ReportWish;

// What a face with pictures does for the report; without one it has no pictures, and no PDF.
struct ReportFaces {
    std::string (*Picture)(const ScreenWindow& window) = nullptr;  // the bytes of a PNG file
    std::string (*Pdf)(const Report& report) = nullptr;            // those of a PDF file
    void (*Print)(const Report& report) = nullptr;                 // asks for a printer
};
inline ReportFaces ReportBy;

// Another result, other units or points: the report of the open window is made anew.
void RenewReport();

void MenuFileReport_Click();

}  // namespace corvinade::graphics

// The report of a result: one description of what it says, which all its outputs are made of.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/rooms.h"

namespace corvinade::analysis {

// What goes into a report.
struct ReportChoice {
    bool Parameters = true, Statistics = true, Points = true, Pictures = true, Notes = true;
    bool Protocol = false;  // as the clipboard gets it
    int Worst = 0;          // so many points, the largest deviations first; 0 = all in their order
    std::string Title;      // "" = by the names of the systems
    std::string Project, Author;
    std::string Logo;  // path of a picture
    // Pictures by their names in the list that are wanted, or not, otherwise than by themselves.
    std::vector<std::pair<std::string, bool>> PictureTicks;
};

struct ReportCell {
    std::string Text;
    bool Marked = false;  // beyond the tolerance, or a warning
};

struct ReportTable {
    std::vector<std::string> Heads;
    std::vector<std::vector<ReportCell>> Rows;
    int TextColumns = 1;  // of them so many from the left hold words, the others numbers
};

// The bytes of a file in a form that pages can show (PNG, JPEG).
struct ReportPicture {
    std::string Title, Bytes;
};

// Lines, tables, pictures and the text follow each other in this order.
struct ReportSection {
    std::string Title;
    std::vector<std::string> Lines;
    std::vector<ReportTable> Tables;
    std::vector<ReportPicture> Pictures;
    std::string Text;  // as it stands, in letters of one width
};

struct Report {
    std::string Title, Project, Author, Made;  // by what program and when
    std::string LogoBytes;
    std::string Verdict;                // "pass", "fail", or "" without a tolerance
    std::vector<std::string> Warnings;  // of the result as a whole, ahead of everything
    std::vector<ReportSection> Sections;
};

// Of more points a report shows the largest deviations, and says so.
inline constexpr int kMostReportRows = 5000;

// Why there is nothing to report; "" where there is.
std::string WhyNoReport();

// Of the job and its result, in the present units and formats, but for the pictures: those are of rooms
// above. `logo` has the bytes of the logo.
Report ReportOfJob(const ReportChoice& choice, const std::string& logo = "");

// A whole page that needs nothing beside it. `pixel` stretches sizes that are given in pixels, for a page
// that is laid out in finer ones.
std::string ReportHtml(const Report& report, double pixel = 1);

// The tables, one behind the other with a line of the title ahead of each, semicolons between the cells.
std::string ReportCsv(const Report& report);

}  // namespace corvinade::analysis

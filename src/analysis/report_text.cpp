// A report as a page and as lines of cells.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "analysis/report.h"
#include "core/escaped_text.h"
#include "core/numbers.h"

namespace corvinade::analysis {

namespace {

// What all that show pages understand: tables are drawn by attributes, letters by a style.
constexpr const char* kStyle =
    "html{max-width:820px;margin:auto}body{font-family:'DejaVu Sans','Segoe UI',Arial,sans-serif;font-size:9pt;"
    "color:#1c2733;background:#ffffff}h1{font-size:18pt;font-weight:600}"
    "h2{font-size:12pt;font-weight:600;margin-top:20px;margin-bottom:7px}"
    "p{margin-top:3px;margin-bottom:5px}"
    "table{width:100%}th{font-weight:600}pre{font-size:7pt}";

std::string Base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t group = 0;
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[at + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63U] : '=';
    }
    return text;
}

std::string Pixels(double count, double pixel) {
    return PlainText(static_cast<std::int64_t>(std::llround(count * pixel)));
}

// A picture in the page itself. A page of finer pixels stretches its width by itself.
std::string Image(const std::string& bytes, const std::string& words, double width) {
    const char* const kind = bytes.starts_with("\xff\xd8") ? "jpeg" : "png";
    return std::string("<img src=\"data:image/") + kind + ";base64," + Base64(bytes) + "\" width=\"" +
           Pixels(width, 1) + "\" alt=\"" + EscapeMarkup(words) + "\">";
}

std::string TableText(const ReportTable& table, double pixel) {
    std::string html = "<table width=\"100%\" border=\"0\" cellspacing=\"0\" cellpadding=\"" +
                       Pixels(3, pixel) + "\">\n<thead><tr>";
    const auto align = [&table](std::size_t column) {
        return column < static_cast<std::size_t>(table.TextColumns) ? "left" : "right";
    };
    for (std::size_t k = 0; k < table.Heads.size(); ++k)
        html += std::string("<th bgcolor=\"#e8edf2\" align=\"") + align(k) + "\">" +
                EscapeMarkup(table.Heads[k]) + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    bool shaded = false;
    for (const std::vector<ReportCell>& row : table.Rows) {
        html += "<tr>";
        for (std::size_t k = 0; k < row.size(); ++k)
            html += std::string("<td align=\"") + align(k) + "\"" +
                    (row[k].Marked ? " bgcolor=\"#ffa0a0\""
                     : shaded      ? " bgcolor=\"#f6f8fa\""
                                   : "") +
                    ">" + EscapeMarkup(row[k].Text) + "</td>";
        html += "</tr>\n";
        shaded = !shaded;
    }
    return html + "</tbody></table>\n";
}

// Line ends stay, the other control characters have no place in a page.
std::string PlainLines(const std::string& text) {
    std::string html = "<pre>";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n\t", at), text.size());
        html += EscapeMarkup(text.substr(at, end - at));
        if (end < text.size() && text[end] == '\n') html += '\n';
        if (end < text.size() && text[end] == '\t') html += "    ";
        at = end + 1;
    }
    return html + "</pre>\n";
}

}  // namespace

std::string ReportHtml(const Report& report, double pixel) {
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       EscapeMarkup(report.Title) + "</title>\n<style>" + kStyle +
                       "</style>\n</head>\n<body>\n";
    if (!report.LogoBytes.empty()) html += "<p>" + Image(report.LogoBytes, "Logo", 120) + "</p>\n";
    html += "<h1>" + EscapeMarkup(report.Title) + "</h1>\n<p>";
    if (!report.Project.empty()) html += "Project: " + EscapeMarkup(report.Project) + "<br>";
    if (!report.Author.empty()) html += "Author: " + EscapeMarkup(report.Author) + "<br>";
    html += EscapeMarkup(report.Made) + "</p>\n";
    for (const std::string& warning : report.Warnings)
        html += "<p><b><font color=\"#b3261e\">" + EscapeMarkup(warning) + "</font></b></p>\n";
    if (!report.Verdict.empty()) {
        const bool pass = report.Verdict == "pass";
        html += "<p><font size=\"5\" color=\"" + std::string(pass ? "#1b6e2d" : "#b3261e") + "\"><b>" +
                EscapeMarkup(report.Verdict) + "</b></font></p>\n";
    }
    for (const ReportSection& section : report.Sections) {
        html += "<h2>" + EscapeMarkup(section.Title) + "</h2>\n";
        for (const std::string& line : section.Lines) html += "<p>" + EscapeMarkup(line) + "</p>\n";
        for (const ReportTable& table : section.Tables) html += TableText(table, pixel);
        for (const ReportPicture& picture : section.Pictures)
            html += "<p>" + Image(picture.Bytes, picture.Title, 620) + "<br>" + EscapeMarkup(picture.Title) +
                    "</p>\n";
        if (!section.Text.empty()) html += PlainLines(section.Text);
    }
    return html + "</body>\n</html>\n";
}

std::string ReportCsv(const Report& report) {
    std::string text;
    const auto line = [&text](const std::vector<std::string>& cells) {
        for (std::size_t k = 0; k < cells.size(); ++k) text += (k == 0 ? "" : ";") + CsvCell(cells[k]);
        text += "\r\n";
    };
    line({report.Title});
    if (!report.Project.empty()) line({"Project", report.Project});
    if (!report.Author.empty()) line({"Author", report.Author});
    line({report.Made});
    if (!report.Verdict.empty()) line({"Tolerance", report.Verdict});
    for (const std::string& warning : report.Warnings) line({"Warning", warning});
    for (const ReportSection& section : report.Sections) {
        if (section.Lines.empty() && section.Tables.empty()) continue;
        text += "\r\n";
        line({section.Title});
        for (const std::string& one : section.Lines) line({one});
        for (const ReportTable& table : section.Tables) {
            line(table.Heads);
            for (const std::vector<ReportCell>& row : table.Rows) {
                std::vector<std::string> cells;
                cells.reserve(row.size());
                for (const ReportCell& cell : row) cells.push_back(cell.Text);
                line(cells);
            }
        }
    }
    return text;
}

}  // namespace corvinade::analysis

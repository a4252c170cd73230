// Bookmarks for a PDF file.
#include "paint/pdf_marks.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "core/text.h"

namespace corvinade::paint {

namespace {

// The number of the object whose "n 0 obj" stands last ahead of a place; 0 = none.
int ObjectAt(std::string_view pdf, std::size_t place) {
    const std::size_t end = pdf.rfind(" 0 obj", place);
    if (end == std::string_view::npos) return 0;
    std::size_t begin = end;
    while (begin > 0 && pdf[begin - 1] >= '0' && pdf[begin - 1] <= '9') --begin;
    return std::atoi(std::string(pdf.substr(begin, end - begin)).c_str());
}

int NumberBehind(std::string_view pdf, std::string_view word) {
    const std::size_t at = pdf.rfind(word);
    return at == std::string_view::npos ? 0
                                        : std::atoi(std::string(pdf.substr(at + word.size(), 20)).c_str());
}

std::vector<int> PageObjects(std::string_view pdf) {
    constexpr std::string_view kPage = "/Type /Page";
    std::vector<int> pages;
    for (std::size_t at = pdf.find(kPage); at != std::string_view::npos; at = pdf.find(kPage, at + 1)) {
        const char behind = at + kPage.size() < pdf.size() ? pdf[at + kPage.size()] : ' ';
        if (behind != 's') pages.push_back(ObjectAt(pdf, at));
    }
    return pages;
}

// A text in UTF-16, as hexadecimal digits.
std::string PdfText(const std::string& text) {
    std::string hex = "<FEFF";
    const auto put = [&hex](std::uint32_t unit) {
        std::array<char, 8> digits{};
        std::snprintf(digits.data(), digits.size(), "%04X", unit);
        hex += digits.data();
    };
    std::uint32_t code = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = Utf8Character(rest, code);
        if (length == 0) {
            put('?');
        } else if (code >= 0x10000) {
            put(0xD800 + ((code - 0x10000) >> 10U));
            put(0xDC00 + ((code - 0x10000) & 0x3FFU));
        } else {
            put(code);
        }
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return hex + ">";
}

}  // namespace

std::string WithPdfMarks(const std::string& pdf, const std::vector<PdfMark>& marks) {
    const std::vector<int> pages = PageObjects(pdf);
    const int root = NumberBehind(pdf, "/Root "), size = NumberBehind(pdf, "/Size "),
              info = NumberBehind(pdf, "/Info "), table = NumberBehind(pdf, "startxref\n");
    const std::string catalogHead = std::to_string(root) + " 0 obj\n<<";
    const std::size_t catalog = pdf.find("\n" + catalogHead);
    if (marks.empty() || root == 0 || size == 0 || table == 0 || catalog == std::string::npos) return pdf;
    for (const PdfMark& mark : marks)
        if (mark.Page < 0 || mark.Page >= static_cast<int>(pages.size())) return pdf;

    std::string all = pdf, offsets;
    if (!all.ends_with('\n')) all += '\n';
    std::array<char, 24> line{};
    const auto note = [&](std::size_t place) {
        std::snprintf(line.data(), line.size(), "%010zu 00000 n \n", place);
        offsets += line.data();
    };
    // The catalogue again, with the outline; behind it the outline and its marks under new numbers.
    const std::size_t rest = catalog + 1 + catalogHead.size();
    const std::size_t end = pdf.find("endobj", rest);
    const int outline = size, first = size + 1, last = size + static_cast<int>(marks.size());
    const std::size_t catalogPlace = all.size();
    all += catalogHead + "\n/Outlines " + std::to_string(outline) + " 0 R /PageMode /UseOutlines" +
           pdf.substr(rest, end - rest) + "endobj\n";
    note(all.size());
    all += std::to_string(outline) + " 0 obj\n<< /Type /Outlines /First " + std::to_string(first) +
           " 0 R /Last " + std::to_string(last) + " 0 R /Count " + std::to_string(marks.size()) +
           " >>\nendobj\n";
    for (int k = 0; k < static_cast<int>(marks.size()); ++k) {
        const PdfMark& mark = marks[static_cast<std::size_t>(k)];
        note(all.size());
        all += std::to_string(first + k) + " 0 obj\n<< /Title " + PdfText(mark.Title) + " /Parent " +
               std::to_string(outline) + " 0 R /Dest [" +
               std::to_string(pages[static_cast<std::size_t>(mark.Page)]) + " 0 R /Fit]" +
               (first + k > first ? " /Prev " + std::to_string(first + k - 1) + " 0 R" : "") +
               (first + k < last ? " /Next " + std::to_string(first + k + 1) + " 0 R" : "") + " >>\nendobj\n";
    }
    const std::size_t newTable = all.size();
    std::snprintf(line.data(), line.size(), "%010zu 00000 n \n", catalogPlace);
    all += "xref\n" + std::to_string(root) + " 1\n" + line.data() + std::to_string(outline) + " " +
           std::to_string(marks.size() + 1) + "\n" + offsets + "trailer\n<< /Size " +
           std::to_string(last + 1) + " /Root " + std::to_string(root) + " 0 R" +
           (info > 0 ? " /Info " + std::to_string(info) + " 0 R" : "") + " /Prev " + std::to_string(table) +
           " >>\nstartxref\n" + std::to_string(newTable) + "\n%%EOF\n";
    return all;
}

}  // namespace corvinade::paint

// A report laid out on the pages of a printer: what the preview shows is what is printed.
#pragma once

#include <QImage>
#include <memory>
#include <string>
#include <vector>

#include "analysis/report.h"
#include "core/rooms.h"

class QPainter;
class QTextDocument;

namespace corvinade::paint {

// Pages are laid out in so many dots an inch, on A4 upright.
inline constexpr int kReportDots = 300;

struct ReportPages {
    std::shared_ptr<QTextDocument> Document;
    int Count = 0, Width = 0, Height = 0;  // pages, and the dots of one
    std::string Title, Made;
    struct Mark {
        std::string Title;
        int Page = 0;  // from 0
    };
    std::vector<Mark> Sections;
};

ReportPages PagesOf(const Report& report);

// One page, from 0, in dots from its left and upper corner.
void PaintPage(QPainter& painter, const ReportPages& pages, int page);

}  // namespace corvinade::paint

// Bookmarks for a PDF file that has none: the toolkit's writer knows pages alone.
#pragma once

#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::paint {

struct PdfMark {
    std::string Title;  // UTF-8
    int Page = 0;       // from 0
};

// The file with one bookmark a mark, in their order, added behind its end as the format provides for changes.
// The file as it was where it has no classic table of objects, or a mark is of a page that it has not.
std::string WithPdfMarks(const std::string& pdf, const std::vector<PdfMark>& marks);

}  // namespace corvinade::paint

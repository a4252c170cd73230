// Texts as cells of CSV.
#include "cli/csv.h"

#include "core/escaped_text.h"

namespace corvinade::cli {

std::string CsvText(const std::string& text) {
    return CsvCell(text, CsvCells.Raw);
}

}  // namespace corvinade::cli

// The standard deviations that stand in a table beside its points.
#include "import/table_sigmas.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/notes.h"

namespace corvinade::import {

PointAccuracies SigmasOfTable(TableResult& table, const std::string& path) {
    PointAccuracies sigmas;
    if (table.SX.empty() || table.Refusal.Refused()) return sigmas;
    const std::array<const std::vector<double>*, 3> columns = {&table.SX, &table.SY, &table.SZ};
    for (std::size_t axis = 0; axis < 3; ++axis)
        sigmas.Of[axis].assign(columns[axis]->begin() + 1, columns[axis]->end());
    const auto stands = [&table](TableRole role) {
        const std::vector<TableRole>& roles = table.Form.Columns;
        return std::find(roles.begin(), roles.end(), role) != roles.end();
    };
    if (stands(TableRole::S)) return sigmas;
    std::string without;
    for (const TableRole role : {TableRole::SX, TableRole::SY, TableRole::SZ})
        if (!stands(role)) without += (without.empty() ? "" : ", ") + std::string(TableRoleName(role));
    if (!without.empty())
        table.Notes.push_back({NoteCode::SigmaColumns, NoteKindOf(NoteCode::SigmaColumns).Weight,
                               "The file has standard deviations and no column " + without +
                                   ": these coordinates count as free of errors",
                               path, 0, 1});
    return sigmas;
}

}  // namespace corvinade::import

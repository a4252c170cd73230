// What the readers want from outside, as a library has it: nobody to ask, no windows, numbers with a point.
// Ahead of the rooms of the program, whose names are seen from everywhere.
#include "corvinade/fit.h"
//
#include <string>
#include <utility>
#include <vector>

#include "core/changes.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/records.h"
#include "import/long_import.h"

namespace corvinade::core {

char SystemDecimal() {
    return '.';
}

// What is asked or said in windows comes back to the caller as a note or an error.
std::string AskMessage(const std::string&, const std::string&, const std::vector<std::string>& buttons) {
    return buttons.back();
}

void SetStatus(int, const std::string&) {}

std::span<const ChangeRow> AllChangeRows() {
    return {};
}

std::span<const std::span<const RecordEntry>> AllRecords() {
    return {};
}

std::string ProgramVersion() {
    return corvinade::Version();
}

}  // namespace corvinade::core

namespace corvinade::import {

bool ImportGoesOn(double) {
    return true;
}

void ReplaceTarget(core::PointSet points) {
    core::Job.SetPairs(0);
    core::Job.Target = std::move(points);
}

}  // namespace corvinade::import

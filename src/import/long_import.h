// An import of large files: it serves the events that wait, shows how far it has come, and can be cancelled,
// the points of before being whole again then.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/arrays.h"
#include "core/form_progress_bar.h"
#include "core/point_set.h"
#include "core/rooms.h"

namespace corvinade::import {

// What the job has before an import. Made before anything of it changes; the point sets move in here when the
// import replaces them.
struct JobBeforeImport {
    JobBeforeImport();
    // Puts everything back. To be called only while nothing else than the import has changed the points.
    void Restore();
    // Puts the orientations back where the import ended before it had other target points for the job.
    void RestorePoses();
    bool HadTransformed() const { return transformed_ > 0; }

    std::optional<PointSet> Start, Target;
    bool Overtaken = false;  // an import that has ended had found the points to be those of somebody else

private:
    int startCount_, targetCount_, pairs_, transformed_;
    std::array<std::string, 4> names_;
    std::array<double, 9> transformation_;
    std::array<std::int16_t, 4> seed_;
    Flag direction_, valid_, trafoValid_, calcDone_;
    std::optional<Matrix> poses_;
    std::uint64_t generation_;
};

// The import that is under way, the innermost one where another was begun inside its yields.
struct LongImportRecord {
    JobBeforeImport* Before = nullptr;  // null: what is replaced is gone
    bool Active = false;
    bool Large = false;      // the progress shows, and the work yields
    bool Overtaken = false;  // the points are those of somebody else
    int From = 0, To = 100;  // share of the present file, percent
};
inline LongImportRecord LongImport;

// Keeps an import under way for as long as the object lives.
class ImportUnderWay {
public:
    explicit ImportUnderWay(JobBeforeImport* before);
    ~ImportUnderWay();
    ImportUnderWay(const ImportUnderWay&) = delete;
    ImportUnderWay& operator=(const ImportUnderWay&) = delete;

private:
    LongImportRecord outer_ = LongImport;
};

// A file of so many bytes is read now; it takes the progress from `from` to `to` percent. Below about 100,000
// points nobody sees it.
void BeginFile(std::size_t size, int from, int to);

// What the checks of a file take of its share.
inline constexpr double kShareOfChecks = 0.25;

// The progress within the present file or, without one, of the whole. Yields where the import is large. False
// when it must end: the user cancelled it, or the points were replaced meanwhile. Run.ImportFailed is set
// then.
bool ImportGoesOn(double share);

// A point set of the job is replaced by what was read; what it was is kept for a cancelled import. All points
// of both sets count then, no pair is known any more, and the transformed points are as many as the start
// points at least.
void ReplaceStart(PointSet points);
void ReplaceTarget(PointSet points);

// Behind an import, however it ended: all points that are there count again, also those of a job that was
// closed for it. Where some did not count the job is not valid, and has no pairs.
void CountAllPoints();

}  // namespace corvinade::import

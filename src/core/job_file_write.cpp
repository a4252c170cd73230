// A job to the bytes of a job file.
#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <span>

#include "core/controller.h"
#include "core/job_block.h"
#include "core/job_file.h"
#include "core/job_file_bytes.h"
#include "core/job_file_views.h"
#include "core/job_writer.h"

namespace corvinade::core {

namespace {

// Bytes that a job takes about; never much less, so that its bytes do not move while they are put together.
std::size_t ExpectedSize(const JobRecord& job) {
    constexpr std::size_t kTagged = sizeof(std::uint16_t) + sizeof(double);
    const auto names = [](const std::vector<std::string>& values) {
        std::size_t size = 0;
        for (const std::string& value : values) size += sizeof(std::uint16_t) + value.size();
        return size;
    };
    std::size_t size = 64 * std::size_t{1024};
    for (const PointSet* points : {&job.Start, &job.Target, &job.Transformed})
        size += names(points->Name) + kTagged * (points->X.size() + points->Y.size()) +
                sizeof(double) * points->Z.size();
    size += kTagged * (job.RVecX.size() + job.RVecY.size());
    for (const auto* values : {&job.RVecZ, &job.RobotABC.Elements, &job.ParaboloidShape.Elements})
        size += sizeof(double) * values->size();
    return size + sizeof(std::int16_t) * job.UseFlags.size();
}

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// Writes one field by its type; of an array so many elements at a time, from the place on.
struct PutField {
    ByteSink& Out;
    const JobRecord& Job;
    const std::vector<std::string>& ViewNames;
    const JobField& Field;
    JobPlace& Place;
    std::size_t Most;

    void operator()(VersionText) const { Out.PutLongText(ProgramVersion()); }
    void operator()(JobPoints points) const {
        WithColumn(Job.*points.Set, points.Part, [this](const auto& values) { PutColumn(values); });
    }
    template <class Element>
    void PutColumn(const PointValues<Element>& values) const {
        PutSlice<Element>(values, [&values] { return values.size(); });
    }
    void operator()(JobCount count) const { Out.Put(CountOf(Job, count)); }
    void operator()(SavedViews) const { PutSavedViews(Out, Job, ViewNames); }

    void operator()(std::string JobRecord::*place) const { Out.PutLongText(Job.*place); }
    template <class Element>
    void operator()(std::vector<Element> JobRecord::*place) const {
        const std::vector<Element>& values = Job.*place;
        if (values.empty()) Out.Refuse("its element 0 is missing");
        PutSlice<Element>(values, [this, &values] { return SizeInFile(values); });
    }
    // Behind the last element the place is again at the begin of an array.
    template <class Element>
    void PutSlice(const std::vector<Element>& values, auto size) const {
        if (Place.Element == 0) {
            Place.Size = size();
            Out.PutCount(Place.Size);
        }
        if (values.size() < Place.Size) Out.Refuse("it has become shorter while it was written");
        const std::size_t now = std::min(Most, Place.Size - Place.Element);
        Out.PutElements(std::span(values).subspan(Place.Element, now));
        Place.Element += now;
        if (Place.Element == Place.Size) Place.Element = 0;
    }
    // R vectors that the job's file has fewer of than there are pairs: only empty ones have joined them.
    template <class Element>
    std::size_t SizeInFile(const std::vector<Element>& values) const {
        const JobFieldPlace places[] = {&JobRecord::RVecX, &JobRecord::RVecY, &JobRecord::RVecZ};
        for (std::size_t k = 0; k < 3; ++k) {
            if (Field.Place != places[k] || Job.RVecInFile[k] < 1) continue;
            auto size = static_cast<std::size_t>(Job.RVecInFile[k]);
            for (std::size_t i = size; i < values.size(); ++i)
                if (values[i] != Element{}) size = i + 1;
            return std::min(size, values.size());
        }
        return values.size();
    }
    template <std::size_t N>
    void operator()(std::array<std::string, N> JobRecord::*place) const {
        for (const std::string& text : Job.*place) Out.PutShortText(text);
    }
    template <std::size_t N>
    void operator()(std::array<std::int16_t, N> JobRecord::*place) const {
        for (const std::int16_t number : Job.*place) Out.Put(number);
    }
    void operator()(Matrix JobRecord::*place) const {
        // One that was never sized stands with its unused row 0.
        const Matrix unused(0, Field.Columns);
        const Matrix& matrix = (Job.*place).Rows < 0 ? unused : Job.*place;
        if (matrix.Columns != Field.Columns)
            Out.Refuse("the second index runs to " + std::to_string(matrix.Columns) + " and not to " +
                       std::to_string(Field.Columns));
        Out.PutCount(static_cast<std::size_t>(matrix.Rows) + 1);
        for (int column = 0; column <= Field.Columns; ++column)
            for (int row = 0; row <= matrix.Rows; ++row) Out.Put(matrix(row, column));
    }
    template <class Number>
    void operator()(Number JobRecord::*place) const {
        Out.Put(Job.*place);
    }
};

void PutJob(ByteSink& out, const JobRecord& job, const std::vector<std::string>& viewNames, JobPlace& place,
            std::size_t most) {
    if (place.Field == 0 && place.Element == 0) {
        out.Field = "counts";
        const std::string fault = JobFault(LengthsOf(job));
        if (!fault.empty()) out.Refuse(fault);
    }
    std::size_t left = most;
    for (; place.Field < JobFields().size(); ++place.Field) {
        const JobField& field = JobFields()[place.Field];
        if (!HasField(field, ProgramJobVersion(), job)) continue;
        if (left == 0) return;
        out.Field = field.Name;
        const std::size_t from = place.Element;
        if (from == 0) place.Size = 0;
        std::visit(PutField{out, job, viewNames, field, place, left}, field.Place);
        if (place.Element != 0) return;  // its rest belongs to the next slice
        left -= std::min(left, place.Size - from);
    }
    out.PutBytes(JobBlock(job));
    out.Finish();
    place.Ended = true;
}

void PutWholeJob(ByteSink& out, const JobRecord& job, const std::vector<std::string>& viewNames) {
    JobPlace place;
    PutJob(out, job, viewNames, place, kAll);
}

}  // namespace

std::string JobBytes(const JobRecord& job, const std::vector<std::string>& viewNames) {
    ByteSink out(ExpectedSize(job));
    PutWholeJob(out, job, viewNames);
    return std::move(out.Bytes);
}

void WriteJobBytes(const JobRecord& job, const std::vector<std::string>& viewNames,
                   const std::function<void(std::string_view)>& take) {
    ByteSink out(take);
    PutWholeJob(out, job, viewNames);
}

bool JobWriter::Slice() {
    PutJob(out_, job_, viewNames_, place_, kElements);
    return !place_.Ended;
}

std::size_t JobSize(const JobRecord& job, const std::vector<std::string>& viewNames) {
    std::size_t size = 0;
    WriteJobBytes(job, viewNames, [&size](std::string_view bytes) { size += bytes.size(); });
    return size;
}

JobLengths LengthsOf(const JobRecord& job) {
    return {job.Pairs(),           job.Start.Count(),          job.Target.Count(),      LengthsOf(job.Start),
            LengthsOf(job.Target), LengthsOf(job.Transformed), UpperBound(job.UseFlags)};
}

std::string JobFault(const JobLengths& is) {
    for (const std::int32_t count : {is.Pairs, is.Start, is.Target})
        if (count < 0)
            return "nIdent = " + std::to_string(is.Pairs) + ", nMCS = " + std::to_string(is.Start) +
                   ", nOCS = " + std::to_string(is.Target) + " are no counts";
    if (is.Pairs > is.Start || is.Pairs > is.Target)
        return std::to_string(is.Pairs) + " pairs of " + std::to_string(is.Start) + " start points and " +
               std::to_string(is.Target) + " target points";

    const auto shorter = [](const std::string& name, int has, std::int64_t needs) {
        return has >= needs
                   ? std::string()
                   : name + " ends at " + std::to_string(has) + " and not at " + std::to_string(needs);
    };
    struct Demand {
        const char* Set;
        const std::array<int, 4>& Ends;
        std::int32_t Names;  // the coordinates reach as far as the names that are there
    };
    for (const Demand& demand :
         {Demand{"MCS_", is.StartEnds, is.Start}, Demand{"OCS_", is.TargetEnds, is.Target},
          Demand{"TMCS_", is.TransformedEnds, is.Start}}) {
        constexpr std::array<const char*, 4> kParts = {"Name", "X", "Y", "Z"};
        for (std::size_t k = 0; k < kParts.size(); ++k) {
            const int needs = k == 0 ? demand.Names : demand.Ends[0];
            const std::string fault = shorter(std::string(demand.Set) + kParts[k], demand.Ends[k], needs);
            if (!fault.empty()) return fault;
        }
    }
    return shorter("UseFlags", is.UseFlagsEnd, 3LL * is.Pairs);
}

}  // namespace corvinade::core

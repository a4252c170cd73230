// A job to the bytes of a job file.
#include <algorithm>
#include <array>

#include "core/controller.h"
#include "core/job_block.h"
#include "core/job_file.h"
#include "core/job_file_bytes.h"
#include "core/job_file_views.h"

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
    for (const auto* values : {&job.MCS_Name, &job.OCS_Name, &job.TMCS_Name}) size += names(*values);
    for (const auto* values :
         {&job.MCS_X, &job.MCS_Y, &job.OCS_X, &job.OCS_Y, &job.TMCS_X, &job.TMCS_Y, &job.RVecX, &job.RVecY})
        size += kTagged * values->size();
    for (const auto* values : {&job.MCS_Z, &job.OCS_Z, &job.TMCS_Z, &job.RVecZ, &job.RobotABC.Elements,
                               &job.ParaboloidShape.Elements})
        size += sizeof(double) * values->size();
    return size + sizeof(std::int16_t) * job.UseFlags.size();
}

// Writes one field by its type.
struct PutField {
    ByteSink& Out;
    const JobRecord& Job;
    const std::vector<std::string>& ViewNames;
    const JobField& Field;

    void operator()(VersionText) const { Out.PutLongText(ProgramVersion()); }
    void operator()(SavedViews) const { PutSavedViews(Out, Job, ViewNames); }

    void operator()(std::string JobRecord::*place) const { Out.PutLongText(Job.*place); }
    template <class Element>
    void operator()(std::vector<Element> JobRecord::*place) const {
        const std::vector<Element>& values = Job.*place;
        if (values.empty()) Out.Refuse("its element 0 is missing");
        if (const std::size_t size = SizeInFile(values); size < values.size()) {
            const auto end = values.begin() + static_cast<std::ptrdiff_t>(size);
            return PutVector(std::vector<Element>(values.begin(), end));
        }
        PutVector(values);
    }
    template <class Element>
    void PutVector(const std::vector<Element>& values) const {
        Out.PutCount(values.size());
        Out.PutElements(values);
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

}  // namespace

std::string JobBytes(const JobRecord& job, const std::vector<std::string>& viewNames) {
    ByteSink out(ExpectedSize(job));
    out.Field = "counts";
    const std::string fault = JobFault(job);
    if (!fault.empty()) out.Refuse(fault);
    for (const JobField& field : JobFields()) {
        out.Field = field.Name;
        if (HasField(field, ProgramJobVersion(), job))
            std::visit(PutField{out, job, viewNames, field}, field.Place);
    }
    out.Bytes += JobBlock(job);
    return std::move(out.Bytes);
}

std::string JobFault(const JobRecord& job) {
    for (const std::int32_t count : {job.nIdent, job.nMCS, job.nOCS})
        if (count < 0)
            return "nIdent = " + std::to_string(job.nIdent) + ", nMCS = " + std::to_string(job.nMCS) +
                   ", nOCS = " + std::to_string(job.nOCS) + " are no counts";
    if (job.nIdent > job.nMCS || job.nIdent > job.nOCS)
        return std::to_string(job.nIdent) + " pairs of " + std::to_string(job.nMCS) + " start points and " +
               std::to_string(job.nOCS) + " target points";

    struct Demand {
        const char* Name;
        int Has;
        std::int64_t Needs;
    };
    const int starts = UpperBound(job.MCS_Name), targets = UpperBound(job.OCS_Name),
              transformed = UpperBound(job.TMCS_Name);
    const std::array<Demand, 13> demands = {{{"MCS_Name", starts, job.nMCS},
                                             {"MCS_X", UpperBound(job.MCS_X), starts},
                                             {"MCS_Y", UpperBound(job.MCS_Y), starts},
                                             {"MCS_Z", UpperBound(job.MCS_Z), starts},
                                             {"OCS_Name", targets, job.nOCS},
                                             {"OCS_X", UpperBound(job.OCS_X), targets},
                                             {"OCS_Y", UpperBound(job.OCS_Y), targets},
                                             {"OCS_Z", UpperBound(job.OCS_Z), targets},
                                             {"TMCS_Name", transformed, job.nMCS},
                                             {"TMCS_X", UpperBound(job.TMCS_X), transformed},
                                             {"TMCS_Y", UpperBound(job.TMCS_Y), transformed},
                                             {"TMCS_Z", UpperBound(job.TMCS_Z), transformed},
                                             {"UseFlags", UpperBound(job.UseFlags), 3LL * job.nIdent}}};
    for (const Demand& demand : demands)
        if (demand.Has < demand.Needs)
            return std::string(demand.Name) + " ends at " + std::to_string(demand.Has) + " and not at " +
                   std::to_string(demand.Needs);
    return "";
}

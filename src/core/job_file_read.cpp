// Bytes of a job file to a job.
#include <algorithm>
#include <utility>

#include "core/job_block.h"
#include "core/job_file.h"
#include "core/job_file_bytes.h"
#include "core/job_file_views.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"

namespace corvinade::core {

const char* const kNoJobFileQuestion =
    "This is not a Corvinade File.\r\n\r\n"
    "Click  YES  to try loading this file and \r\n\r\n"
    "Click  NO  to choose another file";

namespace {

// Taken for files that do not tell their version.
constexpr JobVersion kVersionUntold{1, 2, 40};

// Does a length lead a version text?
bool LeadsVersion(std::int32_t length) {
    return length >= 1 && length <= kLongestVersion;
}

JobVersion GetVersion(ByteSource& in, std::int32_t length) {
    const auto size = static_cast<std::size_t>(length);
    return ParseJobVersion({in.Take(size), size});
}

// The names of a point set are believed where its coordinates can stand behind them: so no count, however
// wrong, takes more memory than a small multiple of the file.
constexpr std::size_t kPointSize = sizeof(std::uint16_t) * 3 + sizeof(double);

// The points as the file has them, before it is known that columns and counts fit each other.
struct FilePoints {
    PointArrays Start, Target, Transformed;
    std::int32_t Pairs = 0, StartCount = 0, TargetCount = 0;

    PointArrays& Of(PointSet JobRecord::*set) {
        if (set == &JobRecord::Start) return Start;
        return set == &JobRecord::Target ? Target : Transformed;
    }
    std::int32_t& Of(JobCount count) {
        if (count == JobCount::Pairs) return Pairs;
        return count == JobCount::Start ? StartCount : TargetCount;
    }
};

// Reads one field of its type.
struct GetField {
    ByteSource& In;
    JobFileContent& Content;
    FilePoints& Points;
    const JobRecord& Before;
    const JobField& Field;

    // Behind the last field of the oldest files; they have a length in its place at least.
    void operator()(VersionText) const {
        const auto length = In.GetNumber<std::int32_t>();
        Content.Version = LeadsVersion(length) ? GetVersion(In, length) : kVersionUntold;
    }
    void operator()(JobPoints points) const {
        WithColumn(Points.Of(points.Set), points.Part, [this](auto& values) { GetVector(values); });
    }
    void operator()(JobCount count) const { In.Get(Points.Of(count)); }
    void operator()(SavedViews) const { GetSavedViews(In, Content.Job, Content.ViewNames); }

    void operator()(std::string JobRecord::*place) const {
        const std::size_t at = In.Offset();
        std::string& text = Content.Job.*place;
        In.GetLongText(text);
        if (place == &JobRecord::LengthUnitName) RefuseUnless(LengthUnits(), text, at);
        if (place == &JobRecord::AngleUnitName) RefuseUnless(AngleUnits(), text, at);
    }
    // Numbers would be shown in the unit before, with the unknown name beside them.
    void RefuseUnless(std::span<const UnitRow> units, const std::string& name, std::size_t at) const {
        if (!IsUnitName(units, name)) In.Refuse(NoUnitName(units, name), at);
    }
    template <class Element>
    void operator()(std::vector<Element> JobRecord::*place) const {
        GetVector(Content.Job.*place);
    }
    void GetVector(std::vector<std::string>& values) const { GetVector(values, kPointSize); }
    void GetVector(std::vector<TaggedValue>& values) const { GetVector(values, sizeof(std::uint16_t)); }
    template <class Number>
    void GetVector(std::vector<Number>& values) const {
        GetVector(values, sizeof(Number));
    }
    template <class Element>
    void GetVector(std::vector<Element>& values, std::size_t elementSize) const {
        values.resize(In.GetCount(elementSize));
        In.GetElements(values);
    }

    void operator()(std::array<std::string, 18> JobRecord::*place) const { GetParamText(Content.Job.*place); }
    void operator()(std::array<std::string, 4> JobRecord::*place) const {
        for (std::string& text : Content.Job.*place) In.GetShortText(text);
    }
    void operator()(std::array<std::int16_t, 4> JobRecord::*place) const {
        for (std::int16_t& number : Content.Job.*place) In.Get(number);
    }

    void operator()(Matrix JobRecord::*place) const {
        const int columns = Field.Columns;
        const std::size_t rowSize = sizeof(double) * static_cast<std::size_t>(columns + 1);
        const auto rows = static_cast<int>(In.GetCount(rowSize)) - 1;
        Matrix& matrix = Content.Job.*place;
        matrix = Matrix(rows, columns);
        for (int column = 0; column <= columns; ++column)
            for (int row = 0; row <= rows; ++row) In.Get(matrix(row, column));
    }
    template <class Number>
    void operator()(Number JobRecord::*place) const {
        In.Get(Content.Job.*place);
    }

    // Older files have fewer parameters. Entries that the file does not have stay as they were, but for
    // those of parameters that did not exist.
    void GetParamText(std::array<std::string, 18>& texts) const {
        const int count = ParamTextCount(Content.Version);
        texts = Before.ParamText;
        std::string ofIndex0;
        const bool all = count == static_cast<int>(texts.size());
        In.GetShortText(all ? texts[0] : ofIndex0);
        for (int i = 1; i < count; ++i) In.GetShortText(texts[static_cast<std::size_t>(i)]);
        if (count == 15) texts[kRvecX] = texts[kRvecZ] = kNotUsed;
        if (count == 14) texts[kRDist] = kNotUsed;
    }
};

// Gives a field that the file does not have its value.
struct GetAbsent {
    JobFileContent& Content;
    const JobRecord& Before;
    const JobField& Field;

    void operator()(std::int16_t JobRecord::*place) const {
        if (Field.Absent == AbsentField::True) Content.Job.*place = kTrue;
    }
    void operator()(double JobRecord::*place) const {
        if (Field.Absent == AbsentField::StaysAsItWas) Content.Job.*place = Before.*place;
    }
    template <class Place>
    void operator()(Place) const {
        if (std::is_same_v<Place, SavedViews>) Content.Said.emplace_back(kViewsCannotBeLoaded);
    }
};

JobLengths LengthsOf(const FilePoints& points, const JobRecord& job) {
    return {points.Pairs,
            points.StartCount,
            points.TargetCount,
            LengthsOf(points.Start),
            LengthsOf(points.Target),
            LengthsOf(points.Transformed),
            UpperBound(job.UseFlags)};
}

void TakePoints(FilePoints points, JobRecord& job) {
    job.Start = PointSet(std::move(points.Start));
    job.Target = PointSet(std::move(points.Target));
    job.Transformed = PointSet(std::move(points.Transformed));
    job.Start.CountOnly(points.StartCount);
    job.Target.CountOnly(points.TargetCount);
    job.SetPairs(points.Pairs);
}

// What follows from the fields, and what a job has that no file stores.
void Complete(JobRecord& job, bool hasRVectors) {
    job.AutoRecalc = kFalse;
    job.RotXCopy = job.RotX;
    job.RotYCopy = job.RotY;
    job.RotZCopy = job.RotZ;
    // The R vectors are as many as the pairs; the files of most jobs do not have them, and some have fewer.
    const std::size_t pairs = static_cast<std::size_t>(job.Pairs()) + 1;
    const auto grow = [&](auto& values, std::int32_t& inFile) {
        if (hasRVectors && values.size() < pairs) inFile = static_cast<std::int32_t>(values.size());
        values.resize(std::max(values.size(), pairs));
    };
    grow(job.RVecX, job.RVecInFile[0]);
    grow(job.RVecY, job.RVecInFile[1]);
    grow(job.RVecZ, job.RVecInFile[2]);
}

// Flags of more pairs than are counted: either of the two is wrong, and the count is believed.
void NoticeFlags(JobFileContent& content) {
    const JobRecord& job = content.Job;
    const int flags = UpperBound(job.UseFlags), wanted = 3 * job.Pairs();
    if (flags <= wanted) return;
    Note note{.Code = NoteCode::FlagsBeyondPairs};
    note.Text = "The job counts " + std::to_string(job.Pairs()) + " pairs, which have " +
                std::to_string(wanted) + " use flags, and has " + std::to_string(flags) +
                "; the flags from number " + std::to_string(wanted + 1) +
                " on count for nothing, and the points behind the pairs have no partner";
    content.Noticed.push_back(std::move(note));
}

}  // namespace

JobFileHead ReadJobHead(std::string_view bytes, const std::string& path) {
    ByteSource in(bytes, path);
    in.Field = JobFields().front().Name;
    JobFileHead head;
    const auto length = in.GetNumber<std::int32_t>();
    head.Known = LeadsVersion(length);
    head.Version = head.Known ? GetVersion(in, length) : kVersionUntold;
    // An old file has no version at its head: what was read was part of its first field.
    if (AnyPartAbove(head.Version, kLastWithoutHead)) head.Length = in.Offset();
    return head;
}

std::string JobVersionMessage(const JobVersion& version) {
    const JobVersion program = ProgramJobVersion();
    if (version == program) return "";
    const bool higher = Above(version, program);
    const std::string lineEnd = kLineEnd;
    return "File Version is " + std::string(higher ? "higher" : "lower") + " than your Softwareversion!" +
           lineEnd + lineEnd + "File Version is " + JobVersionText(version) + lineEnd +
           "Software Version is " + JobVersionText(program) + lineEnd +
           (higher ? "This can cause trouble with your data!"
                   : "Corvinade will convert Job to actual Softwareversion");
}

JobFileContent ReadJobBytes(std::string_view bytes, const std::string& path, const JobRecord& before) {
    const JobFileHead head = ReadJobHead(bytes, path);
    JobFileContent content;
    content.Version = head.Version;
    content.HeadKnown = head.Known;
    std::string message = JobVersionMessage(head.Version);
    if (!message.empty()) content.Said.push_back(std::move(message));

    ByteSource in(bytes, path);
    in.Take(head.Length);
    FilePoints points;
    std::size_t counts = 0;
    for (const JobField& field : JobFields().subspan(1)) {
        in.Field = field.Name;
        if (field.Place == JobFieldPlace{JobCount::Pairs}) counts = in.Offset();
        if (HasField(field, content.Version, content.Job)) {
            std::visit(GetField{in, content, points, before, field}, field.Place);
        } else {
            std::visit(GetAbsent{content, before, field}, field.Place);
        }
    }
    in.Field = "counts";
    const std::string fault = JobFault(LengthsOf(points, content.Job));
    if (!fault.empty()) in.Refuse(fault, counts);
    TakePoints(std::move(points), content.Job);
    bool hasRVectors = false;
    for (const JobField& field : JobFields())
        if (field.Place == JobFieldPlace{&JobRecord::RVecX})
            hasRVectors = HasField(field, content.Version, content.Job);
    Complete(content.Job, hasRVectors);
    NoticeFlags(content);
    const std::string_view rest = bytes.substr(in.Offset());
    if (BeginsJobBlock(rest)) {
        const JobBlockFault damage = TakeJobBlock(rest, content.Job);
        if (!damage.What.empty())
            content.BlockFault = "\"" + path + "\", byte " + std::to_string(in.Offset() + damage.Offset) +
                                 ": block behind the fields: " + damage.What;
        if (const std::string unknown = UnknownMembers(content.Job); !unknown.empty())
            content.Noticed.push_back(
                {NoteCode::MemberUnknown, NoteKindOf(NoteCode::MemberUnknown).Weight,
                 "The job holds " + unknown +
                     ", which this version does not know: it is kept, and nothing goes by it",
                 "", 0, 1});
    }
    return content;
}

}  // namespace corvinade::core

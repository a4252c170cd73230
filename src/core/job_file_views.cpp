// View records as bytes and back, run by the tables of their fields.
#include "core/job_file_views.h"

#include <span>
#include <utility>

#include "core/records.h"

namespace corvinade::core {

namespace {

constexpr std::uint16_t kMostDimensions = 60;  // that an array of the file's author can have

// --- Shapes -----------------------------------------------------------------------------------------------

// How the indices of an array of `size` elements run by the program itself; without an entry when it was
// never sized.
ArrayShape OwnShape(const ScreenArray& array, std::size_t size) {
    ArrayShape shape;
    if (size == 0) return shape;
    if (array.Rows > 0) shape.push_back({array.Rows, 1});
    const std::size_t rows = array.Rows > 0 ? array.Rows : 1;
    shape.push_back({static_cast<std::uint32_t>(size / rows), array.LowestColumn});
    return shape;
}

std::size_t SizeOf(const ArrayShape& shape) {
    std::size_t size = shape.empty() ? 0 : 1;
    for (const IndexRange& range : shape) size *= range.Count;
    return size;
}

// Has an array of that shape as many columns as the program's own?
bool ColumnsFit(const ScreenArray& array, const ArrayShape& shape) {
    return shape.empty() || array.Columns == 0 || shape.back().Count == array.Columns;
}

// Reads a shape; its elements, of at least `elementSize` bytes each, fit into the bytes left.
ArrayShape GetShape(ByteSource& in, std::size_t elementSize) {
    const std::size_t place = in.Offset();
    const auto dimensions = in.GetNumber<std::uint16_t>();
    if (dimensions > kMostDimensions)
        in.Refuse("an array of " + std::to_string(dimensions) + " dimensions", place);
    ArrayShape shape(dimensions);
    for (IndexRange& range : shape) {
        in.Get(range.Count);
        in.Get(range.Lowest);
    }
    std::size_t room = in.Left() / elementSize;
    bool empty = false;
    for (const IndexRange& range : shape) empty = empty || range.Count == 0;
    for (const IndexRange& range : shape) {
        if (empty) break;
        if (range.Count > room)
            in.Refuse("the elements of the array cannot stand in the " + std::to_string(in.Left()) +
                          " bytes that are left",
                      place);
        room /= range.Count;
    }
    return shape;
}

// --- Elements of arrays -----------------------------------------------------------------------------------

// Bytes that a flag record takes at least, with an empty text.
constexpr std::size_t kFlagRecordSize = 70;

template <class Number>
constexpr std::size_t LeastSize(const std::vector<Number>&) {
    return sizeof(Number);
}
constexpr std::size_t LeastSize(const std::vector<FlagRecord>&) {
    return kFlagRecordSize;
}

struct GetPlain {
    ByteSource& In;
    void operator()(std::string& text) const { In.GetShortText(text); }
    void operator()(Mat3& matrix) const {
        for (int column = 0; column <= 3; ++column)
            for (int row = 0; row <= 3; ++row) In.Get(matrix(row, column));
    }
    template <class Number>
    void operator()(Number& number) const {
        In.Get(number);
    }
};
struct PutPlain {
    ByteSink& Out;
    void operator()(const std::string& text) const { Out.PutShortText(text); }
    void operator()(const Mat3& matrix) const {
        for (int column = 0; column <= 3; ++column)
            for (int row = 0; row <= 3; ++row) Out.Put(matrix(row, column));
    }
    template <class Number>
    void operator()(const Number& number) const {
        Out.Put(number);
    }
};

void GetElements(ByteSource& in, std::vector<FlagRecord>& flags) {
    for (FlagRecord& flag : flags)
        for (const FlagField& field : FlagFields())
            std::visit([&](auto place) { GetPlain{in}(flag.*place); }, field.Place);
}
void PutElements(ByteSink& out, const std::vector<FlagRecord>& flags) {
    for (const FlagRecord& flag : flags)
        for (const FlagField& field : FlagFields())
            std::visit([&](auto place) { PutPlain{out}(flag.*place); }, field.Place);
}
template <class Number>
void GetElements(ByteSource& in, std::vector<Number>& values) {
    in.GetElements(values);
}
template <class Number>
void PutElements(ByteSink& out, const std::vector<Number>& values) {
    out.PutElements(std::span(values));
}

// --- View records -----------------------------------------------------------------------------------------

struct GetField {
    ByteSource& In;
    ScreenRecord& View;
    const ScreenArray& Array;

    template <class Element>
    void operator()(std::vector<Element> ScreenRecord::*place) const {
        std::vector<Element>& values = View.*place;
        ArrayShape shape = GetShape(In, LeastSize(values));
        values.resize(SizeOf(shape));
        GetElements(In, values);
        const bool own = shape == OwnShape(Array, values.size()) && ColumnsFit(Array, shape);
        View.*Array.Shape = own ? ArrayShape{} : std::move(shape);
    }
    template <class Plain>
    void operator()(Plain ScreenRecord::*place) const {
        GetPlain{In}(View.*place);
    }
};

struct PutField {
    ByteSink& Out;
    const ScreenRecord& View;
    const ScreenArray& Array;

    template <class Element>
    void operator()(std::vector<Element> ScreenRecord::*place) const {
        const std::vector<Element>& values = View.*place;
        const ArrayShape& stored = View.*Array.Shape;
        const bool isStored = !stored.empty() && SizeOf(stored) == values.size();
        const ArrayShape shape = isStored ? stored : OwnShape(Array, values.size());
        if (SizeOf(shape) != values.size() || (!isStored && !ColumnsFit(Array, shape)))
            Out.Refuse(std::to_string(values.size()) + " elements do not fill its rows and columns");
        Out.Put(static_cast<std::uint16_t>(shape.size()));
        for (const IndexRange& range : shape) {
            Out.Put(range.Count);
            Out.Put(range.Lowest);
        }
        PutElements(Out, values);
    }
    template <class Plain>
    void operator()(Plain ScreenRecord::*place) const {
        PutPlain{Out}(View.*place);
    }
};

std::string FieldName(std::size_t view, const ScreenField& field) {
    return "SavedView, record " + std::to_string(view) + ", " + field.Name;
}

std::string NamesAndViews(std::size_t names, int views) {
    return std::to_string(names) + " names stand against " + std::to_string(views) + " saved views";
}

}  // namespace

void GetSavedViews(ByteSource& in, JobRecord& job, std::vector<std::string>& names) {
    const std::size_t place = in.Offset();
    const auto count = in.GetNumber<std::int16_t>();
    if (count < 1) return;
    const auto most = static_cast<int>(job.SavedView.size()) - 1;
    if (count > most)
        in.Refuse(std::to_string(count) + " saved views, " + std::to_string(most) + " is the most", place);
    const std::size_t size = in.GetCount(sizeof(std::uint16_t));
    if (size != static_cast<std::size_t>(count)) in.Refuse(NamesAndViews(size, count), place);
    names.resize(size);
    in.GetElements(names);
    job.nSavedViews = count;
    for (std::size_t i = 0; i < job.SavedView.size(); ++i)
        for (const ScreenField& field : ScreenFields()) {
            in.Field = FieldName(i, field);
            std::visit(GetField{in, job.SavedView[i], field.Array}, field.Place);
        }
}

void PutSavedViews(ByteSink& out, const JobRecord& job, const std::vector<std::string>& names) {
    if (names.empty()) {
        out.Put(std::int16_t{0});
        return;
    }
    if (names.size() != static_cast<std::size_t>(job.nSavedViews) || names.size() >= job.SavedView.size())
        out.Refuse(NamesAndViews(names.size(), job.nSavedViews));
    out.Put(job.nSavedViews);
    out.PutCount(names.size());
    out.PutElements(names);
    for (std::size_t i = 0; i < job.SavedView.size(); ++i)
        for (const ScreenField& field : ScreenFields()) {
            out.Field = FieldName(i, field);
            std::visit(PutField{out, job.SavedView[i], field.Array}, field.Place);
        }
}

}  // namespace corvinade::core

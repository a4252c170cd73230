// Rows of text with a point each: their fields found, read, and put back in place.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"
#include "import/cloud.h"

namespace corvinade::import {

// Two blanks or more, or a tab: a single blank belongs to its field.
inline constexpr char kAlignedFields = '\x01';

struct RowForm {
    char Delimiter = '\0';  // 0: runs of blanks and tabs; or kAlignedFields
    char Decimal = '.';
    std::vector<PointColumn> Columns;
    bool HasZ = true;
};

enum class NumberKind : std::uint8_t { None, Finite, NotFinite, OutOfRange };

// The number that a text is, blanks beside it or not; "nan" and "inf" are none that is finite. `decimals`
// gets what DecimalsOf tells.
NumberKind NumberOf(std::string_view text, char decimal, double& value, int* decimals = nullptr);

// Decimals that a number shows: "1.50" has 2, "1.5e-3" 4, "1.5e3" 0.
int DecimalsOf(std::string_view text, char decimal);

// Adds a number with so many decimals, correctly rounded, without a sign where it is 0.
void AppendFixed(double value, int decimals, char decimal, std::string& text);

// The fields of a row, without the quotes around them; blanks beside them belong to them. Fields behind the
// last one wanted are not looked for. Each is a part of `row`.
void FieldsOf(std::string_view row, char delimiter, std::size_t most, std::vector<std::string_view>& fields);

// "2 values", "more than 3 values": how a row that has not the values that are wanted is told of.
std::string CountOfValues(std::size_t found, std::size_t wanted);

class RowCarrier {
public:
    // `decimals`: what new coordinates have at least.
    RowCarrier(CloudTask& task, RowForm form, int decimals);

    // Takes a row of a CloudInput, without its line end: its point is handed on, or its text with the new
    // numbers in place is put out. False, with nothing done, where it holds no three numbers.
    bool Carry(std::string_view row);
    // Looks how many decimals the rows of what is in view have: later ones shall not have fewer.
    void LookAhead(std::string_view rows, bool isWhole = false);
    // The columns of the rows to come, where rows of one file have different ones.
    void TakeColumns(std::vector<PointColumn> columns);

private:
    // The sigmas of one system, whose columns begin with `first`; nothing where it has none.
    std::optional<std::array<double, 3>> SigmasOf(PointColumn first) const;
    bool IsDisabled(std::string_view field) const;
    void PutChanged(std::string_view row);  // with the changes below in place
    // Where nothing but x, y and z changes, and they stand side by side: as Carry, for the usual row of short
    // numbers without quotes or blanks beside them. False for any other row, with nothing done.
    bool CarryShort(std::string_view row);
    RowForm form_;
    CloudTask& task_;
    int decimals_;
    int fieldsBefore_ = -1;  // those in front of x; less than 0 where CarryShort does not serve
    std::vector<std::string_view> fields_;
    struct Change {
        std::size_t From, Length, Begin, End;  // in the row, and of the text below
    };
    std::vector<Change> changes_;
    std::string text_, changed_;
};

}  // namespace corvinade::import

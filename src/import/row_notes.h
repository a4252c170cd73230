// What the rows of a text file hold beside the fields that a reader takes, or in place of them. Readers look
// at a row that is none of the plain ones, and the notes of a file are written once, when it has been read.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/notes.h"
#include "core/rooms.h"
#include "import/point_text.h"

namespace corvinade::import {

// The fields of a row, by the names that notes give them; a name, where rows have one, is called so and comes
// first.
using FieldNames = std::vector<const char*>;
FieldNames PointFields(bool hasName);  // (name), x, y, z

class RowNotes {
public:
    // delimiter  between the fields; 0 = blanks and tabs alone
    RowNotes(std::string path, char delimiter, FieldNames fields);

    // Counts the row under the codes that apply:
    //   NameCut               a blank ends the name, and what follows it is taken as the next field
    //   FieldSplit            the same in another field
    //   FieldCut              the same in the last field: what follows is not read
    //   DelimitersSideBySide  an empty field is passed over, and the next one takes its place
    //   ColumnsIgnored        fields behind those that are read
    void Look(std::string_view line, std::int64_t row);

    // Counts an occurrence; `text` is asked for that of the first.
    template <class Text>
    void Count(NoteCode code, std::int64_t row, Text text) {
        Slot& slot = slots_[static_cast<std::size_t>(code)];
        if (slot.Count++ > 0) return;
        slot.Row = row;
        slot.Text = text();
    }

    // Counts a number of which a 64-bit float does not hold all, see LostDigits.
    void LookAtDigits(std::string_view field, std::int64_t row);

    // Looks at a field that is read by its plain value, which takes what of it is a number and 0 where
    // nothing is. `place` is what the value is of, as in `x of point "A"`. Counts the field as
    //   EmptyCoordinate  there is none
    //   FieldCut         more stands behind the number than is read
    //   NumberAsZero     it is no number
    //   DigitsCut        it is one, with digits that are not kept
    void LookAtPlainValue(std::string_view field, std::string_view place, std::int64_t row);

    // Takes the mark of a point of an adjusted network behind its coordinates. Counts NetworkOpen for a point
    // that is left open. False for anything else.
    bool TakeMark(std::string_view rest, std::string_view name, std::int64_t row);

    // Adds to the list of notes what has been counted since the last time. Rows of which all that have fields
    // behind those that are read may hold commas of thousands are a warning, ColumnsChanged.
    void Write();

private:
    struct Slot {
        std::int64_t Count = 0, Row = 0;
        std::string Text;
    };
    std::string path_;
    char delimiter_;
    FieldNames fields_;
    bool hasName_;
    std::int64_t thousands_ = 0;  // rows with ignored columns that commas of thousands would explain
    std::int64_t firstThousands_ = 0;
    std::array<Slot, static_cast<std::size_t>(NoteCode::Count_)> slots_{};
};

// Names as they come up in a file, and of which line each is.
class NamesSeen {
public:
    // key  what is the same for names that are; "" = there is none, which is passed over
    void Add(const std::string& key, std::string_view name, std::int64_t row);
    // The note on names that come up again: the first of them, with both lines.
    void Write(const std::string& path) const;

private:
    std::unordered_map<std::string, std::int64_t> rows_;
    std::string again_;  // the first that has come up again
    std::array<std::int64_t, 2> lines_{};
    std::int64_t count_ = 0;
};

// Why a number that no 64-bit float holds cannot be taken, behind the file and the line.
std::string TooLarge(std::string_view field, std::string_view place);

// Would commas of thousands explain that a row, with commas between its fields, has more of them than
// `wanted`? "P1,1,000.5,2,000.5,300" has two more than a name and three numbers.
bool CommasOfThousands(std::string_view line, std::size_t wanted, bool hasName);
// What is to be said of a file all of whose rows are such.
extern const char* const kCommasOfThousands;

// Is the last field of a line the mark of a point of an adjusted network?
bool IsMark(std::string_view rest);

// Is there anything but blanks and tabs in a text?
inline bool HoldsMore(std::string_view rest) {
    return !rest.empty() && rest.find_first_not_of(" \t") != std::string_view::npos;
}

// The first two lines of a point file whose points bear a name, from 1; 0 where there is none, or no file any
// more.
std::array<int, 2> LinesOfName(const std::string& path, std::string_view name);

// The note that two points of a file bear the same name. Nothing where the file does not show it, and where
// there is one of this file already.
void NoteDoubleName(const std::string& path, std::string_view name);

// The same for all names of a file that stand in it again: the first of them with its lines, and their count.
void NoteDoubleNames(const std::string& path, std::span<const std::string> names);  // from 1 on; "" is none
void NoteDoubleNames(const PointText& file, char delimiter);  // first fields of its lines

}  // namespace corvinade::import

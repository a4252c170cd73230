// Reading of a table whose form is known.
#include "import/table_reader.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "core/lost_digits.h"
#include "core/text.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"
#include "import/point_text.h"
#include "import/table_layout.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kRowsBetweenLooks = 1 << 12;

int AsInt(std::int64_t value) {
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

// One note of a code for a file, with the first place and the number of places.
struct Counted {
    std::int64_t Count = 0, Line = 0;
    std::string Text;
    template <class Say>
    void Add(std::int64_t line, Say say) {
        if (Count++ > 0) return;
        Line = line;
        Text = say();
    }
};

// Is a row, whose numbers are plain ones, of the plain form? There is nothing beside its cells and their
// delimiters, and its name is nothing that the told reader takes otherwise.
bool IsPlainRow(const TableRow& row, const TableForm& form) {
    const std::vector<TableCell>& cells = row.Cells;
    std::size_t sum = cells.size() - 1;
    for (const TableCell& cell : cells) sum += cell.Text.size();
    if (sum != row.Line.size() || cells.size() != form.Cells) return false;
    return !form.HasName || std::none_of(cells[0].Text.begin(), cells[0].Text.end(), [](char c) {
        return c == ' ' || c == '\t' || c == '.' || c == ',' || c == '\xC3';
    });
}

class Reader {
public:
    Reader(const TableText& text, const std::string& path, const TableOptions& options, TableResult& result)
        : text_(text), path_(path), options_(options), result_(result), form_(result.Form) {}

    void Read() {
        places_ = PlacesOf(form_.Columns);
        const TableUnit* const unit = TableUnitByWord(form_.Unit);
        if (unit != nullptr) unit_ = *unit;
        const std::string_view rest = text_.Text.substr(form_.FirstRow);
        const std::int64_t most = CountFilledLines(rest);
        if (most >= std::numeric_limits<std::int32_t>::max()) {
            Refuse(0, 0, "it has more lines than a job has room for", false);
            return;
        }
        result_.Points.Resize(static_cast<int>(most));
        const bool hasSigmas = Sigmas();
        if (options_.KeepRest) result_.Rest.resize(static_cast<std::size_t>(most) + 1);
        if (hasSigmas)
            for (std::vector<double>* sigma : {&result_.SX, &result_.SY, &result_.SZ})
                sigma->resize(static_cast<std::size_t>(most) + 1);
        plain_ = form_.Gaps == TableGaps::Delimiter && form_.Decimal == options_.PlainDecimal &&
                 form_.HeadingLines == 0 && form_.Headings.empty() && form_.FirstRow == 0 &&
                 options_.Columns.empty() && options_.Unit.empty() && text_.Decoded.empty() &&
                 (text_.ByLine || text_.Ascii) && form_.Delimiter != '|' &&
                 form_.Cells == (form_.HasName ? 4U : 3U) && !options_.FirstIsX;
        TableWalk walk(text_.Text, form_, form_.FirstRow, form_.FirstLine);
        TableRow row;
        std::int64_t empty = 0;
        std::size_t looked = 0;
        while (walk.Next(row)) {
            if (++looked % kRowsBetweenLooks == 0 && !GoesOn(walk.Place())) return;
            if (MayBeNoRow(row) && IsNoRow(row, form_)) {
                plain_ = false;
                const bool comment = !row.Cells.empty() && IsComment(row.Line, form_);
                if (comment) {
                    LookAtComment(row);
                } else if (empty == 0) {
                    empty = row.Number;
                }
                continue;
            }
            if (empty != 0) {
                emptyRows_.Add(empty, [] { return "A row without a point is passed over"; });
                empty = 0;
            }
            if (!Take(row)) return;
        }
        Finish(hasSigmas);
    }

private:
    bool Sigmas() const {
        for (const TableRole role : {TableRole::SX, TableRole::SY, TableRole::SZ, TableRole::S})
            if (places_.Of[static_cast<std::size_t>(role)] >= 0) return true;
        return false;
    }

    // False where whoever wants the table wants it no longer.
    bool GoesOn(std::size_t place) {
        if (!options_.GoesOn) return true;
        const double share = static_cast<double>(place) / static_cast<double>(text_.Text.size());
        if (options_.GoesOn({share, static_cast<std::int64_t>(points_), result_.Skipped})) return true;
        result_.Cancelled = true;
        result_.Points = PointSet();
        return false;
    }

    void Refuse(std::int64_t line, std::int64_t column, const std::string& text, bool skipHelps) {
        std::string where = "Cannot read \"" + path_ + "\"";
        if (line > 0) where += ", line " + std::to_string(line);
        if (column > 0) where += ", column " + std::to_string(column);
        result_.Refusal = {where + ": " + text + (skipHelps ? " (--skip-bad passes it over)" : ""), line,
                           column};
        result_.Points = PointSet();
    }

    // Most rows begin with a letter or a digit, which begins no comment.
    bool MayBeNoRow(const TableRow& row) const {
        if (row.Cells.empty() || row.Line.empty()) return true;
        const char first = row.Line.front();
        const bool usual = first == '"' || (first >= '0' && first <= '9') || (first >= 'A' && first <= 'Z') ||
                           (first >= 'a' && first <= 'z');
        return !usual || ownComments_;
    }

    // A row that is commented out.
    void LookAtComment(const TableRow& row) {
        std::size_t marks = 0;
        IsComment(row.Line, form_, &marks);
        TableRow inside;
        if (!TableWalk(row.Line.substr(marks), form_).Next(inside) || inside.Cells.size() != form_.Cells ||
            !IsGoodRow(inside, form_, places_, nullptr))
            return;
        commented_.Add(row.Number, [&] {
            return "A comment holds a point and is passed over: \"" + Printable(DecodeText(row.Line)) +
                   "\" (--comment says what begins comments)";
        });
    }

    double Value(TableRole role, const TableRow& row) const {
        const int place = places_.Of[static_cast<std::size_t>(role)];
        double value = 0;
        if (place >= 0) TableNumber(row.Cells[static_cast<std::size_t>(place)].Text, form_.Decimal, value);
        return Millimetres(value, unit_);
    }

    // False where the reading ends.
    bool Bad(const TableRow& row, const TableRowFault& fault) {
        if (options_.SkipBad) {
            ++result_.Skipped;
            plain_ = false;
            skipped_.Add(row.Number, [&] {
                return "A row is passed over as bad: " +
                       (fault.Column > 0 ? "column " + std::to_string(fault.Column) + ": " : "") + fault.Text;
            });
            return true;
        }
        Refuse(row.Number, fault.Column, fault.Text, true);

        return false;
    }

    bool Take(const TableRow& row) {
        // One pass over a good row: what is wrong with another is asked afterwards.
        const auto x = static_cast<std::size_t>(places_.Of[static_cast<std::size_t>(TableRole::X)]);
        const auto y = static_cast<std::size_t>(places_.Of[static_cast<std::size_t>(TableRole::Y)]);
        const auto z = static_cast<std::size_t>(places_.Of[static_cast<std::size_t>(TableRole::Z)]);
        const std::size_t cells[3] = {x, y, z};
        double values[3] = {};
        const auto plain = [&](int axis) {
            return PlainTableNumber(row.Cells[cells[axis]].Text, form_.Decimal, values[axis]);
        };
        const bool simple = row.Cells.size() == form_.Cells && row.Cells.size() >= places_.Needed &&
                            result_.SX.empty() && plain(0) && plain(1) && plain(2) &&
                            (!form_.HasName || !row.Cells[NamePlace()].Text.empty());
        if (!simple) {
            TableRowFault fault;
            if (!IsGoodRow(row, form_, places_, &fault)) return Bad(row, fault);
            plain_ = false;
            for (int axis = 0; axis < 3; ++axis) {
                if (plain(axis)) continue;
                const std::string_view cell = row.Cells[cells[axis]].Text;
                TableNumber(cell, form_.Decimal, values[axis]);
                std::string lost = LostDigits(cell);
                if (!lost.empty()) digits_.Add(row.Number, [&] { return lost; });
            }
        }
        for (int axis = 0; axis < 3; ++axis) {
            values[axis] = Millimetres(values[axis], unit_);
            if (std::isfinite(values[axis])) continue;
            return Bad(row, {"\"" + Printable(row.Cells[cells[axis]].Text) +
                                 "\" is larger than any number that can be kept",
                             static_cast<std::int64_t>(cells[axis]) + 1});
        }
        const std::size_t p = ++points_;
        if (form_.HasName) {
            TakeName(row, p);
        } else {
            result_.Points.Name[p] = std::to_string(p);
        }
        result_.Points.X[p] = values[0];
        result_.Points.Y[p] = values[1];
        result_.Points.Z[p] = values[2];
        if (!result_.SX.empty()) TakeSigmas(row, p);
        if (plain_) plain_ = IsPlainRow(row, form_);
        if (row.Cells.size() > places_.Needed &&
            (options_.KeepRest || (form_.Headings.empty() && options_.Columns.empty())))
            TakeRest(row, p);
        return true;
    }

    std::size_t NamePlace() const {
        return static_cast<std::size_t>(places_.Of[static_cast<std::size_t>(TableRole::Name)]);
    }

    void TakeName(const TableRow& row, std::size_t p) {
        const TableCell& cell = row.Cells[NamePlace()];
        std::string& name = result_.Points.Name[p];
        if (text_.Ascii && !cell.Doubled) {
            name = cell.Text;
        } else {
            TableCell decoded = cell;
            const std::string text = DecodedCell(text_, row.Line, cell.Text);
            decoded.Text = text;
            name = Unquoted(decoded);
        }
        if (lines_.empty() ||
            row.Number - lines_.back().Line != static_cast<std::int64_t>(p - lines_.back().Point))
            lines_.push_back({p, row.Number});
        if (!grows_ || p == 1) return;
        const std::string& before = result_.Points.Name[p - 1];
        grows_ = name.size() > before.size() || (name.size() == before.size() && name > before);
    }

    void TakeSigmas(const TableRow& row, std::size_t p) {
        const bool one = places_.Of[static_cast<std::size_t>(TableRole::S)] >= 0;
        const double all = one ? Value(TableRole::S, row) : 0;
        const auto sigma = [&](TableRole role) {
            return places_.Of[static_cast<std::size_t>(role)] >= 0 ? Value(role, row) : all;
        };
        result_.SX[p] = sigma(TableRole::SX);
        result_.SY[p] = sigma(TableRole::SY);
        result_.SZ[p] = sigma(TableRole::SZ);
    }

    // What stands behind the columns that are read.
    void TakeRest(const TableRow& row, std::size_t p) {
        if (options_.KeepRest) {
            std::string& rest = result_.Rest[p];
            for (std::size_t i = 0; i < row.Cells.size(); ++i)
                if (i >= form_.Columns.size() || form_.Columns[i] == TableRole::Pass)
                    rest += (rest.empty() ? "" : "\t") + DecodedCell(text_, row.Line, row.Cells[i].Text);
            return;
        }
        const std::string_view mark = row.Cells[places_.Needed].Text;
        const bool last = row.Cells.size() == places_.Needed + 1 && form_.HasName;
        if (last && mark == kMarkOfFixedPoint) return;
        if (last && mark == kMarkOfOpenPoint) {
            open_.Add(row.Number, [&] {
                return "Point \"" + Printable(result_.Points.Name[p]) +
                       "\" is marked as one that the distances of its network do not determine; its coordinates are "
                       "arbitrary";
            });
            return;
        }
        ignored_.Add(row.Number, [&] {
            const char* const behind = row.Cells[places_.Needed].Text.data();
            return "Fields behind z are not read: \"" +
                   Printable(DecodeText(std::string_view(
                       behind, static_cast<std::size_t>(row.Line.data() + row.Line.size() - behind)))) +
                   "\"";
        });
    }

    std::int64_t LineOf(std::size_t point) const {
        const auto behind =
            std::upper_bound(lines_.begin(), lines_.end(), point,
                             [](std::size_t p, const LineOfPoint& line) { return p < line.Point; });
        const LineOfPoint& begin = *(behind - 1);
        return begin.Line + static_cast<std::int64_t>(point - begin.Point);
    }

    // Two points of one name. True unless they end the reading.
    bool LookAtNames() {
        if (!form_.HasName || grows_) return true;
        // 32 bits each: a job has no more points, and names of one hash are compared. One part of the hashes
        // after the other: a list of all would be a ninth of what the points take.
        const std::size_t parts = points_ < 10'000 ? 1 : 8;
        std::vector<std::pair<std::uint32_t, std::uint32_t>> hashes;
        hashes.reserve(points_ / parts + points_ / parts / 16 + 64);
        std::size_t first = 0, again = 0;
        std::int64_t count = 0;
        for (std::size_t part = 0; part < parts; ++part) {
            hashes.clear();
            for (std::size_t p = 1; p <= points_; ++p) {
                const std::size_t hash = std::hash<std::string>()(result_.Points.Name[p]);
                if (hash % parts == part)
                    hashes.emplace_back(static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(p));
            }
            std::sort(hashes.begin(), hashes.end());
            for (std::size_t i = 0; i < hashes.size();) {
                std::size_t end = i + 1;
                while (end < hashes.size() && hashes[end].first == hashes[i].first) ++end;
                for (std::size_t k = i + 1; k < end; ++k)
                    for (std::size_t j = i; j < k; ++j) {
                        if (result_.Points.Name[hashes[j].second] != result_.Points.Name[hashes[k].second])
                            continue;
                        ++count;
                        if (again == 0 || hashes[k].second < again) {
                            again = hashes[k].second;
                            first = hashes[j].second;
                        }
                        break;
                    }
                i = end;
            }
        }
        if (count == 0) return true;
        const std::string name = "\"" + Printable(result_.Points.Name[again]) + "\"";
        if (options_.DoubleNames) {
            Note(NoteCode::DuplicateName,
                 "The name " + name + " stands in line " + std::to_string(LineOf(first)) + " and in line " +
                     std::to_string(LineOf(again)),
                 LineOf(first), count);
            return true;
        }
        if (plain_) return true;  // the pairing by names says it in its own words
        Refuse(LineOf(again), static_cast<std::int64_t>(NamePlace()) + 1,
               "the name " + name + " stands in line " + std::to_string(LineOf(first)) +
                   " too, and in line " + std::to_string(LineOf(again)) +
                   " again; names have to differ (--columns says which column they are in)",
               false);
        return false;
    }

    void Note(NoteCode code, const std::string& text, std::int64_t line, std::int64_t count) {
        result_.Notes.push_back({code, NoteKindOf(code).Weight, text, path_, AsInt(line), AsInt(count)});
    }

    void Finish(bool hasSigmas) {
        if (points_ == 0) {
            Refuse(0, 0, "there is no point in it", false);
            return;
        }
        result_.Points.Resize(static_cast<int>(points_));
        if (hasSigmas)
            for (std::vector<double>* sigma : {&result_.SX, &result_.SY, &result_.SZ})
                sigma->resize(points_ + 1);
        if (options_.KeepRest) result_.Rest.resize(points_ + 1);
        result_.Plain = plain_ && ToldDelimiter();
        plain_ = result_.Plain;
        if (!LookAtNames()) return;
        const auto say = [this](NoteCode code, const Counted& counted) {
            if (counted.Count > 0) Note(code, counted.Text, counted.Line, counted.Count);
        };
        say(NoteCode::LinesSkipped, skipped_);
        say(NoteCode::EmptyRow, emptyRows_);
        say(NoteCode::CommentedPoints, commented_);
        say(NoteCode::NetworkOpen, open_);
        say(NoteCode::ColumnsIgnored, ignored_);
        say(NoteCode::DigitsCut, digits_);
    }

    // Does the told reader find the same delimiter?
    bool ToldDelimiter() const {
        PointText told;
        told.Path = path_;
        told.Text = text_.Text;
        told.Ascii = text_.Ascii;
        std::string delimiter;
        Reading how;
        how.Decimal = options_.PlainDecimal;
        FindTrennzeichen(told, delimiter, FileRows::Points, how);
        return delimiter == std::string(1, form_.Delimiter);
    }

    const TableText& text_;
    const std::string& path_;
    const TableOptions& options_;
    TableResult& result_;
    const TableForm& form_;
    TablePlaces places_;
    TableUnit unit_{"mm", 1, 1};
    std::size_t points_ = 0;
    // The points whose line does not follow that of the one before.
    struct LineOfPoint {
        std::size_t Point;
        std::int64_t Line;
    };
    std::vector<LineOfPoint> lines_;
    bool plain_ = false, grows_ = true;
    bool ownComments_ = options_.Comment.has_value();
    Counted skipped_, emptyRows_, commented_, open_, ignored_, digits_;
};

}  // namespace

TableResult ReadTable(std::string_view bytes, const std::string& path, const TableOptions& options) {
    TableResult result;
    TableText text;
    const std::string noText = TakeTableText(bytes, options.Encoding ? &*options.Encoding : nullptr, text);
    if (!noText.empty()) {
        result.Refusal.Text = "Cannot read \"" + path + "\": " + noText;
        return result;
    }
    if (!FindTableForm(text, path, options, result.Form, result.Refusal, result.Notes)) return result;
    Reader(text, path, options, result).Read();
    // The first rows are without fractions, and one behind them shows the other delimiter.
    const bool open = options.Decimal == '\0' && !result.Form.DecimalShown && result.Form.Decimal == '.' &&
                      result.Form.Delimiter != ',';
    if (result.Refusal.Refused() && open && text.Text.find(',') != std::string_view::npos) {
        TableOptions comma = options;
        comma.Decimal = ',';
        TableResult other = ReadTable(bytes, path, comma);
        if (!other.Refusal.Refused()) return other;
    }
    return result;
}

}  // namespace corvinade::import

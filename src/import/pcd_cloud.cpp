// PCD files.
#include "import/pcd_cloud.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/text.h"
#include "import/cloud_records.h"
#include "import/cloud_rows.h"
#include "import/cloud_spool.h"
#include "import/lzf.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kLongestHeader = std::size_t{1} << 20;
constexpr std::size_t kLargestRecord = std::size_t{16} << 20;

struct Field {
    std::string Name;
    Scalar Type = Scalar::Float;
    std::size_t Count = 1;
    std::size_t Offset = 0;  // in a record of all fields
    std::size_t Size() const { return SizeOf(Type) * Count; }
};

struct Header {
    std::vector<Field> Fields;
    std::size_t Size = 0;  // of a record
    std::int64_t Points = 0;
    std::string Data;
};

std::optional<Scalar> ScalarOf(std::string_view letter, std::uint64_t size) {
    constexpr std::array<Scalar, 4> kSigned = {Scalar::Int8, Scalar::Int16, Scalar::Int32, Scalar::Int64};
    constexpr std::array<Scalar, 4> kUnsigned = {Scalar::UInt8, Scalar::UInt16, Scalar::UInt32,
                                                 Scalar::UInt64};
    if (size == 0 || size > 8 || !std::has_single_bit(size)) return std::nullopt;
    const auto power = static_cast<std::size_t>(std::countr_zero(size));
    if (letter == "I") return kSigned[power];
    if (letter == "U") return kUnsigned[power];
    if (letter == "F" && size == 4) return Scalar::Float;
    if (letter == "F" && size == 8) return Scalar::Double;
    return std::nullopt;
}

std::uint64_t WholeNumber(const CloudTask& task, std::string_view text, std::uint64_t most) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > most)
        task.In.FailAtLine("\"" + Printable(text) + "\" is no count");
    return value;
}

using Words = std::vector<std::string>;

// The lines of the header that describe the fields, by their words.
struct Lines {
    Words Names, Sizes, Types, Counts;
};

void TakeFields(const CloudTask& task, const Lines& lines, Header& header) {
    const std::size_t n = lines.Names.size();
    if (n == 0) task.In.FailAtLine("its header names no fields");
    if (lines.Sizes.size() != n || lines.Types.size() != n ||
        (!lines.Counts.empty() && lines.Counts.size() != n))
        task.In.FailAtLine("FIELDS, SIZE, TYPE and COUNT of its header have not the same number of entries");
    for (std::size_t i = 0; i < n; ++i) {
        Field field;
        field.Name = lines.Names[i];
        const std::optional<Scalar> type = ScalarOf(lines.Types[i], WholeNumber(task, lines.Sizes[i], 8));
        if (!type)
            task.In.FailAtLine("the field \"" + Printable(field.Name) + "\" is of no type: " +
                               Printable(lines.Types[i]) + " of " + Printable(lines.Sizes[i]) + " bytes");
        field.Type = *type;
        if (!lines.Counts.empty()) field.Count = WholeNumber(task, lines.Counts[i], kLargestRecord / 8);
        field.Offset = header.Size;
        header.Size += field.Size();
        if (header.Size > kLargestRecord) task.In.FailAtLine("a record is larger than 16 MiB");
        header.Fields.push_back(std::move(field));
    }
    if (header.Size == 0) task.In.FailAtLine("its fields have no bytes");
}

// Reads the header, up to the line end behind DATA, and puts it out as it is.
Header ReadHeader(CloudTask& task) {
    Header header;
    Lines lines;
    std::uint64_t width = 0, height = 1;
    std::optional<std::uint64_t> points;
    bool hasWidth = false;
    std::size_t size = 0;
    std::string_view whole, lineEnd;
    std::vector<std::string_view> parts;
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    while (task.In.NextLine(whole)) {
        size += whole.size();
        if (size > kLongestHeader) break;
        task.Out.Put(whole);
        FieldsOf(WithoutLineEnd(whole, lineEnd), '\0', std::numeric_limits<std::size_t>::max(), parts);
        if (parts.empty() || parts[0].starts_with('#')) continue;
        const std::string_view key = parts[0];
        const Words words(parts.begin() + 1, parts.end());
        const auto number = [&] { return WholeNumber(task, words.empty() ? "" : words[0], kMost); };
        if (key == "FIELDS" || key == "COLUMNS") {
            lines.Names = words;
        } else if (key == "SIZE") {
            lines.Sizes = words;
        } else if (key == "TYPE") {
            lines.Types = words;
        } else if (key == "COUNT") {
            lines.Counts = words;
        } else if (key == "WIDTH") {
            width = number();
            hasWidth = true;
        } else if (key == "HEIGHT") {
            height = number();
        } else if (key == "POINTS") {
            points = number();
        } else if (key == "VIEWPOINT") {
            for (std::size_t i = 0; i < words.size(); ++i) {
                double value = 0;
                NumberOf(words[i], '.', value);
                if (value != (i == 3 ? 1 : 0)) task.Facts.HasViewpoint = true;
            }
        } else if (key == "DATA") {
            if (height != 0 && width > kMost / height)
                task.In.FailAtLine("its header counts too many points");
            if (hasWidth && points && *points != width * height)
                task.In.FailAtLine("its header counts " + std::to_string(*points) + " points, and " +
                                   std::to_string(width) + " times " + std::to_string(height));
            if (!hasWidth && !points) task.In.FailAtLine("its header does not say how many points there are");
            header.Points = static_cast<std::int64_t>(points.value_or(width * height));
            header.Data = words.empty() ? "" : words[0];
            TakeFields(task, lines, header);
            return header;
        } else if (key != "VERSION") {
            task.In.FailAtLine("\"" + Printable(key) + "\" is no line of a PCD header");
        }
    }
    task.In.Fail("its header has no end");
}

constexpr std::array<std::string_view, 3> kPointNames = {"x", "y", "z"};
constexpr std::array<std::string_view, 3> kNormalNames = {"normal_x", "normal_y", "normal_z"};

// Three fields of one value each.
bool FindThree(const Header& header, const std::array<std::string_view, 3>& names,
               std::array<std::size_t, 3>& places) {
    for (std::size_t k = 0; k < 3; ++k) {
        const auto found = std::find_if(header.Fields.begin(), header.Fields.end(), [&](const Field& field) {
            return field.Name == names[k] && field.Count == 1;
        });
        if (found == header.Fields.end()) return false;
        places[k] = static_cast<std::size_t>(found - header.Fields.begin());
    }
    return true;
}

RecordForm FormOf(const Header& header) {
    RecordForm form;
    form.Size = header.Size;
    form.Swapped = std::endian::native != std::endian::little;
    std::array<std::size_t, 3> places{};
    form.HasPoint = FindThree(header, kPointNames, places);
    for (std::size_t k = 0; k < 3 && form.HasPoint; ++k)
        form.Point[k] = {header.Fields[places[k]].Offset, header.Fields[places[k]].Type};
    form.HasNormal = FindThree(header, kNormalNames, places);
    for (std::size_t k = 0; k < 3 && form.HasNormal; ++k)
        form.Normal[k] = {header.Fields[places[k]].Offset, header.Fields[places[k]].Type};
    return form;
}

[[noreturn]] void FailCutOff(const CloudTask& task, std::int64_t done, std::int64_t all) {
    task.In.Fail("it is cut off: " + std::to_string(done) + " of " + std::to_string(all) +
                 " points are there");
}

const std::string kMore = "more stands behind the points that its header counts";

void RunAscii(CloudTask& task, const Header& header) {
    RowForm form;
    std::array<std::size_t, 3> points{}, normals{};
    FindThree(header, kPointNames, points);
    const bool hasNormal = FindThree(header, kNormalNames, normals);
    for (std::size_t i = 0; i < header.Fields.size(); ++i) {
        PointColumn column = PointColumn::None;
        for (std::size_t k = 0; k < 3; ++k) {
            if (points[k] == i)
                column = static_cast<PointColumn>(static_cast<std::size_t>(PointColumn::X) + k);
            if (hasNormal && normals[k] == i)
                column = static_cast<PointColumn>(static_cast<std::size_t>(PointColumn::NormalX) + k);
        }
        if (header.Fields[i].Count > 0) form.Columns.push_back(column);
        if (header.Fields[i].Count > 1)
            form.Columns.resize(form.Columns.size() + header.Fields[i].Count - 1, PointColumn::None);
    }
    RowCarrier carrier(task, form, task.Wish.LeastDigits);
    task.In.Fill();
    carrier.LookAhead(task.In.View());
    std::vector<std::string_view> words;
    std::string_view whole, lineEnd;
    for (std::int64_t done = 0; task.In.NextLine(whole);) {
        const std::string_view row = WithoutLineEnd(whole, lineEnd);
        if (row.find_first_not_of(" \t") == std::string_view::npos) {
            task.Out.Put(whole);
            continue;
        }
        if (done == header.Points) task.In.FailAtLine(kMore);
        // One more than wanted: a value too many may stand in the midst, and has moved all behind it on.
        FieldsOf(row, '\0', form.Columns.size() + 1, words);
        if (words.size() != form.Columns.size())
            task.In.FailAtLine("it has " + CountOfValues(words.size(), form.Columns.size()) +
                               ", and its header " + std::to_string(form.Columns.size()));
        if (!carrier.Carry(row)) task.In.FailAtLine("it holds no three numbers for x, y and z");
        task.Out.Put(lineEnd);
        ++done;
    }
    const std::int64_t done = task.Facts.Points + task.Facts.NotFinite;
    if (done < header.Points) FailCutOff(task, done, header.Points);
}

void RunBinary(CloudTask& task, const Header& header, const RecordForm& form) {
    for (std::int64_t done = 0; done < header.Points;) {
        task.In.Fill();
        if (!task.In.Need(form.Size)) FailCutOff(task, done, header.Points);
        const auto count = static_cast<std::size_t>(std::min<std::int64_t>(
            header.Points - done, static_cast<std::int64_t>(task.In.View().size() / form.Size)));
        CarryRecords(task, form, task.In.Data(), count, done + 1);
        task.Out.Put(task.In.View().substr(0, count * form.Size));
        task.In.Drop(count * form.Size);
        done += static_cast<std::int64_t>(count);
    }
}

// What stands behind the last point, where it is a line end, or nothing but the zeros up to the end of a page
// of memory that writers through mapped memory leave there. Other bytes tell that the header is of other
// records, even where they are too few for another one.
void KeepRest(CloudTask& task, std::size_t record) {
    constexpr std::size_t kLargestPage = std::size_t{1} << 16;
    const bool padded =
        !task.In.Need(kLargestPage + 1) && task.In.View().find_first_not_of('\0') == std::string_view::npos;
    if (!padded && (task.In.Need(record) || !IsNothing(task.In.View()))) task.In.Fail(kMore);
    task.Out.Put(task.In.View());
    task.In.Drop(task.In.View().size());
}

// --- Compressed -------------------------------------------------------------------------------------------
// All values of the first field, then all of the second, and so on: x, y and z of a point stand far apart.

std::uint32_t LittleEndian(std::string_view bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

std::string LittleEndian(std::uint64_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i) & 255);
    return bytes;
}

// Carries, block by block, what stands in `values`.
void CarrySpool(CloudTask& task, const Header& header, const RecordForm& form, CloudSpool& values) {
    constexpr std::int64_t kPointsOfBlock = std::int64_t{1} << 16;
    struct Part {
        std::uint64_t At;
        std::size_t Size;
        std::string Bytes;
    };
    std::array<Part, 6> parts{};
    const auto points = static_cast<std::uint64_t>(header.Points);
    for (std::size_t k = 0; k < 6; ++k) {
        const RecordField& field = k < 3 ? form.Point[k] : form.Normal[k - 3];
        parts[k] = {field.Offset * points, SizeOf(field.Type), {}};
    }
    const std::size_t used = form.HasNormal && task.Motion != nullptr ? 6 : 3;
    for (std::int64_t done = 0; done < header.Points; done += kPointsOfBlock) {
        const auto count = static_cast<std::size_t>(std::min(kPointsOfBlock, header.Points - done));
        RecordPlaces places;
        for (std::size_t k = 0; k < used; ++k) {
            Part& part = parts[k];
            part.Bytes.resize(count * part.Size);
            values.ReadAt(part.At + static_cast<std::uint64_t>(done) * part.Size, part.Bytes);
            (k < 3 ? places.Point : places.Normal)[k % 3] = part.Bytes.data();
            (k < 3 ? places.PointStride : places.NormalStride)[k % 3] = part.Size;
        }
        CarryPlaces(task, form, places, count, done + 1);
        for (std::size_t k = 0; k < used && task.Out.Writes(); ++k)
            values.WriteAt(parts[k].At + static_cast<std::uint64_t>(done) * parts[k].Size, parts[k].Bytes);
    }
}

void RunCompressed(CloudTask& task, const Header& header, const RecordForm& form) {
    if (!task.In.Need(8)) FailCutOff(task, 0, header.Points);
    const std::uint32_t packed = LittleEndian(task.In.View()),
                        unpacked = LittleEndian(task.In.View().substr(4));
    task.In.Drop(8);
    const auto points = static_cast<std::uint64_t>(header.Points);
    if (points > std::numeric_limits<std::uint32_t>::max() / header.Size || points * header.Size != unpacked)
        task.In.Fail("its compressed values are " + std::to_string(unpacked) +
                     " bytes, and its header counts " + std::to_string(header.Points) + " points of " +
                     std::to_string(header.Size) + " bytes");
    CloudSpool values;
    std::uint32_t left = packed;
    std::uint64_t all = 0;
    bool cutOff = false;
    const auto next = [&]() -> int {
        if (left == 0) return -1;
        if (task.In.View().empty() && !task.In.Fill()) {
            cutOff = true;
            return -1;
        }
        const auto byte = static_cast<unsigned char>(task.In.View().front());
        task.In.Drop(1);
        --left;
        return byte;
    };
    const bool good = LzfDecode(next, unpacked, [&](std::string_view bytes) {
        values.Append(bytes);
        all += bytes.size();
    });
    if (cutOff)
        task.In.Fail("it is cut off: " + std::to_string(left) + " of its " + std::to_string(packed) +
                     " compressed bytes are missing");
    if (!good || all != unpacked) task.In.Fail("its compressed values are damaged");
    CarrySpool(task, header, form, values);
    if (!task.Out.Writes()) return;
    constexpr std::uint64_t kBlock = std::uint64_t{1} << 20;
    CloudSpool compressed;
    std::string block, pressed;
    for (std::uint64_t at = 0; at < all; at += kBlock) {
        block.resize(std::min(kBlock, all - at));
        values.ReadAt(at, block);
        pressed.clear();
        LzfEncode(block, pressed);
        compressed.Append(pressed);
    }
    if (compressed.Size() > std::numeric_limits<std::uint32_t>::max())
        task.In.Fail("compressed again it is larger than 4 GiB; write it as DATA binary");
    task.Out.Put(LittleEndian(compressed.Size()) + LittleEndian(std::uint64_t{unpacked}));
    for (std::uint64_t at = 0; at < compressed.Size(); at += kBlock) {
        block.resize(std::min(kBlock, compressed.Size() - at));
        compressed.ReadAt(at, block);
        task.Out.Put(block);
    }
}

}  // namespace

void RunPcd(CloudTask& task) {
    const Header header = ReadHeader(task);
    const RecordForm form = FormOf(header);
    if (!form.HasPoint) task.In.Fail("it has no fields x, y and z");
    RefuseWholeNumbers(task, form);
    if (header.Data == "ascii") {
        RunAscii(task, header);
    } else if (header.Data == "binary") {
        RunBinary(task, header, form);
        KeepRest(task, header.Size);
    } else if (header.Data == "binary_compressed") {
        RunCompressed(task, header, form);
        KeepRest(task, header.Size);
    } else {
        task.In.FailAtLine("\"" + Printable(header.Data) + "\" is no form of data of a PCD file");
    }
}

}  // namespace corvinade::import

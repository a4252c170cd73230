// Values of the job file as bytes and back.
#include "core/job_file_bytes.h"

#include <algorithm>
#include <array>
#include <limits>

#include "core/numbers.h"
#include "core/platform.h"
#include "core/text.h"

namespace corvinade::core {

namespace {

// Texts of plain letters, nearly all names of points, are taken as they stand and without a detour.
void Decode(std::string_view bytes, std::string& text) {
    if (IsAscii(bytes)) {
        text.assign(bytes);
    } else {
        text = DecodeText(bytes);
    }
}

// The number that a text holds, with either decimal delimiter: the file may come from another country.
TaggedValue NumberOfText(const std::string& text) {
    double number = 0;
    for (const char decimal : {'.', ','})
        if (TextToNumber(text, decimal, number)) return number;
    return {};
}

std::string Bytes(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

}  // namespace

void ByteSource::Refuse(const std::string& what, std::size_t offset) const {
    throw PlatformError{"\"" + path_ + "\", byte " + std::to_string(offset) + ": " + Field + ": " + what};
}

void ByteSource::Ends(std::size_t size) const {
    Refuse("the file ends here or within the next " + Bytes(size), Offset());
}

void ByteSource::GetLongText(std::string& text) {
    const std::size_t place = Offset();
    const auto length = GetNumber<std::int32_t>();
    if (length < 0 || static_cast<std::size_t>(length) > Left())
        Refuse("a text of " + std::to_string(length) + " characters, but " + Bytes(Left()) + " are left",
               place);
    Decode(TakeText(static_cast<std::size_t>(length)), text);
}

void ByteSource::GetShortText(std::string& text) {
    const auto length = GetNumber<std::uint16_t>();
    Decode(TakeText(length), text);
}

std::size_t ByteSource::GetCount(std::size_t elementSize) {
    const std::size_t place = Offset();
    const auto bound = GetNumber<std::int32_t>();
    if (bound < 0) Refuse("the upper bound " + std::to_string(bound) + " is none", place);
    const auto count = static_cast<std::size_t>(std::int64_t{bound} + 1);
    if (count > Left() / elementSize)
        Refuse(std::to_string(count) + " elements cannot stand in the " + Bytes(Left()) + " that are left",
               place);
    return count;
}

void ByteSource::GetElements(std::vector<std::string>& values) {
    for (std::string& value : values) GetShortText(value);
}

TaggedValue ByteSource::GetRareTag() {
    const std::size_t place = Offset();
    const auto tag = GetNumber<std::uint16_t>();
    switch (tag) {
        case kTagNothing:
            return {};
        case kTagInt16:
            return GetNumber<std::int16_t>();
        case kTagInt32:
            return GetNumber<std::int32_t>();
        case kTagFloat:
            return GetNumber<float>();
        case kTagDouble:
            return GetNumber<double>();
        case kTagText: {
            std::string text;
            GetShortText(text);
            return NumberOfText(text);
        }
        default:
            Refuse("the value tag " + std::to_string(tag) + " is not known", place);
    }
}

void ByteSource::GetElements(std::vector<TaggedValue>& values) {
    constexpr std::size_t kWhole = sizeof kTagDouble + sizeof(double);
    for (TaggedValue& value : values) {
        std::uint16_t tag = kTagNothing;
        if (Left() >= kWhole) std::memcpy(&tag, at_, sizeof tag);
        if (tag != kTagDouble) {
            value = GetRareTag();
            continue;
        }
        double number = 0;
        std::memcpy(&number, at_ + sizeof tag, sizeof number);
        at_ += kWhole;
        value = number;
    }
}

void ByteSink::AppendSliced(const char* bytes, std::size_t size) {
    if (!Bytes.empty()) take_(Bytes);
    Bytes.clear();
    // What is a slice by itself goes on without being copied.
    if (size > kSlice) {
        take_({bytes, size});
    } else {
        Bytes.append(bytes, size);
    }
}

void ByteSink::Finish() {
    if (!take_ || Bytes.empty()) return;
    take_(Bytes);
    Bytes.clear();
}

void ByteSink::Refuse(const std::string& what) const {
    throw PlatformError{"This job cannot be saved: " + Field + ": " + what};
}

void ByteSink::PutLongText(std::string_view text) {
    const std::string encoded = EncodeText(text);
    if (encoded.size() > std::numeric_limits<std::int32_t>::max())
        Refuse("a text of " + core::Bytes(encoded.size()) + " is too long");
    Put(static_cast<std::int32_t>(encoded.size()));
    PutBytes(encoded);
}

void ByteSink::PutShortText(std::string_view text) {
    const auto put = [this](std::string_view encoded) {
        if (encoded.size() > kLongestShortText)
            Refuse("a text of " + core::Bytes(encoded.size()) + " is too long, " +
                   std::to_string(kLongestShortText) + " is the most");
        Put(static_cast<std::uint16_t>(encoded.size()));
        PutBytes(encoded);
    };
    if (IsAscii(text)) {
        put(text);
    } else {
        put(EncodeText(text));
    }
}

void ByteSink::PutCount(std::size_t size) {
    if (size > std::numeric_limits<std::int32_t>::max())
        Refuse(std::to_string(size) + " elements are too many");
    Put(static_cast<std::int32_t>(size) - 1);
}

void ByteSink::PutElements(std::span<const std::string> values) {
    for (const std::string& value : values) PutShortText(value);
}

void ByteSink::PutElements(std::span<const TaggedValue> values) {
    // Some hundred values at a time are put together where they stay in the processor's near memory.
    std::array<char, 4096> chunk;
    constexpr std::size_t kWhole = sizeof kTagDouble + sizeof(double);
    std::size_t used = 0;
    for (const TaggedValue& value : values) {
        if (used + kWhole > chunk.size()) {
            Append(chunk.data(), used);
            used = 0;
        }
        const std::uint16_t tag = value ? kTagDouble : kTagNothing;
        std::memcpy(chunk.data() + used, &tag, sizeof tag);
        used += sizeof tag;
        if (!value) continue;
        const double number = *value;
        std::memcpy(chunk.data() + used, &number, sizeof number);
        used += sizeof number;
    }
    Append(chunk.data(), used);
}

}  // namespace corvinade::core

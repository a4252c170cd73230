// Byte order, widths and texts of the job file: what stands between its bytes and values in memory. For the
// job file's own sources.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::core {

// Numbers are copied as they stand in memory.
static_assert(std::endian::native == std::endian::little, "the job file is little-endian");

inline constexpr std::size_t kLongestShortText = 65535;  // bytes
inline constexpr std::uint16_t kTagNothing = 0, kTagInt16 = 2, kTagInt32 = 3, kTagFloat = 4, kTagDouble = 5,
                               kTagText = 8;

// The bytes of a file from front to back. Whatever they hold, nothing is read behind their end, and a count
// is believed only where the bytes left can hold what it counts.
class ByteSource {
public:
    ByteSource(std::string_view bytes, std::string path)
        : begin_(bytes.data()), at_(begin_), end_(begin_ + bytes.size()), path_(std::move(path)) {}

    // Name of the field that is being read, for errors.
    std::string Field;

    std::size_t Offset() const { return static_cast<std::size_t>(at_ - begin_); }
    std::size_t Left() const { return static_cast<std::size_t>(end_ - at_); }

    // The next `size` bytes.
    const char* Take(std::size_t size) {
        if (Left() < size) Ends(size);
        const char* const taken = at_;
        at_ += size;
        return taken;
    }
    template <class Number>
    void Get(Number& number) requires std::is_arithmetic_v<Number> {
        std::memcpy(&number, Take(sizeof number), sizeof number);
    }
    template <class Number>
    Number GetNumber() {
        Number number{};
        Get(number);
        return number;
    }
    void GetLongText(std::string& text);
    void GetShortText(std::string& text);

    // An upper bound, as a number of elements, element 0 included; each takes at least `elementSize` of the
    // bytes left.
    std::size_t GetCount(std::size_t elementSize);

    void GetElements(std::vector<std::string>& values);
    void GetElements(std::vector<TaggedValue>& values);
    template <class Number>
    void GetElements(std::vector<Number>& values) {
        const std::size_t size = values.size() * sizeof(Number);
        if (size > 0) std::memcpy(values.data(), Take(size), size);
    }

    // Throws PlatformError: path, byte `offset`, field, and what is wrong there.
    [[noreturn]] void Refuse(const std::string& what, std::size_t offset) const;

private:
    [[noreturn]] void Ends(std::size_t size) const;
    std::string_view TakeText(std::size_t length) { return {Take(length), length}; }
    TaggedValue GetRareTag();

    const char* begin_;
    const char* at_;
    const char* end_;
    std::string path_;
};

// Takes the next bytes of a file, which it must not keep by reference.
using TakeBytes = std::function<void(std::string_view)>;

// Bytes that grow at their end: all of them in Bytes, or, with a taker, slice by slice handed on to it, so
// that a job of any size needs no second copy of itself.
class ByteSink {
public:
    explicit ByteSink(std::size_t expected) { Bytes.reserve(expected); }
    explicit ByteSink(TakeBytes take) : take_(std::move(take)) { Bytes.reserve(kSlice); }

    std::string Bytes;  // with a taker: those that it has not got yet
    std::string Field;  // for errors

    template <class Number>
    void Put(Number number) requires std::is_arithmetic_v<Number> {
        Append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    void PutLongText(std::string_view text);
    void PutShortText(std::string_view text);

    // The upper bound of an array of `size` elements.
    void PutCount(std::size_t size);

    void PutElements(std::span<const std::string> values);
    void PutElements(std::span<const TaggedValue> values);
    template <class Number>
    void PutElements(std::span<const Number> values) {
        Append(reinterpret_cast<const char*>(values.data()), values.size_bytes());
    }
    void PutBytes(std::string_view bytes) { Append(bytes.data(), bytes.size()); }

    // Hands on what is left. Once, behind the last bytes; without a taker it does nothing.
    void Finish();

    // Throws PlatformError: the job cannot be saved, for the reason that `what` gives.
    [[noreturn]] void Refuse(const std::string& what) const;

private:
    static constexpr std::size_t kSlice = std::size_t{1} << 20;  // bytes

    void Append(const char* bytes, std::size_t size) {
        if (take_ && Bytes.size() + size > kSlice) return AppendSliced(bytes, size);
        Bytes.append(bytes, size);
    }
    void AppendSliced(const char* bytes, std::size_t size);

    TakeBytes take_;
};

}  // namespace corvinade::core

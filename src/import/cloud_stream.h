// Bytes of a cloud on their way: a window over what comes in, and what goes out gathered into large pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/rooms.h"

namespace corvinade::import {

// Gives up to `most` bytes, fewer than wanted at the end alone, 0 behind it.
using ReadBytes = std::function<std::size_t(char* to, std::size_t most)>;
using WriteBytes = std::function<void(std::string_view bytes)>;

// A longer line is refused: no file of points has one, and it would have to be kept whole.
inline constexpr std::size_t kLongestCloudLine = std::size_t{16} << 20;

// What has been read and not been used yet. All views end with the next call; kReadAhead_bytes behind them
// are readable, whatever stands there.
inline constexpr std::size_t kReadAhead_bytes = 32;
class CloudInput {
public:
    CloudInput(std::string path, ReadBytes read);

    const std::string& Path() const { return path_; }
    std::string_view View() const { return {buffer_.data() + begin_, end_ - begin_}; }
    char* Data() { return buffer_.data() + begin_; }  // the same, to be changed in place
    bool More();                                      // reads on; false at the end of the file
    bool Need(std::size_t count);  // at least so many bytes in view; false where there are fewer
    // All that fits, without growing: a block of a stream. False where nothing is left.
    bool Fill();
    void Drop(std::size_t count) { begin_ += count; }

    // The next line with its line end, which is LF, or CR where the file has no other (LoneReturns). False at
    // the end of the file. Throws PlatformError, with the line's number, where it is too long.
    bool NextLine(std::string_view& line);
    std::int64_t Line = 0;  // the number of the last line given, from 1
    bool LoneReturns = false;
    bool HasReturns() const { return returns_; }  // a CR stands in what has been read so far

    // Takes all further bytes from these, which see the old ones through `read`.
    void ReadThrough(const std::function<ReadBytes(ReadBytes before)>& wrap);

    // Throws PlatformError: "Cannot read "path"[, line N]: why".
    [[noreturn]] void Fail(const std::string& why) const;
    [[noreturn]] void FailAtLine(const std::string& why) const;

private:
    std::string path_;
    ReadBytes read_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0, end_ = 0;
    bool ended_ = false, returns_ = false;
};

// Hands on in pieces of about a megabyte. Without `write` everything is dropped: a cloud that is only read.
class CloudOutput {
public:
    explicit CloudOutput(WriteBytes write);
    bool Writes() const { return static_cast<bool>(write_); }
    void Put(std::string_view bytes) {
        if (!write_) return;
        if (bytes.size() <= kPiece_bytes / 4 && buffer_.size() + bytes.size() <= kPiece_bytes) {
            buffer_ += bytes;
        } else {
            PutPiece(bytes);
        }
    }
    void Flush();  // once, the last of all
    // All further bytes go through these first.
    void WriteThrough(const std::function<WriteBytes(WriteBytes behind)>& wrap);

private:
    static constexpr std::size_t kPiece_bytes = std::size_t{1} << 20;
    void PutPiece(
        std::string_view bytes);  // what is a piece by itself, or does not go into this one any more

    WriteBytes write_;
    std::string buffer_;
};

// A line without its line end, and that.
std::string_view WithoutLineEnd(std::string_view line, std::string_view& lineEnd);

// UTF-16 behind its mark as UTF-8 and back, bit by bit: halves of a pair that stand alone become three bytes
// each, which no UTF-8 has. `bigEndian` as the mark says; an odd last byte is refused.
ReadBytes FromUtf16(ReadBytes before, bool bigEndian, const std::string& path);
WriteBytes ToUtf16(WriteBytes behind, bool bigEndian);

}  // namespace corvinade::import

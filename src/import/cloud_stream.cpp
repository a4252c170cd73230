// Bytes of a cloud on their way.
#include "import/cloud_stream.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "core/platform.h"

namespace corvinade::import {

namespace {

constexpr std::size_t kBlock_bytes = std::size_t{1} << 20;
constexpr std::size_t kFirst_bytes = std::size_t{1} << 16;  // a small file needs no more

}  // namespace

// --- In ---------------------------------------------------------------------------------------------------

CloudInput::CloudInput(std::string path, ReadBytes read)
    : path_(std::move(path)), read_(std::move(read)), buffer_(kFirst_bytes + kReadAhead_bytes) {}

bool CloudInput::More() {
    if (ended_) return false;
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    std::size_t size = buffer_.size() - kReadAhead_bytes;
    if (end_ == size) buffer_.resize((size *= 2) + kReadAhead_bytes);
    const std::size_t count = read_(buffer_.data() + end_, size - end_);
    ended_ = count == 0;
    returns_ = returns_ || std::memchr(buffer_.data() + end_, '\r', count) != nullptr;
    end_ += count;
    return !ended_;
}

bool CloudInput::Need(std::size_t count) {
    while (end_ - begin_ < count)
        if (!More()) return false;
    return true;
}

bool CloudInput::Fill() {
    while (!ended_ && end_ - begin_ < kBlock_bytes)
        if (!More()) break;
    return end_ > begin_;
}

bool CloudInput::NextLine(std::string_view& line) {
    const char lineEnd = LoneReturns ? '\r' : '\n';
    std::size_t from = 0;
    for (;;) {
        const std::size_t place = View().find(lineEnd, from);
        if (place != std::string_view::npos) {
            line = View().substr(0, place + 1);
            break;
        }
        from = end_ - begin_;
        if (from > kLongestCloudLine) {
            ++Line;
            FailAtLine("the line is longer than " + std::to_string(kLongestCloudLine >> 20) + " MiB");
        }
        if (More()) continue;
        if (from == 0) return false;
        line = View();
        break;
    }
    ++Line;
    Drop(line.size());
    return true;
}

void CloudInput::ReadThrough(const std::function<ReadBytes(ReadBytes before)>& wrap) {
    // What is in view already comes first.
    const auto rest = std::make_shared<std::string>(View());
    const auto given = std::make_shared<std::size_t>(0);
    begin_ = end_ = 0;
    ended_ = false;
    read_ = wrap([rest, given, read = std::move(read_)](char* to, std::size_t most) {
        const std::size_t count = rest->copy(to, most, *given);
        *given += count;
        return count > 0 ? count : read(to, most);
    });
}

void CloudInput::Fail(const std::string& why) const {
    throw PlatformError{"Cannot read \"" + path_ + "\": " + why};
}

void CloudInput::FailAtLine(const std::string& why) const {
    throw PlatformError{"Cannot read \"" + path_ + "\", line " + std::to_string(Line) + ": " + why};
}

// --- Out --------------------------------------------------------------------------------------------------

CloudOutput::CloudOutput(WriteBytes write) : write_(std::move(write)) {}

void CloudOutput::PutPiece(std::string_view bytes) {
    Flush();
    if (bytes.size() > kPiece_bytes / 4) {
        write_(bytes);
    } else {
        buffer_ += bytes;
    }
}

void CloudOutput::Flush() {
    if (write_ && !buffer_.empty()) write_(buffer_);
    buffer_.clear();
}

void CloudOutput::WriteThrough(const std::function<WriteBytes(WriteBytes behind)>& wrap) {
    Flush();
    if (write_) write_ = wrap(std::move(write_));
}

std::string_view WithoutLineEnd(std::string_view line, std::string_view& lineEnd) {
    std::size_t length = line.size();
    if (length > 0 && line[length - 1] == '\n') --length;
    if (length > 0 && line[length - 1] == '\r') --length;
    lineEnd = line.substr(length);
    return line.substr(0, length);
}

// --- UTF-16 -----------------------------------------------------------------------------------------------

namespace {

void AppendUtf8(std::uint32_t code, std::string& text) {
    const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

bool IsHigh(std::uint32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(std::uint32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

// What stands between two calls.
struct Utf16State {
    std::string Bytes;      // of the file, not decoded yet
    std::string Text;       // decoded, not given yet
    std::size_t Given = 0;  // of Text
};

std::size_t BytesOfLead(unsigned char lead) {
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace

ReadBytes FromUtf16(ReadBytes before, bool bigEndian, const std::string& path) {
    const auto state = std::make_shared<Utf16State>();
    return [before = std::move(before), bigEndian, path, state](char* to, std::size_t most) -> std::size_t {
        Utf16State& s = *state;
        while (s.Given == s.Text.size()) {
            s.Text.clear();
            s.Given = 0;
            char block[1 << 14];
            const std::size_t count = before(block, sizeof block);
            s.Bytes.append(block, count);
            const auto unitAt = [&](std::size_t at) {
                const auto first = static_cast<unsigned char>(s.Bytes[at]);
                const auto second = static_cast<unsigned char>(s.Bytes[at + 1]);
                return static_cast<std::uint32_t>(bigEndian ? first << 8 | second : second << 8 | first);
            };
            std::size_t at = 0;
            for (; at + 1 < s.Bytes.size(); at += 2) {
                const std::uint32_t unit = unitAt(at);
                if (IsHigh(unit) && at + 3 >= s.Bytes.size() && count > 0) break;  // its other half comes
                if (IsHigh(unit) && at + 3 < s.Bytes.size() && IsLow(unitAt(at + 2))) {
                    AppendUtf8(0x10000 + ((unit - 0xD800) << 10) + (unitAt(at + 2) - 0xDC00), s.Text);
                    at += 2;
                } else {
                    AppendUtf8(unit, s.Text);
                }
            }
            s.Bytes.erase(0, at);
            if (count > 0) continue;
            if (!s.Bytes.empty())
                throw PlatformError{"Cannot read \"" + path + "\": its UTF-16 ends within a character"};
            if (s.Text.empty()) return 0;
        }
        const std::size_t count = s.Text.copy(to, most, s.Given);
        s.Given += count;
        return count;
    };
}

WriteBytes ToUtf16(WriteBytes behind, bool bigEndian) {
    const auto rest = std::make_shared<std::string>();  // the first bytes of a character
    return [behind = std::move(behind), bigEndian, rest](std::string_view bytes) {
        const std::string text = *rest + std::string(bytes);
        std::string units;
        units.reserve(text.size() * 2);
        const auto put = [&](std::uint32_t unit) {
            const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
            units += bigEndian ? high : low;
            units += bigEndian ? low : high;
        };
        std::size_t at = 0;
        while (at < text.size()) {
            const auto lead = static_cast<unsigned char>(text[at]);
            const std::size_t length = BytesOfLead(lead);
            if (at + length > text.size()) break;
            std::uint32_t code = length == 1 ? lead : lead & (0xFFu >> (length + 1));
            for (std::size_t i = 1; i < length; ++i)
                code = code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3F);
            if (code >= 0x10000) {
                put(0xD800 + ((code - 0x10000) >> 10));
                put(0xDC00 + ((code - 0x10000) & 0x3FF));
            } else {
                put(code);
            }
            at += length;
        }
        *rest = text.substr(at);
        behind(units);
    };
}

}  // namespace corvinade::import

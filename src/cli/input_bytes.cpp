// Reading of files, pipes and standard input.
#include "cli/input_bytes.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <istream>
#include <new>
#include <system_error>

#include "core/held_streams.h"
#include "core/platform.h"

namespace corvinade::cli {

namespace {

constexpr std::size_t kMostOfStream = std::size_t{4} << 30U;
constexpr std::size_t kFirstBlock = std::size_t{1} << 16U;

[[noreturn]] void Fail(const std::string& path, const std::string& why) {
    throw PlatformError{"Cannot read \"" + InputName(path) + "\": " + why};
}

FileBytes ReadStream(const std::string& path, std::istream& in) {
    FileBytes bytes;
    std::size_t room = 0;
    try {
        for (;;) {
            if (bytes.Size == room) {
                if (room >= kMostOfStream) Fail(path, "it does not end within 4 GB");
                room = std::max(kFirstBlock, room * 2);
                std::unique_ptr<char[]> more(new char[room + 1]);
                if (bytes.Size > 0) std::memcpy(more.get(), bytes.Data.get(), bytes.Size);
                bytes.Data = std::move(more);
            }
            in.read(bytes.Data.get() + bytes.Size, static_cast<std::streamsize>(room - bytes.Size));
            bytes.Size += static_cast<std::size_t>(in.gcount());
            if (!in) break;
        }
    } catch (const std::bad_alloc&) {
        Fail(path, "it does not fit into memory");
    }
    if (in.bad()) Fail(path, "the stream has broken off");
    bytes.Data[bytes.Size] = '\0';
    return bytes;
}

}  // namespace

bool IsStream(const std::string& path) {
    std::error_code error;
    return path == kStandardInput || std::filesystem::is_fifo(path, error);
}

FileBytes ReadInput(const std::string& path, std::istream* in) {
    if (!IsStream(path)) return ReadFile(path);
    if (path == kStandardInput) {
        if (in == nullptr) Fail(path, "there is no standard input here");
        return ReadStream(path, *in);
    }
    std::ifstream pipe(path, std::ios::binary);
    if (!pipe) Fail(path, "the pipe cannot be opened");
    return ReadStream(path, pipe);
}

void HoldStream(const std::string& path, std::istream* in) {
    if (!IsStream(path) || HeldStream(path) != nullptr) return;
    HeldStreams.Bytes[path] = ReadInput(path, in);
}

std::string StandardInputTwice(const std::vector<NamedFile>& inputs) {
    const NamedFile* first = nullptr;
    for (const NamedFile& input : inputs) {
        if (input.Path != kStandardInput) continue;
        if (first != nullptr)
            return std::string(first->What) + " and " + input.What + " cannot both be standard input";
        first = &input;
    }
    return "";
}

std::string InputName(const std::string& path) {
    return path == kStandardInput ? "standard input" : path;
}

}  // namespace corvinade::cli

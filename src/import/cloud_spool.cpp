// A temporary file.
#include "import/cloud_spool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "core/platform.h"

namespace corvinade::import {

namespace {

[[noreturn]] void Fail(const char* what) {
    throw PlatformError{std::string("Cannot ") + what + " a temporary file: " + std::strerror(errno)};
}

}  // namespace

CloudSpool::CloudSpool() : file_(std::tmpfile()) {
    if (file_ == nullptr) Fail("make");
}

CloudSpool::~CloudSpool() {
    std::fclose(file_);
}

void CloudSpool::Seek(std::uint64_t at) {
    // A step of std::fseek may have 32 bits.
    constexpr std::uint64_t kStep = std::uint64_t{1} << 30;
    bool good = std::fseek(file_, static_cast<long>(std::min(at, kStep)), SEEK_SET) == 0;
    for (std::uint64_t done = std::min(at, kStep); done < at && good; done += std::min(at - done, kStep))
        good = std::fseek(file_, static_cast<long>(std::min(at - done, kStep)), SEEK_CUR) == 0;
    if (!good) Fail("read");
}

void CloudSpool::Append(std::string_view bytes) {
    WriteAt(size_, bytes);
    size_ += bytes.size();
}

void CloudSpool::ReadAt(std::uint64_t at, std::string& bytes) {
    Seek(at);
    if (std::fread(bytes.data(), 1, bytes.size(), file_) != bytes.size()) Fail("read");
}

void CloudSpool::WriteAt(std::uint64_t at, std::string_view bytes) {
    Seek(at);
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) Fail("write");
}

}  // namespace corvinade::import

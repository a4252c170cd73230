// A temporary file for what has to be gone through out of its order.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::import {

// It is gone with the object, or with the program. Throws PlatformError where the disk refuses.
class CloudSpool {
public:
    CloudSpool();
    ~CloudSpool();
    CloudSpool(const CloudSpool&) = delete;
    CloudSpool& operator=(const CloudSpool&) = delete;

    void Append(std::string_view bytes);
    std::uint64_t Size() const { return size_; }
    void ReadAt(std::uint64_t at, std::string& bytes);  // as many as it has
    void WriteAt(std::uint64_t at, std::string_view bytes);

private:
    void Seek(std::uint64_t at);
    std::FILE* file_;
    std::uint64_t size_ = 0;
};

}  // namespace corvinade::import

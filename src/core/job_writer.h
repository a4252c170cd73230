// A job's file slice by slice, for whoever has other work to do between two slices.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/job.h"
#include "core/job_file_bytes.h"
#include "core/rooms.h"

namespace corvinade::core {

// How far the fields of a job are written.
struct JobPlace {
    std::size_t Field = 0;    // of JobFields()
    std::size_t Element = 0;  // of that field's array; 0 at its begin
    std::size_t Size = 0;     // elements of that array, once it has begun
    bool Ended = false;
};

// Hands the bytes of JobBytes to `take`. Job and names are those of the caller, and stay as they are until
// the last slice, or until the writer is given up.
class JobWriter {
public:
    JobWriter(const JobRecord& job, const std::vector<std::string>& viewNames, TakeBytes take)
        : out_(std::move(take)), job_(job), viewNames_(viewNames) {}

    // The next slice, of about kElements elements. False when it was the last one. Throws PlatformError as
    // JobBytes does.
    bool Slice();

    static constexpr std::size_t kElements = std::size_t{1} << 15;

private:
    ByteSink out_;
    const JobRecord& job_;
    const std::vector<std::string>& viewNames_;
    JobPlace place_;
};

}  // namespace corvinade::core

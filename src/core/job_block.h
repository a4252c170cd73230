// The block behind the fields of a job file: what a job knows that no field has a place for. Readers that
// know the fields alone never reach it. For the job file's own sources.
//
//   16 bytes   kJobBlockHead
//   u64        length of the text in bytes
//   the text   a JSON object, UTF-8
//   u64        the same length again, the end of the file
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/job.h"
#include "core/rooms.h"

namespace corvinade::core {

// No field looks like it: the bytes would be a count of 1,448,234,819 elements, or of texts as long.
inline constexpr std::string_view kJobBlockHead{"CORVINADE-BLOCK\x1a", 16};

// Does a block begin in front of these bytes, which stand behind the last field to the end of the file? One
// whose head is cut off by the end of the file counts too. All other bytes are the rest of a longer file.
bool BeginsJobBlock(std::string_view rest);

// Members that the job keeps as they stand, and other rooms or files read: the sigmas of its sides
// (measurement_sigmas.h), how its tables were read, and what a recovery copy is one of. Of other names, as a
// later version may write, the file is kept as well.
inline constexpr std::string_view kStartSigmas = "\"startSigmas\"", kTargetSigmas = "\"targetSigmas\"",
                                  kStartTable = "\"startTable\"", kTargetTable = "\"targetTable\"",
                                  kRecoveryCopyOf = "\"recoveryCopyOf\"";
// "\"cell\" and \"line\"": the names of a job's members that are none of these; "" where there are none.
std::string UnknownMembers(const JobRecord& job);

// Where a block is not what one has to be.
struct JobBlockFault {
    std::string What;        // "" when nothing is wrong
    std::size_t Offset = 0;  // from the block's begin
};

// Takes what a block says into the job. With a fault the job is as before.
JobBlockFault TakeJobBlock(std::string_view block, JobRecord& job);

// The block of a job; "" where it has nothing to say, as all jobs with a sound result, but those of a fit
// with the tool vector.
std::string JobBlock(const JobRecord& job);

}  // namespace corvinade::core

// Saved views in the job file. For the job file's own sources.
#pragma once

#include <string>
#include <vector>

#include "core/job.h"
#include "core/job_file_bytes.h"
#include "core/rooms.h"

namespace corvinade::core {

// Number, names and view records; a number below 1 stands alone.
void GetSavedViews(ByteSource& in, JobRecord& job, std::vector<std::string>& names);
void PutSavedViews(ByteSink& out, const JobRecord& job, const std::vector<std::string>& names);

}  // namespace corvinade::core

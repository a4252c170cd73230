// `--json` of the commands whose result is files.
#include "cli/written_json.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/messages.h"
#include "cli/record_json.h"
#include "core/controller.h"
#include "core/notes.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

// Counted up when a member goes or changes its meaning; new members leave it.
constexpr int kSchemaVersion = 1;

}  // namespace

int TellWritten(const std::string& command, const std::string& job, const std::vector<std::string>& written,
                std::ostream& out, std::ostream& err, const std::vector<FileLeft>& left) {
    ordered_json leftFiles = ordered_json::array();
    for (const FileLeft& file : left) leftFiles.push_back({{"path", file.Path}, {"why", file.Why}});
    const ordered_json root = {{"schema", "corvinade-" + command},
                               {"schemaVersion", kSchemaVersion},
                               {"program", ProgramAsJson()},
                               {"job", job},
                               {"written", written},
                               {"left", std::move(leftFiles)},
                               {"notes", NotesToJson(Notes.List)}};
    out << root.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
    if (!out.flush()) return Refuse(err, kRefused, "the result could not be written to standard output");
    return kDone;
}

}  // namespace corvinade::cli

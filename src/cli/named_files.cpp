// Files of a command line that are one and the same.
#include "cli/named_files.h"

#include <filesystem>
#include <system_error>

#include "core/text.h"

namespace corvinade::cli {

namespace {

namespace fs = std::filesystem;

bool AreOne(const std::string& a, const std::string& b) {
    if (a.empty() || b.empty()) return false;
    if (a == "-" || b == "-") return false;  // standard input and standard output, and no file
    std::error_code error;
    if (fs::equivalent(a, b, error)) return true;
    // Devices may take several outputs one after the other.
    if (fs::exists(a, error) && !fs::is_regular_file(a, error)) return false;
    const fs::path first = fs::weakly_canonical(a, error);
    if (error) return false;
    const fs::path second = fs::weakly_canonical(b, error);
    return !error && first == second;
}

}  // namespace

std::string FilesApart(const std::vector<NamedFile>& inputs, const std::vector<NamedFile>& outputs) {
    const auto told = [](const NamedFile& a, const NamedFile& b) {
        return std::string(a.What) + " and " + b.What + " are the same file: " + Printable(b.Path, 300);
    };
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        for (const NamedFile& input : inputs)
            if (AreOne(input.Path, outputs[i].Path)) return told(input, outputs[i]);
        for (std::size_t k = 0; k < i; ++k) {
            if (outputs[k].Path == "-" && outputs[i].Path == "-")
                return std::string(outputs[k].What) + " and " + outputs[i].What +
                       " both want standard output";
            if (AreOne(outputs[k].Path, outputs[i].Path)) return told(outputs[k], outputs[i]);
        }
    }
    return "";
}

}  // namespace corvinade::cli

// The results of `fit --batch`: a line a fit, as CSV or as JSON.
#include "cli/fit_batch_results.h"

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>

#include "cli/csv.h"
#include "cli/fit_options.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/platform.h"
#include "core/system_files.h"
#include "core/text.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

constexpr std::array kParameterNames = {"trax",   "tray",   "traz",     "rotx", "roty",    "rotz", "scalex",
                                        "scaley", "scalez", "scalexyz", "xy",   "azimuth", "ztoxy"};
// Of the result's members, by the way to each; the headings are their last names.
constexpr std::array kNumbers = {"/counts/pairs",  "/counts/observations", "/counts/unknowns",
                                 "/iterations",    "/quality/s0_mm",       "/quality/sx_mm",
                                 "/quality/sy_mm", "/quality/sz_mm",       "/quality/largestDeviation_mm"};

// --- Marks ------------------------------------------------------------------------------------------------

// 64 bits of a text (FNV-1a), as 16 digits behind a letter, so that no spreadsheet makes a number of them.
std::string MarkOf(char letter, const std::string& text) {
    std::uint64_t mark = 14695981039346656037U;
    for (const char c : text) mark = (mark ^ static_cast<unsigned char>(c)) * 1099511628211U;
    std::string digits(1, letter);
    for (int shift = 60; shift >= 0; shift -= 4) digits += "0123456789abcdef"[(mark >> shift) & 15];
    return digits;
}

std::string FilesOf(const BatchJob& job) {
    std::string text = ProgramVersion();
    for (const std::string& path : job.Inputs) {
        FileStamp stamp;
        text += "\n" + path;
        if (StampOfFile(path, stamp))
            text += " " + std::to_string(stamp.Size) + " " + std::to_string(stamp.Changed_ns);
    }
    return MarkOf('s', text);
}

// --- Rows -------------------------------------------------------------------------------------------------

const char* StatusName(const ChildEnd& end) {
    constexpr std::array kNames = {"done",       "refused",       "wrong usage",
                                   "unreadable", "not converged", "above limit"};
    const auto status = static_cast<std::size_t>(end.Status);
    return end.Status >= 0 && status < kNames.size() ? kNames[status] : "broken off";
}

// What a fit has said, on one line.
std::string MessageOf(const ChildEnd& end, const ordered_json& result) {
    std::string text = end.Err;
    if (!end.Refused.empty()) text = "the program could not be started: " + end.Refused;
    if (end.Signal != 0) text = "the fit was ended by signal " + std::to_string(end.Signal) + ". " + text;
    if (result.is_object() && result.contains("error"))
        text = result["error"].value("text", "") + "\n" + text;
    std::string line;
    for (const char c : text) {
        const bool blank = static_cast<unsigned char>(c) <= ' ';
        if (!blank || (!line.empty() && line.back() != ' ')) line += blank ? ' ' : c;
    }
    while (line.ends_with(' ')) line.pop_back();
    return line;
}

std::string NumberAt(const ordered_json& result, const char* way) {
    const ordered_json::json_pointer pointer(way);
    if (!result.is_object() || !result.contains(pointer) || !result[pointer].is_number()) return "";
    return result[pointer].dump();
}

std::string LastName(const std::string& way) {
    return way.substr(way.rfind('/') + 1);
}

std::string CsvRow(const BatchRow& row, const BatchJob& job, const ChildEnd& end,
                   const ordered_json& result) {
    std::string line = row.Fit + ";" + row.Files + ";" + StatusName(end) + ";" + std::to_string(job.Line);
    for (const std::string& text : {job.Name, job.Start, job.Target, MessageOf(end, result)})
        line += ";" + CsvText(text);
    for (const char* way : kNumbers) line += ";" + NumberAt(result, way);
    std::map<std::string, ordered_json> parameters;
    if (result.is_object() && result.contains("parameters"))
        for (const ordered_json& one : result["parameters"]) parameters[one.value("name", "")] = one;
    for (const char* name : kParameterNames) line += ";" + NumberAt(parameters[name], "/value");
    for (const char* name : kParameterNames) line += ";" + NumberAt(parameters[name], "/sigma");
    std::string notes;
    if (result.is_object() && result.contains("notes"))
        for (const ordered_json& note : result["notes"])
            notes += (notes.empty() ? "" : ",") + note.value("code", "");
    return line + ";" + CsvText(notes);
}

std::string JsonRow(const BatchRow& row, const BatchJob& job, const ChildEnd& end, ordered_json result) {
    ordered_json line = {{"fit", row.Fit},
                         {"files", row.Files},
                         {"status", StatusName(end)},
                         {"line", job.Line},
                         {"name", job.Name},
                         {"start", job.Start},
                         {"target", job.Target},
                         {"message", MessageOf(end, result)}};
    line["result"] = result.is_object() && !result.contains("error") ? std::move(result) : ordered_json();
    return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

BatchRow RowInCsv(const std::string& line) {
    BatchRow row;
    std::array<std::string, 3> cells;
    std::size_t at = 0;
    for (std::string& cell : cells) {
        const std::size_t end = line.find(';', at);
        if (end == std::string::npos) return {};
        cell = line.substr(at, end - at);
        at = end + 1;
    }
    return {cells[0], cells[1], line, cells[2] == "done"};
}

BatchRow RowInJson(const std::string& line) {
    const ordered_json row = ordered_json::parse(line, nullptr, false);
    if (!row.is_object()) return {};
    const auto text = [&row](const char* name) {
        return row.contains(name) && row[name].is_string() ? row[name].get<std::string>() : "";
    };
    return {text("fit"), text("files"), line, text("status") == "done"};
}

}  // namespace

bool IsCsvOut(const std::string& path) {
    if (path.ends_with(".csv")) return true;
    if (path.ends_with(".jsonl")) return false;
    throw PlatformError{"--out is a file *.csv or *.jsonl, and \"" + path + "\" is neither"};
}

std::string BatchHeading(bool csv) {
    if (!csv) return "";
    std::string heading = "fit;files;status;line;name;start;target;message";
    for (const char* way : kNumbers) heading += ";" + LastName(way);
    for (const char* name : kParameterNames) heading += std::string(";") + name;
    for (const char* name : kParameterNames) heading += std::string(";sigma_") + name;
    return heading + ";notes\n";
}

BatchResults ReadBatchResults(const std::string& path, bool csv) {
    const FileBytes bytes = ReadFile(path);
    const std::string_view text = bytes.View();
    BatchResults results;
    const std::string heading = BatchHeading(csv);
    const auto refuse = [&path](int line, const char* why) {
        throw PlatformError{"\"" + path + "\", line " + std::to_string(line) + ": " + why +
                            "; it is left as it is, choose another --out"};
    };
    std::size_t at = 0;
    if (csv && !text.empty()) {
        // A run that ended within its first write has left a part of the heading.
        if (heading.starts_with(text) && text.size() < heading.size()) return {{}, true};
        if (!text.starts_with(heading))
            refuse(1, "this is not the heading of a file of results of fit --batch");
        at = heading.size();
    }
    for (int line = csv ? 2 : 1; at < text.size(); ++line) {
        const std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) {
            results.Torn = true;
            return results;
        }
        const std::string row(text.substr(at, end - at));
        results.Rows.push_back(csv ? RowInCsv(row) : RowInJson(row));
        const BatchRow& last = results.Rows.back();
        if (last.Fit.size() != 17 || last.Files.size() != 17)
            refuse(line, "this is not a line of results of fit --batch");
        at = end + 1;
    }
    return results;
}

BatchRow RowOf(const BatchJob& job, const BatchRow& marks, const ChildEnd& end, bool csv) {
    BatchRow row = marks;
    ordered_json result = ordered_json::parse(end.Out, nullptr, false);
    row.Done = end.Status == kDone;
    if (row.Done && !result.is_object()) {
        ChildEnd broken = end;
        broken.Status = -1;
        broken.Err += "what the fit has told is no result";
        return RowOf(job, marks, broken, csv);
    }
    row.Text = csv ? CsvRow(row, job, end, result) : JsonRow(row, job, end, std::move(result));
    return row;
}

std::vector<BatchRow> MarksOf(const std::vector<BatchJob>& jobs) {
    std::vector<BatchRow> marks;
    std::map<std::string, int> seen;
    for (const BatchJob& job : jobs) {
        std::string text = job.Name;
        for (const std::string& argument : job.Arguments) text += '\n' + argument;
        // The same fit twice is two.
        const int turn = ++seen[text];
        if (turn > 1) text += '\n' + std::to_string(turn);
        marks.push_back({MarkOf('f', text), FilesOf(job), "", false});
    }
    return marks;
}

}  // namespace corvinade::cli

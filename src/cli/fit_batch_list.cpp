// The list of `fit --batch`: a line a fit.
#include "cli/fit_batch_list.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "core/files.h"
#include "core/platform.h"
#include "core/text.h"
#include "import/table_cells.h"

namespace corvinade::cli {

namespace {

using Words = std::vector<std::string>;

// What a list has no column for: these are of the whole command.
const std::set<std::string> kOfTheCommand = {"--batch", "--out",     "--jobs", "--json",     "--csv",
                                             "--quiet", "--verbose", "--help", "--no-points"};
// What one fit has for itself: given to all, each would write over the one before, or read the same.
constexpr std::array kOfOneFit = {"START", "TARGET", "--pairs", "--job", "--save", "--report", "--export"};
constexpr std::array kRead = {"START", "TARGET", "--pairs", "--job", "--poses"};
constexpr std::array kWritten = {"--save", "--report", "--export"};

template <class List>
bool Has(const List& list, const std::string& name) {
    return std::find(list.begin(), list.end(), name) != list.end();
}

[[noreturn]] void FailAt(const std::string& path, std::int64_t line, const std::string& why) {
    throw PlatformError{"\"" + path + "\", line " + std::to_string(line) + ": " + why};
}

struct ListColumn {
    std::string Option;  // "--norm", "START", "NAME"
    bool Flag = false;
};

bool IsFlag(const CLI::Option& option) {
    return option.get_items_expected_max() == 0;
}

// Name and values of the options that all fits have been given.
std::map<std::string, Words> GivenToAll(const CLI::App& fit, std::set<std::string>& flags) {
    std::map<std::string, Words> given;
    for (const CLI::Option* option : fit.get_options()) {
        const std::string name = option->get_name();
        if (option->count() == 0 || kOfTheCommand.count(name) > 0) continue;
        given[name] = option->results();
        if (IsFlag(*option)) flags.insert(name);
    }
    return given;
}

// Which of the delimiters of tables the heading has, the first line that is neither blank nor a comment.
char DelimiterOf(std::string_view text) {
    std::string_view heading;
    for (std::size_t at = 0; import::NextTableLine(text, at, heading);)
        if (!import::TrimmedCell(heading).empty() && !heading.starts_with('#')) break;
    for (const char delimiter : {';', '\t', '|'})
        if (heading.find(delimiter) != std::string_view::npos) return delimiter;
    return ',';
}

class ListReader {
public:
    ListReader(const std::string& path, const CLI::App& fit)
        : path_(path), fit_(fit), toAll_(GivenToAll(fit, flags_)) {}

    std::vector<BatchJob> Read() {
        const FileBytes bytes = ReadFile(path_);
        import::TableText text;
        if (const std::string wrong = import::TakeTableText(bytes.View(), nullptr, text); !wrong.empty())
            throw PlatformError{"Cannot read \"" + path_ + "\": " + wrong};
        import::TableForm form;
        form.Delimiter = DelimiterOf(text.Text);
        import::TableWalk walk(text.Text, form);
        for (import::TableRow row; walk.Next(row);) {
            if (import::TrimmedCell(row.Line).empty() || row.Line.starts_with('#')) continue;
            if (row.OpenQuote) FailAt(path_, row.Number, "a quote has no end");
            if (row.Lines > 1) FailAt(path_, row.Number, "a quoted cell goes over the end of its line");
            Words cells;
            for (const import::TableCell& cell : row.Cells)
                cells.push_back(cell.Quoted ? import::DecodedCell(text, row.Line, import::Unquoted(cell))
                                            : import::DecodedCell(text, row.Line, cell.Text));
            line_ = row.Number;
            if (columns_.empty()) {
                TakeHeading(cells);
            } else {
                TakeRow(cells);
            }
        }
        if (jobs_.empty()) throw PlatformError{"\"" + path_ + "\": a heading and a line a fit were expected"};
        return std::move(jobs_);
    }

private:
    void TakeHeading(const Words& cells) {
        for (const std::string& cell : cells) {
            std::string word = cell;
            std::transform(word.begin(), word.end(), word.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
            if (word == "name" || word == "start" || word == "target") {
                std::transform(word.begin(), word.end(), word.begin(),
                               [](char c) { return static_cast<char>(c - 32); });
                columns_.push_back({word, false});
            } else {
                // "start" is the file, and "--start" the option of this name.
                if (!word.starts_with("--")) word.insert(0, "--");
                const CLI::Option* option = fit_.get_option_no_throw(word);
                if (option == nullptr || kOfTheCommand.count(option->get_name()) > 0)
                    FailAt(path_, line_,
                           "the heading names the columns name, start, target and options of fit such as "
                           "parameters, and \"" +
                               Printable(cell) + "\" is none of these");
                columns_.push_back({option->get_name(), IsFlag(*option)});
            }
            const auto same = [this](const ListColumn& one) { return one.Option == columns_.back().Option; };
            const CLI::Option* last = fit_.get_option_no_throw(columns_.back().Option);
            const bool several = last != nullptr && last->get_items_expected_max() > 1;
            if (!several && std::count_if(columns_.begin(), columns_.end(), same) > 1)
                FailAt(path_, line_, "the column \"" + Printable(cell) + "\" stands twice");
        }
    }

    void TakeRow(const Words& cells) {
        if (cells.size() > columns_.size())
            FailAt(path_, line_,
                   "the heading has " + std::to_string(columns_.size()) + " columns, and this line has " +
                       std::to_string(cells.size()));
        BatchJob job;
        job.Line = static_cast<int>(line_);
        std::map<std::string, Words> given = toAll_, own;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const ListColumn& column = columns_[i];
            if (cells[i].empty()) continue;
            if (column.Option == "NAME") {
                job.Name = cells[i];
            } else if (!column.Flag) {
                own[column.Option].push_back(cells[i]);
            } else if (cells[i] == "yes") {
                own[column.Option] = {"yes"};
            } else if (cells[i] == "no") {
                given.erase(column.Option);
            } else {
                FailAt(path_, line_,
                       "the cell of " + column.Option + " is yes or no, and \"" + Printable(cells[i]) +
                           "\" came");
            }
            if (column.Flag) flags_.insert(column.Option);
        }
        for (auto& [name, values] : own) given[name] = values;
        Complete(given, job);
        jobs_.push_back(std::move(job));
    }

    void Complete(const std::map<std::string, Words>& given, BatchJob& job) {
        job.Arguments = {"fit"};
        for (const char* place : {"START", "TARGET"})
            if (const auto found = given.find(place); found != given.end()) {
                (place[0] == 'S' ? job.Start : job.Target) = found->second.front();
                job.Arguments.push_back(found->second.front());
            }
        for (const auto& [name, values] : given) {
            if (Has(kRead, name)) job.Inputs.push_back(values.front());
            if (name == "--pairs" || name == "--job") job.Start = values.front();
            for (const std::string& value : values) {
                if (Has(kWritten, name)) TakeOutput(name, value, job);
                if (name.starts_with("--"))
                    job.Arguments.push_back(flags_.count(name) > 0 ? name : name + "=" + value);
            }
        }
        if (Has(job.Inputs, "-"))
            FailAt(path_, line_, "- is standard input, which a fit of a list has none of: give a file");
    }

    void TakeOutput(const std::string& name, const std::string& value, BatchJob& job) {
        const std::string file = name == "--export" ? value.substr(value.find('=') + 1) : value;
        if (file == "-")
            FailAt(path_, line_, name + " writes to standard output, which all fits share: give a file");
        const auto [other, fresh] = written_.emplace(AbsolutePath(file), line_);
        if (!fresh)
            FailAt(
                path_, line_,
                name + " would write \"" + file + "\", as line " + std::to_string(other->second) + " does");
        job.Outputs.push_back(file);
    }

    const std::string& path_;
    const CLI::App& fit_;
    std::set<std::string> flags_;
    std::map<std::string, Words> toAll_;
    std::vector<ListColumn> columns_;
    std::map<std::string, std::int64_t> written_;
    std::int64_t line_ = 0;
    std::vector<BatchJob> jobs_;
};

}  // namespace

std::vector<BatchJob> ReadBatchList(const std::string& path, const CLI::App& fit) {
    return ListReader(path, fit).Read();
}

std::string AgainstBatch(const CLI::App& fit) {
    for (const CLI::Option* option : fit.get_options()) {
        const std::string name = option->get_name();
        if (option->count() == 0) continue;
        if (Has(kOfOneFit, name)) return "--batch has a column for each fit's own " + name;
        if (name == "--csv" || name == "--verbose") return name + " is about one fit, and --batch runs many";
    }
    return "";
}

}  // namespace corvinade::cli

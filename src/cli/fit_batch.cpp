// `corvinade-cli fit --batch`: the fits of a list, several at once.
#include "cli/fit_batch.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <ostream>
#include <thread>

#include "cli/fit_batch_list.h"
#include "cli/fit_batch_results.h"
#include "cli/fit_options.h"
#include "cli/messages.h"
#include "cli/named_files.h"
#include "core/child_process.h"
#include "core/files.h"
#include "core/lock_file.h"
#include "core/platform.h"

namespace corvinade::cli {

namespace {

// Held beside the results while they are written, so that two runs do not write the same.
class ResultsLock {
public:
    explicit ResultsLock(const std::string& out) : path_(out + ".lock") {
        if (TakeLock(path_, true, handle_) == LockAnswer::Held)
            throw PlatformError{"Cannot write \"" + out + "\": another run of --batch is writing it"};
    }
    ~ResultsLock() { DropLockAndFile(handle_, path_); }
    ResultsLock(const ResultsLock&) = delete;
    ResultsLock& operator=(const ResultsLock&) = delete;

private:
    std::string path_;
    int handle_ = -1;
};

std::string Counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

class Batch {
public:
    Batch(const BatchOptions& options, const CLI::App& fit, std::ostream& err, bool showProgress)
        : options_(options),
          err_(err),
          showProgress_(showProgress),
          csv_(IsCsvOut(options.Out)),
          jobs_(ReadBatchList(options.List, fit)),
          rows_(MarksOf(jobs_)) {
        for (BatchJob& job : jobs_) {
            job.Arguments.push_back("--json");
            if (csv_ || fit.get_option("--no-points")->count() > 0) job.Arguments.push_back("--no-points");
            for (const std::string& path : job.Outputs) {
                const std::string wrong =
                    FilesApart({{"--batch", options.List}, {"--out", options.Out}}, {{"the list", path}});
                if (!wrong.empty())
                    throw PlatformError{"\"" + options.List + "\", line " + std::to_string(job.Line) + ": " +
                                        wrong};
            }
        }
    }

    int Run() {
        const ResultsLock lock(options_.Out);
        PassOverDone();
        WriteFile(options_.Out, Written());
        RunAll();
        if (!refused_.empty()) throw PlatformError{refused_};
        WriteFile(options_.Out, Written());
        return Tell();
    }

private:
    // What stands in the file already. Lines of other fits are no business of this list: a result among them
    // is lost nowhere.
    void PassOverDone() {
        if (!File_Exist(options_.Out)) return;
        const BatchResults before = ReadBatchResults(options_.Out, csv_);
        std::map<std::string, std::size_t> place;
        for (std::size_t i = 0; i < rows_.size(); ++i) place[rows_[i].Fit] = i;
        std::size_t changed = 0, failed = 0, others = 0;
        for (std::size_t i = 0; i < before.Rows.size(); ++i) {
            const BatchRow& row = before.Rows[i];
            const auto found = place.find(row.Fit);
            if (found == place.end()) {
                if (row.Done)
                    throw PlatformError{"\"" + options_.Out + "\", line " +
                                        std::to_string(i + (csv_ ? 2 : 1)) +
                                        ": the result of a fit that is not in \"" + options_.List +
                                        "\" in this way; choose another --out, or remove the line"};
                ++others;
                continue;
            }
            BatchRow& mine = rows_[found->second];
            if (!row.Done) {
                ++failed;
            } else if (row.Files != mine.Files) {
                ++changed;
            } else if (!mine.Done) {
                mine = row;
                ++passed_;
            }
        }
        std::ostream& live = err_;
        if (passed_ > 0) live << Counted(passed_, "fit is", "fits are") << " done already and passed over\n";
        if (changed > 0)
            live << Counted(changed, "fit", "fits")
                 << " whose files, or whose program, have changed since: done anew\n";
        if (failed > 0) live << Counted(failed, "fit", "fits") << " that failed before: done anew\n";
        if (others > 0)
            live << Counted(others, "line", "lines")
                 << " of failed fits that are in the list no more: left out\n";
        if (before.Torn) live << "the last line was broken off: its fit is done anew\n";
    }

    std::string Written() const {
        std::string text = BatchHeading(csv_);
        for (const BatchRow& row : rows_)
            if (!row.Text.empty()) text += row.Text + "\n";
        return text;
    }

    void RunAll() {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i].Text.empty()) open_.push_back(i);
        if (open_.empty()) return;
        out_.open(std::filesystem::path(std::u8string(options_.Out.begin(), options_.Out.end())),
                  std::ios::binary | std::ios::app);
        const std::size_t wanted =
            static_cast<std::size_t>(options_.Jobs > 0 ? options_.Jobs : ProgramsAtOnce());
        ShowProgress();
        std::vector<std::thread> threads;
        for (std::size_t i = 1; i < std::min(wanted, open_.size()); ++i)
            threads.emplace_back([this] { Work(); });
        Work();
        for (std::thread& thread : threads) thread.join();
        out_.close();
        if (showProgress_) LiveStream(err_) << "\r\x1b[K" << std::flush;
    }

    void Work() {
        const std::string program = JoinPath(ProgramFolder(), "corvinade-cli");
        for (;;) {
            std::size_t i = 0;
            {
                const std::lock_guard<std::mutex> held(mutex_);
                if (next_ == open_.size() || !refused_.empty()) return;
                i = open_[next_++];
            }
            const ChildEnd end = RunChild(program, jobs_[i].Arguments);
            BatchRow row = RowOf(jobs_[i], rows_[i], end, csv_);
            const std::lock_guard<std::mutex> held(mutex_);
            // In one piece: who is ended meanwhile leaves whole lines and at most one that is torn.
            const std::string line = row.Text + "\n";
            if (refused_.empty() &&
                !out_.write(line.data(), static_cast<std::streamsize>(line.size())).flush())
                refused_ =
                    "Cannot write \"" + options_.Out +
                    "\": a line did not fit in; what stands there is kept, and the next run goes on behind it";
            rows_[i] = std::move(row);
            ++ended_;
            if (!rows_[i].Done) ++failed_;
            ShowProgress();
        }
    }

    void ShowProgress() {
        if (!showProgress_) return;
        LiveStream(err_) << "\r" << passed_ + ended_ << " of " << rows_.size() << " fits, " << failed_
                         << " failed  " << std::flush;
    }

    int Tell() {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (rows_[i].Done) continue;
            err_ << "\"" << options_.List << "\", line " << jobs_[i].Line
                 << ": not done, see the message in \"" << options_.Out << "\"\n";
        }
        err_ << Counted(rows_.size(), "fit", "fits") << ": " << rows_.size() - failed_ << " done, " << failed_
             << " not\n";
        return failed_ == 0 ? kDone : kRefused;
    }

    const BatchOptions& options_;
    std::ostream& err_;
    bool showProgress_, csv_;
    std::vector<BatchJob> jobs_;
    std::vector<BatchRow> rows_;
    std::vector<std::size_t> open_;
    std::ofstream out_;
    std::mutex mutex_;
    std::string refused_;
    std::size_t next_ = 0, passed_ = 0, ended_ = 0, failed_ = 0;
};

}  // namespace

int RunFitBatch(const BatchOptions& options, const CLI::App& fit, std::ostream& err, bool showProgress) {
    if (const std::string wrong = AgainstBatch(fit); !wrong.empty()) return Refuse(err, kWrongUsage, wrong);
    if (options.List == "-" || options.Out == "-")
        return Refuse(err, kWrongUsage, "--batch and --out are files: - is none, and ./- one of this name");
    if (const std::string same = FilesApart({{"--batch", options.List}}, {{"--out", options.Out}});
        !same.empty())
        return Refuse(err, kWrongUsage, same);
    try {
        return Batch(options, fit, err, showProgress).Run();
    } catch (const PlatformError& error) {
        return Refuse(err, kUnreadable, error.What);
    }
}

}  // namespace corvinade::cli

// `corvinade-cli transform`.
#include "cli/transform.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <ostream>
#include <set>
#include <utility>

#include "analysis/batch_file.h"
#include "cli/arguments.h"
#include "cli/headless.h"
#include "cli/job_files.h"
#include "cli/messages.h"
#include "cli/transform_cloud.h"
#include "cli/transformation_file.h"
#include "cli/written_json.h"
#include "core/file_source.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "core/window.h"
#include "import/cloud_points.h"
#include "import/cloud_table.h"
#include "import/table_heading.h"

namespace corvinade::cli {

namespace {

// The files that are named, those of a folder by their names.
std::vector<std::string> AllFiles(const std::vector<std::string>& named, BatchNotes& notes) {
    std::vector<std::string> files;
    for (const std::string& path : named) {
        try {
            if (!FolderIsThere(path)) {
                files.push_back(path);
                continue;
            }
            for (const std::string& name : FilesOfFolder(path)) files.push_back(JoinPath(path, name));
        } catch (const PlatformError& error) {
            notes.FilesLeft.push_back({path, error.What});
        }
    }
    return files;
}

void AnswerQuestions(const TransformOptions& options) {
    Headless.OnQuestion = [&options](const DialogShown& dialog) -> std::optional<std::string> {
        if (dialog.Kind != "message" || dialog.Buttons.size() != 2) return std::nullopt;
        return options.Questions.value_or(false) ? "Yes" : "No";
    };
}

// Tells how far the work is, on one line that is written over.
class ProgressLine {
public:
    ProgressLine(std::ostream& err, bool shown) : err_(err), shown_(shown) {}
    ~ProgressLine() {
        if (told_) err_ << "\r\x1b[K" << std::flush;
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void Tell(std::size_t file, std::size_t count, double share) {
        using std::chrono::steady_clock;
        const auto now = steady_clock::now();
        if (!shown_ || now - last_ < std::chrono::milliseconds(200)) return;
        last_ = now;
        told_ = true;
        err_ << "\rCalculating on File " << file << " of " << count << " Files, "
             << static_cast<int>(share * 100) << " %  " << std::flush;
    }

private:
    std::ostream& err_;
    bool shown_, told_ = false;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

// How the work on one file ended.
enum class Ended { Written, Unreadable, Unwritten };

class Batch {
public:
    Batch(const TransformOptions& options, const CloudOrder& order, BatchNotes& notes)
        : options_(options), order_(order), notes_(notes) {}

    template <class Tell>
    Ended Transform(const std::string& path, Tell tell) {
        const std::string outPath = OutPathOf(path);
        if (IsCloud(path)) return TransformOne(path, outPath, tell);
        Ended ended = Ended::Unreadable;
        LineCounts counts;
        const std::size_t dialogs = Headless.Dialogs.size();
        try {
            const BatchInput input = ReadBatchFile(path);
            ended = Ended::Unwritten;
            CheckPlace(path, outPath);
            if (outPath == "-") {
                PutBatchFile(
                    input, [this](std::string_view bytes) { WriteToStandardOutput(*order_.Out, bytes); },
                    counts);
                WriteToStandardOutput(*order_.Out, "");
            } else {
                WriteBatchFile(
                    input, outPath,
                    [&tell](double share) {
                        tell(share);
                        return true;
                    },
                    counts);
            }
            Count(outPath);
            if (counts.WithoutNumbers > 0) notes_.WithoutNumbers.push_back({path, counts});
            return Ended::Written;
        } catch (const PlatformError& error) {
            // The one question that there is was answered by nobody.
            const bool asked = !options_.Questions && Headless.Dialogs.size() > dialogs &&
                               Headless.Dialogs.back().Buttons.size() == 2;
            notes_.FilesLeft.push_back(
                {path, error.What + (asked ? " (--decimal says which the files have)" : "")});
            return counts.Refused > 0 ? Ended::Unreadable : ended;
        }
    }

    // Reads a file as Transform does and writes nothing: what there is to note of it.
    void LookInto(const std::string& path) {
        try {
            if (IsCloud(path)) {
                // A pipe is read once, and looked into on the way.
                bool unwritten = false;
                if (path != "-" && !IsPipe(path))
                    TransformCloud(
                        order_, path, "", nullptr, [] { return true; }, unwritten);
                return;
            }
            const BatchInput input = ReadBatchFile(path);
            LineCounts counts;
            LookIntoBatchFile(input, counts);
            if (counts.WithoutNumbers > 0) notes_.WithoutNumbers.push_back({path, counts});
        } catch (const PlatformError& error) {
            notes_.FilesLeft.push_back({path, error.What});
        }
    }

    // Does it keep its form?
    bool IsCloud(const std::string& path) const {
        return options_.KeepsForm() || path == "-" || IsPipe(path) || KindOfFile(path) != CloudKind::Text ||
               TableColumns(path);
    }

    const std::vector<std::string>& Written() const { return inOrder_; }

private:
    // The columns of text that the reader of plain points would take otherwise than it is meant.
    const std::optional<std::string>& TableColumns(const std::string& path) const {
        const auto [place, isNew] = tables_.try_emplace(path);
        try {
            if (isNew) place->second = ColumnsOfTableAlone(path, order_.Wish);
        } catch (const PlatformError&) {  // whoever reads it says why
            place->second.reset();
        }
        return place->second;
    }

    // What of the form of the result the user may have taken for something else.
    void NoteForm(const std::string& path, const std::string& outPath) const {
        const CloudKind kind = KindOfFile(path), named = CloudKindOf("", outPath);
        if (named != CloudKind::Text && named != kind && (IsCarrier(named) || IsCarrier(kind)) &&
            path != "-" && !IsPipe(path))
            AddNote(NoteCode::FormKept,
                    "It is " + std::string(CloudKindInWords(kind)) + ", and so is \"" + outPath +
                        "\", though its name says otherwise",
                    path);
        const auto found = tables_.find(path);
        if (found != tables_.end() && found->second)
            AddNote(NoteCode::FormKept,
                    "It is no plain list of points, but a table of " + *found->second +
                        ": it comes out in this form",
                    path);
    }

    std::string OutPathOf(const std::string& path) const {
        return options_.Out.empty() ? JoinPath(options_.To, BatchOutName(NameOfFile(path))) : options_.Out;
    }

    void CheckPlace(const std::string& path, const std::string& outPath) const {
        // Two files of one name, from two folders, do not replace each other's result.
        if (written_.count(outPath) != 0)
            throw PlatformError{"\"" + path + "\": \"" + outPath + "\" holds another file's points by now"};
        if (!options_.Overwrite && outPath != "-" && FileIsThere(outPath))
            throw PlatformError{"\"" + path + "\": \"" + outPath + "\" exists; --overwrite replaces it"};
    }

    void Count(const std::string& outPath) {
        written_.insert(outPath);
        inOrder_.push_back(outPath);
        ++notes_.Done;
    }

    template <class Tell>
    Ended TransformOne(const std::string& path, const std::string& outPath, Tell tell) {
        bool unwritten = true;
        try {
            CheckPlace(path, outPath);
            unwritten = false;
            const auto mayKeep = [this] { return !options_.Strict || !HasWarnings(); };
            if (!TransformCloud(order_, path, outPath, tell, mayKeep, unwritten))
                throw PlatformError{"\"" + path + "\": a warning came up, and --strict lets none pass"};
            NoteForm(path, outPath);
            Count(outPath);
            return Ended::Written;
        } catch (const PlatformError& error) {
            notes_.FilesLeft.push_back({path, error.What});
            return unwritten ? Ended::Unwritten : Ended::Unreadable;
        }
    }

    const TransformOptions& options_;
    const CloudOrder& order_;
    BatchNotes& notes_;
    std::set<std::string> written_;
    std::vector<std::string> inOrder_;
    mutable std::map<std::string, std::optional<std::string>> tables_;  // by path, as far as looked into
};

// Tells what was found in the files.
void TellFiles(BatchNotes notes, std::ostream& err) {
    // The delimiter of before is the one that the user has named, or the blank.
    std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::OldDelimiter; });
    WriteMessages(err);
    WriteNotes(err);
    BatchNotes left;
    left.FilesLeft = std::move(notes.FilesLeft);
    notes.FilesLeft.clear();
    for (const std::string& line : NotesAsLines(left, 0)) err << line << "\n";
    if (Telling.Quiet) return;
    for (const std::string& line : NotesAsLines(notes, 0)) err << "warning: " << line << "\n";
}

// For --strict: is there a warning in any of the files? What has been noted of them is noted again when they
// are transformed.
bool AnyWarning(const TransformOptions& options, const CloudOrder& order,
                const std::vector<std::string>& files, std::ostream& err) {
    const std::vector<Note> before = Notes.List;
    BatchNotes notes;
    Batch batch(options, order, notes);
    for (const std::string& path : files) {
        Run.Delimiter = options.Delimiter;
        batch.LookInto(path);
    }
    if (HasWarnings()) {
        const std::size_t told = Telling.Quiet ? 0 : notes.WithoutNumbers.size();
        TellFiles(std::move(notes), err);
        return EndsForWarnings(true, err, told);
    }
    Notes.List = before;
    Headless.Dialogs.clear();
    return false;
}

}  // namespace

CLI::App* AddTransform(CLI::App& app, TransformSwitches& s) {
    TransformOptions& o = s.Options;
    CLI::App* transform =
        app.add_subcommand("transform", "Transform point files and clouds by the result that a job holds");
    transform->add_option("JOB", o.Job, "Job file with a result; none with --with")->type_name("FILE.cvn");
    transform
        ->add_option("IN", o.In,
                     "Point files, clouds and other carriers (.ply, .pcd, .xyz, .pts,\n"
                     ".asc, .points, .tum, LandXML), and folders that stand for all\n"
                     "their files; - is standard input")
        ->type_name("FILE|FOLDER ...");
    transform
        ->add_option("--with", o.With,
                     "In place of JOB a job, the JSON of fit --json, or a text of a\n"
                     "4 by 4 matrix, all in mm; text keeps its form then")
        ->type_name("FILE");
    auto* to = transform
                   ->add_option("--to", o.To,
                                "Folder for the results: a.txt becomes a_out.txt there; it is\n"
                                "made where it is not there")
                   ->check([](const std::string& text) {
                       return std::string(text.empty() ? "the name of the folder is empty" : "");
                   })
                   ->type_name("DIR");
    transform->add_option("--out", o.Out, "File for the result of the one IN; - is standard output")
        ->check([](const std::string& text) {
            return std::string(text.empty() ? "the name of the file is empty" : "");
        })
        ->excludes(to)
        ->type_name("FILE|-");
    transform->add_flag("--overwrite", o.Overwrite, "Replace results that are there already");
    transform->add_flag("--inverse", o.Inverse,
                        "Take the inverse of the transformation; text keeps its form");
    transform
        ->add_option("--columns", s.Columns,
                     "What the columns of text are, as in name,x,y,z,-,nx,ny,nz: also\n"
                     "qx, qy, qz, qw, and - for one to keep; text keeps its form")
        ->check([](const std::string& text) {
            std::string why;
            ColumnsFromText(text, why);
            return why;
        })
        ->type_name("NAME,...");
    transform
        ->add_option("--unit", s.Unit,
                     "Unit of the coordinates of IN; default: as the file says, else\n"
                     "millimetres with --with, and the unit of JOB; text keeps its form")
        ->check(UnitOfTable())
        ->type_name("mm|cm|m|km|in|ft");
    transform
        ->add_option("--encoding", s.Encoding,
                     "Encoding of text, which stays; default: as the file shows it;\n"
                     "text keeps its form")
        ->check(OneOf(TableEncodings()))
        ->type_name("utf-8|utf-16le|utf-16be|windows-1252");
    s.DigitsOption = transform
                         ->add_option("--digits", s.Digits,
                                      "Decimals of the new coordinates in text, 0 to 12; default: those of\n"
                                      "the file, and three of a millimetre, at least; text keeps its form")
                         ->check(Between(0, 12))
                         ->type_name("N");
    transform->add_flag("--unconverged", o.Unconverged, "Take a result that did not converge too");
    s.DelimiterOption = transform
                            ->add_option("--delimiter", o.Delimiter,
                                         "What stands between the fields of files that do not show it;\n"
                                         "default: space")
                            ->transform(NameOf(DelimiterNames()))
                            ->type_name("space|semicolon|colon|star|sharp|tab|comma|pipe");
    auto* yes = transform->add_flag("--yes,-y", s.Yes,
                                    "Answer questions with Yes; a file with the other decimal\n"
                                    "delimiter is then changed");
    transform->add_flag("--no,-n", s.No, "Answer questions with No; such a file is then left")->excludes(yes);
    transform->add_flag("--json", o.Json, "Tell as JSON what was written, left and noticed");
    AddStrict(*transform, o.Strict, "Options");
    AddDecimal(*transform, s.Decimal, "Options");
    return transform;
}

std::string TakeTransformSwitches(TransformSwitches& s) {
    TransformOptions& o = s.Options;
    o.Decimal = DecimalOf(s.Decimal);
    if (s.Yes || s.No) o.Questions = s.Yes;
    if (!o.With.empty() && !o.Job.empty()) {
        // What stands in front is no job then.
        o.In.insert(o.In.begin(), o.Job);
        o.Job.clear();
    }
    if (o.With.empty() && o.Job.empty()) return "JOB is required, or --with";
    if (o.In.empty()) return "IN is required";
    if (o.To.empty() && o.Out.empty()) return "--to is required, or --out";
    std::string why;
    if (!s.Columns.empty())
        o.Cloud.Columns = ColumnsFromText(s.Columns, why).value_or(std::vector<PointColumn>{});
    if (!s.Unit.empty()) o.Cloud.Unit = TableUnitByWord(s.Unit)->Name;
    if (TableEncoding encoding{}; TableEncodingByName(s.Encoding, encoding)) o.Cloud.Encoding = encoding;
    if (s.DigitsOption->count() > 0) o.Cloud.Digits = s.Digits;
    if (s.DelimiterOption->count() > 0) o.Cloud.Delimiter = o.Delimiter.front();
    o.Cloud.Decimal = o.Decimal;
    const auto inputs = std::count(o.In.begin(), o.In.end(), "-");
    if (inputs > 1 || (inputs > 0 && (o.With == "-" || o.Job == "-"))) return "standard input is one file";
    if (!o.Out.empty() && (o.In.size() != 1 || Directory_Exist(o.In[0]))) return "--out takes one file IN";
    if (o.Out.empty() && inputs > 0) return "the result of standard input has no name: give it with --out";
    if (o.Out == "-" && o.Json) return "--json and --out - both want standard output";
    return "";
}

namespace {

// Opens the job, or reads the transformation of --with. kDone, or the status with the reason on `err`.
int TakeTransformation(const TransformOptions& options, std::istream& in, std::ostream& err,
                       CloudOrder& order) {
    if (!options.With.empty()) {
        const int status =
            ReadTransformation({options.With, options.Questions, options.Unconverged}, in, err, order.Motion);
        if (status != kDone) return status;
    } else {
        JobFileFacts facts;
        const int status = OpenJob(options.Job, options.Questions, facts, err);
        if (status != kDone) return status;
        // A job that was never calculated has no choice of parameters yet.
        if (Job.ParamText[1].empty()) return Refuse(err, kRefused, "No Transformation calculated");
        if (!ResultIsFinite()) return Refuse(err, kRefused, kResultNotFinite);
        if (const int refused = RefuseUnconverged(err, options.Unconverged); refused != kDone) return refused;
        NoteResultOfJob(options.Job);
        order.UnitsPerMm = Units.LengthFactor;
        order.Wish.LeastDigits = Job.LengthDigits;
    }
    return kDone;
}

// Of a job, for what is not transformed as ever.
int TakeMotionOfJob(const TransformOptions& options, std::ostream& err, CloudOrder& order) {
    if (options.With.empty())
        if (const int status = TransformationOfJob(options.Job, err, order.Motion); status != kDone)
            return status;
    if (!options.Inverse) return kDone;
    const std::optional<CloudMotion> inverse = InverseOf(order.Motion);
    if (!inverse) return Refuse(err, kRefused, "the transformation has no inverse");
    order.Motion = *inverse;
    return kDone;
}

}  // namespace

int RunTransform(const TransformOptions& options, std::istream& in, std::ostream& out, std::ostream& err,
                 bool progress) {
    if (options.Decimal) Headless.Decimal = options.Decimal;
    ReadSettingsText(DefaultSettingsText(), "the built-in settings");
    CloudOrder order;
    order.Wish = options.Cloud;
    order.In = &in;
    order.Out = &out;
    if (const int status = TakeTransformation(options, in, err, order); status != kDone) return status;
    AnswerQuestions(options);
    BatchNotes notes;
    const std::vector<std::string> files = AllFiles(options.In, notes);
    Batch batch(options, order, notes);
    if (std::any_of(files.begin(), files.end(),
                    [&batch](const std::string& path) { return batch.IsCloud(path); }))
        if (const int status = TakeMotionOfJob(options, err, order); status != kDone) return status;
    if (options.Strict && AnyWarning(options, order, files, err)) return kUnreadable;
    if (!options.To.empty() && !Dispatch([&options] { CreateFolder(options.To); }))
        return Refuse(err, kRefused, Run.LastPlatformError);
    bool unreadable = !notes.FilesLeft.empty(), unwritten = false;
    {
        ProgressLine line(LiveStream(err), progress);
        for (std::size_t i = 0; i < files.size(); ++i) {
            // Each file for itself: the delimiter of one is no word about the next.
            Run.Delimiter = options.Delimiter;
            line.Tell(i + 1, files.size(), 0);
            const Ended ended =
                batch.Transform(files[i], [&](double share) { line.Tell(i + 1, files.size(), share); });
            unreadable = unreadable || ended == Ended::Unreadable;
            unwritten = unwritten || ended == Ended::Unwritten;
        }
    }
    const std::int64_t done = notes.Done;
    std::vector<FileLeft> left;
    for (const BatchNotes::Left& file : notes.FilesLeft) left.push_back({file.Path, file.Why});
    TellFiles(std::move(notes), err);
    err << done << " of " << files.size() << " files transformed\n";
    const int told =
        options.Json ? TellWritten("transform", options.Job + options.With, batch.Written(), out, err, left)
                     : kDone;
    if (unreadable) return kUnreadable;
    return unwritten ? kRefused : told;
}

}  // namespace corvinade::cli

// The forms that a fit hands its result on in.
#include "cli/fit_exports.h"

#include <algorithm>
#include <optional>
#include <ostream>

#include "analysis/export_forms.h"
#include "cli/headless.h"
#include "cli/messages.h"
#include "core/files.h"
#include "core/job.h"
#include "core/run.h"
#include "core/text.h"
#include "core/window.h"

namespace corvinade::cli {

namespace {

struct Wanted {
    const analysis::ExportForm* Form;  // null: there is none of this name
    std::string Path;
};

Wanted WantedBy(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return {nullptr, ""};
    return {analysis::FindExportForm(text.substr(0, equals)), text.substr(equals + 1)};
}

// As long as it lives, texts have a decimal point.
class PointInTexts {
public:
    explicit PointInTexts(bool wanted) {
        if (wanted) Headless.Decimal = '.';
    }
    ~PointInTexts() { Headless.Decimal = before_; }
    PointInTexts(const PointInTexts&) = delete;
    PointInTexts& operator=(const PointInTexts&) = delete;

private:
    std::optional<char> before_ = Headless.Decimal;
};

}  // namespace

std::string CheckFitExport(const std::string& text) {
    const Wanted wanted = WantedBy(text);
    if (wanted.Form != nullptr && !wanted.Path.empty()) return "";
    std::string names;
    for (const std::string& name : analysis::ExportFormNames()) names += (names.empty() ? "" : ", ") + name;
    return "\"" + Printable(text) + "\" is no FORM=FILE; the forms are " + names;
}

std::string ExportsAgainst(const FitOptions& options) {
    const auto count = std::count_if(options.Exports.begin(), options.Exports.end(),
                                     [](const std::string& text) { return WantedBy(text).Path == "-"; });
    if (count > 1) return "--export: standard output (-) takes one form; give the others a file";
    std::vector<std::string> takers;
    if (count > 0) takers.emplace_back("--export FORM=-");
    if (options.Save == "-") takers.emplace_back("--save -");
    if (options.Report == "-") takers.emplace_back("--report -");
    if (takers.empty()) return "";
    if (takers.size() > 1) return takers[0] + " and " + takers[1] + " both want standard output";
    if (options.Output != FitOutput::Table || options.Protocol)
        return takers[0] +
               " stands in the place of the table, so --json, --csv and --protocol do not go with it";
    return "";
}

std::vector<NamedFile> ExportFiles(const FitOptions& options) {
    std::vector<NamedFile> files;
    for (const std::string& text : options.Exports)
        if (const Wanted wanted = WantedBy(text); wanted.Path != "-")
            files.push_back({"--export", wanted.Path});
    return files;
}

bool TakesOutput(const FitOptions& options) {
    return options.Save == "-" || options.Report == "-" ||
           std::any_of(options.Exports.begin(), options.Exports.end(),
                       [](const std::string& text) { return WantedBy(text).Path == "-"; });
}

int MakeExports(const FitOptions& options, std::vector<FitExport>& exports, std::ostream& err) {
    if (options.Exports.empty()) return kDone;
    if (IsTrue(Job.Unconverged) && !options.Unconverged) {
        TellError(err,
                  "the result did not converge, and --export writes none of it; with --unconverged it does");
        return kDone;
    }
    const analysis::Placement placement = analysis::PlacementOfJob(options.Start);
    for (const std::string& text : options.Exports) {
        const Wanted wanted = WantedBy(text);
        if (wanted.Form == nullptr)
            return Refuse(err, kWrongUsage, "--export: there is no form \"" + text + "\"");
        if (const std::string why = WhyNotInForm(*wanted.Form, placement); !why.empty())
            return Refuse(err, kRefused, why);
        FitExport made{wanted.Path, ""};
        // As of export: the points alone go by --decimal.
        const PointInTexts point(wanted.Form->Form.Name != std::string("points"));
        if (!Dispatch([&] { made.Text = ExportText(*wanted.Form, placement); }))
            return Refuse(err, kRefused, Run.LastPlatformError);
        exports.push_back(std::move(made));
    }
    return kDone;
}

int WriteExports(const std::vector<FitExport>& exports, std::ostream& out, std::ostream& err) {
    for (const FitExport& made : exports) {
        if (made.Path == "-") {
            out << made.Text;
        } else if (!Dispatch([&made] { WriteFile(made.Path, made.Text); })) {
            Headless.Dialogs.clear();
            return Refuse(err, kRefused, Run.LastPlatformError);
        }
    }
    return kDone;
}

}  // namespace corvinade::cli

// `transform` of clouds and other carriers.
#include "cli/transform_cloud.h"

#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <utility>

#include "core/file_source.h"
#include "core/file_writer.h"
#include "core/files.h"
#include "core/platform.h"
#include "core/write_behind.h"

namespace corvinade::cli {

namespace {

ReadBytes ReaderOf(const CloudOrder& order, const std::string& path,
                   const std::function<void(double share)>& tell) {
    if (path == "-")
        return [&in = *order.In](char* to, std::size_t most) {
            in.read(to, static_cast<std::streamsize>(most));
            if (in.bad()) throw PlatformError{"Cannot read \"standard input\": the stream has broken off"};
            return static_cast<std::size_t>(in.gcount());
        };
    const auto file = std::make_shared<FileSource>(path);
    const double size = static_cast<double>(FileSize(path));
    return [file, size, &tell, done = 0.0](char* to, std::size_t most) mutable {
        const std::size_t count = file->Read(to, most);
        done += static_cast<double>(count);
        if (tell && size > 0) tell(done / size);
        return count;
    };
}

}  // namespace

void WriteToStandardOutput(std::ostream& out, std::string_view bytes) {
    if (bytes.empty() ? !out.flush() : !out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw PlatformError{"Cannot write to standard output"};
}

bool TransformCloud(const CloudOrder& order, const std::string& path, const std::string& outPath,
                    const std::function<void(double share)>& tell, const std::function<bool()>& mayKeep,
                    bool& unwritten) {
    CloudInput in(path, ReaderOf(order, path, tell));
    std::unique_ptr<FileBeside> file;
    const auto writing = [&unwritten](auto write) {
        unwritten = true;
        write();
        unwritten = false;
    };
    WriteBytes write;
    if (outPath == "-") {
        write = [&order](std::string_view bytes) { WriteToStandardOutput(*order.Out, bytes); };
    } else if (!outPath.empty()) {
        writing([&] { file = std::make_unique<FileBeside>(outPath); });
        write = [&file](std::string_view bytes) { file->Write(bytes); };
    }
    std::optional<WriteBehind> behind;
    WriteBytes handOn;
    if (write) {
        behind.emplace(std::move(write));
        handOn = [&](std::string_view bytes) { writing([&] { behind->Write(bytes); }); };
    }
    CloudOutput out(std::move(handOn));
    CloudTask task = {in, out, &order.Motion, {}, order.Wish, {}, order.UnitsPerMm};
    RunCloud(task);
    if (behind) writing([&] { behind->End(); });
    NoteCloud(task.Facts, path, true);
    if (!mayKeep()) return false;
    if (file) writing([&] { file->Keep(Keeping::Unflushed); });
    if (outPath == "-") writing([&] { WriteToStandardOutput(*order.Out, ""); });
    return true;
}

}  // namespace corvinade::cli

// Reading and writing of whole files.
#include "core/files.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/file_writer.h"
#include "core/held_streams.h"
#include "core/large_pages.h"
#include "core/notes.h"
#include "core/platform.h"
#include "core/system_files.h"

namespace corvinade::core {

namespace fs = std::filesystem;

namespace {

fs::path PathOf(const std::string& path) {
    return fs::path(std::u8string(path.begin(), path.end()));
}

[[noreturn]] void Fail(const std::string& what, const std::string& path, const std::string& why) {
    throw PlatformError{what + " \"" + path + "\": " + why};
}

void CheckFault(const char* operation, const std::string& what, const std::string& path) {
    if (!FileFaults.Refuse) return;
    const std::string why = FileFaults.Refuse(operation, path);
    if (!why.empty()) Fail(what, path, why);
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFilePointer = std::unique_ptr<std::FILE, FileCloser>;

const std::string kCannotRead = "Cannot read";
const std::string kCannotWrite = "Cannot write";

OpenFilePointer OpenForReading(const std::string& path) {
    std::error_code error;
    const auto status = fs::status(PathOf(path), error);
    if (status.type() == fs::file_type::none && error != std::errc::filename_too_long)
        Fail(kCannotRead, path, error.message());
    if (path.empty() || !fs::exists(status)) Fail(kCannotRead, path, "there is no such file");
    if (fs::is_directory(status)) Fail(kCannotRead, path, "it is a folder, not a file");
    if (!fs::is_regular_file(status)) Fail(kCannotRead, path, "it is no regular file");
    CheckFault("open", kCannotRead, path);
    OpenFilePointer file(OpenStream(PathOf(path), "rb"));
    if (!file) Fail(kCannotRead, path, std::strerror(errno));
    return file;
}

}  // namespace

bool File_Exist(const std::string& path) {
    if (HeldStream(path) != nullptr) return true;
    std::error_code error;
    return !path.empty() && fs::is_regular_file(PathOf(path), error);
}

bool Directory_Exist(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(PathOf(path), error);
}

std::size_t FileSize(const std::string& path) {
    if (const FileBytes* held = HeldStream(path)) return held->Size;
    std::error_code error;
    const std::uintmax_t size = fs::file_size(PathOf(path), error);
    return error ? 0 : size;
}

void CheckReadable(const std::string& path) {
    if (HeldStream(path) == nullptr) OpenForReading(path);
}

FileBytes ReadFile(const std::string& path) {
    const FileBytes* const held = HeldStream(path);
    const OpenFilePointer file = held == nullptr ? OpenForReading(path) : nullptr;
    std::error_code error;
    const std::uintmax_t size = held == nullptr ? fs::file_size(PathOf(path), error) : held->Size;
    if (error) Fail(kCannotRead, path, error.message());
    FileBytes bytes;
    try {
        bytes.Data.reset(new char[size + 1]);
    } catch (const std::bad_alloc&) {
        Fail(kCannotRead, path, "it does not fit into memory");
    }
    if (held != nullptr) {
        std::memcpy(bytes.Data.get(), held->Data.get(), size + 1);
        bytes.Size = size;
        return bytes;
    }
    PreferLargePages(bytes.Data.get(), size);
    CheckFault("read", kCannotRead, path);
    bytes.Size = std::fread(bytes.Data.get(), 1, size, file.get());
    if (std::ferror(file.get()) != 0) Fail(kCannotRead, path, std::strerror(errno));
    bytes.Data[bytes.Size] = '\0';
    return bytes;
}

namespace {

// A link is written through, so that it still points to its file afterwards, even where that is not there
// yet.
fs::path BehindLinks(const std::string& path) {
    constexpr int kMostLinks = 40;
    fs::path target = PathOf(path);
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        if (links == kMostLinks) Fail(kCannotWrite, path, "its links lead in a circle");
        const fs::path next = fs::read_symlink(target, error);
        if (error) Fail(kCannotWrite, path, error.message());
        target = target.parent_path() / next;
    }
    return target;
}

}  // namespace

void LetTooLargeFilesRefuse() {
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

FileBeside::FileBeside(const std::string& path, Readers readers)
    : path_(path), target_(BehindLinks(path)), readers_(readers) {
    if (HeldStream(path_) != nullptr) Fail(kCannotWrite, path_, "it is read from a stream, and no file");
    std::error_code error;
    old_ = fs::status(target_, error);
    if (old_.type() == fs::file_type::none) Fail(kCannotWrite, path_, error.message());
    if (fs::is_directory(old_)) Fail(kCannotWrite, path_, "it is a folder, not a file");
    if (fs::exists(old_) && !fs::is_regular_file(old_)) Fail(kCannotWrite, path_, "it is no regular file");
    // Renaming asks for no right to the file itself, so that a protected one has to be looked for.
    constexpr fs::perms kAnyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (fs::exists(old_) && (old_.permissions() & kAnyWrite) == fs::perms::none)
        Fail(kCannotWrite, path_, "it is write-protected");
    CheckFault("create", kCannotWrite, path_);
    // What is not whole yet is nobody else's: the rights of the old file come last.
    int wrong = 0;
    file_ = OpenBeside(target_, fs::exists(old_) || readers_ == Readers::Owner, beside_, wrong);
    if (file_ == nullptr) Fail(kCannotWrite, path_, std::strerror(wrong));
    // What comes in large pieces is handed on as it is.
    std::setvbuf(file_, nullptr, _IONBF, 0);
}

FileBeside::~FileBeside() {
    if (file_ == nullptr) return;
    std::error_code error;
    // While it is open it is locked, and nobody else's.
    if (!kept_) fs::remove(beside_, error);
    ForgetBeside(beside_);
    std::fclose(file_);
}

void FileBeside::Write(std::string_view bytes) {
    CheckFault("write", kCannotWrite, path_);
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
        Fail(kCannotWrite, path_, std::strerror(errno));
}

void FileBeside::Keep(Keeping keeping) {
    std::string lost;
    if (fs::exists(old_)) lost = TakeOverRights(file_, target_, readers_ == Readers::Owner);
    if (keeping == Keeping::Flushed) {
        CheckFault("flush", kCannotWrite, path_);
        if (!FlushToDisk(file_)) Fail(kCannotWrite, path_, std::strerror(errno));
    }
    CheckFault("rename", kCannotWrite, path_);
    std::error_code error;
    const std::uintmax_t names = fs::exists(old_) ? fs::hard_link_count(target_, error) : 1;
    fs::rename(beside_, target_, error);
    if (error) Fail(kCannotWrite, path_, error.message());
    kept_ = true;
    ForgetBeside(beside_);
    // Closed behind the renaming, for the lock; nothing of it waits to be written.
    if (std::fclose(std::exchange(file_, nullptr)) != 0) Fail(kCannotWrite, path_, std::strerror(errno));
    if (keeping == Keeping::Flushed && !FlushFolder(target_.parent_path()))
        Fail(kCannotWrite, path_, std::strerror(errno));
    if (names != static_cast<std::uintmax_t>(-1) && names > 1)
        lost =
            (names == 2 ? "its other name keeps" : "its other names keep") + std::string(" the old contents");
    if (!lost.empty()) AddNote(NoteCode::FileReplaced, "The file was replaced by a new one: " + lost, path_);
}

void WritePrivateFile(const std::string& path, std::string_view bytes) {
    FileBeside file(path, Readers::Owner);
    file.Write(bytes);
    file.Keep(Keeping::Flushed);
}

void WriteFile(const std::string& path, std::string_view bytes) {
    FileBeside file(path);
    file.Write(bytes);
    file.Keep(Keeping::Flushed);
}

bool WriteFileInParts(const std::string& path, const std::function<std::optional<std::string_view>()>& next) {
    FileBeside file(path);
    for (;;) {
        const std::optional<std::string_view> part = next();
        if (!part) return false;
        if (part->empty()) break;
        file.Write(*part);
    }
    file.Keep(Keeping::Flushed);
    return true;
}

void CreateFolder(const std::string& path) {
    CheckFault("folder", "Cannot create the folder", path);
    std::error_code error;
    fs::create_directories(PathOf(path), error);
    if (!Directory_Exist(path))
        Fail("Cannot create the folder", path, error ? error.message() : "a file of that name is in the way");
}

void RenameFile(const std::string& from, const std::string& to) {
    std::error_code error;
    CheckFault("rename", "Cannot rename", from);
    const fs::file_status there = fs::symlink_status(PathOf(to), error);
    if (there.type() == fs::file_type::none) Fail("Cannot rename", from, error.message());
    if (fs::exists(there)) Fail("Cannot rename", from, "\"" + to + "\" is there already");
    fs::rename(PathOf(from), PathOf(to), error);
    if (error) Fail("Cannot rename", from, error.message());
}

std::string Pfad(const std::string& path) {
    const std::size_t place =
        path.find_last_of(fs::path::preferred_separator == '/' ? std::string("/") : std::string("/\\"));
    return place == std::string::npos ? "" : path.substr(0, place);
}

std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(PathOf(path), error);
    if (error || path.empty()) return path;
    const std::u8string text = absolute.lexically_normal().u8string();
    return std::string(text.begin(), text.end());
}

std::string JoinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    const char separator = fs::path::preferred_separator == '/' ? '/' : '\\';
    return folder.back() == separator ? folder + name : folder + separator + name;
}

}  // namespace corvinade::core

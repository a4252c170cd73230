// Recovery copies: when they are written and removed, and how they come back.
#include "core/recovery.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ctime>
#include <exception>
#include <locale>
#include <sstream>
#include <string_view>
#include <utility>

#include "core/changes.h"
#include "core/controller.h"
#include "core/file_writer.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_block.h"
#include "core/job_commands.h"
#include "core/job_file.h"
#include "core/job_on_disk.h"
#include "core/job_writer.h"
#include "core/lock_file.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/system_files.h"

namespace corvinade::core {

namespace {

constexpr std::string_view kBegin = "recovery-", kCopyEnd = ".cvn", kLockEnd = ".lock";
constexpr std::string_view kMember = kRecoveryCopyOf;
constexpr int kMostPlaces = 1000;

std::string PlaceOf(int number, std::string_view end) {
    return JoinPath(SettingsFolder(), std::string(kBegin) + std::to_string(number) + std::string(end));
}

// The number in a file's name, 0 where it is no such name.
int NumberIn(std::string_view name, std::string_view end) {
    if (!name.starts_with(kBegin) || !name.ends_with(end) || name.size() <= kBegin.size() + end.size())
        return 0;
    const char* const last = name.data() + name.size() - end.size();
    int number = 0;
    const auto [stop, error] = std::from_chars(name.data() + kBegin.size(), last, number);
    return error == std::errc() && stop == last && number > 0 && number <= kMostPlaces ? number : 0;
}

std::string LockOf(const std::string& copy) {
    return copy.substr(0, copy.size() - kCopyEnd.size()) + std::string(kLockEnd);
}

// A path may hold bytes that are no text.
std::string Hex(std::string_view bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kDigits[byte / 16];
        hex += kDigits[byte % 16];
    }
    return hex;
}

std::string BytesOfHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        unsigned byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

// What a copy says of its job: the path, and what the file there was when it was read.
struct Origin {
    std::string Path;
    KnownBytes Known;
};

std::string TextOf(const Origin& origin) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "\"x" << Hex(origin.Path) << ' ' << origin.Known.There << ' ' << origin.Known.Length << ' '
         << origin.Known.Hash << '"';
    return text.str();
}

std::optional<Origin> OriginOf(const JobRecord& job) {
    for (const auto& [name, value] : job.OtherMembers) {
        if (name != kMember || value.size() < 4) continue;
        std::istringstream text(value.substr(2, value.size() - 3));
        text.imbue(std::locale::classic());
        Origin origin;
        std::string hex;
        if (text >> hex >> origin.Known.There >> origin.Known.Length >> origin.Known.Hash) {
            origin.Path = BytesOfHex(hex);
            return origin;
        }
    }
    return std::nullopt;
}

void ForgetOrigin(JobRecord& job) {
    std::erase_if(job.OtherMembers, [](const auto& member) { return member.first == kMember; });
}

// Has the file these bytes? It may have the end of a longer one behind them.
bool StandsIn(const std::string& path, std::string_view bytes) {
    try {
        return FileSize(path) >= bytes.size() && ReadFile(path).View().starts_with(bytes);
    } catch (const PlatformError&) {
        return false;
    }
}

// A look that is under way: what a save would write is hashed slice by slice, and where that is not what the
// copy holds, it is written to a new one. No event comes between its slices; one gives the look up.
struct Looking {
    double Began_s = 0;
    RunningHash Hash;
    std::optional<std::size_t> Found;  // the hash, once it is whole
    std::optional<FileBeside> File;
    std::optional<JobWriter> Writer;
};
std::optional<Looking> Under;

// While it lives, the job says whose copy it is.
struct Marked {
    Marked() { Job.OtherMembers.emplace_back(kMember, TextOf({Run.JobFilePath, KnownOf(Run.JobFilePath)})); }
    ~Marked() { Job.OtherMembers.pop_back(); }
    Marked(const Marked&) = delete;
    Marked& operator=(const Marked&) = delete;
};

void RemoveCopy() noexcept {
    if (!Recovery.HasCopy) return;
    Recovery.HasCopy = !RemoveOwnFile(Recovery.CopyPath);
    Recovery.Copied = 0;
}

// Each does the next slice of its part of a look; false when the part is done.
bool HashOn() {
    try {
        if (Under->Writer->Slice()) return true;
        Under->Found = Under->Hash.Value();
    } catch (const PlatformError&) {  // a save would refuse
    }
    Under->Writer.reset();
    return false;
}

bool WriteOn() {
    const Marked marked;
    if (!Under->Writer) {
        Under->File.emplace(Recovery.CopyPath, Readers::Owner);
        Under->Writer.emplace(Job, Main.ComboSaveView.Items,
                              [](std::string_view bytes) { Under->File->Write(bytes); });
    }
    if (Under->Writer->Slice()) return true;
    // A kill takes nothing that was written. Waiting for the disk would be felt with every copy.
    Under->File->Keep(Keeping::Unflushed);
    return false;
}

// What is hashed is known now. Is a copy to be written?
bool NeedsCopy(bool keep) {
    const std::optional<std::size_t> now = Under->Found;
    if (std::exchange(Recovery.StandsNow, false)) Recovery.OnDisk = now;
    Recovery.Changed = !now || now != Recovery.OnDisk;
    if (!Recovery.Changed) RemoveCopy();
    return Recovery.Changed && keep && now && Recovery.Lock >= 0 &&
           !(Recovery.HasCopy && Recovery.Copied == *now);
}

void EndLook() {
    Recovery.Looked_s = Under->Began_s;
    Under.reset();
}

// The next slice of a look, which begins with it where none is under way. False when it was the last.
bool LookOn(bool keep, double now_s) {
    if (!Under) {
        Recovery.Touched = false;
        if (!IsTrue(Run.JobDataValid)) {
            Recovery.Looked_s = now_s;
            Recovery.Changed = Recovery.StandsNow = false;
            Recovery.OnDisk.reset();
            RemoveCopy();
            return false;
        }
        Under.emplace().Began_s = now_s;
        Under->Writer.emplace(Job, Main.ComboSaveView.Items,
                              [](std::string_view bytes) { Under->Hash.Add(bytes); });
    }
    if (!Under->File && Under->Writer) {
        if (HashOn() || NeedsCopy(keep)) return true;
        EndLook();
        return false;
    }
    try {
        if (WriteOn()) return true;
        Recovery.HasCopy = true;
        Recovery.Copied = *Under->Found;
        Recovery.FaultTold = false;
        EndLook();
    } catch (const PlatformError& error) {
        EndLook();
        Recovery.Touched = true;  // it is tried again
        if (!std::exchange(Recovery.FaultTold, true))
            throw PlatformError{"The recovery copy of this job cannot be written: " + error.What};
    }
    return false;
}

// A whole look, at once.
void Look(bool keep) {
    Under.reset();
    while (LookOn(keep, Recovery.Looked_s)) {
    }
}

std::string TimeOf(const std::string& path) {
    FileStamp stamp;
    if (!StampOfFile(path, stamp)) return "";
    const auto seconds = static_cast<std::time_t>(stamp.Changed_ns / 1000000000);
    char text[32] = "";
    if (const std::tm* local = std::localtime(&seconds))
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", local);
    return text;
}

LeftBehind Described(const std::string& copy) {
    LeftBehind left{.Copy = copy, .JobPath = {}, .Time = TimeOf(copy), .Fault = {}};
    try {
        const FileBytes bytes = ReadFile(copy);
        JobFileContent content = ReadJobBytes(bytes.View(), copy);
        const auto origin = OriginOf(content.Job);
        if (!origin || !content.BlockFault.empty()) throw PlatformError{"it is no recovery copy"};
        left.JobPath = origin->Path;
        left.Start = content.Job.Start.Count();
        left.Target = content.Job.Target.Count();
        left.Pairs = content.Job.Pairs();
        ForgetOrigin(content.Job);
        left.Saved = StandsIn(origin->Path, JobBytes(content.Job, content.ViewNames));
    } catch (const PlatformError& error) {
        left.Fault = error.What;
    }
    return left;
}

// Holds the place of a program that does not run any more.
struct HeldPlace {
    explicit HeldPlace(const LeftBehind& left) : Path(LockOf(left.Copy)) {
        if (TakeLock(Path, true, Handle) != LockAnswer::Taken)
            throw PlatformError{"\"" + left.Copy + "\" is in use by another program."};
    }
    ~HeldPlace() { DropLockAndFile(Handle, Path); }
    HeldPlace(const HeldPlace&) = delete;
    HeldPlace& operator=(const HeldPlace&) = delete;
    std::string Path;
    int Handle = -1;
};

void Remove(const LeftBehind& left) {
    if (!RemoveOwnFile(left.Copy)) throw PlatformError{"Cannot remove \"" + left.Copy + "\"."};
    RemoveLeftBeside(left.Copy);
}

}  // namespace

void StartRecovery() {
    Under.reset();
    Recovery = RecoveryRecord{};
    Recovery.On = true;
    for (int number = 1; number <= kMostPlaces; ++number) {
        const std::string lock = PlaceOf(number, kLockEnd), copy = PlaceOf(number, kCopyEnd);
        int handle = -1;
        const LockAnswer answer = TakeLock(lock, true, handle);
        if (answer == LockAnswer::Held) continue;
        if (answer == LockAnswer::None) break;
        if (File_Exist(copy)) {  // left behind, and its lock file may stay for what it says
            DropLock(handle);
            continue;
        }
        Recovery.Lock = handle;
        Recovery.LockPath = lock;
        Recovery.CopyPath = copy;
        RemoveLeftBeside(copy);  // of a program that was killed in its first copy
        WriteLocked(handle, "");
        return;
    }
    throw PlatformError{"Recovery copies cannot be kept in the folder \"" + SettingsFolder() +
                        "\"; changes that are not saved are lost when the program is killed."};
}

void EndRecovery() noexcept {
    Under.reset();
    if (!Recovery.On) return;
    DropRecoveryCopy();
    DropLockAndFile(Recovery.Lock, Recovery.LockPath);
    Recovery = RecoveryRecord{};
}

void JobStandsOnDisk() {
    Recovery.StandsNow = Recovery.Touched = true;
    DropRecoveryCopy();  // a kill from now on must not leave a state of before
}

void JobTouched() {
    Under.reset();
    Recovery.Touched = true;
}

bool JobHasChanged() {
    Look(false);
    Recovery.Touched = true;  // the copy has not been looked at
    return Recovery.Changed;
}

bool TendRecoverySlice(double now_s) {
    if (!Recovery.On) return false;
    const bool due = Recovery.StandsNow || now_s - Recovery.Looked_s >= kBetweenLooks_s;
    if (!Under && !(Recovery.Touched && due)) return false;
    return LookOn(true, now_s);
}

void TendRecovery(double now_s) {
    if (!Recovery.On || (!Recovery.Touched && !Under)) return;
    const bool atOnce = Job.Start.Count() <= kPointsAtOnce && Job.Target.Count() <= kPointsAtOnce;
    if (!Recovery.StandsNow && now_s - Recovery.Looked_s < (atOnce ? kBetweenLooks_s : kInSeries_s)) return;
    while (LookOn(true, now_s)) {  // from where the slices have come to
    }
}

void KeepRecoveryCopy() {
    if (Recovery.On) Look(true);
}

void DropRecoveryCopy() noexcept {
    Under.reset();
    RemoveCopy();
}

std::vector<LeftBehind> LeftBehindCopies() {
    std::vector<int> numbers;
    for (const std::string& name : FilesOfFolder(SettingsFolder()))
        if (const int number = NumberIn(name, kCopyEnd); number > 0) numbers.push_back(number);
    std::ranges::sort(numbers);
    std::vector<LeftBehind> all;
    for (const int number : numbers) {
        const std::string copy = PlaceOf(number, kCopyEnd), lock = PlaceOf(number, kLockEnd);
        if (copy == Recovery.CopyPath) continue;
        int handle = -1;
        const LockAnswer answer = TakeLock(lock, false, handle);
        if (answer == LockAnswer::Held) continue;
        LeftBehind left = Described(copy);
        // A kill between the save of a job and the removal of its copy.
        if (left.Saved && left.Fault.empty() && RemoveOwnFile(copy)) {
            RemoveLeftBeside(copy);
            DropLockAndFile(handle, lock);
            continue;
        }
        DropLock(handle);
        all.push_back(std::move(left));
    }
    return all;
}

void RestoreCopy(const LeftBehind& left) {
    if (!MayGiveUpJob()) return;
    const HeldPlace held(left);
    const LeftBehind now = Described(left.Copy);
    if (!now.Fault.empty()) throw PlatformError{now.Fault};
    DropRecoveryCopy();  // of the job that was given up
    // Where opening fails behind the reading, the job is open all the same, and has to be that of its path.
    std::exception_ptr fault;
    try {
        OpenFile(left.Copy);
    } catch (...) {
        fault = std::current_exception();
    }
    const auto origin = OriginOf(Job);
    if (!IsTrue(Run.JobDataValid) || !origin) {
        if (fault) std::rethrow_exception(fault);
        return;
    }
    ForgetOrigin(Job);
    Run.JobFilePath = origin->Path;
    RememberKnown(origin->Path, origin->Known);
    Run.JobDirty = kTrue;
    Recovery.StandsNow = false;
    Recovery.OnDisk.reset();
    Changed(What::State);
    // The copy goes when there is another one.
    if (Recovery.On) {
        Recovery.FaultTold = false;
        KeepRecoveryCopy();
        if (Recovery.HasCopy) Remove(left);
    }
    if (fault) std::rethrow_exception(fault);
}

void DiscardCopy(const LeftBehind& left) {
    const HeldPlace held(left);
    Remove(left);
}

bool IsOpenElsewhere(const std::string& path) {
    if (!Recovery.On || path == kDefaultJobPath) return false;
    // Ours is told first: of two programs that open it at once, one sees the other at least.
    const std::string full = AbsolutePath(path);
    if (Recovery.Lock >= 0) WriteLocked(Recovery.Lock, full);
    for (const std::string& name : FilesOfFolder(SettingsFolder())) {
        const int number = NumberIn(name, kLockEnd);
        const std::string lock = PlaceOf(number, kLockEnd);
        if (number == 0 || lock == Recovery.LockPath) continue;
        int handle = -1;
        const LockAnswer answer = TakeLock(lock, false, handle);
        DropLock(handle);
        try {
            if (answer == LockAnswer::Held && ReadFile(lock).View() == full) return true;
        } catch (const PlatformError&) {  // it has ended by now
        }
    }
    return false;
}

}  // namespace corvinade::core

// Copies of unsaved jobs that outlive a program that is killed: one a running program, beside the settings,
// under a lock that the system drops with the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::core {

// Seconds between two looks at a job that events go on changing: the most of the work that a kill takes,
// with what a single event does.
inline constexpr double kBetweenLooks_s = 2;
// So many points of a set are looked at and copied at once before an event, if its time has come. With more
// that would be felt: they are looked at in slices between events, and only where a series of events has left
// no time for all slices, at once after so many seconds.
inline constexpr int kPointsAtOnce = 200000;
inline constexpr double kInSeries_s = 60;

struct RecoveryRecord {
    bool On = false;        // copies are kept, and "changed" is what a save would write other than before
    bool Changed = false;   // at the last look
    bool Touched = false;   // an event has run since then
    bool StandsNow = true;  // the job as it is at the next look is the one on the disk
    bool HasCopy = false, FaultTold = false;
    std::optional<std::size_t> OnDisk;  // hash of what a save would have written when the job stood there
    std::size_t Copied = 0;             // hash of what the copy holds
    double Looked_s = 0;
    int Lock = -1;
    std::string LockPath, CopyPath, Told;  // Told: the job's path as the lock file has it
};
inline RecoveryRecord Recovery;

// From now on copies are kept in the settings folder. Throws PlatformError where none can be kept there.
void StartRecovery();

// The clean end: copy and lock are gone. Does nothing without StartRecovery, and never throws.
void EndRecovery() noexcept;

// The job has been opened or saved: at the next look it is as it stands on the disk.
void JobStandsOnDisk();

// An event has run, so that the job may be another one.
void JobTouched();

// Would a save write anything else than what was opened or saved? Looks now. Always false without points.
bool JobHasChanged();

// Looks whether the job has changed, and brings the copy up to date: at once where the job has been opened or
// saved, else not before kBetweenLooks_s have gone since the last look, of many points kInSeries_s. To be
// called between events only.
//   now_s   of any clock that does not go back, s
// Throws PlatformError, once, where the copy cannot be written.
void TendRecovery(double now_s);

// The same in slices, however many points there are: each call does the next one, of some milliseconds, and
// says whether there is another. An event between two of them begins the look anew.
bool TendRecoverySlice(double now_s);

// The same without regard to the time.
void KeepRecoveryCopy();

// No copy is wanted of the job that is open: its changes are saved, or given up.
void DropRecoveryCopy() noexcept;

// --- What others have left --------------------------------------------------------------------------------

struct LeftBehind {
    std::string Copy;     // path of the copy
    std::string JobPath;  // of the job that it is a copy of
    std::string Time;     // when it was written, local time "2026-11-23 01:40:07"
    std::string Fault;    // why it cannot be read; "" when it can
    std::int32_t Start = 0, Target = 0, Pairs = 0;
    bool Saved = false;  // the job's file holds the same
};
// Copies of programs that do not run any more, the oldest place first. One that holds what its job's file
// holds is removed without a word.
std::vector<LeftBehind> LeftBehindCopies();

// Opens a copy as the unsaved job of its path. It is removed when a copy of this program holds the same.
// Throws PlatformError where another program has taken it, or it cannot be read; it stays then.
void RestoreCopy(const LeftBehind& left);

// Removes a copy. Throws PlatformError where another program has taken it, or it cannot be removed.
void DiscardCopy(const LeftBehind& left);

// Tells the others which job is open, and whether one of them has it open too.
bool IsOpenElsewhere(const std::string& path);

}  // namespace corvinade::core

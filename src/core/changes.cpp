// Keeps what handlers change and shows it at their end.
#include "core/changes.h"

#include <utility>

#include "core/run.h"

namespace corvinade::core {

namespace {

// The changes of one event, apart from those of a handler that yields to it.
class Event {
public:
    Event() {
        Changes.Pending = What::Nothing;
        Changes.Handling = true;
    }
    ~Event() {
        Changes.Pending = pending_;
        Changes.Handling = handling_;
    }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

private:
    What pending_ = Changes.Pending;
    bool handling_ = Changes.Handling;
};

}  // namespace

void Changed(What what) {
    if (!Changes.Handling) return RunEvent([what] { Changed(what); });
    Changes.Pending = Changes.Pending | what;
}

// Rows show what is there when they run, whatever has come in while others yielded. What a row changes itself
// is shown behind all rows.
void ShowChanges() {
    while (Changes.Pending != What::Nothing) {
        const What changed = std::exchange(Changes.Pending, What::Nothing);
        const std::uint64_t generation = Run.JobGeneration;
        for (const ChangeRow& row : Changes.Rows) {
            if (!Share(row.Of, changed)) continue;
            if (!row.OfTheSameJob || Run.JobGeneration == generation) row.Show(changed);
        }
    }
}

void ShowNow(What what) {
    for (const ChangeRow& row : Changes.Rows)
        if (Share(row.Of, what)) row.Show(what);
}

void RunHandler(const std::function<void()>& handler) {
    if (Changes.Handling) return handler();
    RunEvent(handler);
}

void RunEvent(const std::function<void()>& work) {
    const Event event;
    try {
        work();
    } catch (...) {
        try {
            ShowChanges();
        } catch (...) {  // the error that came first is the one that is told
        }
        throw;
    }
    ShowChanges();
}

}  // namespace corvinade::core

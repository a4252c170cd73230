// Bytes written by a thread of their own.
#include "core/write_behind.h"

#include <system_error>
#include <utility>

namespace corvinade::core {

WriteBehind::WriteBehind(std::function<void(std::string_view)> write) : write_(std::move(write)) {
    try {
        thread_ = std::thread([this] { WriteWaiting(); });
    } catch (const std::system_error&) {
        // No thread is to be had: Write does the work itself.
    }
}

WriteBehind::~WriteBehind() {
    Stop(true);
}

void WriteBehind::Write(std::string_view bytes) {
    if (!thread_.joinable()) return write_(bytes);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !waits_ || failure_; });
    if (failure_) std::rethrow_exception(failure_);
    waiting_.assign(bytes);
    waits_ = true;
    lock.unlock();
    changed_.notify_one();
}

void WriteBehind::End() {
    Stop(false);
    if (failure_) std::rethrow_exception(failure_);
}

void WriteBehind::Stop(bool drop) {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
        waits_ = waits_ && !drop;
    }
    changed_.notify_one();
    thread_.join();
}

void WriteBehind::WriteWaiting() {
    std::unique_lock lock(mutex_);
    while (!failure_) {
        changed_.wait(lock, [this] { return waits_ || ends_; });
        if (!waits_) return;
        std::swap(waiting_, written_);
        waits_ = false;
        lock.unlock();
        changed_.notify_one();
        std::exception_ptr failure;
        try {
            write_(written_);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        failure_ = failure;
    }
    changed_.notify_one();
}

}  // namespace corvinade::core

// Bytes written by a thread of their own while the next ones are made.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "core/rooms.h"

namespace corvinade::core {

// Hands pieces on to `write` in their order, one at a time, from a thread of its own. At most one piece waits
// while another is written, so that a slow disk holds the maker up and not the memory. What `write` throws
// comes out of the next Write, or of End, and nothing is written behind it. Where the system gives no thread,
// everything is written at once.
class WriteBehind {
public:
    explicit WriteBehind(std::function<void(std::string_view)> write);
    ~WriteBehind();  // without End: the piece that waits is dropped
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    void Write(std::string_view bytes);  // copies them
    void End();                          // once, the last of all: everything has been written when it returns

private:
    void WriteWaiting();
    void Stop(bool drop);

    std::function<void(std::string_view)> write_;
    std::string waiting_, written_;
    bool waits_ = false, ends_ = false;
    std::exception_ptr failure_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::thread thread_;
};

}  // namespace corvinade::core

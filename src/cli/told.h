// The end of a command that has been asked for --json or --quiet: what of it stands where then.
#pragma once

#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "cli/messages.h"
#include "core/rooms.h"

namespace corvinade::cli {

// Which file a text of an error is about, and which line of it; nothing where it names none.
struct ErrorPlace {
    std::optional<std::string> File;
    std::optional<int> Line;
};

// Looks for `"FILE", line N`, for one of the names that the command line has, and for what cannot be read or
// written, in this order.
ErrorPlace PlaceInText(const std::string& text, const std::vector<std::string>& named);

// Lets through to another stream what is written, and remembers whether anything was.
class WatchedOutput : public std::streambuf {
public:
    explicit WatchedOutput(std::ostream& out) : to_(out) {}
    bool Written() const { return written_; }

protected:
    int_type overflow(int_type c) override {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        written_ = true;
        return to_.put(traits_type::to_char_type(c)) ? c : traits_type::eof();
    }
    std::streamsize xsputn(const char* text, std::streamsize count) override {
        written_ = written_ || count > 0;
        return to_.write(text, count) ? count : 0;
    }
    int sync() override { return to_.flush() ? 0 : -1; }

private:
    std::ostream& to_;
    bool written_ = false;
};

// The error of a command that has ended with another status than 0, as one object on one line; `text` is all
// that it has said.
void WriteErrorJson(int status, const std::string& text, const std::vector<std::string>& named,
                    std::ostream& out);

// What a command with --json or --quiet has said, at its end: its notes on `err` unless it is to be quiet.
// With --json an error is an object on `out`, unless a result stands there already, for that is to stay one
// document; else what was said stands on `err`. Without an error what was said, of a quiet one nothing.
void TellAtEnd(int status, bool json, bool quiet, const std::string& said,
               const std::vector<std::string>& named, bool hasResult, std::ostream& out, std::ostream& err);

}  // namespace corvinade::cli

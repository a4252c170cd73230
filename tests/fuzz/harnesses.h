// Every reader of the program as a procedure that takes any bytes: one table, for the replay of the kept
// inputs and for tools/fuzz, which looks for new ones.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fuzz {

struct Harness {
    const char* Name;  // of its folder in tests/data/fuzz
    // What is wrong with what the reader has made of the bytes; "" where it has read or refused them as it
    // should. Refusals of the program's own are no fault, any other exception is left to the caller.
    std::string (*Read)(std::string_view bytes);
};

std::span<const Harness> Harnesses();

// Gives each input a program that has just begun, in a folder of its own that is removed at the end.
class Room {
public:
    Room();
    ~Room();
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    std::string Try(const Harness& harness, std::string_view bytes) const;

private:
    std::string folder_, before_;
};

}  // namespace fuzz

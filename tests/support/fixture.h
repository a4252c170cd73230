// What every test stands on: a new program for each test, a folder of its own, and short ways to say
// what a test says often.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/run.h"

using namespace corvinade;

// A new program with an empty folder of its own. A question that nobody queued an answer for fails the
// test, unless it says ExpectUnanswered().
class Program : public testing::Test {
protected:
    Program();
    ~Program() override;

    // Path of a file in the test's folder; with `content` the file is written.
    std::string PathOf(const std::string& name) const;
    std::string Write(const std::string& name, const std::string& content) const;
    void ExpectUnanswered() { expectUnanswered_ = true; }

    std::string folder_;
    static constexpr RunRecord& Run = ::Run;  // the base class has a procedure of that name

private:
    bool expectUnanswered_ = false;
};

// All message texts that have come up, oldest first.
std::vector<std::string> Messages();
std::string LastMessage();

// What an error of the platform says that ends the work; "" when none does.
std::string ErrorOf(const std::function<void()>& work);

// The bytes of a file.
std::string Contents(const std::string& path);

// Text with every "\n" turned into CR LF.
std::string CrLf(std::string text);

// The block behind the fields of a job file.
#include "core/job_block.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <system_error>
#include <vector>

#include "core/job_file_bytes.h"
#include "core/job_tolerance.h"
#include "core/measurement_sigmas.h"

namespace corvinade::core {

namespace {

constexpr std::size_t kLengthSize = sizeof(std::uint64_t);
constexpr std::size_t kTextBegin = kJobBlockHead.size() + kLengthSize;
constexpr std::string_view kConverged = "\"converged\"", kOpen = "\"openParameters\"",
                           kCollapsed = "\"collapsedScale\"", kTool = "\"toolVector_mm\"";

std::uint64_t LengthAt(std::string_view bytes, std::size_t place) {
    std::uint64_t length = 0;
    std::memcpy(&length, bytes.data() + place, sizeof length);
    return length;
}

// A member of the object: its name in quotation marks and its value, both as they stand in the text.
struct Member {
    std::string_view Name, Value;
    std::size_t ValueAt = 0;
};

constexpr bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// A strict walk over JSON text that knows where values begin and end, and nothing of what they say.
class JsonWalk {
public:
    explicit JsonWalk(std::string_view text) : text_(text) {}

    std::string_view Wrong;  // "" as long as all was well
    std::size_t At = 0;      // where the walk stands, and where it is wrong

    // The members of the object that the text is; nothing but blanks stands around it.
    std::vector<Member> Members() {
        std::vector<Member> members;
        Blanks();
        Want('{');
        for (Blanks(); Wrong.empty() && !Is('}'); Blanks()) {
            if (!members.empty()) {
                Want(',');
                Blanks();
            }
            Member member;
            member.Name = Span([this] { Text(); });
            Blanks();
            Want(':');
            Blanks();
            member.ValueAt = At;
            member.Value = Span([this] { Value(1); });
            members.push_back(member);
        }
        Want('}');
        Blanks();
        if (Wrong.empty() && At < text_.size()) Refuse("more stands behind the object");
        return members;
    }

private:
    static constexpr int kDeepest = 64;

    char Here() const { return At < text_.size() ? text_[At] : '\0'; }
    bool Is(char c) const { return At < text_.size() && text_[At] == c; }
    bool IsDigit() const { return Here() >= '0' && Here() <= '9'; }
    void Refuse(std::string_view what) {
        if (Wrong.empty()) Wrong = what;
    }
    void Blanks() {
        while (Wrong.empty() && At < text_.size() && IsBlank(text_[At])) ++At;
    }
    void Want(char c) {
        if (!Wrong.empty()) return;
        if (!Is(c)) return Refuse("this is no JSON object");
        ++At;
    }
    template <class Step>
    std::string_view Span(Step step) {
        const std::size_t begin = At;
        if (Wrong.empty()) step();
        return text_.substr(begin, At - begin);
    }
    void Word(std::string_view word) {
        if (text_.substr(At, word.size()) != word) return Refuse("this is no JSON value");
        At += word.size();
    }
    void Digits() {
        if (!IsDigit()) return Refuse("a digit is missing");
        while (IsDigit()) ++At;
    }
    void Number() {
        if (Is('-')) ++At;
        const bool zero = Is('0');
        const std::size_t begin = At;
        Digits();
        if (zero && At > begin + 1) return Refuse("a number does not begin with 0");
        if (Wrong.empty() && Is('.')) {
            ++At;
            Digits();
        }
        if (!Wrong.empty() || (!Is('e') && !Is('E'))) return;
        ++At;
        if (Is('+') || Is('-')) ++At;
        Digits();
    }
    void Escape() {
        ++At;
        if (Is('u')) {
            for (int digit = 0; digit < 4; ++digit) {
                ++At;
                const bool hex =
                    IsDigit() || (Here() >= 'a' && Here() <= 'f') || (Here() >= 'A' && Here() <= 'F');
                if (!hex) return Refuse("this is no JSON text");
            }
        } else if (At >= text_.size() ||
                   std::string_view("\"\\/bfnrt").find(Here()) == std::string_view::npos) {
            return Refuse("this is no JSON text");
        }
        ++At;
    }
    void Text() {
        Want('"');
        while (Wrong.empty() && !Is('"')) {
            if (At >= text_.size() || static_cast<unsigned char>(Here()) < 0x20) {
                Refuse("a text does not end");
            } else if (Is('\\')) {
                Escape();
            } else {
                ++At;
            }
        }
        if (Wrong.empty()) ++At;
    }
    // What stands between a bracket and its partner, divided by commas.
    template <class Each>
    void List(char end, Each each) {
        ++At;
        bool first = true;
        for (Blanks(); Wrong.empty() && !Is(end); Blanks(), first = false) {
            if (!first) {
                Want(',');
                Blanks();
            }
            if (Wrong.empty()) each();
        }
        Want(end);
    }
    void Value(int depth) {
        if (depth > kDeepest) return Refuse("values stand too deep in each other");
        switch (Here()) {
            case '{':
                return List('}', [&] {
                    Text();
                    Blanks();
                    Want(':');
                    Blanks();
                    if (Wrong.empty()) Value(depth + 1);
                });
            case '[':
                return List(']', [&] { Value(depth + 1); });
            case '"':
                return Text();
            case 't':
                return Word("true");
            case 'f':
                return Word("false");
            case 'n':
                return Word("null");
            default:
                return Number();
        }
    }

    std::string_view text_;
};

// Takes a JSON value that is true or false; false for all others.
bool TakeTruth(std::string_view value, bool& truth) {
    truth = value == "true";
    return truth || value == "false";
}

// Takes a JSON value that is an array of parameter numbers, each once; false for all others.
bool TakeNumbers(std::string_view value, decltype(JobRecord::LeftOpen)& marks) {
    if (!value.starts_with('[')) return false;
    marks.fill(0);
    std::string bare;  // without blanks; the walk has seen that none divides a number
    std::copy_if(value.begin(), value.end(), std::back_inserter(bare), [](char c) { return !IsBlank(c); });
    if (bare == "[]") return true;
    for (std::size_t at = 1; at < bare.size();) {
        const std::size_t end = bare.find_first_of(",]", at);
        int parameter = 0;
        const char* const last = bare.data() + end;
        const auto [stop, wrong] = std::from_chars(bare.data() + at, last, parameter);
        if (wrong != std::errc() || stop != last || parameter < kTraX || parameter >= kParameterEnd)
            return false;
        std::int16_t& mark = marks[static_cast<std::size_t>(parameter)];
        if (mark != 0) return false;
        mark = 1;
        at = end + 1;
    }
    return true;
}

// Takes a JSON value that is an array of three numbers; false for all others.
bool TakeVector(std::string_view value, std::array<double, 3>& vector) {
    if (!value.starts_with('[')) return false;
    std::string bare;
    std::copy_if(value.begin(), value.end(), std::back_inserter(bare), [](char c) { return !IsBlank(c); });
    std::size_t at = 1;
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t end = bare.find(k < 2 ? ',' : ']', at);
        if (end == std::string::npos) return false;
        const char* const last = bare.data() + end;
        const auto [stop, wrong] = std::from_chars(bare.data() + at, last, vector[k]);
        if (wrong != std::errc() || stop != last || !std::isfinite(vector[k])) return false;
        at = end + 1;
    }
    return at == bare.size();
}

// Of a fit with the tool vector; "" of all others.
std::string ToolVectorOf(const JobRecord& job) {
    const std::string& choice = job.ParamText[kRvecX];
    const std::array<double, 3> vector = {job.Rvec_x, job.Rvec_y, job.Rvec_z};
    const auto none = [](double part) { return part == 0; };
    const auto number = [](double part) { return std::isfinite(part); };
    if (choice.empty() || choice == kNotUsed || std::all_of(vector.begin(), vector.end(), none) ||
        !std::all_of(vector.begin(), vector.end(), number))
        return "";
    std::string text;
    for (const double part : vector) {
        std::array<char, 40> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), part).ptr;
        text.append(text.empty() ? "[" : ",").append(buffer.data(), end);
    }
    return text + "]";
}

std::string NumbersOf(const decltype(JobRecord::LeftOpen)& marks) {
    std::string text;
    for (std::size_t k = kTraX; k < marks.size(); ++k)
        if (marks[k] != 0) text.append(text.empty() ? "[" : ",").append(std::to_string(k));
    return text.empty() ? "" : text + "]";
}

void PutLength(std::string& bytes, std::size_t length) {
    const std::uint64_t number = length;
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

}  // namespace

bool BeginsJobBlock(std::string_view rest) {
    const std::size_t seen = std::min(rest.size(), kJobBlockHead.size());
    return seen > 0 && rest.substr(0, seen) == kJobBlockHead.substr(0, seen);
}

std::string UnknownMembers(const JobRecord& job) {
    constexpr std::array kKnown = {kStartSigmas, kTargetSigmas,   kStartTable,
                                   kTargetTable, kRecoveryCopyOf, kTolerance};
    std::string names;
    for (const auto& [name, value] : job.OtherMembers)
        if (std::find(kKnown.begin(), kKnown.end(), name) == kKnown.end())
            names.append(names.empty() ? "" : ", ").append(name);
    return names;
}

JobBlockFault TakeJobBlock(std::string_view block, JobRecord& job) {
    if (block.size() < kTextBegin) return {"the file ends within the head of the block", block.size()};
    const std::uint64_t length = LengthAt(block, kJobBlockHead.size());
    const std::size_t left = block.size() - kTextBegin;
    if (left < kLengthSize || length != left - kLengthSize)
        return {"a text of " + std::to_string(length) + " bytes and its length again, but " +
                    std::to_string(left) + " bytes are left",
                kJobBlockHead.size()};
    const std::size_t end = kTextBegin + static_cast<std::size_t>(length);
    if (LengthAt(block, end) != length)
        return {"the length at the end is " + std::to_string(LengthAt(block, end)) + " and not " +
                    std::to_string(length),
                end};
    JsonWalk walk(block.substr(kTextBegin, static_cast<std::size_t>(length)));
    const std::vector<Member> members = walk.Members();
    if (!walk.Wrong.empty()) return {std::string(walk.Wrong), kTextBegin + walk.At};
    bool converged = true, collapsed = false;
    decltype(job.LeftOpen) leftOpen{};
    std::array<double, 3> tool = {job.Rvec_x, job.Rvec_y, job.Rvec_z};
    decltype(job.OtherMembers) others;
    for (auto member = members.begin(); member != members.end(); ++member) {
        const auto same = [member](const Member& other) { return other.Name == member->Name; };
        if (std::any_of(members.begin(), member, same))
            return {"the member " + std::string(member->Name) + " stands there twice",
                    kTextBegin + member->ValueAt};
        const auto wrong = [member](const char* what) {
            return JobBlockFault{"the member " + std::string(member->Name) + what,
                                 kTextBegin + member->ValueAt};
        };
        constexpr const char* kNoTruth = " is neither true nor false";
        if (member->Name == kConverged) {
            if (!TakeTruth(member->Value, converged)) return wrong(kNoTruth);
        } else if (member->Name == kCollapsed) {
            if (!TakeTruth(member->Value, collapsed)) return wrong(kNoTruth);
        } else if (member->Name == kOpen) {
            if (!TakeNumbers(member->Value, leftOpen)) return wrong(" is no list of parameters 1 to 17");
        } else if (member->Name == kTool) {
            if (!TakeVector(member->Value, tool)) return wrong(" is no list of three numbers");
        } else {
            const bool start = member->Name == kStartSigmas;
            if ((start || member->Name == kTargetSigmas) &&
                !AreSigmasOf(member->Value, start ? job.Start.Count() : job.Target.Count()))
                return wrong(
                    " is no list of three sigmas of 0 or more, and none of such lists for each point");
            if (member->Name == kTolerance && !(ToleranceFromText(member->Value) > 0))
                return wrong(" is no length above 0");
            others.emplace_back(member->Name, member->Value);
        }
    }
    job.Unconverged = ToFlag(!converged);
    job.LeftOpen = leftOpen;
    job.Collapsed = ToFlag(collapsed);
    job.Rvec_x = tool[0];
    job.Rvec_y = tool[1];
    job.Rvec_z = tool[2];
    job.OtherMembers = std::move(others);
    return {};
}

std::string JobBlock(const JobRecord& job) {
    std::string text;
    const auto add = [&text](std::string_view name, std::string_view value) {
        text.append(text.empty() ? "{" : ",").append(name).append(":").append(value);
    };
    if (IsTrue(job.Unconverged)) add(kConverged, "false");
    if (const std::string open = NumbersOf(job.LeftOpen); !open.empty()) add(kOpen, open);
    if (IsTrue(job.Collapsed)) add(kCollapsed, "true");
    if (const std::string tool = ToolVectorOf(job); !tool.empty()) add(kTool, tool);
    for (const auto& [name, value] : job.OtherMembers) add(name, value);
    if (text.empty()) return "";
    text += '}';
    std::string block(kJobBlockHead);
    PutLength(block, text.size());
    block += text;
    PutLength(block, text.size());
    return block;
}

}  // namespace corvinade::core

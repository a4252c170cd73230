// The robot targets of a module.
#include "import/abb_targets.h"

#include <algorithm>
#include <string_view>

#include "core/text.h"

namespace corvinade::import {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A line up to its remark, which an exclamation mark outside of a string begins.
std::string_view WithoutRemark(std::string_view line) {
    bool inString = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"') inString = !inString;
        if (line[at] == '!' && !inString) return line.substr(0, at);
    }
    return line;
}

// The place of a bracket that another one follows, with nothing but blanks between.
std::size_t PlaceOfTwoBrackets(std::string_view text) {
    for (std::size_t at = text.find('['); at != std::string_view::npos; at = text.find('[', at + 1)) {
        std::size_t next = at + 1;
        while (next < text.size() && IsBlank(text[next])) ++next;
        if (next < text.size() && text[next] == '[') return at;
    }
    return std::string_view::npos;
}

// A blank stays where it divides what is no bracket and no comma: "1 2" is no number and does not become one.
std::string WithoutBlanks(std::string_view text) {
    const auto divides = [](char c) { return c == '[' || c == ']' || c == ','; };
    std::string result;
    bool blank = false;
    for (const char c : Trimmed(text)) {
        if (IsBlank(c)) {
            blank = true;
            continue;
        }
        if (blank && !divides(c) && !divides(result.back())) result += ' ';
        blank = false;
        result += c;
    }
    return result;
}

bool IsStorage(std::string_view word) {
    return word == "LOCAL" || word == "TASK" || word == "CONST" || word == "PERS" || word == "VAR";
}

// What stands before ":=".
struct Declared {
    std::string Type, Name;  // in capital letters, and as it stands; no type for what is declared elsewhere
};

Declared DeclaredBy(std::string_view text) {
    Declared declared;
    std::string scratch;
    text = text.substr(0, text.find('{'));  // the size of an array
    while (!(text = Trimmed(text)).empty()) {
        const std::string word(CutField(text, '\0', scratch));
        if (IsStorage(UpperAscii(word))) continue;
        declared.Type = UpperAscii(declared.Name);
        declared.Name = word;
    }
    return declared;
}

struct Scan {
    AbbTargets Found{};
    bool Ended = false;  // the first block has
    // The statement up to here, without its remarks, and without strings but those in the place of numbers.
    std::string Text{};
    std::int64_t Row = 0;  // line of its first bracket; 0 = it has none yet
    int Brackets = 0, Parentheses = 0;
};

void Count(AbbLeft& left, std::int64_t row) {
    if (left.Count++ == 0) left.First = row;
}

// Is the end of a text within brackets or parentheses that it has opened?
bool IsWithin(std::string_view text) {
    const auto more = [&text](char open, char close) {
        return std::count(text.begin(), text.end(), open) > std::count(text.begin(), text.end(), close);
    };
    return more('(', ')') || more('[', ']');
}

// Looks at the text of a whole statement.
void Judge(Scan& s) {
    const std::string_view text = s.Text;
    const std::size_t place = PlaceOfTwoBrackets(text);
    if (place == std::string_view::npos) return;
    const std::string_view before = text.substr(0, place);
    AbbTarget target = {WithoutBlanks(text.substr(place)), "", s.Row};
    const std::size_t assigned = before.rfind(":=");
    Declared declared;
    bool isTarget = !IsWithin(before);
    if (assigned != std::string_view::npos) {
        declared = DeclaredBy(before.substr(0, assigned));
        isTarget = isTarget && Trimmed(before.substr(assigned + 2)).empty();
    } else {
        isTarget = isTarget && !Trimmed(before).ends_with(',');
    }
    if (!declared.Type.empty()) {
        isTarget = isTarget && declared.Type == "ROBTARGET";
        target.Name = declared.Name;
    } else {
        // Three coordinates come first. Joint values are six.
        const std::string first = target.Text.substr(0, target.Text.find(']'));
        isTarget = isTarget && std::count(first.begin(), first.end(), ',') == 2;
    }
    if (isTarget) {
        if (!s.Ended && target.Text.find("[[", 1) != std::string::npos) Count(s.Found.Seconds, s.Row);
        (s.Ended ? s.Found.Behind : s.Found.FirstBlock).push_back(std::move(target));
    } else if (!s.Ended) {
        Count(s.Found.NoTargets, s.Row);
    }
}

void EndStatement(Scan& s) {
    Judge(s);
    s.Text.clear();
    s.Row = 0;
    s.Brackets = s.Parentheses = 0;
}

// Does a statement go on in the next line? Some lines, such as that of a procedure's name, have no semicolon
// behind them, and in some programs it is missing.
bool GoesOn(const Scan& s) {
    if (s.Brackets > 0 || s.Parentheses > 0) return true;
    if (s.Row > 0) return false;
    std::string_view rest = Trimmed(s.Text);
    if (rest.ends_with(":=")) return true;
    std::string scratch;
    const std::string word = UpperAscii(CutField(rest, '\0', scratch));
    return IsStorage(word) || word == "ROBTARGET";
}

void TakeLine(Scan& s, std::string_view line, std::int64_t row) {
    bool inString = false;
    for (const char c : line) {
        if (c == '"') inString = !inString;
        // Only in the place of a number does it say what is wrong.
        if (inString && s.Brackets < 2) continue;
        if (c == ';' && !inString) {
            EndStatement(s);
            continue;
        }
        if (c == '[' && s.Row == 0) s.Row = row;
        if (c == '[') ++s.Brackets;
        if (c == ']') --s.Brackets;
        if (c == '(') ++s.Parentheses;
        if (c == ')') --s.Parentheses;
        s.Text += c;
    }
    s.Text += ' ';
    if (!GoesOn(s)) EndStatement(s);
}

}  // namespace

AbbTargets FindTargets(RobotProgram& program) {
    Scan s;
    while (NextLine(program)) {
        const std::string_view line = program.Line, code = WithoutRemark(line);
        const std::int64_t row = program.Lines.Row;
        if (UpperAscii(Trimmed(code)) == "ENDMODULE") {
            EndStatement(s);
            s.Ended = true;
        } else if (line.empty() && s.Text.empty() && !s.Ended && !s.Found.FirstBlock.empty()) {
            s.Ended = s.Found.EmptyLine = true;
        } else {
            TakeLine(s, code, row);
        }
        const bool remark = PlaceOfTwoBrackets(line.substr(code.size())) != std::string_view::npos;
        if (remark && !s.Ended) Count(s.Found.NoTargets, row);
    }
    EndStatement(s);
    return std::move(s.Found);
}

}  // namespace corvinade::import

// Programs with their poses in declarations, one a line: DECL E6POS XP1={X 1.5,Y 2,Z 3,A 4,B 5,C 6,S 2,T 35}
#include <array>

#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "import/point_file_checks.h"
#include "import/robot_files.h"
#include "import/robot_program.h"

namespace {

// A program has blanks between its words; some programs have sharps in their place. What stands behind the
// orientation ends it.
struct Declaration {
    std::string_view Begin;
    std::array<std::string_view, 6> Markers;  // X, Y, Z, A, B, C
    std::array<std::string_view, 2> Ends;     // the first one that is there
};
constexpr Declaration kWithBlanks = {"DECL E6POS", {"X ", "Y ", "Z ", "A ", "B ", "C "}, {", S ", ",S "}};
constexpr Declaration kWithSharps = {"DECL#E6POS", {"X#", "Y#", "Z#", "A#", "B#", "C#"}, {", S#", ",S#"}};

constexpr std::size_t kMarkerLength = 2;

void TakePose(const RobotProgram& program, const Declaration& form, PoseTable& poses) {
    std::array<std::size_t, 6> places{};
    for (std::size_t k = 0; k < 6; ++k) places[k] = PlaceOf(program, form.Markers[k]);
    std::size_t end = program.Line.find(form.Ends[0], places[5]);
    if (end == std::string_view::npos) end = PlaceOf(program, form.Ends[1], places[5]);

    std::array<double, 6> values{};
    for (std::size_t k = 0; k < 5; ++k) {
        // A value ends one place before the next marker: there the comma stands.
        const std::size_t comma = places[k + 1] - 1;
        values[k] = NumberBetween(program, places[k] + kMarkerLength, comma);
        if (program.Line[comma] != ',')
            FailAtLine(program, "\"" + std::string(form.Markers[k + 1]) +
                                    "\" stands without a comma before it in \"" +
                                    Printable(program.Line.substr(places[k], comma + 1 - places[k])) + "\"");
    }
    values[5] = NumberBetween(program, places[5] + kMarkerLength, end);
    poses.Take(program, {values[0], values[1], values[2]}, {values[3], values[4], values[5]});
}

}  // namespace

void EinlesenKUKAdatDatei() {
    RobotProgram program(Run.PathReader);
    std::int64_t n = 0;
    wieOftStringinFile(program.File, "{X", n);
    PoseTable poses(program, n, Units.AngleFactor);
    // A pose in the very last line is not taken: its place stays empty.
    while (NextLine(program) && !HasEnded(program))
        for (const Declaration& form : {kWithBlanks, kWithSharps})
            if (program.Line.starts_with(form.Begin)) TakePose(program, form, poses);
}

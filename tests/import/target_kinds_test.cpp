// The table of the kinds of target file.
#include <set>

#include "core/job.h"
#include "import/robot_files.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class TargetKinds : public Program {};

}  // namespace

TEST_F(TargetKinds, HaveNamesOfTheirOwn) {
    std::set<std::string> names, entries;
    for (const InputKind& kind : InputKinds()) {
        EXPECT_TRUE(names.insert(kind.Name).second) << kind.Name;
        EXPECT_TRUE(entries.insert(kind.Entry).second) << kind.Entry;
        EXPECT_EQ(TargetKindByName(kind.Name), kind.Kind);
        EXPECT_EQ(&InputKindOf(kind.Kind), &kind);
    }
}

TEST_F(TargetKinds, AreListedInTheHelpInTheirTurn) {
    EXPECT_EQ(TargetKindNames(),
              (std::vector<std::string>{"kuka", "fanuc", "abb", "quaternion", "xyzabc", "paraboloid"}));
}

TEST_F(TargetKinds, OfAJobAreOneAtATime) {
    Job.IsKuka = ::Run.IsFanuc = kTrue;
    for (const InputKind& kind : InputKinds()) {
        MakeJobOfKind(kind.Kind);
        for (const InputKind& other : InputKinds()) {
            if (other.IsKind == nullptr) continue;
            EXPECT_EQ(*other.IsKind, ToFlag(&other == &kind)) << other.Name;
        }
    }
}

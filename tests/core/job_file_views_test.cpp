// Saved views in the job file: their number and names, and records with fields of any content.
#include <random>

#include "core/form_main.h"
#include "core/job_bytes.h"
#include "core/job_file.h"
#include "core/platform.h"
#include "support/fixture.h"

using namespace corvinade;

using JobFileViews = Program;

namespace {

std::string ErrorOfViews(const std::string& file) {
    try {
        ReadJobBytes(file, "a.cvn");
    } catch (const PlatformError& error) {
        return error.What;
    }
    return "";
}

// A job without points up to the views, and what stands behind them.
std::string BeforeViews() {
    const std::string file = HandFile(HandJob{});
    return file.substr(0, file.size() - 6);
}
const std::string kBehindViews(4, '\0');

// A file with `count` views, named "1" and so on, whose records 0 to 50 are those of `put`.
template <class Put>
std::string FileWithViews(int count, Put put) {
    HandBytes views;
    views.I16(count).I32(count - 1);
    for (int i = 1; i <= count; ++i) views.Short(std::to_string(i));
    for (int i = 0; i < 51; ++i) put(views, i);
    return BeforeViews() + views.Text + kBehindViews;
}

void ExpectSameAfterReading(const std::string& file) {
    const JobFileContent content = ReadJobBytes(file, "a.cvn");
    ExpectBytes(JobBytes(content.Job, content.ViewNames), file);
}

// The indices of the four arrays of a view, as a file has them.
struct Shapes {
    ArrayShape Angles, Rows, Flags, Lines;
};

std::size_t SizeOf(const ArrayShape& shape) {
    std::size_t size = shape.empty() ? 0 : 1;
    for (const IndexRange& range : shape) size *= range.Count;
    return size;
}

// A view with every field at random, bit by bit.
class RandomView {
public:
    explicit RandomView(unsigned seed) : random_(seed) {}

    void Put(HandBytes& out, const Shapes& shapes) {
        Bytes(out, 6 + 12 + 4 + 2);
        Shape(out, shapes.Angles);
        Bytes(out, 8 * SizeOf(shapes.Angles));
        Bytes(out, 2);
        Shape(out, shapes.Rows);
        Bytes(out, 2 * SizeOf(shapes.Rows));
        Shape(out, shapes.Flags);
        for (std::size_t i = 0; i < SizeOf(shapes.Flags); ++i) {
            Bytes(out, 52);
            Text(out);
            Bytes(out, 16);
        }
        Bytes(out, 6 + 2 + 2 + 2 + 8 + 8 + 6);
        Text(out);
        Bytes(out, 2 + 4);
        Text(out);
        Bytes(out, 2 + 6 + 8 + 16 + 128 + 4 + 6 + 12 + 2);
        Shape(out, shapes.Lines);
        Bytes(out, 2 * SizeOf(shapes.Lines));
        Bytes(out, 6 + 4);
    }

private:
    void Bytes(HandBytes& out, std::size_t count) {
        while (count-- > 0) out.Text += static_cast<char>(random_());
    }
    static void Shape(HandBytes& out, const ArrayShape& shape) {
        out.I16(static_cast<int>(shape.size()));
        for (const IndexRange& range : shape) out.I32(range.Count).I32(range.Lowest);
    }
    void Text(HandBytes& out) {
        static const char* const kTexts[] = {"", "x", "\xE4",
                                             "Gr\xF6\xDF"
                                             "e 1",
                                             "a text that is longer"};
        out.Short(kTexts[random_() % 5]);
    }

    std::mt19937 random_;
};

// Minus what the program itself would have: every kind of index that a file could have.
Shapes RandomShapes(unsigned seed) {
    std::mt19937 random(seed);
    const auto shape = [&random] {
        ArrayShape result(random() % 4);
        for (IndexRange& range : result)
            range = {static_cast<std::uint32_t>(random() % 4), static_cast<std::int32_t>(random())};
        return result;
    };
    return {shape(), shape(), shape(), shape()};
}

}  // namespace

TEST_F(JobFileViews, AnEmptyListIsOneNumberAndNothingElse) {
    EXPECT_EQ(JobBytes(ReadJobBytes(HandFile(HandJob{}), "a.cvn").Job, {}),
              BeforeViews() + std::string(6, '\0'));
    // Whatever the number of views says, the list decides.
    JobRecord job = ReadJobBytes(HandFile(HandRobotExample()), "a.cvn").Job;
    ASSERT_EQ(job.nSavedViews, 2);
    HandJob none = HandRobotExample();
    none.ViewNames.clear();
    none.AutoRecalc = false;
    ExpectBytes(JobBytes(job, {}), HandFile(none));
}

TEST_F(JobFileViews, TheListHasOneEntryAViewAndRecord0IsUnused) {
    HandJob hand = HandExample();
    hand.ViewNames = {"eins", "zwei", "drei"};
    OpenFile(Write("a.cvn", HandFile(hand)));
    EXPECT_EQ(Main.ComboSaveView.Items, hand.ViewNames);
    EXPECT_EQ(Main.ComboSaveView.Index, -1);
    EXPECT_EQ(Job.nSavedViews, 3);
    for (int i = 0; i < 51; ++i) ExpectHandView(Job.SavedView[static_cast<std::size_t>(i)], 100 * i);
}

TEST_F(JobFileViews, FiftyViewsAreTheMost) {
    const auto put = [](HandBytes& out, int i) { PutHandView(out, i); };
    const JobFileContent content = ReadJobBytes(FileWithViews(50, put), "a.cvn");
    EXPECT_EQ(content.Job.nSavedViews, 50);
    EXPECT_EQ(content.ViewNames.size(), 50U);
    ExpectBytes(JobBytes(content.Job, content.ViewNames), FileWithViews(50, put));
    const std::string place = "\"a.cvn\", byte " + std::to_string(BeforeViews().size()) + ": SavedView: ";
    EXPECT_EQ(ErrorOfViews(FileWithViews(51, put)), place + "51 saved views, 50 is the most");
}

TEST_F(JobFileViews, AsManyNamesAsViewsAreNeeded) {
    const std::string place = "\"a.cvn\", byte " + std::to_string(BeforeViews().size()) + ": SavedView: ";
    for (const int number : {1, 3}) {
        HandBytes views;
        views.I16(number).I32(1).Short("a").Short("b");
        for (int i = 0; i < 51; ++i) PutHandView(views, i);
        EXPECT_EQ(ErrorOfViews(BeforeViews() + views.Text + kBehindViews),
                  place + "2 names stand against " + std::to_string(number) + " saved views");
    }
}

TEST_F(JobFileViews, ANumberBelow1StandsForNone) {
    for (const int number : {0, -1, -32768}) {
        const JobFileContent content =
            ReadJobBytes(BeforeViews() + HandBytes().I16(number).Text + kBehindViews, "a.cvn");
        EXPECT_EQ(content.Job.nSavedViews, 0);
        EXPECT_TRUE(content.ViewNames.empty());
    }
}

TEST_F(JobFileViews, ViewsOfTheJobBeforeAreGone) {
    OpenFile(Write("views.cvn", HandFile(HandRobotExample())));
    ASSERT_EQ(Job.SavedView[50].VectorMode, 5100);
    OpenFile(Write("none.cvn", HandFile(HandExample())));
    EXPECT_TRUE(Main.ComboSaveView.Items.empty());
    EXPECT_EQ(Job.nSavedViews, 0);
    EXPECT_EQ(Job.SavedView[50].VectorMode, 0);
}

TEST_F(JobFileViews, ArraysThatWereNeverSizedStayEmpty) {
    const HandViewSizes none = {false, 0, 0, 0};
    const std::string file = FileWithViews(2, [&](HandBytes& out, int i) { PutHandView(out, i, none); });
    const JobFileContent content = ReadJobBytes(file, "a.cvn");
    for (int i = 0; i < 51; ++i) ExpectHandView(content.Job.SavedView[static_cast<std::size_t>(i)], i, none);
    ExpectBytes(JobBytes(content.Job, content.ViewNames), file);
}

TEST_F(JobFileViews, TheProgramsOwnIndicesNeedNoWord) {
    const std::string file = FileWithViews(1, [](HandBytes& out, int i) {
        PutHandView(out, i, {true, i, i, i});
    });
    const JobFileContent content = ReadJobBytes(file, "a.cvn");
    for (const ScreenRecord& view : content.Job.SavedView) {
        EXPECT_TRUE(view.RotAnglesShape.empty());
        EXPECT_TRUE(view.FlagIndexShape.empty());
        EXPECT_TRUE(view.FlagsShape.empty());
        EXPECT_TRUE(view.LineTableShape.empty());
    }
    ExpectBytes(JobBytes(content.Job, content.ViewNames), file);
}

TEST_F(JobFileViews, OtherIndicesAreKept) {
    const Shapes shapes = {{{3, 0}, {4, 0}}, {{5, 0}}, {{2, 1}}, {{3, 0}, {2, -7}}};
    const std::string file = FileWithViews(
        1, [&](HandBytes& out, int i) { RandomView(static_cast<unsigned>(i)).Put(out, shapes); });
    const JobFileContent content = ReadJobBytes(file, "a.cvn");
    const ScreenRecord& view = content.Job.SavedView[1];
    EXPECT_EQ(view.RotAnglesShape, shapes.Angles);
    EXPECT_EQ(view.FlagIndexShape, shapes.Rows);
    EXPECT_EQ(view.FlagsShape, shapes.Flags);
    EXPECT_EQ(view.LineTableShape, shapes.Lines);
    EXPECT_EQ(view.RotAngles.size(), 12U);
    ExpectBytes(JobBytes(content.Job, content.ViewNames), file);
    // Two rows of angles with another number of columns are not the program's own either.
    const Shapes wide = {{{2, 1}, {5, 1}}, {}, {}, {}};
    const std::string other =
        FileWithViews(1, [&](HandBytes& out, int i) { RandomView(static_cast<unsigned>(i)).Put(out, wide); });
    EXPECT_EQ(ReadJobBytes(other, "a.cvn").Job.SavedView[0].RotAnglesShape, wide.Angles);
    ExpectSameAfterReading(other);
}

TEST_F(JobFileViews, RecordsWithRandomFieldsAreWrittenAsTheyCame) {
    for (unsigned round = 0; round < 20; ++round)
        ExpectSameAfterReading(FileWithViews(static_cast<int>(1 + round), [round](HandBytes& out, int i) {
            const unsigned seed = 1000 * round + static_cast<unsigned>(i);
            const Shapes own = {{{2, 1}, {3, 1}}, {{4, 1}}, {{3, 0}}, {{2, 1}, {5, 0}}};
            RandomView(seed).Put(out, round < 5 ? own : RandomShapes(seed));
        }));
}

TEST_F(JobFileViews, AnArraySizedAnewIsWrittenWithTheProgramsIndices) {
    const Shapes shapes = {{{3, 0}, {4, 0}}, {{5, 0}}, {}, {}};
    JobFileContent content =
        ReadJobBytes(FileWithViews(1, [&](HandBytes& out, int) { RandomView(1).Put(out, shapes); }), "a.cvn");
    ScreenRecord& view = content.Job.SavedView[1];
    view.FlagIndex.assign(7, 1);  // another size tells itself
    view.RotAngles = {1, 2, 3, 0, 0, 0};
    const JobRecord again = ReadJobBytes(JobBytes(content.Job, content.ViewNames), "a.cvn").Job;
    EXPECT_TRUE(again.SavedView[1].FlagIndexShape.empty());
    EXPECT_EQ(again.SavedView[1].FlagIndex.size(), 7U);
    EXPECT_TRUE(again.SavedView[1].RotAnglesShape.empty());
    EXPECT_EQ(again.SavedView[1].RotAngles, (std::vector<double>{1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(again.SavedView[2].FlagIndexShape, shapes.Rows);
}

TEST_F(JobFileViews, AnArrayThatFillsNoRowsIsNotWritten) {
    JobFileContent content = ReadJobBytes(HandFile(HandRobotExample()), "a.cvn");
    const auto error = [&content]() -> std::string {
        try {
            JobBytes(content.Job, content.ViewNames);
        } catch (const PlatformError& refused) {
            return refused.What;
        }
        return "";
    };
    content.Job.SavedView[3].LineTable.assign(5, 0);
    EXPECT_EQ(error(),
              "This job cannot be saved: SavedView, record 3, LineTable: 5 elements do not fill its "
              "rows and columns");
    content.Job.SavedView[3].LineTable.clear();
    content.Job.SavedView[4].RotAngles.assign(4, 0);
    EXPECT_EQ(error(),
              "This job cannot be saved: SavedView, record 4, RotAngles: 4 elements do not fill its "
              "rows and columns");
}

TEST_F(JobFileViews, ArraysThatTheFileCannotHoldAreRefused) {
    const std::string before = BeforeViews();
    HandBytes head;
    head.I16(1).I32(0).Short("a").Raw(std::string(24, '\0'));  // up to RotAngles of record 0
    const std::string place = "\"a.cvn\", byte " + std::to_string(before.size() + head.Text.size()) +
                              ": SavedView, record 0, RotAngles: ";
    const auto errorOf = [&](const HandBytes& shape) {
        return ErrorOfViews(before + head.Text + shape.Text + std::string(100, '\0'));
    };
    EXPECT_EQ(errorOf(HandBytes().I16(61)), place + "an array of 61 dimensions");
    EXPECT_EQ(errorOf(HandBytes().I16(65535)), place + "an array of 65535 dimensions");
    const std::string tooMany =
        place + "the elements of the array cannot stand in the 100 bytes that are left";
    EXPECT_EQ(errorOf(HandBytes().I16(1).I32(13).I32(0)), tooMany);
    EXPECT_EQ(errorOf(HandBytes().I16(1).I32(-1).I32(0)), tooMany);  // 4294967295 elements
    // Products that would pass the range of any number.
    EXPECT_EQ(errorOf(HandBytes().I16(2).I32(0x10000).I32(1).I32(0x10000).I32(1)), tooMany);
    HandBytes many;
    many.I16(60);
    for (int i = 0; i < 60; ++i) many.I32(-1).I32(0);
    EXPECT_EQ(errorOf(many), tooMany);
    // With one empty index there are no elements, whatever the others say.
    EXPECT_EQ(errorOf(HandBytes().I16(2).I32(-1).I32(0).I32(0).I32(0)).find(place), std::string::npos);
}

TEST_F(JobFileViews, FiftyViewsOfAThousandFlagsEachComeBack) {
    constexpr int kViews = 50, kFlags = 1000;
    const auto leftOf = [](int view, std::size_t flag) {
        return static_cast<std::int16_t>(20 * view + static_cast<int>(flag));
    };
    JobRecord job;
    std::vector<std::string> names;
    job.nSavedViews = kViews;
    for (int view = 1; view <= kViews; ++view) {
        names.push_back("view " + std::to_string(view));
        ScreenRecord& kept = job.SavedView[static_cast<std::size_t>(view)];
        kept.FlagCount = kFlags;
        kept.Flags.resize(kFlags + 1);
        kept.FlagIndex.resize(kFlags);
        for (std::size_t k = 1; k <= kFlags; ++k) {
            kept.Flags[k].Left = leftOf(view, k);
            kept.Flags[k].Name = "Arial";
            kept.FlagIndex[k - 1] = static_cast<std::int16_t>(k);
        }
    }
    const std::string file = JobBytes(job, names);
    // About a hundred bytes a flag and two for its row: nothing is kept twice.
    EXPECT_LT(file.size(), std::size_t{kViews} * kFlags * 150);
    const JobFileContent opened = ReadJobBytes(file, "a.cvn");
    EXPECT_EQ(opened.ViewNames, names);
    for (int view = 1; view <= kViews; ++view) {
        const ScreenRecord& kept = opened.Job.SavedView[static_cast<std::size_t>(view)];
        ASSERT_EQ(kept.Flags.size(), std::size_t{kFlags} + 1);
        for (std::size_t k = 1; k <= kFlags; ++k) {
            ASSERT_EQ(kept.Flags[k].Left, leftOf(view, k));
            ASSERT_EQ(kept.FlagIndex[k - 1], static_cast<int>(k));
        }
    }
    ExpectBytes(JobBytes(opened.Job, opened.ViewNames), file);
}

// The order of point names.
#include "import/name_order.h"

#include <algorithm>
#include <random>

#include "support/fixture.h"

using namespace corvinade;

namespace {

class NameOrderTest : public Program {
protected:
    static std::vector<std::string> Sorted(std::vector<std::string> names) {
        names.insert(names.begin(), "");
        std::vector<std::string> sorted;
        const NameOrder order = SortNames(names);
        for (std::size_t k = 1; k < names.size(); ++k)
            sorted.push_back(names[static_cast<std::size_t>(order.Place[k])]);
        return sorted;
    }
    // A key as the rule words it: digits alone are filled up to 50 characters.
    static std::string Key(const std::string& name) {
        const bool digits = !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
        return digits && name.size() < 50 ? std::string(50 - name.size(), '0') + name : name;
    }
};

TEST_F(NameOrderTest, NumbersAreOrderedByValueAndBeforeLetters) {
    EXPECT_EQ(Sorted({"a", "10", "2", "Z", "1"}), (std::vector<std::string>{"1", "2", "10", "Z", "a"}));
}

TEST_F(NameOrderTest, TextIsOrderedByCharacterCode) {
    EXPECT_EQ(Sorted({"P10", "P2", "p1", "Ä", "P1"}),
              (std::vector<std::string>{"P1", "P10", "P2", "p1", "Ä"}));
}

TEST_F(NameOrderTest, NamesOfDifferentZerosAreLevelNeighbours) {
    EXPECT_EQ(CompareNames("007", "7"), 0);
    const std::vector<std::string> sorted = Sorted({"8", "007", "6", "7"});
    EXPECT_EQ(sorted[0], "6");
    EXPECT_EQ(sorted[3], "8");
    const std::vector<std::string> names = {"", "007", "7"};
    EXPECT_FALSE(SortNames(names).Distinct);
}

TEST_F(NameOrderTest, LongNumbersAreComparedLikeText) {
    const std::string fifty(50, '1'), sixty(60, '1');
    EXPECT_LT(CompareNames("9", fifty), 0);
    EXPECT_LT(CompareNames("2", sixty), 0);
    EXPECT_LT(CompareNames(fifty, sixty), 0);
}

TEST_F(NameOrderTest, EveryComparisonIsThatOfTheFilledUpNames) {
    std::mt19937 random(7);
    const std::string letters = "0123459ab-.\xC3\xBC";
    std::vector<std::string> names = {"", std::string(50, '0'), std::string(51, '0'), std::string("a\0", 2),
                                      "a"};
    for (int i = 0; i < 400; ++i) {
        std::string name(random() % (i % 10 == 0 ? 60 : 12), '0');
        const std::size_t kinds = i % 2 == 0 ? 7 : letters.size();
        for (char& c : name) c = letters[random() % kinds];
        names.push_back(name);
        names.push_back("common prefix " + name);
    }
    const auto sign = [](int x) { return x < 0 ? -1 : x > 0 ? 1 : 0; };
    for (const std::string& a : names)
        for (const std::string& b : names)
            ASSERT_EQ(sign(CompareNames(a, b)), sign(Key(a).compare(Key(b)))) << a << " " << b;
    names.insert(names.begin(), "");
    const NameOrder order = SortNames(names);
    for (std::size_t k = 2; k < names.size(); ++k) {
        const std::string& before = names[static_cast<std::size_t>(order.Place[k - 1])];
        const std::string& here = names[static_cast<std::size_t>(order.Place[k])];
        ASSERT_LE(Key(before), Key(here));
        ASSERT_EQ(order.Rank[k] - order.Rank[k - 1], Key(before) == Key(here) ? 0 : 1);
    }
}

// The quicksort as it is told, on the filled-up names, recursive.
void PlainQuicksort(std::vector<std::string>& names, std::vector<std::int32_t>& place, int low, int high) {
    if (low >= high) return;
    const auto at = [](int k) { return static_cast<std::size_t>(k); };
    int i = low, j = high;
    const std::string pivot = names[at((low + high) / 2)];
    do {
        while (names[at(i)] < pivot) ++i;
        while (names[at(j)] > pivot) --j;
        if (i <= j) {
            std::swap(names[at(i)], names[at(j)]);
            std::swap(place[at(i)], place[at(j)]);
            ++i;
            --j;
        }
    } while (i <= j);
    PlainQuicksort(names, place, low, j);
    PlainQuicksort(names, place, i, high);
}

TEST_F(NameOrderTest, LevelNamesHaveTheOrderOfTheQuicksort) {
    std::mt19937 random(11);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::string> names = {""};
        for (unsigned i = 0; i < 2 + random() % 40; ++i)
            names.push_back(std::string(random() % 4, '0') + std::to_string(random() % 6));
        std::vector<std::string> keys = {""};
        for (std::size_t i = 1; i < names.size(); ++i) keys.push_back(Key(names[i]));
        std::vector<std::int32_t> place(names.size());
        for (std::size_t i = 0; i < place.size(); ++i) place[i] = static_cast<std::int32_t>(i);
        PlainQuicksort(keys, place, 1, static_cast<int>(names.size()) - 1);
        ASSERT_EQ(SortNames(names).Place, place);
    }
}

TEST_F(NameOrderTest, TwoSortedHalvesWithLevelNamesDoNotTakeForever) {
    // The middle element of two sorted halves is their largest or smallest one: the quicksort alone would
    // need n² comparisons.
    std::vector<std::string> first = {""}, second = {""};
    for (int i = 1; i <= 60000; ++i) {
        first.push_back(std::to_string(i));
        second.push_back(std::to_string(i));
    }
    first.push_back("060000");
    const NameOrder joined = JoinOrders(first, SortNames(first), second, SortNames(second));
    EXPECT_FALSE(joined.Distinct);
    for (std::size_t k = 2; k < joined.Rank.size(); ++k) ASSERT_LE(joined.Rank[k - 1], joined.Rank[k]);
}

TEST_F(NameOrderTest, ManyLevelNamesCanBeStoppedAtAnyCall) {
    std::vector<std::string> names = {""};
    for (int i = 0; i < 200000; ++i) names.push_back((i % 3 == 0 ? "00" : "") + std::to_string(i / 2));
    int calls = 0;
    const NameOrder whole = SortNames(names, [&calls] {
        ++calls;
        return true;
    });
    EXPECT_FALSE(whole.Distinct);
    EXPECT_EQ(whole.Place, SortNames(names).Place);
    const int last = calls;
    EXPECT_GT(last, 3);
    for (const int end : {1, last / 2, last - 1, last}) {
        calls = 0;
        const NameOrder none = SortNames(names, [&calls, end] { return ++calls < end; });
        EXPECT_TRUE(none.Place.empty()) << end;
        EXPECT_TRUE(none.Rank.empty()) << end;
    }
}

TEST_F(NameOrderTest, JoinedOrdersCountThePlacesOfTheSecondSetOn) {
    const std::vector<std::string> first = {"", "b", "a"}, second = {"", "c", "b"};
    const NameOrder joined = JoinOrders(first, SortNames(first), second, SortNames(second));
    EXPECT_EQ(joined.Place, (std::vector<std::int32_t>{0, 2, 1, 4, 3}));
    EXPECT_EQ(joined.Rank, (std::vector<std::int32_t>{0, 1, 2, 2, 3}));
}

TEST_F(NameOrderTest, NoNamesHaveAnOrderToo) {
    EXPECT_EQ(SortNames({}).Place.size(), 1u);
    const std::vector<std::string> none = {""};
    EXPECT_EQ(SortNames(none).Place.size(), 1u);
}

}  // namespace

#include "vault/snapshot/key_sorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <set>

namespace cratewell {
namespace {

struct Case
{
    size_t count;
    size_t longest;
    unsigned letters;
};

std::vector<std::string> randomKeys(const Case &parameters, std::mt19937 &random)
{
    std::vector<std::string> keys(parameters.count);
    for (std::string &key : keys) {
        key.resize(random() % (parameters.longest + 1));
        for (char &byte : key)
            byte = char(1 + random() % parameters.letters);
    }
    return keys;
}

std::vector<AssetIndex> sortedPlainly(const std::vector<std::string> &keys)
{
    std::vector<AssetIndex> indices(keys.size());
    std::iota(indices.begin(), indices.end(), AssetIndex{0});
    std::ranges::stable_sort(indices, {}, [&](AssetIndex index) { return keys[index]; });
    return indices;
}

class KeySorterProperty : public testing::TestWithParam<Case>
{
};

// Few and many entries are sorted in different ways; few letters make long ties, many make none.
TEST_P(KeySorterProperty, SortsLikeAStableSortOfTheKeys)
{
    std::mt19937 random(7);
    KeySorter sorter;
    for (int round = 0; round < 3; ++round) {
        const std::vector<std::string> keys = randomKeys(GetParam(), random);
        const size_t bytes =
            std::accumulate(keys.begin(), keys.end(), keys.size(),
                            [](size_t sum, const std::string &key) { return sum + key.size(); });
        sorter.begin(keys.size(), bytes);
        for (AssetIndex i = 0; i < keys.size(); ++i) {
            std::memcpy(sorter.keyEnd(), keys[i].c_str(), keys[i].size() + 1);
            sorter.addKey(sorter.keyEnd() + keys[i].size() + 1, i);
        }
        ASSERT_EQ(sorter.sorted(), sortedPlainly(keys)) << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, KeySorterProperty,
                         testing::Values(Case{0, 5, 3}, Case{1, 20, 3}, Case{47, 20, 2}, Case{300, 30, 2},
                                         Case{5000, 3, 2}, Case{5000, 40, 1}, Case{10000, 12, 255},
                                         Case{20000, 25, 2}));

TEST(KeySorter, SortsNumbers)
{
    std::mt19937_64 random(7);
    KeySorter sorter;
    std::vector<quint64> numbers(9000);
    std::ranges::generate(numbers, [&] { return random() >> random() % 64; });
    sorter.begin(numbers.size(), 0);
    for (AssetIndex i = 0; i < numbers.size(); ++i)
        sorter.addNumber(numbers[i], i);
    const std::vector<AssetIndex> sorted = sorter.sorted();
    EXPECT_TRUE(std::ranges::is_sorted(sorted, {},
                                       [&](AssetIndex index) { return std::pair(numbers[index], index); }));
    EXPECT_EQ(std::set<AssetIndex>(sorted.begin(), sorted.end()).size(), numbers.size());
}

} // namespace
} // namespace cratewell

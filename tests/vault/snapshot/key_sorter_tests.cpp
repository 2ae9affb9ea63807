#include "vault/snapshot/key_sorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>

namespace cratewell {
namespace {

// The indices of `keys` in a plain stable sort of them.
template<typename Key> std::vector<AssetIndex> sortedPlainly(const std::vector<Key> &keys)
{
    std::vector<AssetIndex> indices(keys.size());
    std::iota(indices.begin(), indices.end(), AssetIndex{0});
    std::ranges::stable_sort(indices, {}, [&](AssetIndex index) { return keys[index]; });
    return indices;
}

// Few and many entries are sorted in different ways; few letters make long ties, many make none.
TEST(KeySorter, SortsLikeAStableSortOfTheKeys)
{
    std::mt19937 random(7);
    KeySorter sorter;
    struct Case
    {
        size_t count;
        size_t longest;
        unsigned letters;
    };
    for (const auto &[count, longest, letters] :
         {Case{0, 5, 3}, Case{1, 20, 3}, Case{47, 20, 2}, Case{300, 30, 2}, Case{5000, 3, 2},
          Case{5000, 40, 1}, Case{10000, 12, 255}, Case{20000, 25, 2}}) {
        for (int round = 0; round < 3; ++round) {
            std::vector<std::string> keys(count);
            for (std::string &key : keys) {
                key.resize(random() % (longest + 1));
                std::ranges::generate(key, [&, kinds = letters] { return char(1 + random() % kinds); });
            }
            sorter.begin(count, count * (longest + 1));
            for (AssetIndex i = 0; i < count; ++i) {
                std::memcpy(sorter.keyEnd(), keys[i].c_str(), keys[i].size() + 1);
                sorter.addKey(sorter.keyEnd() + keys[i].size() + 1, i);
            }
            ASSERT_EQ(sorter.sorted(), sortedPlainly(keys)) << count << " keys, round " << round;
        }
    }
}

TEST(KeySorter, SortsNumbers)
{
    std::mt19937_64 random(7);
    KeySorter sorter;
    std::vector<quint64> numbers(9000);
    std::ranges::generate(numbers, [&] { return random() >> random() % 64; });
    sorter.begin(numbers.size(), 0);
    for (AssetIndex i = 0; i < numbers.size(); ++i)
        sorter.addNumber(numbers[i], i);
    EXPECT_EQ(sorter.sorted(), sortedPlainly(numbers));
}

} // namespace
} // namespace cratewell

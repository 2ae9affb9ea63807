#include "platform/location.h"
#include "vault/snapshot/key_sorter.h"
#include "vault/snapshot/name_collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>

namespace cratewell {
namespace {

int sign(int value)
{
    return (value > 0) - (value < 0);
}

// Short alphabets, so that names often share beginnings, numbers and ties.
QByteArray randomName(std::mt19937 &random)
{
    static const QStringList alphabets =
        QStringLiteral(
            "abAB|aA0129 |012|cChHlLdDzZ|sSzZ1| -_.()[]'!,+&@#~$%{}=;^`|aAáÁàåäã1\u0301|eEéÉèêëēė 2|"
            "oOóöőøoõuüűů|nñńlłgğiıİíïjĳ|cçčćsšşzžżdđ|x1\x01\x7f\t")
            .split(u'|');
    const QString &alphabet = alphabets[qsizetype(random() % size_t(alphabets.size()))];
    QString name(qsizetype(random() % 9), Qt::Uninitialized);
    for (QChar &letter : name) {
        const int dice = int(random() % 24);
        letter = dice == 0   ? QChar(char16_t(0x20 + random() % 0x5f))
                 : dice == 1 ? QChar(char16_t(0xa0 + random() % 0x100))
                             : alphabet[qsizetype(random()) % alphabet.size()];
    }
    return name.toUtf8();
}

// What the weights say must be what the collator says, for every pair of names and in every language.
TEST(NameCollation, AgreesWithTheCollator)
{
    for (const char *language :
         {"C", "en_US", "de_DE", "fr_CA", "cs_CZ", "sk_SK", "da_DK", "hu_HU", "hr_HR", "es_ES", "cy_GB",
          "et_EE", "lt_LT", "tr_TR", "ja_JP", "th_TH", "sv_SE", "vi_VN", "de_DE@collation=phonebook"}) {
        SCOPED_TRACE(language);
        const QLocale locale(QString::fromLatin1(language));
        QCollator reference(locale == QLocale::c() ? QLocale(QLocale::English, QLocale::UnitedStates)
                                                   : locale);
        reference.setNumericMode(true);
        reference.setCaseSensitivity(Qt::CaseInsensitive);
        const NameCollation collation(locale);
        std::mt19937 random(20250101);
        for (int i = 0; i < 60000; ++i) {
            const QByteArray a = randomName(random);
            const QByteArray b = randomName(random);
            const auto names = [&] { return (a + " and " + b).toPercentEncoding().toStdString(); };
            const int expected = sign(reference.compare(textFromBytes(a), textFromBytes(b)));
            ASSERT_EQ(sign(collation.compare(a, b)), expected) << names();
            std::array<uchar, 64> keyA;
            std::array<uchar, 64> keyB;
            if (collation.writeKey(a, keyA.data()) && collation.writeKey(b, keyB.data())) {
                const auto text = [](const auto &key) { return reinterpret_cast<const char *>(key.data()); };
                ASSERT_EQ(sign(std::strcmp(text(keyA), text(keyB))), expected) << names();
            }
        }
    }
    const NameCollation plain(QLocale::c());
    EXPECT_LT(plain.compare("take 99999999999999999998", "Take 99999999999999999999"), 0);
    std::array<uchar, 24> key;
    EXPECT_NE(plain.writeKey("\u00c9t\u00e9 1", key.data()), nullptr) << "accented names have keys, too";
}

// Few and many entries are sorted in different ways; few letters make long ties, many make none.
TEST(KeySorter, SortsLikeAStableSortOfTheKeys)
{
    std::mt19937 random(7);
    KeySorter sorter;
    const std::tuple<size_t, size_t, unsigned> cases[] = {
        {0, 5, 3}, {47, 20, 2}, {300, 30, 2}, {5000, 3, 2}, {5000, 40, 1}, {10000, 12, 255}, {20000, 25, 2}};
    for (const auto &[count, longest, letters] : cases) {
        std::vector<std::string> keys(count);
        sorter.begin(count, count * (longest + 1));
        for (AssetIndex i = 0; i < count; ++i) {
            keys[i].resize(random() % (longest + 1));
            for (char &letter : keys[i])
                letter = char(1 + random() % letters);
            std::memcpy(sorter.keyEnd(), keys[i].c_str(), keys[i].size() + 1);
            sorter.addKey(sorter.keyEnd() + keys[i].size() + 1, i);
        }
        std::vector<AssetIndex> expected(count);
        std::iota(expected.begin(), expected.end(), AssetIndex{0});
        std::ranges::stable_sort(expected, {}, [&](AssetIndex index) { return keys[index]; });
        ASSERT_EQ(sorter.sorted(), expected) << count << " keys of " << letters << " letters";
    }
}

} // namespace
} // namespace cratewell

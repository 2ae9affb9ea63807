#include "vault/snapshot/name_collation.h"

#include "platform/location.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

namespace cratewell {

namespace {

constexpr uchar firstPrintable = 0x20;
constexpr uchar lastPrintable = 0x7e;
constexpr char16_t firstAccented = 0xc0;

// Key bytes: the end of a key, the weights' end before the accents, and the accent of what has none. Weights
// begin behind the first two.
constexpr uchar keyEnd = 0;
constexpr uchar accentsFollow = 1;
constexpr uchar noAccent = 2;

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

QLocale collatingLocale(const QLocale &locale)
{
    // The C locale's collator knows no numeric mode.
    const QLocale collating = locale.collation();
    return collating.language() == QLocale::C ? QLocale(QLocale::English, QLocale::UnitedStates) : collating;
}

// A run of digits without its leading zeros; moves `at` behind the run.
QByteArrayView takeNumber(QByteArrayView name, qsizetype &at)
{
    qsizetype first = at;
    while (at < name.size() && isDigit(name[at]))
        ++at;
    while (first < at - 1 && name[first] == '0')
        ++first;
    return name.sliced(first, at - first);
}

} // namespace

NameCollation::NameCollation(const QLocale &locale) : m_collator(collatingLocale(locale))
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    if (const std::optional<Letters> letters = deriveLetters(m_collator)) {
        m_letters = *letters;
        m_digit = m_letters['0'].weight;
    }
}

std::optional<NameCollation::Letters> NameCollation::deriveLetters(const QCollator &collator)
{
    std::vector<uchar> characters(lastPrintable - firstPrintable + 1);
    std::iota(characters.begin(), characters.end(), firstPrintable);
    const auto compare = [&](uchar a, uchar b) {
        return collator.compare(QString(QLatin1Char(char(a))), QString(QLatin1Char(char(b))));
    };
    std::ranges::sort(characters, [&](uchar a, uchar b) { return compare(a, b) < 0; });
    Letters letters{};
    uchar weight = accentsFollow + 1;
    for (size_t i = 0; i < characters.size(); ++i) {
        if (i > 0 && compare(characters[i - 1], characters[i]) != 0)
            ++weight;
        letters[characters[i]] = {weight, noAccent};
    }
    const uchar digit = letters['0'].weight;
    for (uchar i = 0; i < 10; ++i) {
        if (letters[size_t('0' + i)].weight != digit + i)
            return std::nullopt;
        letters[size_t('0' + i)].weight = digit;
    }
    if (!agrees(letters, collator))
        return std::nullopt;
    deriveAccents(collator, letters);
    return letters;
}

// A letter of two characters sorts its pair elsewhere than the pair's characters say.
bool NameCollation::agrees(const Letters &letters, const QCollator &collator)
{
    QString previous;
    std::vector<char> alphabet(26);
    std::iota(alphabet.begin(), alphabet.end(), 'a');
    std::ranges::sort(alphabet, {}, [&](char letter) { return letters[size_t(letter)].weight; });
    for (const char first : alphabet) {
        for (const char second : alphabet) {
            const QString pair = QString(QLatin1Char(first)) + QLatin1Char(second);
            if (!previous.isEmpty() && collator.compare(previous, pair) >= 0)
                return false;
            previous = pair;
        }
    }
    return collator.compare(QStringLiteral("a9"), QStringLiteral("a10")) < 0;
}

// Takes in the accented letters that differ from their base letter by the accent alone.
void NameCollation::deriveAccents(const QCollator &collator, Letters &letters)
{
    const auto less = [&](const QString &a, const QString &b) { return collator.compare(a, b) < 0; };
    // No language makes a letter of q and an accent.
    const auto carried = [](QChar accent) { return QString(u'q') + accent; };
    const QString accented = carried(u'\u0301');
    if (!less(u'q' + accented, accented + u'q'))
        return; // accents count from the end of the name
    std::vector<QChar> accents;
    for (char16_t point = firstAccented; point < letters.size(); ++point) {
        const QString parts = QChar(point).decomposition();
        if (parts.size() != 2 || parts[0].unicode() > lastPrintable)
            continue;
        const QChar base = parts[0];
        const QChar letter(point);
        const bool sameWeight = less(QString(letter) + u'a', QString(base) + u'b') &&
                                less(QString(base) + u'a', QString(letter) + u'b');
        if (!sameWeight || !less(base, letter) || !less(QString(base), carried(parts[1])))
            continue;
        letters[point].weight = letters[base.unicode()].weight;
        accents.push_back(parts[1]);
    }
    std::ranges::sort(accents, [&](QChar a, QChar b) { return less(carried(a), carried(b)); });
    accents.erase(std::unique(accents.begin(), accents.end()), accents.end());
    for (char16_t point = firstAccented; point < letters.size(); ++point) {
        if (letters[point].weight == 0)
            continue;
        const auto found = std::ranges::find(accents, QChar(point).decomposition()[1]);
        letters[point].accent = uchar(noAccent + 1 + (found - accents.begin()));
    }
}

bool NameCollation::isPlain(QByteArrayView name) const
{
    return m_digit != 0 && std::ranges::all_of(name, [](char byte) {
               return uchar(byte) >= firstPrintable && uchar(byte) <= lastPrintable;
           });
}

// The character at `at`, which moves behind it; one without weight when the weights do not know it.
NameCollation::Letter NameCollation::takeLetter(QByteArrayView name, qsizetype &at) const
{
    const uchar byte = uchar(name[at++]);
    if (byte < 0x80)
        return m_letters[byte];
    const bool ofTwoBytes = (byte & 0xe0) == 0xc0 && at < name.size() && (uchar(name[at]) & 0xc0) == 0x80;
    const size_t point = size_t(byte & 0x1f) << 6 | (ofTwoBytes ? uchar(name[at]) & 0x3f : 0);
    if (!ofTwoBytes || point < firstAccented || point >= m_letters.size())
        return {};
    ++at;
    return m_letters[point];
}

int NameCollation::compare(QByteArrayView a, QByteArrayView b) const
{
    if (!isPlain(a) || !isPlain(b))
        return m_collator.compare(textFromBytes(a), textFromBytes(b));
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        const int difference = int(m_letters[size_t(a[i])].weight) - int(m_letters[size_t(b[j])].weight);
        if (difference != 0)
            return difference;
        if (!isDigit(a[i])) {
            ++i;
            ++j;
            continue;
        }
        const QByteArrayView left = takeNumber(a, i);
        const QByteArrayView right = takeNumber(b, j);
        if (left.size() != right.size())
            return left.size() < right.size() ? -1 : 1;
        if (const int byDigits = std::memcmp(left.data(), right.data(), size_t(left.size())))
            return byDigits;
    }
    return int(i < a.size()) - int(j < b.size());
}

uchar *NameCollation::writeKey(QByteArrayView name, uchar *key) const
{
    if (m_digit == 0)
        return nullptr;
    uchar mostAccent = noAccent;
    for (qsizetype i = 0; i < name.size();) {
        const qsizetype start = i;
        const Letter letter = takeLetter(name, i);
        if (letter.weight == 0)
            return nullptr;
        *key++ = letter.weight;
        mostAccent = std::max(mostAccent, letter.accent);
        if (letter.weight != m_digit)
            continue;
        i = start;
        const QByteArrayView number = takeNumber(name, i);
        *key++ = uchar(number.size());
        std::memcpy(key, number.data(), size_t(number.size()));
        key += number.size();
    }
    if (mostAccent != noAccent)
        key = writeAccents(name, key);
    *key++ = keyEnd;
    return key;
}

// One for each letter and each number: names that get this far in a comparison have the same weights.
uchar *NameCollation::writeAccents(QByteArrayView name, uchar *key) const
{
    *key++ = accentsFollow;
    for (qsizetype i = 0; i < name.size();) {
        if (isDigit(name[i])) {
            takeNumber(name, i);
            *key++ = noAccent;
        } else {
            *key++ = takeLetter(name, i).accent;
        }
    }
    return key;
}

QCollatorSortKey NameCollation::collatorKey(QByteArrayView name) const
{
    return m_collator.sortKey(textFromBytes(name));
}

} // namespace cratewell

#include "vault/internal/name_collation.h"

#include "platform/location.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

namespace cratewell {

namespace {

constexpr uchar firstPrintable = 0x20;
constexpr uchar lastPrintable = 0x7e;

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
    if (const std::optional<Weights> weights = deriveWeights(m_collator)) {
        m_weights = *weights;
        m_digit = m_weights['0'];
    }
}

std::optional<NameCollation::Weights> NameCollation::deriveWeights(const QCollator &collator)
{
    std::vector<uchar> characters(lastPrintable - firstPrintable + 1);
    std::iota(characters.begin(), characters.end(), firstPrintable);
    const auto compare = [&](uchar a, uchar b) {
        return collator.compare(QString(QLatin1Char(char(a))), QString(QLatin1Char(char(b))));
    };
    std::ranges::sort(characters, [&](uchar a, uchar b) { return compare(a, b) < 0; });
    Weights weights{};
    uchar weight = 1;
    for (size_t i = 0; i < characters.size(); ++i) {
        if (i > 0 && compare(characters[i - 1], characters[i]) != 0)
            ++weight;
        weights[characters[i]] = weight;
    }
    const uchar digit = weights['0'];
    for (uchar i = 0; i < 10; ++i) {
        if (weights[size_t('0' + i)] != digit + i)
            return std::nullopt;
        weights[size_t('0' + i)] = digit;
    }
    if (!agrees(weights, collator))
        return std::nullopt;
    return weights;
}

// A letter of two characters sorts its pair elsewhere than the pair's characters say.
bool NameCollation::agrees(const Weights &weights, const QCollator &collator)
{
    QString previous;
    std::vector<char> letters(26);
    std::iota(letters.begin(), letters.end(), 'a');
    std::ranges::sort(letters, {}, [&](char letter) { return weights[size_t(letter)]; });
    for (const char first : letters) {
        for (const char second : letters) {
            const QString pair = QString(QLatin1Char(first)) + QLatin1Char(second);
            if (!previous.isEmpty() && collator.compare(previous, pair) >= 0)
                return false;
            previous = pair;
        }
    }
    return collator.compare(QStringLiteral("a9"), QStringLiteral("a10")) < 0;
}

bool NameCollation::isPlain(QByteArrayView name) const
{
    return m_digit != 0 && std::ranges::all_of(name, [](char byte) {
               return uchar(byte) >= firstPrintable && uchar(byte) <= lastPrintable;
           });
}

int NameCollation::compare(QByteArrayView a, QByteArrayView b) const
{
    if (!isPlain(a) || !isPlain(b))
        return m_collator.compare(textFromBytes(a), textFromBytes(b));
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        const int difference = int(m_weights[size_t(a[i])]) - int(m_weights[size_t(b[j])]);
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
    for (qsizetype i = 0; i < name.size();) {
        const uchar byte = uchar(name[i]);
        const uchar weight = byte < m_weights.size() ? m_weights[byte] : 0;
        if (weight == 0)
            return nullptr;
        *key++ = weight;
        if (weight != m_digit) {
            ++i;
            continue;
        }
        const QByteArrayView number = takeNumber(name, i);
        *key++ = uchar(number.size());
        std::memcpy(key, number.data(), size_t(number.size()));
        key += number.size();
    }
    *key++ = 0;
    return key;
}

QCollatorSortKey NameCollation::collatorKey(QByteArrayView name) const
{
    return m_collator.sortKey(textFromBytes(name));
}

} // namespace cratewell

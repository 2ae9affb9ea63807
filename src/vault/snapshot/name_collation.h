#pragma once

#include <QByteArray>
#include <QCollator>

#include <array>
#include <optional>

namespace cratewell {

// The order a file manager gives names: case-insensitive, runs of digits by value, by the rules of the user's
// language. Names are file-system bytes. One object per thread: the collator inside must not be shared.
//
// Names of printable ASCII and of Latin letters with one accent are ordered by weights asked of the collator
// once, which is some thirty times faster than asking it for each pair. Letters that the language sorts as
// letters of their own are left to the collator, and all names where two ASCII characters make one letter.
class NameCollation
{
public:
    explicit NameCollation(const QLocale &locale = QLocale());

    int compare(QByteArrayView a, QByteArrayView b) const;

    // Longest key: a number gives two bytes beside its digits, in a name with accents each letter and each
    // number one more, and the end gives one.
    static constexpr qsizetype keySize(qsizetype nameSize) { return 3 * nameSize + 1; }
    // Writes a key that orders by its bytes, closed by 0, for a name that the weights can order. Returns the
    // place behind it, or null when this name needs the collator. `key` has room for keySize().
    uchar *writeKey(QByteArrayView name, uchar *key) const;
    QCollatorSortKey collatorKey(QByteArrayView name) const;

private:
    // How a character sorts: by weight, and where all weights of two names are the same, by accent.
    struct Letter
    {
        uchar weight = 0; // 0: not for the weights
        uchar accent = 0;
    };
    using Letters = std::array<Letter, 0x180>; // by code point, to the end of Latin Extended-A

    static std::optional<Letters> deriveLetters(const QCollator &collator);
    static void deriveAccents(const QCollator &collator, Letters &letters);
    static bool agrees(const Letters &letters, const QCollator &collator);
    bool isPlain(QByteArrayView name) const;
    Letter takeLetter(QByteArrayView name, qsizetype &at) const;
    uchar *writeAccents(QByteArrayView name, uchar *key) const;

    QCollator m_collator;
    Letters m_letters{};
    uchar m_digit = 0; // the weight of every number; 0 when there are no weights
};

} // namespace cratewell

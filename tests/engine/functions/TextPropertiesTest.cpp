#include "SqlFunctions.h"

#include "support/RandomText.h"

#include "platform/utils/Utf8.h"

#include <gtest/gtest.h>

#include <random>

using orvane::tests::SqlFunctions;

namespace {

/// The text functions work on UTF-8 where that is the same; here they are held against the definition on
/// UTF-16.
class TextProperties : public testing::Test {
protected:
    /// Bytes of well-formed characters of every length, and now and then of none.
    QByteArray randomBytes() {
        static const auto wellFormed = orvane::tests::pieces("a|b|ab|Z| |1|ж|Ж|ё|ß|İ|€|\u2028|\uFEFF|😀|😁");
        static const auto any = orvane::tests::pieces("a|Z|ж|€|😀|\xED\xA0\xBD|\xC3|\x80|\xF0\x9F\x98|"
                                                      "\xEF\xBF\xBE|\xC0\x80|\uFFFD");
        return QByteArray::fromStdString(
            orvane::tests::randomText(random_() % 4 != 0 ? wellFormed : any, random_, 7));
    }

    /// The result of a call on texts of any bytes.
    QString call(const QByteArray& sql, const std::vector<QByteArray>& texts) const {
        const QString value = functions_.run(QString::fromUtf8(sql), texts);
        return value == QLatin1String("null") ? QStringLiteral("NULL") : value.section(QLatin1Char(' '), 1);
    }

    SqlFunctions functions_;
    std::mt19937 random_{7};
};

/// As the database keeps it: U+FFFD for half a pair.
QString stored(QString text) {
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
        } else if (text.at(i).isSurrogate()) {
            text[i] = QChar(QChar::ReplacementCharacter);
        }
    }
    return text;
}

} // namespace

TEST_F(TextProperties, CutsAndSearchesEqualThoseOnUtf16) {
    for (int round = 0; round < 8000; ++round) {
        const QByteArray bytes = randomBytes();
        const QByteArray part =
            round % 3 == 0 ? randomBytes() : bytes.mid(static_cast<int>(random_() % 4), 2);
        const QString text = orvane::utf8::decode(bytes.toStdString());
        const QString partText = orvane::utf8::decode(part.toStdString());
        const int start = static_cast<int>(random_() % 10);
        const int count = static_cast<int>(random_() % 6) + 1;
        const QByteArray sqlEnd = ", " + QByteArray::number(start + 1) + ")";
        const std::string context = bytes.toHex().toStdString() + ' ' + part.toHex().toStdString() + ' ' +
                                    std::to_string(start) + ' ' + std::to_string(count);

        ASSERT_EQ(QString::number(text.size()), call("Select Len(?1)", {bytes})) << context;
        ASSERT_EQ(QString::number(text.isEmpty() ? 0 : text.at(0).unicode()), call("Select Asc(?1)", {bytes}))
            << context;
        const int found = start <= text.size() ? text.indexOf(partText, start) : -1;
        ASSERT_EQ(QString::number(found + 1), call("Select InStr(?1, ?2" + sqlEnd, {bytes, part})) << context;

        ASSERT_EQ(orvane::utf8::decode((bytes + part).toStdString()),
                  call("Select concat(?1, ?2)", {bytes, part}))
            << context;
        const QString mid = start < text.size() ? stored(text.mid(start, count)) : QStringLiteral("NULL");
        const QByteArray counted = ", " + QByteArray::number(count) + ")";
        ASSERT_EQ(stored(text.left(count)), call("Select \"Left\"(?1" + counted, {bytes})) << context;
        ASSERT_EQ(stored(text.right(count)), call("Select \"Right\"(?1" + counted, {bytes})) << context;
        ASSERT_EQ(mid, call("Select Mid(?1, " + QByteArray::number(start + 1) + counted, {bytes})) << context;
        ASSERT_EQ(text.toUpper(), call("Select UpCase(?1)", {bytes})) << context;
        ASSERT_EQ(text.toLower(), call("Select LoCase(?1)", {bytes})) << context;
    }
}

TEST_F(TextProperties, LettersOfTheFirstAlphabetsFoldAsInUnicode) {
    for (uint character = 1; character < 0x2200; character = character == 0x5FF ? 0x1FF0 : character + 1) {
        const QString text = QString::fromUcs4(&character, 1);
        const QByteArray bytes = text.toUtf8();
        ASSERT_EQ(text.toUpper(), call("Select UpCase(?1)", {bytes})) << character;
        ASSERT_EQ(text.toLower(), call("Select LoCase(?1)", {bytes})) << character;
    }
}

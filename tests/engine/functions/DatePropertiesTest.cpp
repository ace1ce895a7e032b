#include "SqlFunctions.h"

#include "support/RandomText.h"
#include "support/TimeZone.h"

#include <QDate>
#include <QLocale>

#include <gtest/gtest.h>

#include <ctime>
#include <random>

using orvane::tests::SqlFunctions;

namespace {

QString iso(const QDate& date) {
    return date.toString(Qt::ISODate);
}

/// The value of a call with one text.
QString call(const SqlFunctions& functions, const char* call, const QString& text) {
    return functions.run(QLatin1String("Select ") + QLatin1String(call), {text.toUtf8()});
}

/// The usual written forms of a day, in both languages.
QStringList writtenForms(const QDate& date) {
    const QLocale english(QLocale::English);
    static const std::vector<std::string> months = orvane::tests::pieces(
        "января|февраля|марта|апреля|мая|июня|июля|августа|сентября|октября|ноября|декабря");
    const QString russian = QString::fromStdString(months[static_cast<std::size_t>(date.month() - 1)]);
    const QString day = QString::number(date.day());
    const QString year = QString::number(date.year());
    return {iso(date),
            date.toString(QStringLiteral("dd.MM.yyyy")),
            date.toString(QStringLiteral("d.M.yyyy")),
            date.toString(QStringLiteral("dd/MM/yyyy")),
            date.toString(QStringLiteral("dd-MM-yyyy")),
            date.toString(QStringLiteral("yyyy/MM/dd")),
            date.toString(QStringLiteral("yyyyMMdd")),
            QStringLiteral("%1 %2 %3").arg(day, russian, year),
            QStringLiteral("  %1 %2 %3 г. ").arg(day, russian.toUpper(), year),
            QStringLiteral("«%1» %2 %3 года").arg(day, russian, year),
            english.toString(date, QStringLiteral("d MMMM yyyy")),
            english.toString(date, QStringLiteral("dd-MMM-yyyy")),
            english.toString(date, QStringLiteral("d MMM, yyyy")),
            english.toString(date, QStringLiteral("yyyy MMMM d"))};
}

class DateProperties : public testing::TestWithParam<const char*> {
    const orvane::tests::TimeZone zone_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Zones, DateProperties, testing::ValuesIn(orvane::tests::zones));

} // namespace

TEST_P(DateProperties, UsualFormsOfTwoCenturiesReadAsTheSameDay) {
    const SqlFunctions functions;
    for (QDate date(1880, 1, 1); date.year() < 2090; date = date.addDays(37)) {
        const QString expected = QLatin1String("text ") + iso(date);
        for (const QString& form : writtenForms(date)) {
            // Year first, then two numbers that may both be months: the day comes first, as in all forms.
            const bool isAmbiguous =
                form == iso(date) || form.startsWith(QString::number(date.year()) + QLatin1Char('/'));
            if (isAmbiguous && date.day() <= 12 && date.day() != date.month()) {
                continue;
            }
            ASSERT_EQ(expected, call(functions, "StringToDate(?1)", form)) << form.toStdString();
        }
    }
}

TEST_P(DateProperties, TimesReadAsWritten) {
    const SqlFunctions functions;
    std::mt19937 random(3);
    for (int i = 0; i < 800; ++i) {
        const QTime time = QTime(0, 0).addMSecs(static_cast<int>(random() % 86400000));
        const QDate date = QDate(1950, 1, 1).addDays(static_cast<int>(random() % 40000));
        const QString written = time.toString(QStringLiteral("hh:mm:ss.zzz"));
        const QString dotted = date.toString(QStringLiteral("dd.MM.yyyy ")) + written;
        const QString whole = iso(date) + QLatin1Char(' ') + written;
        const int seconds = time.hour() * 3600 + time.minute() * 60;
        ASSERT_EQ(QLatin1String("text ") + written, call(functions, "StringToDate(?1)", written));
        ASSERT_EQ(QLatin1String("text ") + whole, call(functions, "StringToDate(?1)", dotted));
        ASSERT_EQ(QLatin1String("text ") + written, call(functions, "FormatTime(?1, '')", whole));
        ASSERT_EQ(QLatin1String("text ") + whole,
                  call(functions, "GetDate(?1) || ' ' || GetTime(?1)", whole));
        ASSERT_EQ(QStringLiteral("integer %1").arg(seconds),
                  call(functions, "Hour(?1) * 3600 + Minute(?1) * 60", written));
    }
}

TEST_P(DateProperties, ArbitraryTextIsReadWithoutHarm) {
    const SqlFunctions functions;
    const auto pieces = orvane::tests::pieces(
        "1|12|31|2021|00|99999999|4294967296|:|.| |янв|sun|T|-|٣|😀|now|20210315|:30|\u00a0");
    std::mt19937 random(5);
    for (int i = 0; i < 8000; ++i) {
        const std::string text = orvane::tests::randomText(pieces, random, 8);
        const QString result = call(functions, "StringToDate(?1)", QString::fromStdString(text)).mid(5);
        // Empty, or read back as what it is.
        const bool isDate = QDate::fromString(result.left(10), Qt::ISODate).isValid();
        const bool isTime = QTime::fromString(result.right(12), Qt::ISODateWithMs).isValid();
        const bool isWhole = result.isEmpty() || (isDate && result.size() == 10) ||
                             (isTime && result.size() == 12) || (isDate && isTime && result.size() == 23);
        ASSERT_TRUE(isWhole) << text << " | " << result.toStdString();
    }
}

TEST_P(DateProperties, LongTextsTakeNoTime) {
    const SqlFunctions functions;
    const std::clock_t start = std::clock(); // of this process, whatever else the machine does
    for (const char* piece : {"1.2.3 ", "x5 ", "1:x ", "2001:", "7 "}) {
        const QString text = QString::fromLatin1(piece).repeated(50000) + QLatin1String(" 3 sunday");
        call(functions, "StringToDate(?1)", text);
    }
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
}

TEST_P(DateProperties, NumbersOfOneInstantAgree) {
    const SqlFunctions functions;
    std::mt19937_64 random(9);
    for (int i = 0; i < 800; ++i) {
        const auto seconds = static_cast<qint64>(random() % 4000000000U);
        if (seconds >= 10000101 && seconds <= 99991231) {
            continue; // read as a compact date
        }
        const QString unix = functions.run(QStringLiteral("Select NumberToDate(%1)").arg(seconds));
        const qint64 ticks = (seconds + 11644473600) * 10000000;
        ASSERT_EQ(unix, functions.run(QStringLiteral("Select NumberToDate(%1)").arg(ticks))) << seconds;
        ASSERT_EQ(unix,
                  functions.run(QStringLiteral("Select NumberToDate(%1 / 86400.0 + 25569)").arg(seconds)))
            << seconds;
    }
}

#include "SqlFunctions.h"

#include <QSet>
#include <QStringList>

#include <gtest/gtest.h>

using orvane::adaptor::FunctionRecord;
using orvane::test::SqlFunctions;

namespace {

// What SQL texts outside this library call.
const char* const fixedNames =
    "concat divide quotient involution xor Power Minimum Maximum Sign Truncate Floor Sqrt RoundTo RoundBy "
    "WtAvg WtAvgSafe "
    "Char Asc InStr LoCase LCase UpCase UCase LeftTrim LTrim RightTrim RTrim Len Left Right Mid Val "
    "Capitalize Str Space "
    "Repeat Like Glob CaseSensitiveCompare CaseSensitiveLocaleCompare CurDate CurTime CurDateTime "
    "StringToDate NumberToDate "
    "Day Month Year Weekday Hour Minute Second GetDate GetTime FormatNumber Deformat FormatDate FormatTime "
    "FormatNumberByPattern Format";

const QStringList everyKindOfValue = {
    QStringLiteral("NULL"),
    QStringLiteral("0"),
    QStringLiteral("-1"),
    QStringLiteral("3"),
    QStringLiteral("2147483647"),
    QStringLiteral("9223372036854775807"),
    QStringLiteral("(-9223372036854775807 - 1)"),
    QStringLiteral("1e308"),
    QStringLiteral("-2.5"),
    QStringLiteral("1e999"),
    QStringLiteral("''"),
    QStringLiteral("'12.5 km'"),
    QStringLiteral("'nan'"),
    QStringLiteral("'2021-03-04 05:06:07.008'"),
    QStringLiteral("'0,0.0E+0;%[a-'"),
    QString::fromUtf8("'Ж😀'"),
    QStringLiteral("x''"),
    QStringLiteral("x'FF00C3'"),
    QStringLiteral("x'C3'"),
};

const QSet<QString> knownErrors = {
    QStringLiteral("error Division by zero"),
    QStringLiteral("error Integer overflow"),
    QStringLiteral("error Power overflow"),
    QStringLiteral("error Sum overflow."),
    QStringLiteral("error Square root from negative value"),
    QStringLiteral("error start_at must be >= 1"),
    QStringLiteral("error occurence must be >= 1"),
    QStringLiteral("error Invalid argument count. Usage: inStr (str1,str2[,start_at[,occurrence]])."),
    QStringLiteral("error string or blob too big"),
};

} // namespace

TEST(Records, CarryTheFixedNames) {
    QStringList names;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        if (const QString name = QString::fromLatin1(record.name); !names.contains(name)) {
            names.append(name);
        }
    }
    EXPECT_EQ(QString::fromLatin1(fixedNames).toStdString(), names.join(QLatin1Char(' ')).toStdString());
}

TEST(Records, ExamplesGiveTheirResults) {
    const SqlFunctions functions;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        QString example = QString::fromUtf8(record.example);
        if (example == QLatin1String("1 Xor 0")) { // an operator of the dialect only
            example = QStringLiteral("xor(1, 0)");
        }
        const QString value = functions.evaluate(example);
        EXPECT_FALSE(value.startsWith(QLatin1String("error"))) << record.name << ": " << value.toStdString();
        if (record.result != nullptr) {
            EXPECT_EQ(record.result, value.mid(value.indexOf(QLatin1Char(' ')) + 1).toStdString())
                << record.example;
        }
    }
}

TEST(Records, EveryFunctionTakesEveryKindOfValue) {
    const SqlFunctions functions;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        const int most = record.arity.maximum < 0 ? 3 : record.arity.maximum;
        for (int arity = std::max(record.arity.minimum, 0); arity <= most; ++arity) {
            int combinations = 1;
            for (int i = 0; i < arity; ++i) {
                combinations *= everyKindOfValue.size();
            }
            for (int number = 0; number < combinations; ++number) {
                QStringList arguments;
                for (int i = 0, rest = number; i < arity; ++i, rest /= everyKindOfValue.size()) {
                    arguments.append(everyKindOfValue.at(rest % everyKindOfValue.size()));
                }
                const QString call = QStringLiteral("\"%1\"(%2)")
                                         .arg(QLatin1String(record.name), arguments.join(QLatin1Char(',')));
                // The length, for some results are long.
                const QString result = functions.run(QStringLiteral("Select length(%1)").arg(call));
                if (result.startsWith(QLatin1String("error")) && !knownErrors.contains(result)) {
                    ADD_FAILURE() << call.toStdString() << ": " << result.toStdString();
                }
            }
        }
    }
}

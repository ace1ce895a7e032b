// A computed text compares as the column whose value it has: whatever a statement says of a column, it says
// of an expression of the same value.

#include "support/RandomText.h"

#include <orvane/engine/SqliteStringBuilder.h>

#include "platform/dp/SqliteDatabaseAccess.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <random>

namespace orvane::tests {
namespace {

/// "?" stands for the text of the row. Every statement gives its rows in one order, whichever of several
/// equal texts SQLite keeps.
constexpr const char* statements[] = {
    "Select n, Lower(?) From t Order By ? Desc, n",
    "Select n From t Order By NullIf(?, 'я') Nulls First, n",
    "Select ? As style, n From t Order By style, n",
    "Select Count(*) From t Group By ? Order By 1",
    "Select Count(*), Lower(Min(?)) From t Group By ? Having Min(?) > 'Б' Order By 2",
    "Select Lower(? & 'x') As style, Count(*) From t Group By 1 Order By style, 2",
    "Select Count(*) From (Select Distinct ? From t)",
    "Select Count(*) From (Select ? From t Union Select s From u)",
    "With p As (Select ? As x From t) Select Lower(x) From p Intersect Select Lower(s) From u Order By 1",
    "With p As (Select ? As x, n From t) Select n, Lower(x) From p Order By x, n",
    "Select Lower(d.x), Count(*) From (Select ? As x From t) d Group By d.x Order By d.x",
    "Select Count(*) From t, (Select ? As x From t) d Where d.x = t.s",
    "Select Count(*) From t Join (Select Distinct ? As s From t) d Using (s)",
    "Select Count(*) From (Select s From u Except Select ? From t)",
    "Select Count(Distinct ?) From t",
    "Select Lower(Max(?)), Lower(Min(?)) From t",
    "Select n, Lower(Max(?, 'м')), Lower(Min(?, 'К', 'b')) From t Order By n",
    "Select n From t Where NullIf(?, 'Аб') Is Null Order By n",
    "Select n From t Where ? In ('аБ', 'B', Null) Order By n",
    "Select n From t Where ? In (Select s From u) Or ? Between 'B' And 'ё' Order By n",
    "Select n, Case ? When 'АБ' Then 1 When 'b' Then 2 Else 0 End From t Order By n",
    "Select n, Rank() Over (Order By ?), Count(*) Over (Partition By ?) From t Order By n",
    "Select Lower(x) From (Select ? As x From t Order By x Limit 3) Order By x"};

std::string replaced(std::string text, const std::string& by) {
    for (std::size_t at = 0; (at = text.find('?', at)) != std::string::npos; at += by.size()) {
        text.replace(at, 1, by);
    }
    return text;
}

class ComputedTexts : public testing::Test {
protected:
    ComputedTexts() {
        const auto compare = [](void*, int sizeA, const void* a, int sizeB, const void* b) {
            const auto text = [](int size, const void* utf8) {
                return QString::fromUtf8(static_cast<const char*>(utf8), size);
            };
            return QString::compare(text(sizeA, a), text(sizeB, b), Qt::CaseInsensitive);
        };
        sqlite3_create_collation(database.handle(), "Locale", SQLITE_UTF8, nullptr, compare);
        const auto lower = [](sqlite3_context* context, int, sqlite3_value** values) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
            const QByteArray utf8 = QString::fromUtf8(text).toLower().toUtf8();
            text ? sqlite3_result_text(context, utf8.constData(), utf8.size(), SQLITE_TRANSIENT)
                 : sqlite3_result_null(context);
        };
        sqlite3_create_function(database.handle(), "lower", 1, SQLITE_UTF8, nullptr, lower, nullptr, nullptr);
        database.exec(QStringLiteral("Create Table t (n, s Collate Locale)"));
        database.exec(QStringLiteral("Create Table u (n, s Collate Locale)"));
    }

    void fill() {
        const std::vector<std::string> letters = pieces("а|А|б|Б|Ё|ё|b|B|я");
        for (const char* table : {"t", "u"}) {
            database.exec(QStringLiteral("Delete From ") + QLatin1String(table));
            for (int n = 0; n < 12; ++n) {
                const std::string text = randomText(letters, random, 2);
                const std::string value = random() % 8 == 0 ? "Null" : '\'' + text + '\'';
                database.exec(QStringLiteral("Insert Into %0 Values (%1, %2)")
                                  .arg(QLatin1String(table))
                                  .arg(n)
                                  .arg(QString::fromStdString(value)));
            }
        }
    }

    /// An expression with the value of t.s.
    std::string expression(int depth) {
        const std::string inner = depth == 0 ? "t.s" : expression(depth - 1);
        switch (random() % 6) {
        case 0: return inner + " & ''";
        case 1: return "('' & " + inner + ')';
        case 2: return "Coalesce(" + inner + ", Null)";
        case 3: return "Case When n >= 0 Then " + inner + " End";
        case 4: return "Cast(" + inner + " As Text)";
        default: return "(Select " + inner + ')';
        }
    }

    std::string answer(const std::string& statement) {
        sql::SqlParser parser(nullptr);
        EXPECT_TRUE(parser.parse(statement)) << statement;
        engine::SqliteStringBuilder builder(QStringLiteral("Locale"), nullptr);
        const std::string text = sql::toUtf8(builder.buildString(*parser.result().node()));
        std::string rows;
        const auto addRow = [](void* to, int count, char** values, char**) {
            for (int i = 0; i < count; ++i) {
                *static_cast<std::string*>(to) += values[i] ? values[i] : "Null";
                *static_cast<std::string*>(to) += i + 1 < count ? '|' : '\n';
            }
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database.handle(), text.c_str(), addRow, &rows, nullptr), SQLITE_OK)
            << text << '\n'
            << sqlite3_errmsg(database.handle());
        return rows;
    }

    dp::SqliteDatabaseAccess database{QStringLiteral(":memory:")};
    std::mt19937 random{2024};
};

TEST_F(ComputedTexts, CompareAsTheColumnOfTheirValue) {
    const int rounds = qEnvironmentVariable("ORVANE_TEST_ROUNDS", QStringLiteral("20")).toInt();
    for (int round = 0; round < rounds; ++round) {
        fill();
        for (const char* statement : statements) {
            const std::string computed = expression(static_cast<int>(random() % 3));
            EXPECT_EQ(answer(replaced(statement, computed)), answer(replaced(statement, "t.s")))
                << replaced(statement, computed);
        }
    }
}

} // namespace
} // namespace orvane::tests

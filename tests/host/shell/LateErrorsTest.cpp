// What SQLite finds wrong only after the translation: told in the user's words, at the place in the user's
// text, in both languages.

#include "host/shell/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane::shell {
namespace {

struct LateError {
    const char* statement;
    int column; ///< 0 for a message without place
    const char* message;
};

std::string errorsOf(const char* statement, const char* locale) {
    const QString data = QStringLiteral(ORVANE_EXAMPLE_DATA "/");
    const Answer answer =
        runProgram({data + QStringLiteral("countries.gpkg"), data + QStringLiteral("cities.shp"),
                    data + QStringLiteral("indicators.csv"), QStringLiteral("--locale"),
                    QLatin1String(locale), QStringLiteral("-c"), QString::fromUtf8(statement)});
    EXPECT_EQ(answer.status, 1) << statement;
    return answer.errors;
}

bool hasCyrillic(const std::string& text) {
    const QString characters = QString::fromStdString(text);
    return std::any_of(characters.begin(), characters.end(),
                       [](QChar character) { return character.script() == QChar::Script_Cyrillic; });
}

TEST(LateErrors, AreToldInWordsAndPlacesOfTheUser) {
    constexpr int levels = 40;
    std::string deep = "Select ";
    for (int i = 0; i < levels; ++i)
        deep += "Abs(";
    deep += "population" + std::string(levels, ')') + " From cities";
    const LateError errors[] = {
        {"Select nam From cities", 8, "there is no column \"nam\"; did you mean \"name\"?"},
        {"Select Max(population) Filter (Where nam = 1) From cities", 38, "there is no column \"nam\""},
        {"Select Row_Number() Over (Order By nam) From cities", 36, "there is no column \"nam\""},
        {"Select name From (Select name From cities) x Where x.population > 1", 52,
         "has no column \"population\""},
        {"Select 1 From cities Where obj Within shape", 39, "there is no column \"shape\""},
        {"Select 7 \\ population ^ nam From cities", 25, "there is no column \"nam\""},
        {"Select cities.* From countries", 8, "the table \"cities\" is not after From"},
        {"Select c.* From cities", 8, "there is no table \"c\""},
        {"Update nope Set a = 1", 8, "there is no table \"nope\""},
        {"Select name From cities Join countries Using (nope)", 47, "the column \"nope\" of Using"},
        {"Select Left(name) From cities", 8, "it is called as Left(text, count)"},
        {"Select Area() From countries", 8, "wrong number of arguments to the function Area"},
        {"Select name From cities Where Count(*) > 1", 31, "the function Count cannot be used here"},
        {"Select Sum(Sum(population)) From cities", 12, "the function Sum cannot be used here"},
        {"Select Upper(name) Over () From cities", 8, "may not be used as a window function"},
        {"Select NTile('x') Over () From cities", 8, "has to be a positive whole number"},
        {"Select name From cities Order By 7", 25, "no column of that number"},
        {"Select name From cities Having population > 1", 25, "Having without Group By"},
        {"Select name From cities Group By Count(*)", 25, "functions over many rows"},
        {"Select name From cities Limit 'x'", 25, "whole numbers are needed"},
        {"Insert Into cities (name) Values (1, 2)", 27, "the number of values (2)"},
        {"Insert Into cities Values (1, 2)", 13, "not the number of columns of the table \"cities\""},
        {"Update cities Set (name, population) = (1, 2, 3)", 15, "different numbers of values"},
        {"With a(x, y) As (Select 1) Select * From a", 6, "another number of columns"},
        {"With a As (Select * From a) Select * From a", 6, "refers to itself"},
        {"Select name From cities Union Select name, population From cities", 25, "numbers of columns"},
        {"Select 1 + (Select name, population From cities)", 0, "the subquery gives 2 columns"},
        {deep.c_str(), 8 + 4 * levels, "nested too deeply"},
        {"Select population+2+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1+1 From cities", 8,
         "nested too deeply"},
    };
    for (const LateError& error : errors) {
        const std::string english = errorsOf(error.statement, "en");
        EXPECT_THAT(english, testing::HasSubstr(error.message)) << error.statement;
        const std::string column = std::to_string(error.column) + ": ";
        if (error.column != 0) {
            EXPECT_THAT(english, testing::HasSubstr("column " + column)) << error.statement;
        }
        const std::string russian = errorsOf(error.statement, "ru");
        EXPECT_TRUE(hasCyrillic(russian)) << russian;
        if (error.column != 0) {
            EXPECT_THAT(russian, testing::HasSubstr("столбец " + column)) << error.statement;
        }
    }
}

} // namespace
} // namespace orvane::shell

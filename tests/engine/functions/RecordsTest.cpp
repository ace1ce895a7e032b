#include "SqlFunctions.h"

#include "support/RandomText.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using orvane::adaptor::FunctionRecord;
using orvane::tests::SqlFunctions;

namespace {

// What SQL texts outside this library call.
const char* const fixedNames =
    "concat divide quotient involution xor Power Minimum Maximum Sign Truncate Floor Sqrt RoundTo RoundBy "
    "WtAvg WtAvgSafe "
    "Char Asc InStr LoCase LCase UpCase UCase LeftTrim LTrim RightTrim RTrim Len Left Right Mid Val "
    "Capitalize Str Space Repeat Like Glob CaseSensitiveCompare CaseSensitiveLocaleCompare "
    "CurDate CurTime CurDateTime StringToDate NumberToDate Day Month Year Weekday Hour Minute Second GetDate "
    "GetTime FormatNumber Deformat FormatDate FormatTime Format FormatNumberByPattern "
    "ObjectArea SphericalArea CartesianArea ObjectPerimeter SphericalPerimeter CartesianPerimeter "
    "ObjectLen SphericalObjectLen CartesianObjectLen SphericalObjectDistance CartesianObjectDistance "
    "Distance ST_Distance WithinDistance PtDistWithin Nearness IsNear "
    "CentroidX CentroidY ContainsCentroid CentroidWithin ST_Intersects Intersects ST_Contains "
    "ContainsEntirely ST_Within EntirelyWithin Contains Within Disjoint ST_Disjoint Covers ST_Covers "
    "CoveredBy ST_CoveredBy Equals ST_Equals Touches ST_Touches Crosses ST_Crosses Overlaps ST_Overlaps "
    "Relate ST_Relate MbrIntersects MbrDisjoint MbrContains MbrWithin MbrEqual MbrTouches MbrOverlaps "
    "ST_EnvIntersects ST_EnvelopesIntersects MakeValidGeo Centroid Resemblance ToOrvGeo TransformToOrvGeo "
    "TransformToSLGeo FromOrvGeo RetrieveCS RetrieveTableCS "
    "Collect ST_Collect GUnion ST_Union MakeLine Polygonize ST_Polygonize";

const std::vector<std::string> everyKindOfValue = orvane::tests::pieces(
    "NULL|0|-1|3|2147483647|9223372036854775807|(-9223372036854775807 - 1)|1e308|-2.5|1e999|''|'12.5 km'|"
    "'nan'|'2021-03-04 05:06:07.008'|'0,0.0E+0;%[a-'|'Ж😀'|x''|x'FF00C3'|x'C3'|MakePoint(1, 2, 4326)");

/// How the errors begin that a function may give. The shell tells each in the words of the user: a block of
/// shell/errors.txt has it.
const std::vector<std::string> knownErrors = orvane::tests::pieces(
    "Division by zero|Integer overflow|Power overflow|Sum overflow.|Square root from negative value|"
    "start_at must be >= 1|occurence must be >= 1|Invalid argument count. Usage: |wrong number of arguments "
    "to function |string or blob too big|"
    "Неизвестная единица ");

bool isKnownError(const FunctionRecord& record, const std::string& result) {
    return result.rfind("error " + std::string(record.name) + ": ", 0) == 0 ||
           std::any_of(knownErrors.begin(), knownErrors.end(),
                       [&](const std::string& error) { return result.rfind("error " + error, 0) == 0; });
}

} // namespace

TEST(Records, CarryTheFixedNames) {
    QStringList names;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        for (const char* name : record.names()) {
            names.append(QLatin1String(name));
        }
    }
    for (const QString& name : QString::fromLatin1(fixedNames).split(QLatin1Char(' '))) {
        EXPECT_TRUE(names.contains(name)) << name.toStdString();
    }
}

TEST(Records, EveryFunctionTakesEveryKindOfValue) {
    const SqlFunctions functions;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        const int most = record.arity.maximum < 0 ? 3 : record.arity.maximum;
        if (!record.isRegistered()) {
            continue;
        }
        for (int arity = std::max(record.arity.minimum, 0); arity <= most; ++arity) {
            const auto kinds = everyKindOfValue.size();
            const auto combinations = static_cast<std::size_t>(std::pow(kinds, arity));
            for (std::size_t number = 0; number < combinations; number += 1 + combinations / 8000) {
                std::string arguments;
                for (auto [i, rest] = std::pair{0, number}; i < arity; ++i, rest /= kinds) {
                    arguments += (i > 0 ? "," : "") + everyKindOfValue[rest % kinds];
                }
                // The length, for some results are long.
                const std::string call = "length(\"" + std::string(record.name) + "\"(" + arguments + "))";
                const std::string result =
                    functions.run(QString::fromStdString("Select " + call)).toStdString();
                EXPECT_TRUE(result.rfind("error", 0) != 0 || isKnownError(record, result))
                    << call << ": " << result;
            }
        }
    }
}

/// The reference promises NULL for NULL, but where it says what NULL gives; of arguments in brackets it says
/// so in its first lines.
TEST(Records, SayWhatNullGivesWhereItIsNotNull) {
    const SqlFunctions functions;
    for (const FunctionRecord& record : SqlFunctions::records()) {
        const int most = record.arity.maximum < 0 ? 2 : record.arity.maximum;
        const int needed =
            record.arity.minimum < 0 ? most : std::min(most, std::max(record.arity.minimum, 1));
        for (int position = 0; position < needed && record.scalar != nullptr; ++position) {
            for (const std::string& other : everyKindOfValue) {
                std::string arguments;
                for (int i = 0; i < most; ++i) {
                    arguments += (i > 0 ? "," : "") + (i == position ? std::string("NULL") : other);
                }
                const std::string call = "\"" + std::string(record.name) + "\"(" + arguments + ")";
                const QString result = functions.run(QString::fromStdString("Select typeof(" + call + ")"));
                if (result != QLatin1String("text null")) {
                    EXPECT_NE(std::string(record.summary).find("NULL"), std::string::npos) << call;
                }
            }
        }
    }
}

#include "SqlFunctions.h"

#include "support/Kinds.h"
#include "support/RandomText.h"

#include <orvane/engine/GeometryConversions.h>

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <sqlite3.h>

#include <map>

namespace orvane::tests {

namespace {

class GeometryFunctions : public testing::Test {
protected:
    std::string value(const std::string& expression) {
        return functions_.run(QString::fromStdString("Select " + expression)).toStdString();
    }

    /// What a function takes behind its first geometry.
    static std::string secondArgument(const adaptor::FunctionRecord& record, const std::string& geometry) {
        const std::string name = record.name;
        const bool takesSystem = name.rfind("Transform", 0) == 0 || name == "ToOrvGeo";
        const bool takesTwo = record.group == std::string("Relations") ||
                              name.find("Distance") != name.npos || name == "IsNear";
        if (record.arity.minimum == 5) {
            return name == "Nearness" ? ",5,'km',0,0" : ",0,0,1,1";
        }
        if (name == "WithinDistance") {
            return "," + geometry + ",5";
        }
        if (record.arity.minimum == 3) {
            return "," + geometry + ",'T********'";
        }
        return takesSystem ? ",'epsg:4326'" : takesTwo ? "," + geometry : "";
    }

    SqlFunctions functions_;
};

/// No value that is no geometry makes a relation true: NULL, or an error that names the function.
TEST_F(GeometryFunctions, ValuesThatAreNoGeometry) {
    for (const std::string& value : pieces("NULL|1|2.5|''|'text'|'POINT(1 1)'|x''|x'00'|x'FE'|zeroblob(100)|"
                                           "x'0102030405060708'")) {
        for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
            const std::string call =
                record.name + ("(" + value) + secondArgument(record, "MakePoint(1,1,4326)") + ")";
            const std::string result = this->value(call);
            const bool isLookup = std::string(record.name) == "MayMeet"; // no relation by itself
            EXPECT_TRUE(result == "null" || isLookup ||
                        result.rfind(std::string("error ") + record.name + ": ", 0) == 0)
                << call << ": " << result;
        }
    }
}

/// No function that says yes or no of two areas, SpatiaLite's own included, says anything of one and nothing.
TEST_F(GeometryFunctions, RelationsToNothingAreNull) {
    std::string names = value("group_concat(name, '|') From (Select Distinct name From pragma_function_list "
                              "Where narg = 2 And type = 's' And name Not Like '%IsValid%')");
    names.erase(0, std::string("text ").size());
    const std::string area = "BuildMbr(0,0,2,2)";
    for (const std::string& name : pieces(names)) {
        const std::string answer = value('"' + name + "\"(" + area + "," + area + ")");
        if (answer != "integer 0" && answer != "integer 1") {
            continue;
        }
        for (const char* const arguments : {"(NULL,MakePoint(1,1))", "(MakePoint(1,1),NULL)", "(NULL,NULL)",
                                            "(x'00',MakePoint(1,1))", "(MakePoint(1,1),x'00')"}) {
            EXPECT_NE(value('"' + name + '"' + arguments), "integer -1") << name << arguments;
        }
    }
}

/// A geometry of every kind, in every form, as any argument: a value or NULL, never an error.
TEST_F(GeometryFunctions, GeometriesOfEveryKind) {
    std::vector<std::string> values;
    for (const auto dimensions : {geometry::Dimensions::XY, geometry::Dimensions::XYZM}) {
        for (const geometry::GeometryPtr& kind : allKinds(dimensions)) {
            const auto inSystem = kind->clone();
            inSystem->setCoordSystem(functions_.cache().get(3857));
            for (const QByteArray& blob : {engine::toOrvGeo(inSystem, &functions_.cache()),
                                           engine::toGaia(inSystem, &functions_.cache())}) {
                values.push_back("x'" + blob.toHex().toStdString() + "'");
            }
        }
    }
    // A group of one is what it was, but for empty ones, which are left out, and collections within
    // collections.
    for (const std::string& one : values) {
        const std::string before = value("AsEWKT(FromOrvGeo(" + one + "))");
        const bool isEmpty = before.find("EMPTY") != before.npos;
        if (before != "null") {
            EXPECT_EQ(value("AsEWKT(Collect(" + one + "))"), isEmpty ? "null" : before);
        }
    }
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string call = record.name + ("(" + values[i]) +
                                     secondArgument(record, values[(i * 7 + 3) % values.size()]) + ")";
            const std::string result = value(call);
            EXPECT_TRUE(result.rfind("error", 0) != 0 ||
                        result.rfind(std::string("error ") + record.name + ": ", 0) == 0)
                << call << ": " << result;
        }
    }
}

TEST_F(GeometryFunctions, RelationsOfEveryKindOfValue) {
    const std::string square = "(GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))', 3857))";
    const std::string inside = "(GeomFromText('POINT(1 1)', 3857))";
    for (const std::string& formA : pieces("|ToOrvGeo|AsBinary|CompressGeometry")) {
        for (const std::string& formB : pieces("|ToOrvGeo|AsBinary|CompressGeometry")) {
            const std::string there = "(" + formA + square + "," + formB + inside + ")";
            const std::string back = "(" + formB + inside + "," + formA + square + ")";
            EXPECT_EQ(value("ST_Contains" + there + " || ST_Within" + there + " || ST_Intersects" + there +
                            " || ContainsCentroid" + there),
                      "text 1011")
                << there;
            EXPECT_EQ(value("ST_Contains" + back + " || ST_Within" + back + " || ST_Intersects" + back +
                            " || CentroidWithin" + back),
                      "text 0111")
                << back;
        }
    }
}

/// The same few areas against many positions: what is kept between rows answers as fresh objects do.
TEST_F(GeometryFunctions, RelationsOverManyRows) {
    sqlite3_exec(functions_.handle(),
                 "Create Table a(id Integer Primary Key, g Blob); Create Table p(g Blob);"
                 "With Recursive n(i) As (Select 0 Union All Select i+1 From n Where i<49)"
                 " Insert Into a Select i, Buffer(MakePoint(i%7*3, i/7*3), 2) From n;"
                 "With Recursive n(i) As (Select 0 Union All Select i+1 From n Where i<1999)"
                 " Insert Into p Select MakePoint(i%50*0.4+0.05, i/50*0.5+0.03) From n;",
                 nullptr, nullptr, nullptr);
    const std::string ours = value("Count(*) From a, p Where ST_Contains(a.g, p.g)");
    EXPECT_EQ(ours, value("Count(*) From a, p Where ST_Relate(a.g, p.g, 'T*****FF*') = 1"));
    EXPECT_EQ(ours, value("Count(*) From p, a Where ST_Within(p.g, a.g)"));
    EXPECT_NE(ours, "integer 0");
    EXPECT_EQ(value("Count(*) From a x, a y Where ST_Intersects(x.g, y.g)"),
              value("Count(*) From a x, a y Where ST_Relate(x.g, y.g, 'FF*FF****') = 0"));
    EXPECT_EQ(value("Round(ST_Area(GUnion(g)), 9) From a"),
              value("Round(ST_Area(UnaryUnion(Collect(g))), 9) From a"));
}

/// An arc goes through the engine blob as an arc and leaves for SpatiaLite as a line.
TEST_F(GeometryFunctions, Curves) {
    const QByteArray blob = engine::toOrvGeo(curvedKinds(geometry::Dimensions::XY)[0], &functions_.cache());
    const std::string arc = "x'" + blob.toHex().toStdString() + "'";
    EXPECT_EQ(value("GeometryType(FromOrvGeo(" + arc + "))"), "text LINESTRING");
    EXPECT_EQ(value("ToOrvGeo(" + arc + ")"), "blob " + blob.toHex().toStdString());
    EXPECT_EQ(value("GeometryType(Collect(" + arc + "))"), "text LINESTRING");
}

std::vector<adaptor::FunctionRecord> functionsOfGeometries() {
    std::vector<adaptor::FunctionRecord> records;
    for (const auto family : {adaptor::geometryRecords(), adaptor::measureRecords(),
                              adaptor::overlayRecords(), adaptor::shapingRecords(), adaptor::makingRecords(),
                              adaptor::lineRecords(), adaptor::constructorRecords(), adaptor::accessRecords(),
                              adaptor::formRecords(), adaptor::editingRecords(), adaptor::systemRecords()}) {
        records.insert(records.end(), family.begin(), family.end());
    }
    return records;
}

bool isNoGeometry(const std::string& value) {
    return value.front() == '\'' || value.front() == 'x' || value.find('(') == value.npos;
}

/// The functions of old, for which what is no geometry is as good as NULL.
bool hasMissingGeometries(const adaptor::FunctionRecord& record) {
    const std::string group = record.group;
    return group == "Measures" || group == "Distances" || group == "Relations" || group == "Geometries" ||
           group == "Coordinate systems";
}

/// The arguments of the call in a record's example; none where it calls something else first.
std::vector<std::string> exampleArguments(const adaptor::FunctionRecord& record) {
    const QString example = QString::fromUtf8(record.example);
    const QString name = QString::fromLatin1(record.name);
    const QRegularExpression call(QStringLiteral("(?:^|\\W)%1\\(").arg(name),
                                  QRegularExpression::CaseInsensitiveOption);
    const auto found = call.match(example);
    std::vector<std::string> arguments;
    if (!found.hasMatch()) {
        return arguments;
    }
    std::string argument;
    int depth = 0;
    bool isText = false;
    for (const QChar letter : example.mid(found.capturedEnd())) {
        isText = isText != (letter == QLatin1Char('\''));
        const int change = isText ? 0 : letter == QLatin1Char('(') ? 1 : letter == QLatin1Char(')') ? -1 : 0;
        depth += change;
        if (depth < 0) {
            break;
        }
        if (letter == QLatin1Char(',') && depth == 0 && !isText) {
            arguments.push_back(argument);
            argument.clear();
        } else {
            argument += QString(letter).toStdString();
        }
    }
    if (!argument.empty()) {
        arguments.push_back(argument);
    }
    return arguments;
}

/// Every function, each of its arguments in turn every kind of value, the others as in its example: nothing
/// is -1, no number is not finite, errors name the function, and NULL is given for NULL and where the summary
/// says so.
TEST_F(GeometryFunctions, EveryFunctionWithEveryKindOfArgument) {
    const std::vector<std::string> kinds = pieces(
        "NULL|GeomFromText('POINT EMPTY')|GeomFromText('LINESTRING EMPTY', 4326)|GeomFromText('POLYGON "
        "EMPTY')|"
        "GeomFromText('MULTIPOINT EMPTY')|GeomFromText('GEOMETRYCOLLECTION "
        "EMPTY')|GeomFromText('CURVEPOLYGON EMPTY')|"
        "GeomFromText('CIRCULARSTRING(0 0,1 1,2 0)', 4326)|GeomFromText('CURVEPOLYGON(CIRCULARSTRING(0 0,2 "
        "2,0 0))')|"
        "GeomFromText('LINESTRING ZM(0 0 1 2,1 1 3 4,2 1 5 6)', 3857)|GeomFromText('POINT M(1 2 3)')|"
        "MakePoint(1, 2, 3857)|MakePoint(1, 2, 32636)|SetSRID(MakePoint(1, 2), 'proj:+proj=sinu')|"
        "GeomFromText('POLYGON((0 0,2 2,2 0,0 2,0 0))', 4326)|BuildMbr(0, 0, 3, 3)|"
        "GeomFromText('GEOMETRYCOLLECTION(POINT(1 2),LINESTRING(0 0,3 3),POLYGON((0 0,1 0,1 1,0 0)))', 4326)|"
        "'text'|7|-2.5|x'00'|x'0001E6100000FE'");
    std::map<std::string, std::string> faults; // of a function and a kind of fault the first
    for (const adaptor::FunctionRecord& record : functionsOfGeometries()) {
        const std::vector<std::string> usual = exampleArguments(record);
        for (std::size_t position = 0; record.scalar && position < usual.size(); ++position) {
            for (const std::string& kind : kinds) {
                std::string call = '"' + std::string(record.name) + "\"(";
                for (std::size_t i = 0; i < usual.size(); ++i) {
                    call += (i > 0 ? "," : "") + (i == position ? kind : usual[i]);
                }
                call += ')';
                const std::string result = value(call);
                const std::string summary = record.summary;
                const auto says = [&summary](const char* word) { return summary.find(word) != summary.npos; };
                const bool countsAsNull = isNoGeometry(kind) && hasMissingGeometries(record);
                const bool isNamed =
                    result.find(std::string(record.name) + ": ") != result.npos ||
                    record.group == std::string("Measures"); // the errors of which are the core's
                const auto fault = [&](const char* what) {
                    faults.emplace(std::string(record.name) + what, call + " => " + result.substr(0, 100));
                };
                if ((result == "integer -1" || result == "real -1.0") && !says("-1")) {
                    fault(" is -1");
                } else if (result == "real inf" || result == "real -inf" || result == "real nan") {
                    fault(" is not finite");
                } else if (result == "null" && kind != "NULL" && !says("NULL") && !countsAsNull) {
                    fault(" is NULL");
                } else if (result.starts_with("error") && !isNamed) {
                    fault(" does not name itself");
                }
            }
        }
    }
    for (const auto& [what, call] : faults) {
        ADD_FAILURE() << what << ": " << call;
    }
}

} // namespace

} // namespace orvane::tests

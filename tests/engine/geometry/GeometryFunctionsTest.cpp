#include "Kinds.h"
#include "SqlDatabase.h"

#include <orvane/engine/GeometryConversions.h>

#include <gtest/gtest.h>

#include <set>

namespace orvane::tests {

namespace {

TEST(GeometryRecords, ExamplesGiveTheirResults) {
    SqlDatabase database;
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        std::string expression = record.example;
        if (const auto at = expression.find("RoundBy"); at != std::string::npos) {
            expression.replace(at, 7, "Round");
        }
        EXPECT_EQ(database.value(expression), record.result) << record.name << ": " << expression;
    }
}

TEST(GeometryRecords, Names) {
    const std::set<std::string> expected = {"ObjectArea",
                                            "ObjectPerimeter",
                                            "SphericalPerimeter",
                                            "CartesianPerimeter",
                                            "ObjectLen",
                                            "SphericalObjectLen",
                                            "CartesianObjectLen",
                                            "SphericalArea",
                                            "CartesianArea",
                                            "SphericalObjectDistance",
                                            "CartesianObjectDistance",
                                            "CentroidX",
                                            "CentroidY",
                                            "ContainsCentroid",
                                            "CentroidWithin",
                                            "Intersects",
                                            "ContainsEntirely",
                                            "EntirelyWithin",
                                            "MakeValidGeo",
                                            "Centroid",
                                            "Resemblance",
                                            "ToOrvGeo",
                                            "TransformToOrvGeo",
                                            "TransformToSLGeo",
                                            "FromOrvGeo",
                                            "RetrieveCS",
                                            "RetrieveTableCS",
                                            "ST_Intersects",
                                            "ST_Contains",
                                            "ST_Within"};
    std::set<std::string> found;
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        EXPECT_TRUE(found.insert(record.name).second) << record.name;
    }
    EXPECT_EQ(found, expected);
}

/// No value of any kind makes a function fail or a relation true.
TEST(GeometryFunctions, ValuesThatAreNoGeometry) {
    SqlDatabase database;
    const char* const values[] = {"NULL",
                                  "1",
                                  "2.5",
                                  "''",
                                  "'text'",
                                  "'POINT(1 1)'",
                                  "x''",
                                  "x'00'",
                                  "x'FE'",
                                  "zeroblob(100)",
                                  "x'0102030405060708'"};
    const std::set<std::string> lookUps = {"RetrieveCS", "RetrieveTableCS"};
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        for (const char* value : values) {
            for (int arity = std::max(record.arity.minimum, 1); arity <= record.arity.maximum; ++arity) {
                if (std::string(record.name).rfind("TransformTo", 0) == 0 && arity < 2) {
                    continue;
                }
                std::string call = std::string(record.name) + "(" + value;
                for (int i = 1; i < arity; ++i) {
                    call += std::string(record.name).find("TransformTo") == 0 ? ",'epsg:3857'"
                                                                              : ",MakePoint(1,1,4326)";
                }
                EXPECT_EQ(database.value(call + ")"), "NULL") << call;
            }
        }
    }
}

/// A geometry of every kind, in every form, as any argument: a value or NULL, never an error.
TEST(GeometryFunctions, GeometriesOfEveryKind) {
    SqlDatabase database;
    std::vector<std::string> values;
    for (const auto dimensions : {geometry::Dimensions::XY, geometry::Dimensions::XYZM}) {
        std::vector<geometry::GeometryPtr> kinds = linearKinds(dimensions);
        const std::vector<geometry::GeometryPtr> curves = curvedKinds(dimensions);
        kinds.insert(kinds.end(), curves.begin(), curves.end());
        for (const geometry::GeometryPtr& kind : kinds) {
            const auto inSystem = kind->clone();
            inSystem->setCoordSystem(database.cache().get(3857));
            for (const QByteArray& blob : {engine::toOrvGeo(inSystem, &database.cache()),
                                           engine::toGaia(inSystem, &database.cache())}) {
                values.push_back("x'" + blob.toHex().toStdString() + "'");
            }
        }
    }
    const auto call = [](const adaptor::FunctionRecord& record, const std::string& a, const std::string& b) {
        const std::string name = record.name;
        const bool takesSystem = name.rfind("TransformTo", 0) == 0 || name == "ToOrvGeo";
        const bool takesTwo = std::string(record.group) == "Relations" || name.find("Distance") != name.npos;
        return name + "(" + a + (takesSystem ? ",'epsg:4326'" : takesTwo ? "," + b : "") + ")";
    };
    for (const adaptor::FunctionRecord& record : adaptor::geometryRecords()) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string expression = call(record, values[i], values[(i * 7 + 3) % values.size()]);
            EXPECT_NE(database.value(expression).rfind("error", 0), 0U) << expression;
        }
    }
}

struct SqlCase {
    const char* expression;
    const char* expected;
};

void check(SqlDatabase& database, std::initializer_list<SqlCase> cases) {
    for (const SqlCase& entry : cases) {
        EXPECT_EQ(database.value(entry.expression), entry.expected) << entry.expression;
    }
}

TEST(GeometryFunctions, Usage) {
    SqlDatabase database;
    check(database,
          {{"ToOrvGeo()",
            "error: Invalid argument count. Usage: ToOrvGeo (geometry[,coordinate system string])."},
           {"TransformToSLGeo(MakePoint(1,1))",
            "error: Invalid argument count. Usage: TransformToSLGeo (geometry[,target coordinate system "
            "string[,default coordinate system string]])."},
           {"TransformToOrvGeo()",
            "error: Invalid argument count. Usage: TransformToOrvGeo (geometry[,target coordinate system "
            "string[,default coordinate system string]])."}});
}

TEST(GeometryFunctions, MeasuresAndDistances) {
    SqlDatabase database;
    check(
        database,
        {{"ObjectArea(NULL, 'parsecs')", "NULL"},
         {"substr('x' || ObjectArea(MakePoint(1,1), 'parsecs'), 1)",
          "error: Неизвестная единица площади «parsecs». Известные единицы: sq m, кв. м, sq km, кв. км, sq "
          "cm, "
          "кв. см, sq mm, кв. мм, sq mi, кв. миля, sq nmi, кв. морская миля, sq ft, кв. фут, sq survey ft, "
          "кв. геодезический фут, sq yd, кв. ярд, sq in, кв. дюйм, sq deg, кв. градус, ha, га, acre, акр, "
          "are, "
          "ар."},
         {"ObjectLen(MakePoint(1,1), '%1')",
          "error: Неизвестная единица длины «%1». Известные единицы: m, м, km, км, cm, см, mm, мм, mi, миля, "
          "nmi, морская миля, ft, фут, survey ft, геодезический фут, yd, ярд, in, дюйм, deg, градус."},
         {"SphericalObjectDistance(MakePoint(1,1), MakePoint(2,2), 'm')", "-1.0"},
         {"CartesianObjectDistance(MakePoint(1,1), MakePoint(2,2), 'parsecs')", "-1.0"},
         // Exactly one carries a system: the other is taken to be in it.
         {"Round(SphericalObjectDistance(MakePoint(0,0,4326), MakePoint(1,0), 'km'), 3)", "111.319"},
         {"Round(SphericalObjectDistance(MakePoint(0,0), MakePoint(1,0,4326), 'km'), 3)", "111.319"},
         {"ObjectArea(BuildMbr(0,0,1000,1000,32636))", "1000000.0"},
         {"ObjectArea(BuildMbr(0,0,1000,1000,32636), NULL)", "1000000.0"},
         {"CentroidX(GeomFromText('LINESTRING(0 0,4 2)'))", "2.0"},
         {"CentroidY(GeomFromText('GEOMETRYCOLLECTION(POINT(9 9),LINESTRING(0 0,4 2))'))", "1.0"}});
}

TEST(GeometryFunctions, RelationsOfEveryKindOfValue) {
    SqlDatabase database;
    const std::string square = "GeomFromText('POLYGON((0 0,4 0,4 4,0 4,0 0))', 3857)";
    const std::string inside = "GeomFromText('POINT(1 1)', 3857)";
    const std::string forms[] = {"%", "ToOrvGeo(%)", "AsBinary(%)", "CompressGeometry(%)"};
    const auto inForm = [](std::string form, const std::string& value) {
        return form.replace(form.find('%'), 1, value);
    };
    for (const std::string& formA : forms) {
        for (const std::string& formB : forms) {
            const std::string a = inForm(formA, square);
            const std::string b = inForm(formB, inside);
            for (const auto& [name, expected] : {std::pair{"ST_Contains", "1"},
                                                 {"ST_Within", "0"},
                                                 {"ST_Intersects", "1"},
                                                 {"ContainsCentroid", "1"}}) {
                EXPECT_EQ(database.value(std::string(name) + "(" + a + "," + b + ")"), expected)
                    << name << a << b;
            }
            EXPECT_EQ(database.value("ST_Within(" + b + "," + a + ")"), "1");
            EXPECT_EQ(database.value("CentroidWithin(" + b + "," + a + ")"), "1");
            EXPECT_EQ(database.value("ST_Intersects(" + b + "," + a + ")"), "1");
        }
    }
    // A degree is far away in metres; reprojected it is where it belongs.
    check(database,
          {{"ST_Contains(BuildMbr(3300000,8200000,3500000,8500000,3857), MakePoint(30.5,60,4326))", "1"},
           {"ST_Within(MakePoint(30.5,60,4326), BuildMbr(3300000,8200000,3500000,8500000,3857))", "1"},
           {"ST_Intersects(MakePoint(30.5,60,4326), BuildMbr(3300000,8200000,3500000,8500000,3857))", "1"},
           {"ST_Contains(BuildMbr(30,59,31,61,4326), MakePoint(3395000,8399737,3857))", "1"},
           {"CentroidWithin(MakePoint(30.5,60,4326), BuildMbr(3300000,8200000,3500000,8500000,3857))", "1"},
           {"ST_Contains(BuildMbr(0,0,4,4,3857), MakePoint(1,1))", "1"}});
}

/// The same few areas against many positions: what is kept between rows answers as fresh objects do.
TEST(GeometryFunctions, RelationsOverManyRows) {
    SqlDatabase database;
    sqlite3_exec(database.handle(),
                 "Create Table a(id Integer Primary Key, g Blob); Create Table p(g Blob);"
                 "With Recursive n(i) As (Select 0 Union All Select i+1 From n Where i<49)"
                 " Insert Into a Select i, Buffer(MakePoint(i%7*3, i/7*3), 2) From n;"
                 "With Recursive n(i) As (Select 0 Union All Select i+1 From n Where i<1999)"
                 " Insert Into p Select MakePoint(i%50*0.4+0.05, i/50*0.5+0.03) From n;",
                 nullptr, nullptr, nullptr);
    const std::string ours = database.value("Count(*) From a, p Where ST_Contains(a.g, p.g)");
    EXPECT_EQ(ours, database.value("Count(*) From a, p Where ST_Relate(a.g, p.g, 'T*****FF*') = 1"));
    EXPECT_EQ(ours, database.value("Count(*) From p, a Where ST_Within(p.g, a.g)"));
    EXPECT_NE(ours, "0");
    EXPECT_EQ(database.value("Count(*) From a x, a y Where ST_Intersects(x.g, y.g)"),
              database.value("Count(*) From a x, a y Where ST_Relate(x.g, y.g, 'FF*FF****') = 0"));
}

TEST(GeometryFunctions, Conversions) {
    SqlDatabase database;
    for (const auto mode : {engine::EngineCache::NoMemo, engine::EngineCache::AlwaysMemo}) {
        database.cache().setUseGaiaCache(mode);
        check(database,
              {{"IsValid(Centroid(BuildMbr(0,0,2,2,3857)))", "1"},
               {"Srid(Centroid(BuildMbr(0,0,2,2,3857)))", "3857"},
               {"Centroid(GeomFromText('POINT EMPTY'))", "NULL"},
               {"IsValid(MakeValidGeo(BuildMbr(0,0,2,2,3857)))", "-1"}, // an engine blob
               {"RetrieveCS(MakeValidGeo(BuildMbr(0,0,2,2,3857)))", "epsg:3857"},
               {"RetrieveCS(MakePoint(1,1))", "NULL"},
               {"RetrieveCS('SomeTable')", "epsg:32636"},
               {"RetrieveTableCS('SomeTable')", "epsg:32636"},
               {"RetrieveTableCS(MakePoint(1,1,4326))", "NULL"},
               {"RetrieveCS(ToOrvGeo(MakePoint(1,1,4326), 'epsg:3857'))", "epsg:3857"},
               {"RetrieveCS(ToOrvGeo(MakePoint(1,1,4326), 'nonsense'))", "epsg:4326"},
               {"AsText(FromOrvGeo(ToOrvGeo(MakePoint(1,1,4326), 'epsg:3857')))", "POINT(1 1)"},
               {"Srid(FromOrvGeo(ToOrvGeo(MakePoint(1,1), 'proj:+proj=sinu')))", "0"},
               {"RetrieveCS(ToOrvGeo(MakePoint(1,1), 'proj:+proj=sinu'))", "proj:+proj=sinu"},
               {"Srid(TransformToSLGeo(MakePoint(30,60,4326), 'epsg:3857'))", "3857"},
               {"AsText(TransformToSLGeo(MakePoint(30,60,4326), 'epsg:3857'))",
                "POINT(3339584.723798 8399737.889818)"},
               {"AsText(TransformToSLGeo(MakePoint(30,60), 'epsg:3857', 'epsg:4326'))",
                "POINT(3339584.723798 8399737.889818)"},
               {"AsText(TransformToSLGeo(MakePoint(1,2,3857), 'epsg:3857', 'epsg:4326'))", "POINT(1 2)"},
               {"AsText(FromOrvGeo(TransformToOrvGeo(MakePointZ(30,60,5,4326), 'epsg:3857')))",
                "POINT Z(3339584.723798 8399737.889818 5)"},
               // One value again and again, to two systems, from two, and beside one without image.
               {"AsText(TransformToSLGeo(MakePoint(30,60), 'epsg:3857', 'epsg:4326')) || "
                "Srid(TransformToSLGeo(MakePoint(30,60), 'epsg:32636', 'epsg:4326')) || "
                "(TransformToSLGeo(MakePoint(30,60), 'epsg:32636', 'epsg:4326') = "
                "TransformToSLGeo(MakePoint(30,60), 'epsg:32636', 'epsg:4284'))",
                "POINT(3339584.723798 8399737.889818)326360"},
               {"group_concat(Coalesce(AsText(TransformToSLGeo(MakePoint(0,y,4326), 'epsg:3857')), '-')) "
                "From (Select 0 y Union All Select 0 Union All Select 1e30 Union All Select 1e30 Union All "
                "Select 0)",
                "POINT(0 0),POINT(0 0),-,-,POINT(0 0)"},
               {"TransformToSLGeo(MakePoint(30,60), 'epsg:3857')", "NULL"}, // from where?
               {"TransformToSLGeo(MakePoint(30,60,4326), 'nonsense')", "NULL"},
               {"TransformToSLGeo(MakePoint(30,60,4326), NULL)", "NULL"},
               {"TransformToSLGeo(MakePoint(0,1e30,4326), 'epsg:3857')", "NULL"},
               {"AsText(FromOrvGeo(Resemblance(MakePoint(1,2))))", "POINT(1 2)"}});
    }
}

/// An arc goes through the engine blob as an arc and leaves for SpatiaLite as a line.
TEST(GeometryFunctions, Curves) {
    SqlDatabase database;
    const QByteArray blob = engine::toOrvGeo(curvedKinds(geometry::Dimensions::XY)[0], &database.cache());
    const std::string arc = "x'" + blob.toHex().toStdString() + "'";
    EXPECT_EQ(database.value("GeometryType(FromOrvGeo(" + arc + "))"), "LINESTRING");
    EXPECT_EQ(database.value("hex(ToOrvGeo(" + arc + "))"), blob.toHex().toUpper().toStdString());
}

} // namespace

} // namespace orvane::tests

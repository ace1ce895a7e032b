#include "host/providers/FileSource.h"
#include "host/providers/TestLayers.h"
#include "host/providers/reading/BatchCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace orvane::files {
namespace {

using dp::Comparison;
using dp::ScanValue;

/// SQLite's own answer to `cell comparison operand`: what a term has to agree with.
class SqliteJudge {
public:
    SqliteJudge() { sqlite3_open(":memory:", &database_); }
    ~SqliteJudge() { sqlite3_close(database_); }

    bool isTrue(const dp::Cell& cell, const dp::ScanTerm& term) {
        if (term.comparison == Comparison::Like || term.comparison == Comparison::Glob) {
            return false;
        }
        // In the order of the comparisons' codes; there are none for Like and Glob.
        static const char* const operators[] = {
            "=", "IS", ">", "<=", "<", ">=", "<>", "IS NOT", "", "", "IS NULL", "IS NOT NULL"};
        std::string sql = "SELECT ?1 ";
        if (term.comparison == Comparison::In) {
            sql += "IN (";
            for (std::size_t i = 0; i < term.operands.size(); ++i) {
                sql += (i ? ", ?" : "?") + std::to_string(i + 2);
            }
            sql += ")";
        } else {
            sql += operators[static_cast<int>(term.comparison) - 1];
            sql += term.operands.empty() ? "" : " ?2";
        }
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr);
        bindCell(statement, cell);
        for (std::size_t i = 0; i < term.operands.size(); ++i) {
            bindValue(statement, static_cast<int>(i) + 2, term.operands[i]);
        }
        const bool result = sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_int(statement, 0) != 0;
        sqlite3_finalize(statement);
        return result;
    }

private:
    static void bindCell(sqlite3_stmt* statement, const dp::Cell& cell) {
        const auto view = cell.type() >= dp::CellType::Text ? cell.view() : std::string_view();
        switch (cell.type()) {
        case dp::CellType::Null: break;
        case dp::CellType::Integer: sqlite3_bind_int64(statement, 1, cell.integer()); break;
        case dp::CellType::Real: sqlite3_bind_double(statement, 1, cell.real()); break;
        case dp::CellType::Text:
            sqlite3_bind_text(statement, 1, view.data(), static_cast<int>(view.size()), SQLITE_TRANSIENT);
            break;
        default:
            sqlite3_bind_blob(statement, 1, view.data(), static_cast<int>(view.size()), SQLITE_TRANSIENT);
        }
    }
    static void bindValue(sqlite3_stmt* statement, int position, const ScanValue& value) {
        if (const auto* integer = std::get_if<std::int64_t>(&value)) {
            sqlite3_bind_int64(statement, position, *integer);
        } else if (const auto* real = std::get_if<double>(&value)) {
            sqlite3_bind_double(statement, position, *real);
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            sqlite3_bind_text(statement, position, text->data(), static_cast<int>(text->size()),
                              SQLITE_TRANSIENT);
        }
    }

    sqlite3* database_ = nullptr;
};

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
const std::vector<double> REALS{
    0,   -0.0,       0.5,      -0.3,     5, 5.7, 1e300, -1e300, 9007199254740992.0, 9223372036854775808.0,
    0.1, float(0.1), HUGE_VAL, -HUGE_VAL};
const std::vector<std::int64_t> INTEGERS{
    0, 1, -1, 4, 5, 6, largest, smallest, largest - 1, 9007199254740993, 2147483647};
const std::vector<std::string> TEXTS{"", "abc", "ABC", "Ёлка", "5", "it's", "😀"};

/// A layer whose values sit on the edges of the types, with values of the wrong class stored below the
/// driver.
QString makeEdgyLayer(const QString& path, const Format& format) {
    const auto dataset = createDataset(format, path);
    auto* layer = dataset->CreateLayer("edges", nullptr, wkbPoint, nullptr);
    const auto addField = [&](const char* name, OGRFieldType type, OGRFieldSubType subType = OFSTNone) {
        OGRFieldDefn field(name, type);
        field.SetSubType(subType);
        layer->CreateField(&field);
    };
    addField("i", OFTInteger);
    addField("l", OFTInteger64);
    addField("r", OFTReal);
    addField("f", OFTReal, OFSTFloat32);
    addField("s", OFTString);
    addField("b", OFTInteger, OFSTBoolean);
    addField("d", OFTDate);
    dataset->StartTransaction();
    for (std::size_t row = 0; row < 60; ++row) {
        OGRFeature feature(layer->GetLayerDefn());
        if (row % 5 != 1) {
            feature.SetField("i", static_cast<int>(std::clamp<std::int64_t>(INTEGERS[row % INTEGERS.size()],
                                                                            -2147483647, 2147483647)));
        }
        if (row % 5 != 2) {
            feature.SetField("l", GIntBig{INTEGERS[row % INTEGERS.size()]});
        }
        if (row % 5 != 3) {
            feature.SetField("r", REALS[row % REALS.size()]);
        }
        if (row % 5 != 4) {
            feature.SetField("f", REALS[row % REALS.size()]);
        }
        if (row % 5 != 0) {
            feature.SetField("s", TEXTS[row % TEXTS.size()].c_str());
        }
        feature.SetField("b", static_cast<int>(row % 2));
        const OGRPoint point(1, 2);
        feature.SetGeometry(&point);
        if (row % 3 != 0) {
            feature.SetField("d", 1960 + static_cast<int>(row), 1, 2);
        }
        EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    }
    dataset->CommitTransaction();
    if (format.driver == std::string_view("GPKG") || format.driver == std::string_view("SQLite")) {
        for (const char* update : {"UPDATE edges SET i = 'abc', l = 5.7, r = 'x', d = 'no date' WHERE %1 = 3",
                                   "UPDATE edges SET i = 4.9, l = '5', r = x'01', s = 12, b = 7 WHERE %1 = 4",
                                   "UPDATE edges SET i = -0.3, r = 9007199254740993 WHERE %1 = 5"}) {
            const auto sql =
                QString::fromLatin1(update).arg(QString::fromUtf8(layer->GetFIDColumn())).toUtf8();
            dataset->ExecuteSQL(sql.constData(), nullptr, nullptr);
        }
    }
    return path;
}

/// Where the rows come from: a cache without room, one that holds small tables whole, and one that fills with
/// what the queries need.
enum class Memory { None, Whole, Growing };

class Terms : public testing::TestWithParam<std::tuple<Format, Memory>> {
protected:
    std::shared_ptr<LayerTable> open(const QString& path) {
        const auto memory = std::get<1>(GetParam());
        BatchCache::instance().setCapacity(memory == Memory::Whole ? 1 << 20 : 0);
        const auto table = openFile(path).front();
        table->openCursor({});
        if (memory == Memory::Growing) {
            BatchCache::instance().setCapacity(1 << 20);
        }
        return table;
    }
    void TearDown() override { BatchCache::instance().setCapacity(std::size_t{256} << 20); }

    ScanValue randomOperand() {
        switch (random_() % 8) {
        case 0: return std::monostate();
        case 1: return TEXTS[random_() % TEXTS.size()];
        case 2:
        case 3:
        case 4: return REALS[random_() % REALS.size()];
        default: return INTEGERS[random_() % INTEGERS.size()];
        }
    }

    dp::ScanTerm randomTerm(int attributes) {
        dp::ScanTerm term;
        term.attribute = static_cast<int>(random_() % static_cast<unsigned>(attributes));
        term.comparison = static_cast<Comparison>(1 + random_() % 13);
        const bool isNullTest =
            term.comparison == Comparison::IsNull || term.comparison == Comparison::IsNotNull;
        const std::size_t operands = isNullTest ? 0 : term.comparison == Comparison::In ? random_() % 90 : 1;
        for (std::size_t i = 0; i < operands; ++i) {
            term.operands.push_back(randomOperand());
        }
        return term;
    }

    QTemporaryDir directory_;
    std::mt19937 random_{7};
};

TEST_P(Terms, neverLeaveOutARow) {
    const auto format = std::get<0>(GetParam());
    const auto path = makeEdgyLayer(
        directory_.filePath(QStringLiteral("edges.") + QLatin1String(format.extension)), format);
    const auto whole = openFile(path).front();
    auto table = open(path);
    const int attributes = table->schema()->numAttributes();
    SqliteJudge judge;
    int leftOut = 0;
    for (int round = 0; round < 400; ++round) {
        if (round % 40 == 0) {
            table = open(path);
        }
        auto request = requestOf({static_cast<int>(random_() % static_cast<unsigned>(attributes))});
        request.terms.push_back(randomTerm(attributes));
        if (round % 3 == 0) {
            request.terms.push_back(randomTerm(attributes));
        }

        std::set<qlonglong> expected;
        const auto all = whole->openCursor(everything(*whole));
        int rows = 0;
        for (; all->next(); ++rows) {
            if (std::all_of(request.terms.begin(), request.terms.end(), [&](const dp::ScanTerm& term) {
                    return judge.isTrue(all->cell(term.attribute), term);
                })) {
                expected.insert(all->featureId().value().toLongLong());
            }
        }
        std::set<qlonglong> delivered;
        const auto cursor = table->openCursor(request);
        while (cursor->next()) {
            EXPECT_TRUE(delivered.insert(cursor->featureId().value().toLongLong()).second);
        }
        leftOut += rows - static_cast<int>(delivered.size());
        EXPECT_TRUE(std::includes(delivered.begin(), delivered.end(), expected.begin(), expected.end()))
            << "round " << round << ", attribute " << request.terms[0].attribute << ", comparison "
            << static_cast<int>(request.terms[0].comparison) << ": " << expected.size() << " rows expected, "
            << delivered.size() << " delivered";
    }
    EXPECT_GT(leftOut, 400 * 15) << "the terms are hardly used";
}

std::string nameOfTerms(const testing::TestParamInfo<Terms::ParamType>& test) {
    static const char* const memories[] = {"None", "Whole", "Growing"};
    return std::string(std::get<0>(test.param).extension) +
           memories[static_cast<int>(std::get<1>(test.param))];
}

INSTANTIATE_TEST_SUITE_P(Drivers, Terms,
                         testing::Combine(testing::Values(Format{"GPKG", "gpkg"}, Format{"SQLite", "sqlite"},
                                                          Format{"FlatGeobuf", "fgb"}),
                                          testing::Values(Memory::None, Memory::Whole, Memory::Growing)),
                         nameOfTerms);

class Windows : public testing::TestWithParam<std::size_t> {
protected:
    void SetUp() override { BatchCache::instance().setCapacity(GetParam()); }
    void TearDown() override { BatchCache::instance().setCapacity(std::size_t{256} << 20); }

    QTemporaryDir directory_;
};

TEST_P(Windows, meetBoundingBoxesNotShapes) {
    const auto path = directory_.filePath(QStringLiteral("shapes.gpkg"));
    std::vector<OGREnvelope> boxes;
    std::mt19937 random(3);
    const auto coordinate = [&] { return static_cast<double>(random() % 1000); };
    {
        const auto dataset = createDataset({"GPKG", "gpkg"}, path);
        auto* layer = dataset->CreateLayer("shapes", nullptr, wkbUnknown, nullptr);
        for (int i = 0; i < 200; ++i) {
            OGRLineString line;
            for (int point = 0; point < 3; ++point) {
                line.addPoint(coordinate(), coordinate());
            }
            OGRFeature feature(layer->GetLayerDefn());
            feature.SetGeometry(&line);
            ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
            line.getEnvelope(&boxes.emplace_back());
        }
    }
    const auto table = openFile(path).front();
    ASSERT_TRUE(table->usesWindow());
    for (int round = 0; round < 100; ++round) {
        dp::ScanRequest request;
        const double x = coordinate(), y = coordinate();
        request.window = geometry::Envelope{x, y, x + 20, y + 20};
        std::set<qlonglong> expected;
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            if (boxes[i].MinX <= x + 20 && boxes[i].MaxX >= x && boxes[i].MinY <= y + 20 &&
                boxes[i].MaxY >= y) {
                expected.insert(static_cast<qlonglong>(i) + 1);
            }
        }
        std::set<qlonglong> delivered;
        const auto cursor = table->openCursor(request);
        while (cursor->next()) {
            delivered.insert(cursor->featureId().value().toLongLong());
        }
        EXPECT_EQ(delivered, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Sources, Windows, testing::Values(0, 1 << 20),
                         [](const auto& test) { return test.param ? "fromMemory" : "fromFile"; });

} // namespace
} // namespace orvane::files

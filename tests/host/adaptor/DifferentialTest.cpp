// The same condition over a virtual table, whose cursors take terms over and use indices, and over an
// ordinary table of SQLite with the same rows and declaration: the answers are the same rows.

#include "host/adaptor/AdaptorFixture.h"
#include "host/adaptor/ConditionGenerator.h"

#include "host/adaptor/declaration/TableDeclaration.h"
#include "host/providers/FileSource.h"
#include "host/providers/FilesExtension.h"
#include "host/providers/results/ResultFile.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Shapes.h"
#include <orvane/engine/EngineIndices.h>

#include <QDateTime>
#include <QSqlDriver>
#include <QTemporaryDir>

#include <sqlite3.h>

namespace orvane::testing {
namespace {

using Row = MemoryTable::Row;

QVariant nullOr(std::mt19937& random, QVariant value) {
    return random() % 7 == 0 ? QVariant() : value;
}

template<class Values>
QVariant oneOf(std::mt19937& random, const Values& values) {
    return values[random() % std::size(values)];
}

QVector<dp::AttributeDefinitionPointer> attributes() {
    const auto system = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
    return {
        attribute("id", QMetaType::Int),
        attribute("i", QMetaType::Int),
        attribute("big", QMetaType::LongLong),
        attribute("r", QMetaType::Double),
        attribute("s", QMetaType::QString),
        attribute("t", QMetaType::QString),
        attribute("d", QMetaType::QDate),
        attribute("f", QMetaType::Bool),
        attribute("x", QMetaType::QByteArray),
        dp::AttributeDefinitionPointer(new dp::GeometryAttributeDefinition(QStringLiteral("geom"), system))};
}

std::vector<Row> makeRows(int count) {
    const qint64 integers[] = {0, 1, -1, 2, 3, 12, 13, 1000};
    const qint64 large[] = {0, 12, 9007199254740992, 9007199254740993, INT64_MAX, INT64_MIN, -1};
    const double reals[] = {0.0, -0.0, 1.5, 2.0, 0.1, 1e300, -1e-9, 1000.0, 9007199254740992.0};
    const char* const texts[] = {"",         "a",        "A",       "Ёлка", "ЁЛКА",      "ёлка", "Еж",
                                 "ель",      "Straße",   "strasse", "é",    "e",         "E",    "1",
                                 "12",       "1.5",      " 12",     "x_y",  "xay",       "100%", "🚲",
                                 "b'c",      "я",        "Я",       "йод",  "и\u0306од", "Иод",  "İstanbul",
                                 "ISTANBUL", "ıstanbul", "ſtar",    "STAR", "🚲 bike",    "Елена"};
    const char* const mixed[] = {"2021-03-04", "2021-03-04 05:06:07.000", "12", "b", "B", "\xC2\xA0"};
    const char* const dates[] = {"2021-03-04", "2020-02-29", "1999-12-31"};
    std::mt19937 random(42);
    std::vector<Row> rows;
    for (int id = 0; id < count; ++id) {
        rows.push_back(
            {id, nullOr(random, oneOf(random, integers)), nullOr(random, oneOf(random, large)),
             nullOr(random, oneOf(random, reals)),
             nullOr(random, QString::fromUtf8(texts[random() % std::size(texts)])),
             nullOr(random, QString::fromUtf8(mixed[random() % std::size(mixed)])),
             nullOr(random, QString::fromUtf8(dates[random() % std::size(dates)])),
             nullOr(random, static_cast<int>(random() % 2)),
             nullOr(random, random() % 2 ? QByteArray("a") : QByteArray()),
             nullOr(random, geometry::GeometryFactory::toWkb(
                                std::make_shared<geometry::Point>(static_cast<double>(random() % 12),
                                                                  static_cast<double>(random() % 12)),
                                QSysInfo::LittleEndian))});
    }
    return rows;
}

class DifferentialTest : public AdaptorTest {
protected:
    static constexpr int rowCount = 1100; ///< enough for attribute indices

    void SetUp() override {
        AdaptorTest::SetUp();
        open("memory", attributes(), makeRows(rowCount));
        files_ = std::make_unique<files::FilesExtension>(nullptr);
        Application::instance().core.pluginManager()->registerExtension(files_.get());
        files_->linkDataCatalog();
        for (const char* name : {"package.gpkg", "text.csv"}) {
            openCopy(directory_.filePath(QLatin1String(name)));
        }
        for (const auto& object : catalog().dataObjects()) {
            makePlain(dynamic_cast<const dp::Table&>(*object));
        }
    }
    void TearDown() override {
        AdaptorTest::TearDown();
        for (const QString& name : tables_) {
            define("Drop Table plain_" + name.toStdString());
        }
        files_.reset();
    }

    static sqlite3* database() {
        return *static_cast<sqlite3* const*>(engine().engineDatabase().driver()->handle().constData());
    }

    void openCopy(const QString& path) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(database(),
                           engine().translate(std::string("Select * From memory")).toUtf8().constData(), -1,
                           &statement, nullptr);
        QStringList names;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            names += QString::fromUtf8(sqlite3_column_name(statement, i));
        }
        files::ResultRows rows(statement, names, catalog(), *engine().cache());
        rows.appendAll();
        sqlite3_finalize(statement);
        files::ResultFile file(path, false);
        file.write(rows);
        file.publish();
        files::addToCatalog(catalog(), files::openFile(path));
        QCoreApplication::processEvents();
    }

    /// An ordinary table of the same declaration and rows.
    void makePlain(const dp::Table& table) {
        QString sql = QString::fromStdString(adaptor::TableDeclaration(*table.schema()).sql());
        sql.replace(0, QStringLiteral("Create Table x(").size(),
                    QStringLiteral("Create Table plain_%0(").arg(table.name()));
        ASSERT_EQ(define(sql.toStdString()), "");
        const QString columns = visibleColumns(table);
        ASSERT_EQ(ask(QStringLiteral("Insert Into plain_%0(%1) Select %1 From %0")
                          .arg(table.name(), columns)
                          .toStdString()),
                  "");
        ASSERT_EQ(ask("Select Count(*) From plain_" + table.name().toStdString()), std::to_string(rowCount));
        tables_ += table.name();
    }

    static QString visibleColumns(const dp::Table& table) {
        QStringList names;
        for (const auto& attribute : table.schema()->attributes()) {
            if (dynamic_cast<const dp::SimpleAttributeDefinition*>(attribute.constData())) {
                names += QLatin1Char('"') + attribute->name() + QLatin1Char('"');
            }
        }
        if (table.schema()->geometryIndex() >= 0) {
            names += QStringLiteral("cd750f8a9a2b4fac9b9b05eb53795d97");
        }
        return names.join(QLatin1String(", "));
    }

    /// The rows of a query in any order; "%0" in it stands for what is before table names.
    std::vector<std::string> rowsOf(QString query, const char* prefix) {
        const QString sql = engine().translate(query.replace(QLatin1String("%0"), QLatin1String(prefix)));
        const QStringList lines =
            QString::fromStdString(answer(engine().engineDatabase(), sql)).split(QLatin1Char('\n'));
        std::vector<std::string> rows;
        for (const QString& line : lines) {
            rows.push_back(line.toStdString());
        }
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    void expectSame(const std::string& query, unsigned seed) {
        const QString text = QString::fromStdString(query);
        const auto expected = rowsOf(text, "plain_");
        const auto found = rowsOf(text, "");
        ASSERT_EQ(expected.front().find("error"), std::string::npos) << expected.front() << '\n' << query;
        EXPECT_EQ(found.size(), expected.size()) << "seed " << seed << ": " << query;
        const auto [differing, wanted] =
            std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
        EXPECT_TRUE(found == expected) << "seed " << seed << ": " << query << "\n"
                                       << (differing == found.end() ? "nothing" : *differing)
                                       << " instead of " << (wanted == expected.end() ? "nothing" : *wanted);
    }

    QTemporaryDir directory_;
    QStringList tables_;
    std::unique_ptr<files::FilesExtension> files_;
};

/// Among them so many patterns on one column that it gets an index.
TEST_F(DifferentialTest, ConditionsFindTheRowsThatAPlainTableFinds) {
    for (unsigned seed = 0; seed < 1500 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const std::string table = tables_.at(static_cast<int>(seed % 3)).toStdString();
        expectSame("Select a.id From %0" + table + " a Where " + generator.condition("a", 2), seed);
    }
    const auto memory = std::dynamic_pointer_cast<dp::Table>(catalog().dataObject(QStringLiteral("memory")));
    constexpr quint32 texts = 4;
    EXPECT_GE(engine().indices(memory)->findIndex({{texts, engine::EngineIndices::Like}}), 1);
}

TEST_F(DifferentialTest, JoinsFindTheRowsThatPlainTablesFind) {
    for (unsigned seed = 0; seed < 250 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const std::string left = tables_.at(generator.below(3)).toStdString();
        const std::string right = tables_.at(generator.below(3)).toStdString();
        // The first table is kept small, for the plain join reads the second once for each of its rows.
        const std::string few = "a.id < " + std::to_string(5 + generator.below(30));
        const std::string on = generator.joinCondition("a", "b");
        const std::string more = generator.condition("b", 1);
        const std::string from = "Select a.id, b.id From %0" + left + " a";
        std::string query;
        switch (generator.below(4)) {
        case 0:
            query = from + " Left Join %0" + right + " b On " + on + " And (" + more + ") Where " + few;
            break;
        case 1:
            query = "Select a.id From %0" + left + " a Where " + few + " And " + generator.column("a") +
                    " In (Select " + generator.column("b") + " From %0" + right + " b Where " + more + ")";
            break;
        case 2:
            query = "Select a.id From %0" + left + " a Where " + few + " And Exists (Select 1 From %0" +
                    right + " b Where " + on + " And (" + more + "))";
            break;
        default: query = from + ", %0" + right + " b Where " + few + " And " + on + " And (" + more + ")";
        }
        expectSame(query, seed);
    }
}

TEST_F(DifferentialTest, OrderGroupsAndLimitsAreThoseOfAPlainTable) {
    for (unsigned seed = 0; seed < 600 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const std::string table = tables_.at(static_cast<int>(seed % 3)).toStdString();
        const std::string column = generator.column("a");
        const std::string from = " From %0" + table + " a Where " + generator.condition("a", 1);
        const std::string descending = generator.below(2) ? " Desc" : "";
        switch (seed % 4) {
        case 0:
            expectSame("Select Min(" + column + "), Max(" + column + "), Count(" + column + "), Count(*)" +
                           from,
                       seed);
            break;
        case 1: expectSame("Select Count(*)" + from + " Group By " + column, seed); break;
        case 2: expectSame("Select Count(Distinct " + column + ")" + from, seed); break;
        default:
            expectSame("Select a.id" + from + " Order By " + column + descending + ", a.id Limit " +
                           std::to_string(generator.below(20)) + " Offset " +
                           std::to_string(generator.below(10)),
                       seed);
        }
    }
}

/// Time and again, until the first column has an index.
TEST_F(DifferentialTest, TheFirstRowsInOrderOfSeveralColumnsAreThoseOfAPlainTable) {
    for (unsigned seed = 0; seed < 600 && !HasFailure(); ++seed) {
        ConditionGenerator generator(seed);
        const auto direction = [&generator] { return generator.below(2) ? " Desc, " : ", "; };
        const char* const first[] = {"a.s", "a.i", "a.d"};
        expectSame("Select a.id From %0" + tables_.at(static_cast<int>(seed % 3)).toStdString() +
                       " a Order By " + first[seed / 3 % 3] + direction() + generator.column("a") +
                       direction() + "a.id Limit " + std::to_string(generator.below(200)) + " Offset " +
                       std::to_string(generator.below(50)),
                   seed);
    }
}

} // namespace
} // namespace orvane::testing

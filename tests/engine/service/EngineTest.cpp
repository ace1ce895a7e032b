#include "support/Application.h"
#include "support/CapturedLog.h"
#include "support/MemoryTable.h"
#include "support/Query.h"

#include "platform/core/SqliteException.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/relations/ResemblanceExtension.h"
#include "platform/sql/lexing/SqlError.h"
#include <orvane/engine/Collator.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/EngineIndices.h>
#include <orvane/engine/SqliteStringBuilder.h>
#include <orvane/engine/TableManagement.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSqlQuery>

#include <sqlite3.h>

namespace orvane {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

Engine& theEngine() {
    return *testing::Application::instance().engine;
}

std::string ask(const char* sql) {
    return testing::answer(theEngine().engineDatabase(), QString::fromUtf8(sql));
}

/// A management that reports its end.
class Management : public engine::TableManagement {
public:
    Management(QString name, std::shared_ptr<cs::CoordSystem> coordSystem, int* destroyed = nullptr)
        : name_(std::move(name)), coordSystem_(std::move(coordSystem)), destroyed_(destroyed) {}
    ~Management() override {
        if (destroyed_) {
            ++*destroyed_;
        }
    }
    void detach() override { ++detached; }
    QString tableName() const override { return name_; }
    void indicesCleared() override { ++cleared; }
    std::shared_ptr<cs::CoordSystem> coordSystem() override { return coordSystem_; }

    int detached = 0;
    int cleared = 0;

private:
    QString name_;
    std::shared_ptr<cs::CoordSystem> coordSystem_;
    int* destroyed_;
};

Management* registerManagement(const char* name, int epsg = 0, int* destroyed = nullptr) {
    auto management = std::make_unique<Management>(
        QString::fromUtf8(name), epsg ? theEngine().cache()->get(epsg) : nullptr, destroyed);
    Management* raw = management.get();
    theEngine().registerManagement(std::move(management));
    return raw;
}

class Resembling : public geometry::ResemblanceExtension {
public:
    std::shared_ptr<const geometry::Geometry> resemblance(const std::shared_ptr<const geometry::Geometry>&,
                                                          const Setup&) override {
        return nullptr;
    }
    void adjustSetup(Setup&) override { ++asked; }
    int asked = 0;
};

} // namespace

TEST(Engine, IsLoadedOncePerCore) {
    Core& core = testing::Application::instance().core;
    EXPECT_EQ(Engine::load(&core), &theEngine());
    EXPECT_EQ(core.findService<Engine>(), &theEngine());
    EXPECT_EQ(theEngine().engineDatabase().connectionName(), QStringLiteral("ORVANEENGINE"));
    EXPECT_EQ(theEngine().engineDatabase().driverName(), QStringLiteral("QTSQLITE"));
}

TEST(Engine, DatabaseHasSpatialiteAndTheLocaleCollation) {
    EXPECT_EQ(ask("Select ST_AsText(ST_Buffer(MakePoint(1, 2), 0)) Is Null, GeometryType(MakePoint(1, 2))"),
              "1|POINT");
    EXPECT_EQ(ask("Select group_concat(column1, ' ') From (Select column1 From "
                  "(Values('cherry'),('Banana'),('apple')) "
                  "Order By column1 Collate Locale)"),
              "apple Banana cherry");
    EXPECT_EQ(ask("Select 'МОСКВА' = 'москва' Collate Locale, 'a-b' = 'ab' Collate Locale"), "1|0");
}

TEST(Engine, NewCacheDoesNotRemember) {
    EXPECT_EQ(theEngine().cache()->useGaiaCache(), engine::EngineCache::NoMemo);
}

TEST(Engine, ResemblanceExtensionsReachTheCacheThroughThePlugInManager) {
    Resembling extension;
    QObject other;
    testing::Application::instance().core.pluginManager()->registerExtension(&other);
    testing::Application::instance().core.pluginManager()->registerExtension(&extension);
    EXPECT_EQ(extension.asked, 1);
}

TEST(Engine, ExtensionThatIsNotThereIsNamed) {
    try {
        theEngine().loadDatabaseModule("/no/such/extension");
        FAIL();
    } catch (const err::SqliteException& exception) {
        EXPECT_THAT(exception.what(), StartsWith("Загрузка расширения /no/such/extension: "));
    }
}

TEST(Engine, AdaptorThatFailsWithoutATextIsNamed) {
    const auto failing = [](sqlite3*, char**, Core*, engine::EngineCache*) { return 1; };
    try {
        theEngine().loadTableAdapterModule(nullptr, failing);
        FAIL();
    } catch (const err::SqliteException& exception) {
        EXPECT_STREQ(exception.what(), "Загрузка расширения tableAdaptor: ");
    }
}

TEST(Engine, ManagementsAreFoundByExactNameAndTheirSystemInAnyCase) {
    int destroyed = 0;
    registerManagement("Roads", 3857, &destroyed);
    Management* roads = registerManagement("Roads", 3857);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(theEngine().findManagement(QStringLiteral("Roads")), roads);
    EXPECT_EQ(theEngine().findManagement(QStringLiteral("roads")), nullptr);
    EXPECT_EQ(theEngine().cache()->tableCS(QStringLiteral("roads"))->epsg(), 3857);
    EXPECT_EQ(theEngine().cache()->tableCS(QStringLiteral("Rivers")), nullptr);
    registerManagement("b", 4326);
    registerManagement("B", 32637);
    EXPECT_EQ(theEngine().cache()->tableCS(QStringLiteral("b"))->epsg(), 4326); // exact before lenient
    theEngine().detachTable(QStringLiteral("roads"));
    EXPECT_EQ(roads->detached, 0);
    theEngine().detachTable(QStringLiteral("Roads"));
    EXPECT_EQ(roads->detached, 1);
    registerManagement("", 4326, &destroyed);
    EXPECT_EQ(destroyed, 2); // one without a name is discarded
    for (const char* name : {"Roads", "b", "B"}) {
        theEngine().unRegisterManagement(QString::fromUtf8(name));
        EXPECT_EQ(theEngine().findManagement(QString::fromUtf8(name)), nullptr);
    }
}

TEST(Engine, IndexStoresStayUnderTheirTablesName) {
    const auto table = [](const char* name) {
        return std::make_shared<testing::MemoryTable>(
            QString::fromUtf8(name),
            QVector<dp::AttributeDefinitionPointer>{testing::attribute("a", QMetaType::Int)});
    };
    const auto roads = table("Roads");
    engine::EngineIndices* store = theEngine().indices(roads);
    EXPECT_EQ(theEngine().indices(table("Roads")), store);
    EXPECT_NE(theEngine().indices(table("roads")), store);
    ASSERT_TRUE(store->createStorage(*roads->schema()));
    Management* management = registerManagement("Roads");
    theEngine().clearIndices(roads);
    EXPECT_FALSE(store->isCorrect());
    EXPECT_EQ(management->cleared, 1);
    EXPECT_EQ(theEngine().indices(roads), store);
    theEngine().clearIndices(table("Rivers")); // has neither
    theEngine().unRegisterManagement(QStringLiteral("Roads"));
}

TEST(Engine, CancellingWithNothingRunningDoesNotHitTheNextStatement) {
    theEngine().cancelQuery();
    EXPECT_EQ(ask("Select 1"), "1");
}

TEST(Engine, TextThatDoesNotParseComesBackAndIsLogged) {
    const tests::CapturedLog log;
    const QString text = QStringLiteral("Select Город From Where");
    EXPECT_EQ(theEngine().translate(text), text);
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].level, LogLevel::Info);
    EXPECT_EQ(log.entries[0].sourceFile, QStringLiteral("Engine"));
    EXPECT_THAT(log.entries[0].text.toStdString(), HasSubstr("проверьте корректность выражений в запросе"));
}

TEST(Engine, ExpressionOnlyRefusesStatements) {
    engine::SqliteStringBuilder builder({}, nullptr);
    EXPECT_FALSE(theEngine().tryToTranslate("Select 1", builder, Engine::ExpressionOnly));
    ASSERT_EQ(builder.errors().size(), 1u);
    EXPECT_THAT(builder.errors()[0]->what(), HasSubstr("Выражение"));
    EXPECT_TRUE(theEngine().tryToTranslate("Select 1", builder, Engine::ParseAsIs));
    EXPECT_TRUE(theEngine().tryToTranslate("1 + Len('abc')", builder, Engine::ExpressionOnly));
}

TEST(Engine, ComparisonsOfTranslatedTextAreUnderLocale) {
    EXPECT_THAT(theEngine().translate(std::string("Select a.x From a Where a.x = a.y")).toStdString(),
                HasSubstr("Collate Locale"));
    EXPECT_EQ(theEngine().translate(std::string("Select 'Ё'")),
              theEngine().translate(QStringLiteral("Select 'Ё'")));
}

TEST(Engine, NamesBeyondAsciiAreSpeltAsTheyAreDeclared) {
    const engine::OwnStatements own;
    QSqlQuery query(theEngine().engineDatabase());
    query.exec(QStringLiteral("Create Temp Table Реки (Ключ, Имя)"));
    query.exec(QStringLiteral("Create Temp Table длины (ключ)"));
    const std::pair<const char*, const char*> texts[] = {
        {"Select КЛЮЧ, имя As Я From РЕКИ Order By я", "Select Ключ, Имя As Я From Реки Order By Я"},
        {"Select р.ключ, реки.*, ДЛИНЫ.Ключ From реки Р, Длины Where ИМЯ = Чужое",
         "Select Р.Ключ, Реки.*, длины.ключ From Реки Р, длины Where (Имя Collate Locale = Чужое)"},
        {"With Д(Ж) As (Table РЕКИ) Select д.ж From д",
         "With Д(Ж) As (Select * From Реки) Select Д.Ж From Д"},
        {"Update РЕКИ Set ИМЯ = Имя(1)", "Update Реки Set Имя = Имя(1)"}};
    for (const auto& [text, expected] : texts) {
        EXPECT_EQ(theEngine().translate(std::string(text)).toStdString(), expected);
    }
    query.exec(QStringLiteral("Drop Table Реки"));
    query.exec(QStringLiteral("Drop Table длины"));
    engine::SqliteStringBuilder builder({}, nullptr);
    builder.setTableColumns([](const std::wstring&) { return std::vector<std::wstring>{L"Площадь"}; });
    EXPECT_TRUE(theEngine().tryToTranslate("площадь + 1", builder, Engine::ExpressionOnly));
    EXPECT_EQ(builder.query(), L"concat((Площадь),(1))");
    EXPECT_TRUE(builder.tableColumns()) << "what the caller gave stays";
}

TEST(Collator, IgnoresCaseButNotPunctuation) {
    const QString a = QStringLiteral("abc"), b = QStringLiteral("ABC"), c = QStringLiteral("ab-c");
    const auto compare = [](const QString& x, const QString& y) {
        return engine::collatorCompare(engine::collator(), x.size() * 2, x.utf16(), y.size() * 2, y.utf16());
    };
    EXPECT_EQ(compare(a, b), 0);
    EXPECT_NE(compare(a, c), 0);
}

} // namespace orvane

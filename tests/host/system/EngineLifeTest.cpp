// Cores that come and go in one process, and what outlives them.

#include "host/adaptor/Adaptor.h"
#include "host/providers/FileSource.h"
#include "host/providers/FilesExtension.h"
#include "platform/core/Core.h"
#include "support/Query.h"
#include <orvane/Engine.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

namespace orvane {

TEST(EngineLife, EachCoreHasAnEngineAndAKeptConnectionNothingOfIt) {
    QPointer<Engine> before;
    for (int round = 0; round < 3; ++round) {
        dp::DataCatalog catalog;
        auto core = std::make_unique<Core>();
        core->registerService(&catalog);
        const QPointer<Engine> engine = Engine::load(core.get());
        EXPECT_EQ(Engine::load(core.get()), engine);
        {
            Core second; // while the first is there, the process has one engine
            EXPECT_EQ(Engine::load(&second), engine);
        }
        engine->loadTableAdapterModule(core.get(), adaptor::initialise);
        files::FilesExtension files(nullptr);
        core->pluginManager()->registerExtension(&files);
        files.linkDataCatalog();
        files::addToCatalog(catalog, files::openFile(QStringLiteral(ORVANE_EXAMPLE_DATA "/cities.shp")));
        QCoreApplication::processEvents();

        const QSqlDatabase kept = engine->engineDatabase();
        QSqlQuery reader(kept);
        reader.setForwardOnly(true);
        ASSERT_TRUE(reader.exec(QStringLiteral("Select name, rowid From cities Where UpCase(name) > 'B'")));
        ASSERT_TRUE(reader.next());
        ASSERT_EQ(testing::answer(kept, QStringLiteral("Begin")), "");
        ASSERT_EQ(testing::answer(kept, QStringLiteral("Select Count(*) From cities")), "4442");
        core.reset();
        EXPECT_FALSE(engine);

        EXPECT_EQ(testing::answer(kept, QStringLiteral("Select 'a' = 'A' Collate Locale, "
                                                       "Cast('ё' As Text) = 'Ё' Collate Locale")),
                  "1|1");
        EXPECT_FALSE(reader.next());
        for (const char* sql :
             {"Select Count(*) From cities", "Select UpCase('x')", "Select AsText(MakePoint(1, 2))",
              "Create Virtual Table x Using OrvaneTable(cities)",
              "Create Virtual Table x Using VirtualXPath('x', 'y')"}) {
            EXPECT_THAT(testing::answer(kept, QLatin1String(sql)), ::testing::StartsWith("error: no such"))
                << sql;
        }
        catalog.close(QStringLiteral("cities"));
        QCoreApplication::processEvents();
    }
}

} // namespace orvane

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

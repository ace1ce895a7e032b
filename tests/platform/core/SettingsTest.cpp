#include "platform/core/SqliteException.h"
#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/dp/SqliteDatabaseAccess.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

namespace {

using orvane::DefaultSettingsList;
using orvane::TypedSettings;

TEST(TypedSettings, KeepValuesOfTheTypeOfTheirKey) {
    TypedSettings settings;
    EXPECT_EQ(settings.value(DefaultSettingsList::IndexDirectory), QVariant(QString()));
    EXPECT_TRUE(settings.setValue(DefaultSettingsList::IndexDirectory, QByteArray("/Данные")));
    EXPECT_EQ(settings.value(DefaultSettingsList::IndexDirectory), QVariant(QStringLiteral("/Данные")));
    EXPECT_FALSE(settings.setValue(DefaultSettingsList::IndexDirectory, QVariantMap()));
    EXPECT_EQ(settings.value(DefaultSettingsList::IndexDirectory).toString(), QStringLiteral("/Данные"));

    const auto noKey = static_cast<DefaultSettingsList::Key>(7);
    EXPECT_FALSE(settings.setValue(noKey, 1));
    EXPECT_FALSE(settings.value(noKey).isValid());
}

TEST(ServiceLocator, HandsOutOneServicePerTypeAndKeepsItAliveWhileItIsUsed) {
    auto& locator = orvane::serviceLocator();
    ASSERT_EQ(locator.find<TypedSettings>(), nullptr);
    const auto first = std::make_shared<TypedSettings>();
    EXPECT_EQ(locator.exchange(first), nullptr);
    const std::shared_ptr<TypedSettings> held = locator.find<TypedSettings>();
    EXPECT_EQ(held, first);
    EXPECT_EQ(locator.find<int>(), nullptr);
    EXPECT_EQ(locator.exchange<TypedSettings>(nullptr), first);
    EXPECT_EQ(locator.find<TypedSettings>(), nullptr);
}

TEST(SqliteException, CarriesTheMessageAndWhatSqliteSaid) {
    orvane::dp::SqliteDatabaseAccess database(QStringLiteral(":memory:"));
    EXPECT_ANY_THROW(database.exec(QStringLiteral("Select * From roads")));
    const orvane::err::SqliteException failure(database.handle(), QStringLiteral("Загрузка"));
    EXPECT_STREQ(failure.what(), "Загрузка");
    EXPECT_EQ(failure.message(), QStringLiteral("Загрузка"));
    EXPECT_EQ(failure.sqliteMessage(), QStringLiteral("no such table: roads"));
    EXPECT_EQ(failure.code(), SQLITE_ERROR);

    const orvane::err::SqliteException without(nullptr, QString());
    EXPECT_TRUE(without.sqliteMessage().isEmpty());
    EXPECT_EQ(without.code(), SQLITE_OK);
}

} // namespace

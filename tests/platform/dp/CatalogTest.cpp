#include "platform/dp/DataCatalogWithSelection.h"

#include <gtest/gtest.h>

namespace {

using namespace orvane::dp;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// A catalogue that writes down what it tells.
struct NotedCatalog {
    NotedCatalog() {
        QObject::connect(&catalog, &DataCatalog::dataObjectAdded,
                         [this](DataObject* object) { notes << text("added ") + object->name(); });
        QObject::connect(&catalog, &DataCatalog::dataObjectRemoved,
                         [this](const QString& name) { notes << text("removed ") + name; });
        QObject::connect(
            &catalog, &DataCatalog::dataObjectRenamed,
            [this](const QString& from, const QString& to) { notes << from + text(" to ") + to; });
        QObject::connect(&catalog, &DataCatalogWithSelection::selectionChanged,
                         [this] { notes << text("selection"); });
    }
    std::shared_ptr<DataObject> add(const char* name) {
        auto object = std::make_shared<DataObject>(text(name));
        return catalog.add(object) ? object : nullptr;
    }
    QStringList take() { return std::exchange(notes, {}); }

    DataCatalogWithSelection catalog;
    QStringList notes;
};

TEST(DataCatalog, NamesDifferInMoreThanLetterCase) {
    NotedCatalog noted;
    const auto roads = noted.add("Дороги");
    EXPECT_EQ(noted.add("ДОРОГИ"), nullptr);
    EXPECT_FALSE(noted.catalog.add(nullptr));
    const auto cities = noted.add("Cities");
    EXPECT_EQ(noted.catalog.dataObjects(), (QList<std::shared_ptr<DataObject>>{roads, cities}));
    EXPECT_EQ(noted.catalog.dataObject(text("дороги")), roads);
    EXPECT_EQ(noted.catalog.dataObject(text("rivers")), nullptr);
    EXPECT_EQ(noted.take(), (QStringList{text("added Дороги"), text("added Cities")}));
    EXPECT_EQ(noted.catalog.freeName(text("rivers")), text("rivers"));
    noted.add("cities_2");
    EXPECT_EQ(noted.catalog.freeName(text("CITIES")), text("CITIES_3"));
}

TEST(DataCatalog, RenamesWhereTheNameIsFree) {
    NotedCatalog noted;
    const auto roads = noted.add("roads");
    noted.add("cities");
    noted.take();
    EXPECT_FALSE(noted.catalog.rename(text("roads"), text("Cities")));
    EXPECT_FALSE(noted.catalog.rename(text("rivers"), text("lakes")));
    EXPECT_FALSE(noted.catalog.rename(text("roads"), QString()));
    EXPECT_TRUE(noted.catalog.rename(text("roads"), text("Roads"))); // only the letter case
    EXPECT_TRUE(noted.catalog.rename(text("ROADS"), text("улицы")));
    EXPECT_TRUE(noted.catalog.rename(text("улицы"), text("улицы")));
    EXPECT_EQ(roads->name(), text("улицы"));
    EXPECT_EQ(noted.take(), (QStringList{text("roads to Roads"), text("Roads to улицы")}));
}

TEST(DataCatalog, AsksTheUsersOfAnObjectToLetGoBeforeItIsRemoved) {
    NotedCatalog noted;
    const auto roads = noted.add("roads");
    QObject::connect(roads.get(), &DataObject::closeRequested, [&noted] { noted.notes << text("close"); });
    noted.catalog.setSelection(Selection(roads, {FeatureId(1)}));
    noted.take();
    EXPECT_FALSE(noted.catalog.close(text("rivers")));
    EXPECT_TRUE(noted.catalog.close(text("Roads")));
    EXPECT_EQ(noted.take(), (QStringList{text("close"), text("selection"), text("removed roads")}));
    EXPECT_TRUE(noted.catalog.selection().isEmpty());
    EXPECT_EQ(noted.catalog.dataObject(text("roads")), nullptr);
    roads->setName(text("streets")); // no longer the catalogue's business
    EXPECT_TRUE(noted.take().isEmpty());
}

TEST(DataCatalog, TellsOnceOfAnObjectThatItsUserClosesAsWell) {
    NotedCatalog noted;
    const auto roads = noted.add("roads");
    int depth = 0;
    QObject::connect(roads.get(), &DataObject::closeRequested,
                     [&] { EXPECT_TRUE(depth++ > 0 || noted.catalog.close(text("roads"))); });
    noted.take();
    EXPECT_TRUE(noted.catalog.close(text("roads")));
    EXPECT_EQ(noted.take(), QStringList{text("removed roads")});
}

TEST(DataObject, MakesNamesThatSqlCanUse) {
    const std::vector<std::pair<QString, QString>> cases = {
        {text("roads"), text("roads")}, {text("  улицы и \"дома\" \t"), text("улицы и \"дома\"")},
        {text("a\nb\x7f"), text("ab")}, {QString(), text("table")},
        {text(" \r\n"), text("table")}, {text("🗺️ map"), text("🗺️ map")},
    };
    for (const auto& [name, valid] : cases) {
        EXPECT_EQ(DataObject::makeValidObjectName(name), valid) << qPrintable(name);
    }
}

TEST(DataObject, StandsForItself) {
    const auto object = std::make_shared<DataObject>(text("roads"));
    EXPECT_EQ(object->underlyingObject(), object);
}

} // namespace

#pragma once

#include "support/Application.h"
#include "support/MemoryTable.h"
#include "support/Query.h"

#include "host/adaptor/Adaptor.h"
#include "platform/cs/CoordSystem.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include <orvane/EngineExtension.h>

#include <gtest/gtest.h>

namespace orvane::testing {

/// Serves every memory table through the adaptor's module.
class MemoryExtension : public EngineExtension {
    Q_OBJECT
public:
    explicit MemoryExtension(bool renames) : EngineExtension(nullptr), renames_(renames) {
        Application::instance().core.pluginManager()->registerExtension(this);
    }
    using EngineExtension::handleDataObject;
    using EngineExtension::rename;

protected:
    QString virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) override {
        if (!dynamic_cast<const MemoryTable*>(object)) {
            return {};
        }
        moduleArguments << object->name();
        return QString::fromLatin1(adaptor::moduleName());
    }
    bool renameRealized() const override { return renames_; }

private:
    bool renames_;
};

/// The column "shape"; without a system for 0.
inline dp::AttributeDefinitionPointer geometryAttribute(int epsg) {
    return dp::AttributeDefinitionPointer(new dp::GeometryAttributeDefinition(
        QStringLiteral("shape"),
        epsg ? cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(epsg) : nullptr));
}

inline QByteArray wkb(const geometry::Geometry& geometry) {
    return geometry::GeometryFactory::toWkb(geometry.clone(), QSysInfo::LittleEndian);
}

/// An engine with the adaptor, and memory tables in its catalogue.
class AdaptorTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static const bool loaded = [] {
            auto& application = Application::instance();
            application.engine->loadTableAdapterModule(&application.core, adaptor::initialise);
            return true;
        }();
        ASSERT_TRUE(loaded);
    }

    void SetUp() override { link(false); }
    void TearDown() override {
        for (const auto& object : catalog().dataObjects()) {
            catalog().close(object->name());
        }
        QCoreApplication::processEvents();
    }

    void link(bool renames) {
        extension_ = std::make_unique<MemoryExtension>(renames);
        extension_->linkDataCatalog();
        QObject::disconnect(&catalog(), &dp::DataCatalog::dataObjectRenamed, nullptr, nullptr);
        QObject::connect(&catalog(), &dp::DataCatalog::dataObjectRenamed, extension_.get(),
                         &MemoryExtension::rename);
    }

    static dp::DataCatalog& catalog() { return Application::instance().catalog; }
    static Engine& engine() { return *Application::instance().engine; }

    static std::shared_ptr<MemoryTable> open(const char* name,
                                             QVector<dp::AttributeDefinitionPointer> attributes,
                                             std::vector<MemoryTable::Row> rows) {
        auto table =
            std::make_shared<MemoryTable>(QString::fromUtf8(name), std::move(attributes), std::move(rows));
        EXPECT_TRUE(catalog().add(table));
        QCoreApplication::processEvents();
        return table;
    }

    static std::string ask(const std::string& sql) {
        return answer(engine().engineDatabase(), QString::fromStdString(sql));
    }
    /// A statement that makes or drops tables.
    static std::string define(const std::string& sql) {
        return ownAnswer(engine().engineDatabase(), QString::fromStdString(sql));
    }

    std::unique_ptr<MemoryExtension> extension_;
};

} // namespace orvane::testing

#include "platform/core/Core.h"
#include "platform/plugin/Extension.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using orvane::Core;
namespace di = orvane::di;
namespace plugin = orvane::plugin;

namespace {

class Service : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
};

class DerivedService : public Service {
    Q_OBJECT
public:
    using Service::Service;
};

class KnownExtension : public plugin::Extension {
    Q_OBJECT
public:
    using Extension::Extension;
};

class Owner : public QObject {
    Q_OBJECT
public:
    void registerExtension(KnownExtension* extension) { extensions.push_back(extension); }
    std::vector<KnownExtension*> extensions;
};

const QString serviceName = QStringLiteral("Service");

TEST(Core, FindsServicesByClassAndByTheNamesOfTheirBases) {
    Core core;
    DerivedService derived;
    core.registerService(&derived);
    struct Case {
        const QMetaObject* metaObject;
        QString name;
        QObject* found;
    };
    const std::vector<Case> cases = {
        {&Service::staticMetaObject, serviceName, &derived},
        {&Service::staticMetaObject, QString(), &derived},
        {&DerivedService::staticMetaObject, serviceName, &derived},
        {nullptr, QStringLiteral("DerivedService"), &derived},
        {&Service::staticMetaObject, QStringLiteral("Owner"), nullptr},
        {&Owner::staticMetaObject, QString(), nullptr},
        {&Core::staticMetaObject, QStringLiteral("orvane::Core"), &core},
        {nullptr, QString(), nullptr},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(core.findService(test.metaObject, test.name), test.found)
            << (test.metaObject ? test.metaObject->className() : "any") << " " << qPrintable(test.name);
    }
}

TEST(Core, ForgetsAServiceThatIsDestroyed) {
    Core core;
    auto first = std::make_unique<Service>();
    Service second;
    core.registerService(first.get());
    core.registerService(&second);
    EXPECT_EQ(core.findService<Service>(), first.get());
    first.reset();
    EXPECT_EQ(core.findService<Service>(), &second);
}

TEST(Dependencies, AreProvidedAtOnceOrLaterAndOnlyOnce) {
    Core core;
    Service early;
    core.registerService(&early);
    std::vector<std::string> calls;
    di::DependencyManager& manager = *core.dependencyManager();
    const auto note = [&calls](const char* wish) {
        return [&calls, wish](QObject* service) {
            calls.push_back(wish + std::string(service->metaObject()->className()));
        };
    };
    manager.addDependency(&Service::staticMetaObject, serviceName, note("early "));
    manager.addDependency(&Owner::staticMetaObject, QStringLiteral("Owner"), note("late "));
    EXPECT_EQ(calls, std::vector<std::string>{"early Service"});
    Owner owner;
    core.registerService(&owner);
    core.registerService(&owner);
    Owner other;
    core.registerService(&other);
    EXPECT_EQ(calls, (std::vector<std::string>{"early Service", "late Owner"}));
    EXPECT_EQ(manager.getService(QStringLiteral("Owner")), &owner);
}

TEST(Dependencies, AWishMayWishAgainWhileItIsFulfilled) {
    di::DependencyManager manager;
    Owner* found = nullptr;
    manager.addDependency(&Service::staticMetaObject, serviceName, [&](QObject*) {
        manager.addDependency(&Owner::staticMetaObject, QString(),
                              [&](QObject* owner) { found = qobject_cast<Owner*>(owner); });
    });
    Service service;
    Owner owner;
    manager.provide(&service);
    manager.provide(&owner);
    EXPECT_EQ(found, &owner);
}

TEST(Extension, GetsItsServicesFromTheCoreAboveItOrFromThePluginManager) {
    Core core;
    Service early;
    core.registerService(&early);
    QObject between(&core);
    KnownExtension below(&between);
    KnownExtension registered;
    EXPECT_EQ(registered.dependencyManager()->getService(serviceName), nullptr);
    core.pluginManager()->registerExtension(&registered);
    Owner late;
    core.registerService(&late);
    for (const KnownExtension* extension : {&below, &registered}) {
        EXPECT_EQ(extension->dependencyManager()->getService(serviceName), &early);
        EXPECT_EQ(extension->dependencyManager()->getService(QStringLiteral("Owner")), &late);
        EXPECT_EQ(extension->dependencyManager()->getService(QStringLiteral("orvane::Core")), &core);
    }
}

TEST(Extension, WishesEndWithTheExtension) {
    Core core;
    bool called = false;
    {
        KnownExtension extension(&core);
        extension.dependencyManager()->addDependency(&Service::staticMetaObject, serviceName,
                                                     [&called](QObject*) { called = true; });
    }
    Service service;
    core.registerService(&service);
    EXPECT_FALSE(called);
}

TEST(PluginManager, BringsExtensionsAndConsumersTogetherWhicheverCameFirst) {
    Core core;
    plugin::PluginManager& plugins = *core.pluginManager();
    KnownExtension before;
    KnownExtension after;
    Service stranger;
    plugins.registerExtension(&before);
    plugins.registerExtension(&stranger);
    auto owner = std::make_unique<Owner>();
    plugins.registerExtensionConsumer(
        std::make_unique<plugin::ExtensionConsumerAdapter<KnownExtension, Owner>>(owner.get()));
    plugins.registerExtension(&after);
    plugins.registerExtension(&after);
    plugins.registerExtension(nullptr);
    plugins.registerExtensionConsumer(nullptr);
    EXPECT_EQ(owner->extensions, (std::vector<KnownExtension*>{&before, &after}));

    owner.reset();
    KnownExtension orphan;
    plugins.registerExtension(&orphan); // nobody is left to take it
}

} // namespace

#include "CoreTest.moc"

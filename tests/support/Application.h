#pragma once

#include "platform/core/Core.h"
#include "platform/dp/DataCatalogWithSelection.h"
#include <orvane/Engine.h>

#include <QCoreApplication>

namespace orvane::testing {

/// The application of a test or benchmark: there is one engine per process, so all share it.
struct Application {
    static Application& instance() {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        static auto* const qt = new QCoreApplication(argc, argv);
        Q_UNUSED(qt)
        // The driver plug-in of the build, without a variable in the environment.
        QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath() +
                                         QStringLiteral("/../plugins"));
        static Application application;
        return application;
    }

    Core core;
    dp::DataCatalogWithSelection catalog;
    Engine* engine;

private:
    Application() : engine(nullptr) {
        core.registerService(&catalog);
        engine = Engine::load(&core);
    }
};

} // namespace orvane::testing

#pragma once

#include "platform/core/Core.h"
#include "platform/dp/DataCatalogWithSelection.h"
#include <orvane/Engine.h>

#include <QCoreApplication>

namespace orvane::testing {

/// The application of a test program: there is one engine per process, so the tests share it.
struct Application {
    static Application& instance() {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        static auto* const qt = new QCoreApplication(argc, argv);
        Q_UNUSED(qt)
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

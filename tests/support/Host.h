#pragma once

#include "platform/core/Core.h"
#include "platform/dp/DataCatalogWithSelection.h"
#include "platform/dp/Table.h"
#include <orvane/Engine.h>

#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace orvane::files {
class FilesExtension;
}

namespace orvane::testing {

/// The engine with the adaptor and the file provider, as an application sets them up: of the tests and of the
/// benchmarks. There is one engine per process, so all share it.
class Host {
public:
    static Host& instance();

    /// Opens every layer of a file.
    void open(const QString& path);
    /// Opens the example data.
    void openExamples();
    void closeAll();
    /// Lets the engine follow the catalogue.
    static void deliverSignals();

    /// The answer of a statement of the dialect, as testing::answer gives it.
    std::string ask(const QString& statement);
    /// All features of a table, in the order of its rows.
    static std::vector<dp::FeaturePtr> features(dp::Table& table);
    QString path(const QString& fileName) const { return directory_.filePath(fileName); }

    dp::DataCatalogWithSelection catalog;
    Core core;
    Engine* engine;
    std::unique_ptr<files::FilesExtension> files;

private:
    Host();

    QTemporaryDir directory_;
};

} // namespace orvane::testing

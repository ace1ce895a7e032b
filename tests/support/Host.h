#pragma once

#include "support/Application.h"

#include "platform/dp/Table.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace orvane::files {
class FilesExtension;
}

namespace orvane::testing {

/// The application with the adaptor and the file provider.
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

    dp::DataCatalogWithSelection& catalog = Application::instance().catalog;
    Core& core = Application::instance().core;
    Engine* const engine = Application::instance().engine;
    std::unique_ptr<files::FilesExtension> files;

private:
    Host();

    QTemporaryDir directory_;
};

} // namespace orvane::testing

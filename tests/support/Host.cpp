#include "support/Host.h"

#include "support/Query.h"

#include "host/adaptor/Adaptor.h"
#include "host/providers/FileSource.h"
#include "host/providers/FilesExtension.h"
#include "platform/dp/CellConversion.h"

#include <numeric>

namespace orvane::testing {

Host& Host::instance() {
    static Host host;
    return host;
}

Host::Host() {
    engine->loadTableAdapterModule(&core, adaptor::initialise);
    files = std::make_unique<files::FilesExtension>(nullptr);
    core.pluginManager()->registerExtension(files.get());
    files->linkDataCatalog();
}

void Host::open(const QString& path) {
    files::addToCatalog(catalog, files::openFile(path));
    deliverSignals();
}

void Host::openExamples() {
    for (const char* name : {"countries.gpkg", "cities.shp", "indicators.csv"}) {
        open(QStringLiteral(ORVANE_EXAMPLE_DATA "/") + QLatin1String(name));
    }
}

void Host::closeAll() {
    for (const auto& object : catalog.dataObjects()) {
        catalog.close(object->name());
    }
    deliverSignals();
}

void Host::deliverSignals() {
    QCoreApplication::sendPostedEvents();
}

std::string Host::ask(const QString& statement) {
    return answer(engine->engineDatabase(), engine->translate(statement));
}

std::vector<dp::FeaturePtr> Host::features(dp::Table& table) {
    const auto schema = table.schema();
    dp::ScanRequest request;
    request.attributes.resize(static_cast<std::size_t>(schema->numAttributes()));
    std::iota(request.attributes.begin(), request.attributes.end(), 0);
    std::vector<dp::FeaturePtr> read;
    for (const auto cursor = table.openCursor(request); cursor->next();) {
        auto feature = std::make_shared<dp::Feature>(schema, cursor->featureId());
        for (int i = 0; i < schema->numAttributes(); ++i) {
            feature->setAttribute(i, dp::toVariant(cursor->cell(i), *schema->at(i)));
        }
        read.push_back(std::move(feature));
    }
    return read;
}

} // namespace orvane::testing

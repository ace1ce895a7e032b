// A host of the engine: opens a file, queries its tables, labels their features and follows a rename.
//
//   embed cities.shp "Select name, population From cities Order By population Desc Limit 3"
//         "name & ' ' & Round(population / 1000, 1) & 'k'"

#include <host/adaptor/Adaptor.h>
#include <host/adaptor/FeatureExpression.h>
#include <host/providers/FileSource.h>
#include <host/providers/FilesExtension.h>
#include <orvane/Engine.h>
#include <platform/core/Core.h>
#include <platform/dp/DataCatalog.h>

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTextStream>
#include <QTranslator>

namespace {

QTextStream out(stdout);

/// Writes the rows of a query in the dialect, or why there are none.
void ask(const orvane::Engine& engine, const QString& statement) {
    QSqlQuery query(engine.engineDatabase());
    query.setForwardOnly(true);
    if (!query.exec(engine.translate(statement))) {
        out << "error: " << query.lastError().databaseText() << '\n';
        return;
    }
    while (query.next()) {
        QStringList values;
        for (int column = 0; column < query.record().count(); ++column)
            values += query.value(column).toString();
        out << values.join(QStringLiteral(" | ")) << '\n';
    }
}

/// Writes the label of the first features of a table, as a map would draw them.
void label(orvane::Engine& engine, orvane::dp::Table& table, const QString& text) {
    orvane::adaptor::FeatureExpression expression(engine, *table.schema());
    if (!expression.setText(text)) {
        out << "error: " << expression.lastError() << '\n';
        return;
    }
    orvane::dp::ScanRequest request; // no columns: the identifiers alone
    request.limit = 3;
    const auto cursor = table.openCursor(request);
    for (int i = 0; i < 3 && cursor->next(); ++i)
        out << expression.value(table.feature(cursor->featureId())).toString() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::addLibraryPath(
        QStringLiteral(ORVANE_PLUGIN_DIR)); // the driver of the engine's database
    QTranslator english;
    english.load(QStringLiteral("orvane_en"), QStringLiteral(ORVANE_TRANSLATION_DIR));
    QCoreApplication::installTranslator(&english);
    out.setCodec("UTF-8");
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        out << "usage: embed FILE STATEMENT LABEL\n";
        return 2;
    }
    try {
        // The catalogue comes first: the engine's tables look into it for as long as they live.
        orvane::dp::DataCatalog catalog;
        orvane::Core core;
        core.registerService(&catalog);
        auto* engine = orvane::Engine::load(&core);
        engine->loadTableAdapterModule(&core, orvane::adaptor::initialise);
        orvane::files::FilesExtension files(nullptr);
        core.pluginManager()->registerExtension(&files);
        files.linkDataCatalog();

        orvane::files::addToCatalog(catalog, orvane::files::openFile(arguments[1]));
        QCoreApplication::processEvents(); // the engine follows the catalogue from the event loop
        ask(*engine, arguments[2]);

        const auto table = std::dynamic_pointer_cast<orvane::dp::Table>(catalog.dataObjects().constFirst());
        label(*engine, *table, arguments[3]);

        const QString before = table->name();
        catalog.rename(before, QStringLiteral("renamed table"));
        QCoreApplication::processEvents();
        ask(*engine, QStringLiteral("Select Count(*) From \"renamed table\""));
        ask(*engine, QStringLiteral("Select Count(*) From \"%0\"").arg(before));
        catalog.close(QStringLiteral("renamed table"));
        QCoreApplication::processEvents();
        ask(*engine, QStringLiteral("Select Count(*) From \"renamed table\""));
    } catch (const std::exception& failure) {
        out << "error: " << QString::fromUtf8(failure.what()) << '\n';
        return 1;
    }
    return 0;
}

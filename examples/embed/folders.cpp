// Queries a directory: folders DIRECTORY STATEMENT. Its files are the table "files".

#include "FolderTable.h"

#include <host/adaptor/Adaptor.h>
#include <orvane/Engine.h>
#include <platform/core/Core.h>
#include <platform/dp/DataCatalog.h>

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::addLibraryPath(QStringLiteral(ORVANE_PLUGIN_DIR));
    QTextStream out(stdout);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        out << "usage: folders DIRECTORY STATEMENT\n";
        return 2;
    }
    orvane::dp::DataCatalog catalog;
    orvane::Core core;
    core.registerService(&catalog);
    auto* engine = orvane::Engine::load(&core);
    engine->loadTableAdapterModule(&core, orvane::adaptor::initialise);
    FolderExtension folders(nullptr);
    core.pluginManager()->registerExtension(&folders);
    folders.linkDataCatalog();

    catalog.add(std::make_shared<FolderTable>(QStringLiteral("files"), QDir(arguments[1])));
    QCoreApplication::processEvents();
    QSqlQuery query(engine->engineDatabase());
    if (!query.exec(engine->translate(arguments[2]))) {
        out << "error: " << query.lastError().databaseText() << '\n';
        return 1;
    }
    while (query.next()) {
        QStringList values;
        for (int column = 0; column < query.record().count(); ++column)
            values += query.value(column).toString();
        out << values.join(QStringLiteral(" | ")) << '\n';
    }
    return 0;
}

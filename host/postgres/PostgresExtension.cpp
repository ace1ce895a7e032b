#include "host/postgres/PostgresExtension.h"

#include "host/postgres/PostgresTable.h"
#include "platform/dp/DataCatalog.h"

namespace orvane::postgres {

QString PostgresExtension::virtualTableModule(const dp::DataObject* object,
                                              QList<QVariant>& moduleArguments) {
    if (!qobject_cast<const PostgresTable*>(object)) {
        return {};
    }
    moduleArguments << object->name();
    return QStringLiteral("OrvaneTable");
}

void PostgresExtension::connectCatalog(dp::DataCatalog& catalog) {
    EngineExtension::connectCatalog(catalog);
    // Queued as the announcements of objects are, so that a rename comes after what it renames.
    connect(&catalog, &dp::DataCatalog::dataObjectRenamed, this, &PostgresExtension::rename,
            Qt::QueuedConnection);
}

} // namespace orvane::postgres

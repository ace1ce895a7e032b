#include "host/providers/FilesExtension.h"

#include "host/providers/LayerTable.h"
#include "platform/dp/DataCatalog.h"

namespace orvane::files {

QString FilesExtension::virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) {
    if (!qobject_cast<const LayerTable*>(object)) {
        return {};
    }
    moduleArguments << object->name();
    return QStringLiteral("OrvaneTable");
}

void FilesExtension::connectCatalog(dp::DataCatalog& catalog) {
    EngineExtension::connectCatalog(catalog);
    // Queued as the announcements of objects are, so that a rename comes after what it renames.
    connect(&catalog, &dp::DataCatalog::dataObjectRenamed, this, &FilesExtension::rename,
            Qt::QueuedConnection);
}

} // namespace orvane::files

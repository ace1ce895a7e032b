#include "host/providers/FilesExtension.h"

#include "host/providers/LayerTable.h"

namespace orvane::files {

QString FilesExtension::virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) {
    if (!qobject_cast<const LayerTable*>(object))
        return {};
    moduleArguments << object->name();
    return QStringLiteral("OrvaneTable");
}

} // namespace orvane::files

#pragma once

#include "host/providers/Export.h"
#include <orvane/EngineExtension.h>

namespace orvane::files {

/// Shows the layers of files in the engine database.
class ORVANE_FILES_EXPORT FilesExtension : public EngineExtension {
    Q_OBJECT
public:
    using EngineExtension::EngineExtension;

protected:
    /// Follows renames too.
    void connectCatalog(dp::DataCatalog& catalog) override;
    QString virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) override;
    bool renameRealized() const override { return true; }
};

} // namespace orvane::files

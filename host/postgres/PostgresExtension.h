#pragma once

#include "host/postgres/Export.h"
#include <orvane/EngineExtension.h>

namespace orvane::postgres {

/// Shows the tables of PostgreSQL databases in the engine database.
class ORVANE_POSTGRES_EXPORT PostgresExtension : public EngineExtension {
    Q_OBJECT
public:
    using EngineExtension::EngineExtension;

protected:
    /// Follows renames too.
    void connectCatalog(dp::DataCatalog& catalog) override;
    QString virtualTableModule(const dp::DataObject* object, QList<QVariant>& moduleArguments) override;
    bool renameRealized() const override { return true; }
};

} // namespace orvane::postgres

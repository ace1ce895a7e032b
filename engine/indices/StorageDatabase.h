#pragma once

#include "platform/dp/SqliteDatabaseAccess.h"
#include <orvane/engine/LocaleOrder.h>

#include <memory>

namespace orvane::engine {

/// What the statements of an index database need besides SQLite.
struct StorageOptions {
    QString collate; ///< the name under which texts are ordered; none when empty
    std::shared_ptr<const LocaleOrder> order;
    bool caseInsensitiveLike = false;
    bool caseInsensitiveGlob = false;
};

/// Makes the database of a storage file, claims it for this process, and registers the collation and the
/// pattern functions. Throws err::SqliteException.
std::shared_ptr<dp::SqliteDatabaseAccess> openStorageDatabase(const QString& path,
                                                              const StorageOptions& options);

} // namespace orvane::engine

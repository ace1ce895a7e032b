#pragma once

#include "host/providers/LayerTable.h"
#include "platform/dp/DataCatalog.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace orvane::files {

struct OpenOptions {
    /// Character set of the texts, e.g. "windows-1251"; empty to find out. Text tables without a byte order
    /// mark have to be UTF-8 unless it is given; other formats say it themselves.
    QString encoding;
    /// Whether files open with what they refer to, wherever it lies: other files, virtual tables, the
    /// network.
    bool trustReferences = false;
};

/// Opens the layers of a file, in their order in the file. `source` is a path, or a path and the name of the
/// only layer wanted after "|" (also "|layername=..."). A table is named as its layer, or as the file when
/// the layer has no name. Without `trustReferences` only files below the folder of the file are opened with
/// it, and the network only where `source` is a URL or names a database or a service. A layer that does not
/// open is left out, with a warning, unless it is wanted or the only one.
///
/// Throws std::runtime_error with the reason, UTF-8: no such file, not a table, no such layer, a reference
/// that is not trusted.
ORVANE_FILES_EXPORT std::vector<std::shared_ptr<LayerTable>> openFile(const QString& source,
                                                                      const OpenOptions& options = {});

/// Adds tables to the catalogue, each under its name or the next free one (DataCatalog::freeName).
ORVANE_FILES_EXPORT void addToCatalog(dp::DataCatalog& catalog,
                                      const std::vector<std::shared_ptr<LayerTable>>& tables);

} // namespace orvane::files

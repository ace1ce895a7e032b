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
};

/// Opens the layers of a file, in their order in the file. `source` is a path, or a path and the name of the
/// only layer wanted after "|" (also "|layername=..."). A table is named as its layer, or as the file when
/// the layer has no name.
///
/// Throws std::runtime_error with the reason, UTF-8: no such file, not a table, no such layer.
ORVANE_FILES_EXPORT std::vector<std::shared_ptr<LayerTable>> openFile(const QString& source,
                                                                      const OpenOptions& options = {});

/// Adds tables to the catalogue, each under its name or the next free one (DataCatalog::freeName).
ORVANE_FILES_EXPORT void addToCatalog(dp::DataCatalog& catalog,
                                      const std::vector<std::shared_ptr<LayerTable>>& tables);

} // namespace orvane::files

#include "host/providers/datasets/DriverQuery.h"

#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "platform/utils/Quoting.h"

namespace orvane::files {

DriverQuery::DriverQuery(GDALDatasetH dataset, const std::string& sql) : dataset_(dataset) {
    const GdalErrorScope errors;
    layer_ = GDALDatasetExecuteSQL(dataset, sql.c_str(), nullptr, nullptr);
    if (!layer_) {
        errors.raise(QString::fromStdString(sql));
    }
}

DriverQuery::~DriverQuery() {
    const GdalErrorScope errors;
    GDALDatasetReleaseResultSet(dataset_, layer_);
}

std::int64_t countRows(GDALDatasetH dataset, OGRLayerH layer) {
    const DriverQuery query(dataset, "SELECT COUNT(*) FROM " +
                                         utils::sqlIdentifier(std::string_view(OGR_L_GetName(layer))));
    const FeatureHandle row(OGR_L_GetNextFeature(query.layer()));
    return row ? OGR_F_GetFieldAsInteger64(row.get(), 0) : -1;
}

} // namespace orvane::files

#include "host/providers/reading/LayerScan.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/reading/ArrowReader.h"
#include "host/providers/reading/FeatureReader.h"
#include "platform/utils/Quoting.h"

#include <algorithm>
#include <stdexcept>

namespace orvane::files {

namespace {

/// Tells the driver which columns to leave out and which rows to deliver. A handle out of the pool still has
/// the settings of the scan before.
void prepareLayer(const LayerScan& scan) {
    auto reads = [&](LayerColumn::Source source, int field) {
        return std::any_of(scan.columns.begin(), scan.columns.end(), [&](const LayerColumn* column) {
            return column->source == source && column->field == field;
        });
    };
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(scan.layer);
    std::vector<const char*> ignored{"OGR_STYLE"};
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        if (!reads(LayerColumn::Source::Field, i)) {
            ignored.push_back(OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, i)));
        }
    }
    if (!reads(LayerColumn::Source::Geometry, -1)) {
        ignored.push_back("OGR_GEOMETRY");
    }
    ignored.push_back(nullptr);

    const GdalErrorScope errors;
    OGR_L_SetSpatialFilter(scan.layer, nullptr);
    // A virtual dataset refuses where its source cannot leave columns out, which does no harm.
    const bool leavesOut = OGR_L_SetIgnoredFields(scan.layer, ignored.data()) == OGRERR_NONE ||
                           !OGR_L_TestCapability(scan.layer, OLCIgnoreFields);
    if (!leavesOut || OGR_L_SetAttributeFilter(
                          scan.layer, scan.filter.empty() ? nullptr : scan.filter.c_str()) != OGRERR_NONE) {
        scan.raise(errors);
    }
    OGR_L_ResetReading(scan.layer);
}

} // namespace

void LayerScan::raise(const GdalErrorScope& errors, const QString& otherwise) const {
    const QString file = pathOnDisk(QString::fromUtf8(lease.pool().source().path));
    const QString what = tr("«%1»: ошибка чтения данных").arg(file);
    if (!errors.error().isEmpty() || otherwise.isEmpty()) {
        errors.raise(what);
    }
    throw std::runtime_error((what + QStringLiteral(": ") + otherwise).toStdString());
}

void LayerScan::requireRows(const GdalErrorScope& errors) const {
    if (promisedRows > 0 && rows == 0) {
        raise(errors, tr("файл повреждён: обещано строк %1, а нет ни одной").arg(promisedRows));
    }
}

OGRLayerH findLayer(GDALDatasetH dataset, int index, const QByteArray& name) {
    const OGRLayerH layer = GDALDatasetGetLayer(dataset, index);
    return layer && name == OGR_L_GetName(layer) ? layer
                                                 : GDALDatasetGetLayerByName(dataset, name.constData());
}

bool hasFieldsOf(OGRLayerH layer, const LayerSchema& schema) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    const int fields = OGR_FD_GetFieldCount(definition);
    return std::all_of(schema.columns.begin(), schema.columns.end(), [&](const LayerColumn& column) {
        return column.source != LayerColumn::Source::Field ||
               (column.field < fields &&
                column.name == OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, column.field)));
    });
}

std::unique_ptr<BatchReader> startScan(LayerScan scan) {
    const Confinement confinement = confine(scan.lease);
    if (scan.lease.isShared()) {
        const std::string condition = scan.filter.empty() ? std::string() : " WHERE " + scan.filter;
        scan.query = std::make_shared<DriverQuery>(
            scan.lease.dataset(),
            "SELECT * FROM " + utils::sqlIdentifier(std::string_view(OGR_L_GetName(scan.layer))) + condition);
        scan.layer = scan.query->layer();
        scan.filter.clear();
    }
    prepareLayer(scan);
    const char* driver = GDALGetDriverShortName(GDALGetDatasetDriver(scan.lease.dataset()));
    if (EQUAL(driver, "FlatGeobuf") && scan.filter.empty()) {
        scan.promisedRows = OGR_L_GetFeatureCount(scan.layer, FALSE);
    }
    if (ArrowReader::suits(scan)) {
        if (auto reader = ArrowReader::start(scan)) {
            return reader;
        }
    }
    return std::make_unique<FeatureReader>(std::move(scan));
}

std::unique_ptr<BatchReader> startLookup(LayerScan scan, std::vector<std::int64_t> ids) {
    if (!scan.lease.isShared()) {
        prepareLayer(scan);
    }
    return std::make_unique<FeatureReader>(std::move(scan), std::move(ids));
}

} // namespace orvane::files

#include "host/providers/writing/ColumnUpdate.h"

#include "platform/utils/Quoting.h"

#include <stdexcept>
#include <string>

namespace orvane::files {

namespace {

bool isBindable(OGRFieldType type) {
    return type == OFTInteger || type == OFTInteger64 || type == OFTReal || type == OFTString ||
           type == OFTBinary;
}

} // namespace

std::unique_ptr<ColumnUpdate> ColumnUpdate::make(GDALDatasetH dataset, OGRLayerH layer,
                                                 const LayerSchema& schema,
                                                 const std::vector<int>& positions) {
    if (positions.empty() || !EQUAL(GDALGetDriverShortName(GDALGetDatasetDriver(dataset)), "GPKG")) {
        return nullptr;
    }
    auto* const database = static_cast<sqlite3*>(GDALGetInternalHandle(dataset, "SQLITE_HANDLE"));
    if (!database) {
        return nullptr;
    }
    std::unique_ptr<ColumnUpdate> update(new ColumnUpdate(database, layer, positions));
    if (!update->prepare(schema)) {
        return nullptr;
    }
    update->noteChange();
    return update;
}

bool ColumnUpdate::prepare(const LayerSchema& schema) {
    const std::string idColumn = OGR_L_GetFIDColumn(layer_);
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer_);
    std::string assignments;
    for (const int position : positions_) {
        const LayerColumn& column = schema.columns[static_cast<std::size_t>(position)];
        if (column.source != LayerColumn::Source::Field ||
            !isBindable(OGR_Fld_GetType(OGR_FD_GetFieldDefn(definition, column.field)))) {
            return false;
        }
        fields_.push_back(column.field);
        assignments += (assignments.empty() ? "" : ",") + utils::sqlIdentifier(column.name) + "=?";
    }
    // Of a view, whose rows its triggers change, SQLite does not count them.
    const bool isTable =
        sqlite3_table_column_metadata(database_, "main", OGR_L_GetName(layer_), nullptr, nullptr, nullptr,
                                      nullptr, nullptr, nullptr) == SQLITE_OK;
    if (idColumn.empty() || !isTable) {
        return false;
    }
    const std::string text = "Update " + utils::sqlIdentifier(std::string_view(OGR_L_GetName(layer_))) +
                             " Set " + assignments + " Where " + utils::sqlIdentifier(idColumn) + "=?";
    sqlite3_stmt* statement = nullptr;
    const int code =
        sqlite3_prepare_v3(database_, text.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    statement_.reset(statement);
    return code == SQLITE_OK;
}

void ColumnUpdate::bind(int parameter, OGRFeatureH feature, int field) {
    sqlite3_stmt* const statement = statement_.get();
    if (!OGR_F_IsFieldSetAndNotNull(feature, field)) {
        sqlite3_bind_null(statement, parameter);
        return;
    }
    switch (OGR_Fld_GetType(OGR_F_GetFieldDefnRef(feature, field))) {
    case OFTInteger:
    case OFTInteger64:
        sqlite3_bind_int64(statement, parameter, OGR_F_GetFieldAsInteger64(feature, field));
        return;
    case OFTReal: sqlite3_bind_double(statement, parameter, OGR_F_GetFieldAsDouble(feature, field)); return;
    case OFTBinary: {
        int size = 0;
        const GByte* const bytes = OGR_F_GetFieldAsBinary(feature, field, &size);
        // Without bytes there is no address, and SQLite would take it for NULL.
        sqlite3_bind_blob(statement, parameter, size > 0 ? static_cast<const void*>(bytes) : "", size,
                          SQLITE_STATIC);
        return;
    }
    default:
        sqlite3_bind_text(statement, parameter, OGR_F_GetFieldAsString(feature, field), -1, SQLITE_STATIC);
    }
}

bool ColumnUpdate::write(OGRFeatureH feature, std::int64_t id) {
    int parameter = 1;
    for (const int field : fields_) {
        bind(parameter++, feature, field);
    }
    sqlite3_bind_int64(statement_.get(), parameter, id);
    const int code = sqlite3_step(statement_.get());
    const std::string reason = code == SQLITE_DONE ? std::string() : sqlite3_errmsg(database_);
    sqlite3_reset(statement_.get());
    if (code != SQLITE_DONE) {
        throw std::runtime_error(reason);
    }
    return sqlite3_changes(database_) != 0;
}

void ColumnUpdate::noteChange() const {
    sqlite3_stmt* handle = nullptr;
    sqlite3_prepare_v2(database_,
                       "Update gpkg_contents Set last_change=strftime('%Y-%m-%dT%H:%M:%fZ','now') "
                       "Where Lower(table_name)=Lower(?)",
                       -1, &handle, nullptr);
    const std::unique_ptr<sqlite3_stmt, Finalizer> statement(handle);
    sqlite3_bind_text(handle, 1, OGR_L_GetName(layer_), -1, SQLITE_STATIC);
    sqlite3_step(handle);
}

} // namespace orvane::files

#include "host/providers/writing/LayerEditor.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/reading/LayerScan.h"
#include "host/providers/writing/FeatureWriter.h"
#include "platform/dp/Table.h"

#include <QRegularExpression>

namespace orvane::files {

namespace {

/// Raises an edit error with GDAL's reason.
[[noreturn]] void raise(const QString& what, const GdalErrorScope& errors) {
    throw dp::EditError(
        (errors.error().isEmpty() ? what : what + QStringLiteral(": ") + errors.error()).toStdString());
}

/// SQLite would write to the file before the end of a transaction that does not fit its cache, for which
/// nobody may be reading: but the rows to change come from other handles of ours. What is changed stays in
/// memory instead until the end, about as much as it takes in the file.
void keepChangesInMemory(GDALDatasetH dataset) {
    const char* driver = GDALGetDriverShortName(GDALGetDatasetDriver(dataset));
    if (!EQUAL(driver, "GPKG") && !EQUAL(driver, "SQLite"))
        return;
    const GdalErrorScope errors;
    // The second keeps the pages that a statement may have to restore from being written for every row.
    for (const char* pragma : {"PRAGMA cache_spill = OFF", "PRAGMA temp_store = MEMORY"}) {
        if (const OGRLayerH result = GDALDatasetExecuteSQL(dataset, pragma, nullptr, nullptr))
            GDALDatasetReleaseResultSet(dataset, result);
    }
}

} // namespace

LayerEditor::~LayerEditor() {
    columnUpdate_.reset();
    if (hasTransaction_) {
        const GdalErrorScope errors;
        GDALDatasetRollbackTransaction(dataset_.get());
    }
}

bool LayerEditor::isReadOnly() {
    if (!isReadOnly_) {
        try {
            open();
            isReadOnly_ = !OGR_L_TestCapability(layer_, OLCSequentialWrite) &&
                          !OGR_L_TestCapability(layer_, OLCRandomWrite) &&
                          !OGR_L_TestCapability(layer_, OLCDeleteFeature);
            if (!isInGroup_)
                close();
        } catch (const dp::EditError&) {
            isReadOnly_ = true;
        }
    }
    return *isReadOnly_;
}

void LayerEditor::begin() {
    if (isInGroup_)
        throw dp::EditError(
            tr("Правка слоя «%1» уже начата").arg(QString::fromUtf8(layerName_)).toStdString());
    open();
    const GdalErrorScope errors;
    if (GDALDatasetTestCapability(dataset_.get(), ODsCTransactions)) {
        if (GDALDatasetStartTransaction(dataset_.get(), FALSE) != OGRERR_NONE) {
            close();
            raise(tr("Не удалось начать правку слоя «%1»").arg(QString::fromUtf8(layerName_)), errors);
        }
        hasTransaction_ = true;
    }
    isInGroup_ = true;
}

void LayerEditor::commit() {
    if (!isInGroup_)
        return;
    const GdalErrorScope errors;
    if (columnUpdate_)
        columnUpdate_->noteChange();
    const bool isDone = !hasTransaction_ || GDALDatasetCommitTransaction(dataset_.get()) == OGRERR_NONE;
    if (!isDone)
        GDALDatasetRollbackTransaction(dataset_.get());
    GDALFlushCache(dataset_.get());
    close();
    if (!isDone || !errors.error().isEmpty())
        raise(tr("Правка слоя «%1» не записана").arg(QString::fromUtf8(layerName_)), errors);
}

void LayerEditor::rollback() {
    if (!isInGroup_)
        return;
    const GdalErrorScope errors;
    const bool hadTransaction = hasTransaction_;
    const bool isDone = hadTransaction && GDALDatasetRollbackTransaction(dataset_.get()) == OGRERR_NONE;
    close();
    if (!hadTransaction)
        throw dp::EditError(tr("Формат слоя «%1» не позволяет отменить правку: записанное осталось")
                                .arg(QString::fromUtf8(layerName_))
                                .toStdString());
    if (!isDone)
        raise(tr("Не удалось отменить правку слоя «%1»").arg(QString::fromUtf8(layerName_)), errors);
}

std::int64_t LayerEditor::insert(const dp::Feature& feature) {
    return inGroup([&] {
        requireCapability(OLCSequentialWrite);
        const FeatureHandle target(OGR_F_Create(OGR_L_GetLayerDefn(layer_)));
        bool isNumber = false;
        const auto id = feature.id().value().toLongLong(&isNumber);
        if (isNumber)
            OGR_F_SetFID(target.get(), id);
        for (int i = 0; i < feature.numAttributes(); ++i)
            setAttribute(target.get(), feature, i, true);
        const GdalErrorScope errors;
        if (OGR_L_CreateFeature(layer_, target.get()) != OGRERR_NONE)
            raiseUnwritten(tr("Не удалось добавить запись в «%1»"), errors.error(), feature);
        return std::int64_t{OGR_F_GetFID(target.get())};
    });
}

void LayerEditor::update(const dp::Feature& feature, const std::vector<int>& positions) {
    inGroup([&] {
        requireCapability(OLCRandomWrite);
        if (updateColumns(feature, positions))
            return true;
        const FeatureHandle target = readFeature(feature.id());
        for (const int position : positions)
            setAttribute(target.get(), feature, position, false);
        const GdalErrorScope errors;
        if (OGR_L_SetFeature(layer_, target.get()) != OGRERR_NONE)
            raiseUnwritten(tr("Не удалось изменить запись в «%1»"), errors.error(), feature);
        return true;
    });
}

bool LayerEditor::updateColumns(const dp::Feature& feature, const std::vector<int>& positions) {
    if (!columnUpdate_ || columnUpdate_->positions() != positions)
        columnUpdate_ = ColumnUpdate::make(dataset_.get(), layer_, *schema_, positions);
    if (!columnUpdate_)
        return false;
    const FeatureHandle target(OGR_F_Create(OGR_L_GetLayerDefn(layer_)));
    for (const int position : positions)
        setAttribute(target.get(), feature, position, false);
    const std::int64_t id = idNumber(feature.id());
    bool isThere = false;
    try {
        isThere = columnUpdate_->write(target.get(), id);
    } catch (const std::runtime_error& error) {
        raiseUnwritten(tr("Не удалось изменить запись в «%1»"), QString::fromUtf8(error.what()), feature);
    }
    if (!isThere)
        raiseAbsent(feature.id());
    return true;
}

void LayerEditor::remove(const dp::FeatureId& id) {
    inGroup([&] {
        requireCapability(OLCDeleteFeature);
        const GdalErrorScope errors;
        const OGRErr code = OGR_L_DeleteFeature(layer_, idNumber(id));
        if (code == OGRERR_NON_EXISTING_FEATURE)
            raiseAbsent(id);
        if (code != OGRERR_NONE)
            raise(tr("Не удалось удалить запись из «%1»").arg(QString::fromUtf8(layerName_)), errors);
        return true;
    });
}

void LayerEditor::open() {
    if (dataset_)
        return;
    const auto path = QString::fromUtf8(pool_->source().path);
    if (isInArchive(path))
        throw dp::EditError(tr("Архив «%1» можно только читать").arg(pathOnDisk(path)).toStdString());
    try {
        dataset_ = pool_->openForUpdate();
    } catch (const std::runtime_error& error) {
        throw dp::EditError(error.what());
    }
    keepChangesInMemory(dataset_.get());
    layer_ = findLayer(dataset_.get(), layerIndex_, layerName_);
    if (!layer_ || !hasFieldsOf(layer_, *schema_)) {
        close();
        throw dp::EditError(tr("Слой «%1» изменил своё строение, откройте файл заново")
                                .arg(QString::fromUtf8(layerName_))
                                .toStdString());
    }
}

void LayerEditor::close() {
    const GdalErrorScope errors;
    columnUpdate_.reset();
    layer_ = nullptr;
    dataset_.reset();
    isInGroup_ = false;
    hasTransaction_ = false;
}

template<class Edit>
std::invoke_result_t<Edit> LayerEditor::inGroup(Edit edit) {
    if (isInGroup_)
        return edit();
    begin();
    try {
        const auto result = edit();
        commit();
        return result;
    } catch (const dp::EditError&) {
        if (hasTransaction_)
            rollback();
        close();
        throw;
    }
}

void LayerEditor::requireCapability(const char* capability) {
    if (!OGR_L_TestCapability(layer_, capability))
        throw dp::EditError(tr("Формат слоя «%1» не позволяет такую правку")
                                .arg(QString::fromUtf8(layerName_))
                                .toStdString());
}

void LayerEditor::setAttribute(OGRFeatureH target, const dp::Feature& feature, int position,
                               bool isNew) const {
    const LayerColumn& column = schema_->columns[static_cast<std::size_t>(position)];
    if (column.source == LayerColumn::Source::FeatureId)
        return;
    const GdalErrorScope errors;
    const auto& attribute = *schema_->schema->at(position);
    const QVariant value = feature.getAttribute(position);
    if (!value.isNull() || acceptsNull(column, attribute.name(), isNew))
        writeValue(target, column, attribute, value);
}

bool LayerEditor::acceptsNull(const LayerColumn& column, const QString& name, bool isNew) const {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer_);
    bool isNullable = true;
    if (column.source == LayerColumn::Source::Geometry) {
        isNullable = OGR_GFld_IsNullable(OGR_FD_GetGeomFieldDefn(definition, 0)) != 0;
    } else {
        const OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, column.field);
        isNullable = OGR_Fld_IsNullable(field) != 0;
        if (!isNullable && isNew && OGR_Fld_GetDefault(field))
            return false;
    }
    if (!isNullable)
        throw dp::EditError(tr("Столбец «%1»: нужно значение").arg(name).toStdString());
    return true;
}

void LayerEditor::raiseUnwritten(const QString& what, const QString& reason,
                                 const dp::Feature& feature) const {
    static const QRegularExpression unique(
        QStringLiteral("UNIQUE constraint failed: .*\\.([^.,]+)$")); // the words of SQLite
    if (const auto match = unique.match(reason); match.hasMatch()) {
        const int position = schema_->schema->indexOf(match.captured(1));
        if (position >= 0)
            throw dp::EditError(tr("Столбец «%1»: значение «%2» уже есть")
                                    .arg(match.captured(1), feature.getAttribute(position).toString())
                                    .toStdString());
    }
    const QString where = what.arg(QString::fromUtf8(layerName_));
    throw dp::EditError((reason.isEmpty() ? where : where + QStringLiteral(": ") + reason).toStdString());
}

std::int64_t LayerEditor::idNumber(const dp::FeatureId& id) const {
    bool isNumber = false;
    const auto number = id.value().toLongLong(&isNumber);
    if (!isNumber)
        raiseAbsent(id);
    return number;
}

FeatureHandle LayerEditor::readFeature(const dp::FeatureId& id) const {
    const GdalErrorScope errors;
    FeatureHandle feature(OGR_L_GetFeature(layer_, idNumber(id)));
    if (!feature)
        raiseAbsent(id);
    return feature;
}

void LayerEditor::raiseAbsent(const dp::FeatureId& id) const {
    throw dp::EditError(
        tr("В «%1» нет записи %2").arg(QString::fromUtf8(layerName_), id.value().toString()).toStdString());
}

} // namespace orvane::files

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

} // namespace

bool LayerEditor::isReadOnly() {
    if (!isReadOnly_) {
        try {
            requireWritable();
            const DatasetHandle dataset = pool_->open(GDAL_OF_UPDATE, pool_->source().path);
            const OGRLayerH layer = findIn(dataset.get());
            isReadOnly_ = !OGR_L_TestCapability(layer, OLCSequentialWrite) &&
                          !OGR_L_TestCapability(layer, OLCRandomWrite) &&
                          !OGR_L_TestCapability(layer, OLCDeleteFeature);
        } catch (const std::runtime_error&) {
            isReadOnly_ = true;
        }
    }
    return *isReadOnly_;
}

std::shared_ptr<FileEdit> LayerEditor::startEdit() {
    requireWritable();
    return pool_->edit();
}

std::int64_t LayerEditor::insert(const dp::Feature& feature) {
    return onLayer([&] {
        requireCapability(OLCSequentialWrite);
        const FeatureHandle target(OGR_F_Create(OGR_L_GetLayerDefn(layer_)));
        bool isNumber = false;
        const auto id = feature.id().value().toLongLong(&isNumber);
        if (isNumber) {
            OGR_F_SetFID(target.get(), id);
        }
        for (int i = 0; i < feature.numAttributes(); ++i) {
            setAttribute(target.get(), feature, i, true);
        }
        requireShape(target.get());
        const GdalErrorScope errors;
        if (OGR_L_CreateFeature(layer_, target.get()) != OGRERR_NONE) {
            raiseUnwritten(tr("Не удалось добавить запись в «%1»"), errors.error(), feature);
        }
        return std::int64_t{OGR_F_GetFID(target.get())};
    });
}

void LayerEditor::update(const dp::Feature& feature, const std::vector<int>& positions) {
    onLayer([&] {
        requireCapability(OLCRandomWrite);
        if (updateColumns(feature, positions)) {
            return true;
        }
        const FeatureHandle target = readFeature(feature.id());
        for (const int position : positions) {
            setAttribute(target.get(), feature, position, false);
        }
        requireShape(target.get());
        const GdalErrorScope errors;
        if (OGR_L_SetFeature(layer_, target.get()) != OGRERR_NONE) {
            raiseUnwritten(tr("Не удалось изменить запись в «%1»"), errors.error(), feature);
        }
        return true;
    });
}

bool LayerEditor::updateColumns(const dp::Feature& feature, const std::vector<int>& positions) {
    auto& columnUpdate = target()->columnUpdate;
    if (!columnUpdate || columnUpdate->positions() != positions) {
        columnUpdate = ColumnUpdate::make(datasetEdit().dataset(), layer_, *schema_, positions);
    }
    if (!columnUpdate) {
        return false;
    }
    const FeatureHandle target(OGR_F_Create(OGR_L_GetLayerDefn(layer_)));
    for (const int position : positions) {
        setAttribute(target.get(), feature, position, false);
    }
    const std::int64_t id = idNumber(feature.id());
    bool isThere = false;
    try {
        isThere = columnUpdate->write(target.get(), id);
    } catch (const std::runtime_error& error) {
        raiseUnwritten(tr("Не удалось изменить запись в «%1»"), QString::fromUtf8(error.what()), feature);
    }
    if (!isThere) {
        raiseAbsent(feature.id());
    }
    return true;
}

void LayerEditor::remove(const dp::FeatureId& id) {
    onLayer([&] {
        requireCapability(OLCDeleteFeature);
        const GdalErrorScope errors;
        const OGRErr code = OGR_L_DeleteFeature(layer_, idNumber(id));
        if (code == OGRERR_NON_EXISTING_FEATURE) {
            raiseAbsent(id);
        }
        if (code != OGRERR_NONE) {
            raise(tr("Не удалось удалить запись из «%1»").arg(QString::fromUtf8(pool_->source().path)),
                  errors);
        }
        return true;
    });
}

void LayerEditor::requireWritable() const {
    const auto path = QString::fromUtf8(pool_->source().path);
    if (isInArchive(path)) {
        throw dp::EditError(tr("Архив «%1» можно только читать").arg(pathOnDisk(path)).toStdString());
    }
}

OGRLayerH LayerEditor::findIn(GDALDatasetH dataset) const {
    const OGRLayerH layer = findLayer(dataset, layerIndex_, layerName_);
    if (!layer || !hasFieldsOf(layer, *schema_)) {
        throw dp::EditError(tr("Слой «%1» изменил своё строение, откройте файл заново")
                                .arg(QString::fromUtf8(layerName_))
                                .toStdString());
    }
    return layer;
}

std::shared_ptr<LayerEditor::Target> LayerEditor::target() {
    auto target = target_.lock();
    if (!target) {
        target = std::make_shared<Target>();
        target->layer = findIn(datasetEdit().dataset());
        target_ = target;
        datasetEdit().hold(target);
    }
    return target;
}

template<class Edit>
std::invoke_result_t<Edit> LayerEditor::onLayer(Edit edit) {
    return inGroup([&] {
        layer_ = target()->layer;
        return edit();
    });
}

void LayerEditor::requireCapability(const char* capability) {
    if (!OGR_L_TestCapability(layer_, capability)) {
        throw dp::EditError(tr("Формат слоя «%1» не позволяет такую правку")
                                .arg(QString::fromUtf8(layerName_))
                                .toStdString());
    }
}

void LayerEditor::requireShape(OGRFeatureH feature) const {
    const char* driver = GDALGetDriverShortName(GDALGetDatasetDriver(datasetEdit().dataset()));
    if (EQUAL(driver, "FlatGeobuf") && !OGR_F_GetGeometryRef(feature)) {
        throw dp::EditError(tr("В этом формате запись без геометрии пропадает").toStdString());
    }
}

void LayerEditor::setAttribute(OGRFeatureH target, const dp::Feature& feature, int position,
                               bool isNew) const {
    const LayerColumn& column = schema_->columns[static_cast<std::size_t>(position)];
    if (column.source == LayerColumn::Source::FeatureId) {
        return;
    }
    const GdalErrorScope errors;
    const auto& attribute = *schema_->schema->at(position);
    const QVariant value = feature.getAttribute(position);
    if (!value.isNull() || acceptsNull(column, attribute.name(), isNew)) {
        writeValue(target, column, attribute, value);
    }
}

bool LayerEditor::acceptsNull(const LayerColumn& column, const QString& name, bool isNew) const {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer_);
    bool isNullable = true;
    if (column.source == LayerColumn::Source::Geometry) {
        isNullable = OGR_GFld_IsNullable(OGR_FD_GetGeomFieldDefn(definition, 0)) != 0;
    } else {
        const OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, column.field);
        isNullable = OGR_Fld_IsNullable(field) != 0;
        if (!isNullable && isNew && OGR_Fld_GetDefault(field)) {
            return false;
        }
    }
    if (!isNullable) {
        throw dp::EditError(tr("Столбец «%1»: нужно значение").arg(name).toStdString());
    }
    return true;
}

void LayerEditor::raiseUnwritten(const QString& what, const QString& reason,
                                 const dp::Feature& feature) const {
    static const QRegularExpression unique(
        QStringLiteral("UNIQUE constraint failed: .*\\.([^.,]+)$")); // the words of SQLite
    if (const auto match = unique.match(reason); match.hasMatch()) {
        const int position = schema_->schema->indexOf(match.captured(1));
        if (position >= 0) {
            throw dp::EditError(tr("Столбец «%1»: значение «%2» уже есть")
                                    .arg(match.captured(1), feature.getAttribute(position).toString())
                                    .toStdString());
        }
    }
    const QString where = what.arg(QString::fromUtf8(pool_->source().path));
    throw dp::EditError((reason.isEmpty() ? where : where + QStringLiteral(": ") + reason).toStdString());
}

std::int64_t LayerEditor::idNumber(const dp::FeatureId& id) const {
    bool isNumber = false;
    const auto number = id.value().toLongLong(&isNumber);
    if (!isNumber) {
        raiseAbsent(id);
    }
    return number;
}

FeatureHandle LayerEditor::readFeature(const dp::FeatureId& id) const {
    const GdalErrorScope errors;
    FeatureHandle feature(OGR_L_GetFeature(layer_, idNumber(id)));
    if (!feature) {
        raiseAbsent(id);
    }
    return feature;
}

void LayerEditor::raiseAbsent(const dp::FeatureId& id) const {
    throw dp::EditError(
        tr("В «%1» нет записи %2").arg(QString::fromUtf8(layerName_), id.value().toString()).toStdString());
}

} // namespace orvane::files

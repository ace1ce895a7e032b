#include "platform/dp/Table.h"

#include "platform/dp/CellConversion.h"

#include <QCoreApplication>

#include <numeric>
#include <utility>

namespace orvane::dp {

namespace {

[[noreturn]] void raiseReadOnly(const Table& table) {
    throw EditError(QCoreApplication::translate("orvane::dp::Table", "таблица %0 открыта только для чтения")
                        .arg(table.name())
                        .toStdString());
}

} // namespace

Cursor::~Cursor() = default;

std::unique_ptr<SampleCursor> Table::openSample(const std::vector<int>&, std::int64_t) {
    return nullptr;
}

bool Table::usesTerm(int, Comparison, TextCollation) const {
    return false;
}

bool Table::looksUp(int, Comparison, TextCollation) const {
    return false;
}

FeaturePtr Table::feature(const FeatureId& id) {
    const std::shared_ptr<const TableSchema> attributes = schema();
    ScanRequest request;
    request.attributes.resize(static_cast<std::size_t>(attributes->numAttributes()));
    std::iota(request.attributes.begin(), request.attributes.end(), 0);
    request.ids.emplace({id});
    const std::unique_ptr<Cursor> cursor = openCursor(request);
    if (!cursor->next()) {
        return nullptr;
    }
    auto feature = std::make_shared<Feature>(attributes, id);
    for (int i = 0; i < attributes->numAttributes(); ++i) {
        feature->setAttribute(i, toVariant(cursor->cell(i), *attributes->at(i)));
    }
    return feature;
}

std::shared_ptr<cs::CoordSystem> Table::coordSystem() const {
    const std::shared_ptr<const TableSchema> attributes = schema();
    const int position = attributes->geometryIndex();
    if (position < 0) {
        return nullptr;
    }
    return static_cast<const GeometryAttributeDefinition*>(attributes->at(position).constData())
        ->coordSystem();
}

void Table::beginEdits() {
    raiseReadOnly(*this);
}
void Table::prepareEdits() {}
void Table::commitEdits() noexcept {}
void Table::rollbackEdits() noexcept {}
void Table::setSavepoint(int) {}
void Table::releaseSavepoint(int) {}
void Table::rollbackToSavepoint(int) {
    throw EditError(QCoreApplication::translate("orvane::dp::Table", "таблица %0 не отменяет часть правки")
                        .arg(name())
                        .toStdString());
}
FeatureId Table::insertFeature(const Feature&) {
    raiseReadOnly(*this);
}
void Table::updateFeature(const Feature&) {
    raiseReadOnly(*this);
}
void Table::updateAttributes(const Feature& changes, const std::vector<int>& positions) {
    const FeaturePtr whole = feature(changes.id());
    if (!whole) {
        throw EditError(QCoreApplication::translate("orvane::dp::Table", "в таблице %0 нет записи %1")
                            .arg(name(), changes.id().value().toString())
                            .toStdString());
    }
    for (const int position : positions) {
        whole->setAttribute(position, changes.getAttribute(position));
    }
    updateFeature(*whole);
}
void Table::deleteFeature(const FeatureId&) {
    raiseReadOnly(*this);
}

} // namespace orvane::dp

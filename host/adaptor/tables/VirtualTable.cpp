#include "host/adaptor/tables/VirtualTable.h"

#include "host/adaptor/indices/IndexOrderCursor.h"

#include <orvane/engine/EngineCache.h>

#include <QCoreApplication>

#include <stdexcept>

namespace orvane::adaptor {

namespace {

constexpr unsigned rowsBetweenChecks = 1024;

}

VirtualTable::VirtualTable(QString name, std::shared_ptr<dp::Table> table, const dp::TableSchema& schema,
                           engine::EngineCache& cache, IndexStore indexStore)
    : sqlite3_vtab{}, name_(std::move(name)), table_(std::move(table)), declaration_(schema), cache_(cache),
      indexStore_(std::move(indexStore)), indexing_(declaration_, cache_) {}

engine::EngineIndices* VirtualTable::indices() const {
    return table_ && makesIndices() ? indexStore_(table_) : nullptr;
}

std::optional<std::vector<dp::FeatureId>> VirtualTable::findByIndex(std::span<const dp::ScanTerm> terms,
                                                                    const work::Cancellation& cancellation) {
    engine::EngineIndices* store = terms.empty() ? nullptr : indices();
    return store ? indexing_.find(table(), *store, terms, cancellation) : std::nullopt;
}

void VirtualTable::detach() {
    if (engine::EngineIndices* store = indices()) {
        store->dropStorage();
    }
    forgetIndices();
    table_.reset();
}

std::optional<double> VirtualTable::averageGroup(int attribute) const {
    const engine::EngineIndices* store = indices();
    return store ? indexing_.averageGroup(attribute, *store) : std::nullopt;
}

std::optional<double> VirtualTable::countRows(int attribute, dp::Comparison comparison,
                                              const dp::Cell& operand, std::size_t most) const {
    const engine::EngineIndices* store = indices();
    return store ? indexing_.countRows(attribute, comparison, operand, *store, most) : std::nullopt;
}

bool VirtualTable::narrows(dp::Comparison comparison, std::string_view pattern) const {
    const engine::EngineIndices* store = indices();
    return store && store->narrows(static_cast<quint8>(comparison), pattern);
}

bool VirtualTable::hasOrder(int attribute) const {
    const engine::EngineIndices* store = indices();
    return store && indexing_.hasOrder(table(), *store, attribute);
}

std::optional<double> VirtualTable::largestGroup(int attribute) const {
    const engine::EngineIndices* store = indices();
    return store ? indexing_.largestGroup(attribute, *store) : std::nullopt;
}

std::unique_ptr<dp::Cursor> VirtualTable::openInOrder(const std::vector<int>& attributes,
                                                      std::vector<ArrangedRows::Key> keys,
                                                      const work::Cancellation& cancellation) {
    const engine::EngineIndices* store = indices();
    auto order = store ? indexing_.inOrder(table(), *store, keys.front().attribute, keys.front().isDescending)
                       : nullptr;
    return order ? std::make_unique<IndexOrderCursor>(table_, cache_, std::move(order), attributes,
                                                      std::move(keys), cancellation)
                 : nullptr;
}

void VirtualTable::countSort(int attribute, const work::Cancellation& cancellation) {
    if (engine::EngineIndices* store = indices()) {
        indexing_.countSort(table(), *store, attribute, cancellation);
    }
}

IndexUse VirtualTable::lastIndexUse() const {
    return makesIndices() ? indexing_.lastUse() : IndexUse{IndexUse::Outcome::SwitchedOff};
}

dp::Table& VirtualTable::table() const {
    if (!table_) {
        throw std::runtime_error(
            QCoreApplication::translate("orvane::adaptor", "Таблица %0 закрыта").arg(name_).toStdString());
    }
    return *table_;
}

SpatialIndex& VirtualTable::spatialIndex(const work::Cancellation& cancellation) {
    if (!hasSpatialIndex()) {
        const std::uint64_t revision = table().revision();
        spatialIndex_ = std::make_unique<SpatialIndex>(table(), cancellation);
        spatialIndexRevision_ = revision;
    }
    return *spatialIndex_;
}

void VirtualTable::numberRows(const work::Cancellation& cancellation) {
    const std::uint64_t revision = table().revision();
    if (numberedRevision_ == revision) {
        return;
    }
    const auto rows = table().openCursor({});
    for (unsigned row = 1; rows->next(); ++row) {
        cache_.assignIdToInt(rows->featureId());
        if (row % rowsBetweenChecks == 0) {
            cancellation.check();
        }
    }
    cancellation.check(); // of a reader that stopped early
    numberedRevision_ = revision;
}

dp::FeatureId VirtualTable::idOfRow(qint64 number, const work::Cancellation& cancellation) {
    if (number >= cache_.idLimit()) {
        numberRows(cancellation);
    }
    return cache_.intToId(number);
}

std::shared_ptr<cs::CoordSystem> VirtualTableManagement::coordSystem() {
    return table_.tableOrNull() ? table_.tableOrNull()->coordSystem() : nullptr;
}

} // namespace orvane::adaptor

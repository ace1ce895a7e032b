#include "host/adaptor/tables/VirtualTable.h"

#include <orvane/engine/EngineCache.h>

#include <QCoreApplication>

#include <stdexcept>

namespace orvane::adaptor {

namespace {

constexpr unsigned rowsBetweenChecks = 1024;

}

VirtualTable::VirtualTable(QString name, std::shared_ptr<dp::Table> table, const dp::TableSchema& schema,
                           engine::EngineCache& cache, AttributeIndexing::Stores indices)
    : sqlite3_vtab{}, name_(std::move(name)), table_(std::move(table)), declaration_(schema), cache_(cache),
      values_(table_, declaration_), indexing_(table_, declaration_, values_, cache_, std::move(indices)),
      space_(table_) {}

void VirtualTable::detach() {
    indexing_.drop();
    table_.reset();
}

dp::Table& VirtualTable::table() const {
    if (!table_) {
        throw std::runtime_error(
            QCoreApplication::translate("orvane::adaptor", "Таблица %0 закрыта").arg(name_).toStdString());
    }
    return *table_;
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

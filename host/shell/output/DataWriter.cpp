#include "host/shell/output/DataWriter.h"

namespace orvane::shell {

namespace {

template<class Work>
void orDataError(Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        throw DataError(error.what());
    }
}

} // namespace

DataWriter::DataWriter(sqlite3_stmt* statement, const dp::DataCatalog& catalog, engine::EngineCache& cache,
                       Target target, Output& output)
    : ResultWriter(output), statement_(statement), catalog_(catalog), cache_(cache),
      target_(std::move(target)) {}

void DataWriter::begin(const std::vector<std::string>& columns) {
    QStringList names;
    for (const std::string& column : columns) {
        names += QString::fromStdString(column);
    }
    orDataError([&] { rows_.emplace(statement_, names, catalog_, cache_); });
}

void DataWriter::row(const ResultRow&) {
    orDataError([this] { rows_->append(); });
}

void DataWriter::end() {
    orDataError([this] { target_(*rows_); });
}

} // namespace orvane::shell

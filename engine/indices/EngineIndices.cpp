#include <orvane/engine/EngineIndices.h>

namespace orvane::engine {

EngineIndices::InserterInterface::~InserterInterface() = default;
EngineIndices::RowLoader::~RowLoader() = default;
EngineIndices::RowLookup::~RowLookup() = default;

QString EngineIndices::InserterInterface::sql() const {
    return {};
}

QString EngineIndices::InserterInterface::tableName() const {
    return {};
}

EngineIndices::EngineIndices(EngineCache& cache) : cache_(cache) {}

EngineIndices::EngineIndices(const EngineIndicesSetup&, EngineCache& cache) : cache_(cache) {}

EngineIndices::~EngineIndices() = default;

bool EngineIndices::createStorage(const dp::TableSchema& schema) {
    dropStorage();
    try {
        createStorageImpl(schema);
    } catch (...) {
        // A table without indices is slower, not wrong: the caller learns it from the answer.
        dropStorage();
    }
    return isCorrect();
}

int EngineIndices::findIndex(const std::vector<Column>& columns, Conformance* conformance) const {
    if (!isCorrect()) {
        return -1;
    }
    Conformance local;
    return findIndexImpl(columns, conformance ? *conformance : local);
}

int EngineIndices::addIndex(const std::vector<Column>& columns) {
    return isCorrect() ? addIndexImpl(columns) : -1;
}

} // namespace orvane::engine

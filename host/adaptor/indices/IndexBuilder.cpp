#include "host/adaptor/indices/IndexBuilder.h"

#include "platform/log/Logger.h"
#include "platform/work/Cancellation.h"
#include "platform/work/Progress.h"
#include <orvane/engine/EngineCache.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>

namespace orvane::adaptor {

namespace {

using engine::EngineIndices;

struct Words {
    Q_DECLARE_TR_FUNCTIONS(orvane::adaptor)
};

std::vector<int> columnsOf(int index, const EngineIndices& store) {
    std::vector<int> attributes;
    store.enumColumns(index, [&attributes](int attribute) {
        attributes.push_back(attribute);
        return EngineIndices::Status::Continue;
    });
    return attributes;
}

/// "cities(country, name)"
QString indexName(const std::vector<int>& attributes, const dp::Table& table) {
    const auto schema = table.schema();
    QStringList columns;
    for (const int attribute : attributes) {
        columns += schema->at(attribute)->name();
    }
    return table.name() + QLatin1Char('(') + columns.join(QStringLiteral(", ")) + QLatin1Char(')');
}

void log(LogLevel level, int line, const QString& text) {
    loggerInstance()->write(level, QStringLiteral("IndexBuilder"), line, QLatin1String(Q_FUNC_INFO), text);
}

std::int64_t loadRows(const std::vector<int>& attributes, dp::Table& table, EngineIndices::RowLoader& loader,
                      engine::EngineCache& cache) {
    dp::ScanRequest request;
    request.attributes = attributes;
    const auto cursor = table.openCursor(request);
    std::vector<dp::Cell> values(attributes.size());
    std::int64_t rows = 0;
    for (; cursor->next(); ++rows) {
        std::transform(attributes.begin(), attributes.end(), values.begin(),
                       [&cursor](int attribute) { return cursor->cell(attribute); });
        loader.addRow(cache.assignIdToInt(cursor->featureId()), values);
    }
    loader.finish();
    return rows;
}

/// Fills an index that holds nothing yet.
void fill(int index, dp::Table& table, EngineIndices& store, engine::EngineCache& cache) {
    const std::vector<int> attributes = columnsOf(index, store);
    const QString name = indexName(attributes, table);
    QElapsedTimer timer;
    timer.start();
    work::Progress progress(Words::tr("индекс %0").arg(name), 2 * table.featureCount().value_or(0));
    const auto loader = store.getLoader(index, &progress);
    const std::int64_t rows = loadRows(attributes, table, *loader, cache);
    log(LogLevel::Info, __LINE__,
        Words::tr("Индекс %0: строк %1, %2 мс").arg(name).arg(rows).arg(timer.elapsed()));
}

std::vector<EngineIndices::Column> equalities(const std::vector<int>& attributes) {
    std::vector<EngineIndices::Column> columns;
    columns.reserve(attributes.size());
    for (const int attribute : attributes) {
        columns.push_back({static_cast<quint32>(attribute), EngineIndices::Equal});
    }
    return columns;
}

/// An index that was added and is not filled, because that was cancelled, knows nothing of its rows.
bool isFilled(int index, const EngineIndices& store) {
    return (store.statistics(index).known & engine::IndexStatistics::Rows) != 0;
}

} // namespace

int findIndex(const std::vector<int>& attributes, const EngineIndices& store) {
    EngineIndices::Conformance conformance;
    const int index = store.findIndex(equalities(attributes), &conformance);
    return index >= 0 && conformance.score >= 1.0 && isFilled(index, store) ? index : -1;
}

int buildIndex(const std::vector<int>& attributes, dp::Table& table, EngineIndices& store,
               engine::EngineCache& cache) {
    try {
        if (!store.isCorrect() && !store.createStorage(*table.schema())) {
            log(LogLevel::Warning, __LINE__,
                Words::tr("Негде хранить индекс %0").arg(indexName(attributes, table)));
            return -1;
        }
        const int index = store.addIndex(equalities(attributes));
        if (index >= 0 && !isFilled(index, store)) {
            fill(index, table, store, cache);
        }
        return index;
    } catch (const work::Cancelled&) {
        throw;
    } catch (const std::exception& failure) {
        log(LogLevel::Warning, __LINE__,
            Words::tr("Индекс %0 не сделан: %1")
                .arg(indexName(attributes, table), QString::fromUtf8(failure.what())));
        store.dropStorage(); // with it goes whatever is half done, and the place it takes
        return -1;
    }
}

} // namespace orvane::adaptor

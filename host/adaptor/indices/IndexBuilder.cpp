#include "host/adaptor/indices/IndexBuilder.h"

#include "platform/core/SqliteException.h"
#include "platform/log/Logger.h"
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

} // namespace

int buildIndex(const std::vector<int>& attributes, dp::Table& table, EngineIndices& store,
               engine::EngineCache& cache) {
    const QString name = indexName(attributes, table);
    QElapsedTimer timer;
    timer.start();
    if (!store.isCorrect() && !store.createStorage(*table.schema())) {
        log(LogLevel::Warning, __LINE__, Words::tr("Негде хранить индекс %0").arg(name));
        return -1;
    }
    std::vector<EngineIndices::Column> columns;
    for (const int attribute : attributes) {
        columns.push_back({static_cast<quint32>(attribute), EngineIndices::Equal});
    }
    work::Progress progress(Words::tr("индекс %0").arg(name), 2 * table.featureCount().value_or(0));
    int index = -1;
    try {
        index = store.addIndex(columns);
        const auto loader = store.getLoader(index, &progress);
        if (!loader) {
            return -1;
        }
        const std::int64_t rows = loadRows(attributes, table, *loader, cache);
        log(LogLevel::Info, __LINE__,
            Words::tr("Индекс %0: строк %1, %2 мс").arg(name).arg(rows).arg(timer.elapsed()));
    } catch (const err::SqliteException& failure) {
        log(LogLevel::Warning, __LINE__,
            Words::tr("Индекс %0 не сделан: %1").arg(name, QString::fromUtf8(failure.what())));
        store.dropStorage(); // with it goes whatever is half done, and the place it takes
        return -1;
    }
    return index;
}

} // namespace orvane::adaptor

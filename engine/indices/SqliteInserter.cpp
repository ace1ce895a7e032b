#include "engine/indices/SqliteInserter.h"

#include "engine/indices/IndexSql.h"
#include <orvane/engine/EngineCache.h>

namespace orvane::engine {

SqliteInserter::SqliteInserter(int index, IndexColumns columns, EngineCache& cache)
    : columns_(std::move(columns)), cache_(cache), tableName_(indexTable(index)) {}

SqliteInserter::~SqliteInserter() = default;

void SqliteInserter::addRow(const dp::Feature& feature) {
    if (!values_.isEmpty()) {
        values_ += QLatin1Char(',');
    }
    values_ += QLatin1Char('(');
    QVariant value;
    for (int i = 0; i < columns_.size(); ++i) {
        values_ +=
            feature.tryGetAttribute(i, value) && value.isValid() ? sqlLiteral(value) : QStringLiteral("Null");
        values_ += QLatin1Char(',');
    }
    values_ += QString::number(cache_.idToInt(feature.id(), -1)) + QLatin1Char(')');
}

QString SqliteInserter::sql() const {
    QString statement = QStringLiteral("Insert Into ") + tableName_ + QLatin1Char('(');
    for (const qint32 column : columns_) {
        statement += indexColumn(column) + QLatin1Char(',');
    }
    return statement + QStringLiteral("id) Values") + values_;
}

int SqliteInserter::indexId() const {
    return tableName_.midRef(1).toInt();
}

} // namespace orvane::engine

#pragma once

#include <orvane/engine/OwnStatements.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QVariant>

namespace orvane::testing {

/// The answer of a query as one text: cells separated by "|", rows by a line break, NULL as "NULL"; a failure
/// as "error: ...".
inline std::string answer(const QSqlDatabase& database, const QString& sql) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(sql)) {
        return "error: " + query.lastError().text().toStdString();
    }
    QStringList rows;
    while (query.next()) {
        QStringList cells;
        for (int i = 0; i < query.record().count(); ++i) {
            cells << (query.isNull(i) ? QStringLiteral("NULL") : query.value(i).toString());
        }
        rows << cells.join(QLatin1Char('|'));
    }
    if (query.lastError().isValid()) {
        return "error: " + query.lastError().text().toStdString();
    }
    return rows.join(QLatin1Char('\n')).toStdString();
}

/// The same for a statement of the test's own, which may make and drop tables of the engine database.
inline std::string ownAnswer(const QSqlDatabase& database, const QString& sql) {
    const engine::OwnStatements own;
    return answer(database, sql);
}

} // namespace orvane::testing

#pragma once

#include "host/desk/session/Tables.h"

#include <QString>
#include <QStringList>

namespace orvane::desk {

/// What could stand where someone writes.
struct Completion {
    QString word; ///< what is written of it already
    QStringList candidates;
};

/// The names and words that a query may go on with at a position: behind a dot the columns of the table or
/// alias before it, elsewhere tables, columns of the tables used, functions and keywords. Names are quoted
/// where they have to be.
Completion complete(const QString& query, int position, const TableInfos& tables,
                    const QStringList& functions);

/// A name as a query may use it.
QString quotedWhereNeeded(const QString& name);

} // namespace orvane::desk

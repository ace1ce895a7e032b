#pragma once

#include <QStringList>

namespace orvane::desk {

/// The queries that the user has run, the oldest first, kept in a file from one session to the next. One that
/// is run again moves to the end.
class QueryHistory {
public:
    /// Reads the file, if there is one. What is no history there is kept beside it.
    explicit QueryHistory(QString path);

    const QStringList& queries() const { return queries_; }
    /// Adds a query and writes the file; false when it cannot be written.
    bool add(const QString& query);

private:
    QString path_;
    QStringList queries_;
};

} // namespace orvane::desk

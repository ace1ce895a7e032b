#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

#include <cstdint>
#include <optional>

namespace orvane::desk {

/// What the window knows of an open table.
struct TableInfo {
    struct Column {
        QString name; ///< as statements name it
        QString type; ///< for the user
    };

    quint64 key = 0; ///< the same as long as the table is open, whatever its name
    QString name;
    QVector<Column> columns;
    std::optional<std::int64_t> featureCount;
    bool hasGeometry = false;
    bool isReadOnly = true;
    QString coordSystem; ///< its name; empty where nobody knows
    quint64 revision = 0;
};

/// In the order in which they were opened.
using TableInfos = QVector<TableInfo>;

/// A stretch of the text of a query, on one line of it.
struct TextPlace {
    int line = 1;   ///< from 1
    int column = 1; ///< from 1, in characters
    int length = 1; ///< in characters
};

/// How a query ended.
struct QueryOutcome {
    enum class Kind { Done, Failed, Cancelled };

    Kind kind = Kind::Done;
    QString message; ///< why it failed, or what else there is to say
    std::optional<TextPlace> place;
    std::int64_t rows = 0;
    std::int64_t changedRows = 0;
    std::int64_t milliseconds = 0;
};

/// The features that the next query finds in Selection.
struct SelectedFeatures {
    quint64 table = 0;   ///< key of the table, 0 for none
    QVector<qint64> ids; ///< ascending
};

} // namespace orvane::desk

Q_DECLARE_METATYPE(orvane::desk::TableInfos)
Q_DECLARE_METATYPE(orvane::desk::QueryOutcome)
Q_DECLARE_METATYPE(orvane::desk::SelectedFeatures)

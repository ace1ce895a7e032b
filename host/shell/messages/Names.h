#pragma once

#include <QString>
#include <QStringList>

namespace orvane {
class Engine;
namespace dp {
class DataCatalog;
}
} // namespace orvane

namespace orvane::shell {

/// What the user calls a column of the engine database: "obj" and "style" for the two fixed columns.
QString userColumnName(const QString& column);

/// The names that statements can use now, as the user writes them. For messages and completion: each question
/// is a query. Neither engine nor catalogue is owned; both are used from the thread of the engine.
class Names {
public:
    Names(const Engine& engine, const dp::DataCatalog& catalog) : engine_(engine), catalog_(catalog) {}

    QStringList tables() const;
    /// The queries that have a name in this session.
    QStringList views() const;
    /// Of a table, in their order; empty for one that does not exist.
    QStringList columns(const QString& table) const;
    QStringList functions() const;

private:
    const Engine& engine_;
    const dp::DataCatalog& catalog_;
};

} // namespace orvane::shell

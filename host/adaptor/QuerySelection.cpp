#include "host/adaptor/QuerySelection.h"

#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/sql/tree/FunctionInfo.h"
#include "platform/sql/tree/NodeVisitor.h"
#include <orvane/Engine.h>
#include <orvane/engine/EngineCache.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <set>

namespace orvane::adaptor {

namespace {

using namespace sql;

[[noreturn]] void refuse(const QString& reason) {
    throw SelectionError(reason.toStdString());
}

[[noreturn]] void refuseForm() {
    refuse(QCoreApplication::translate(
        "orvane::adaptor",
        "выбирать может один Select из таблицы, без Group By и без функций по многим строкам"));
}

bool isAggregate(const ast::Function& node) {
    const std::string name = toUtf8(node.name);
    for (const FunctionInfo& info : functionInfos()) {
        if (qstricmp(info.name, name.c_str()) == 0) { // Min and Max of several values are plain functions
            return (info.types & FunctionInfo::Aggregate) &&
                   (!(info.types & FunctionInfo::Scalar) || node.arguments.size() == 1);
        }
    }
    return false;
}

/// Whether an expression has a call that makes one row of many. Queries within it are none of its business.
bool hasAggregate(const ast::Node& expression) {
    bool found = false;
    ast::forEachNode(expression, [&found](const ast::Node& node) {
        const auto* function = ast::nodeAs<ast::Function>(&node);
        found = found || (function && !function->over && isAggregate(*function));
        return !found && node.kind != ast::NodeKind::QuerySpecification;
    });
    return found;
}

/// The first source of From; refuses one that is no table.
const ast::TablePrimary& firstTable(const ast::QuerySpecification& query) {
    const auto* from = ast::nodeAs<ast::FromSource>(query.from);
    ast::NodePtr source = from && !from->sources.empty() ? from->sources.front() : nullptr;
    while (const auto* join = ast::nodeAs<ast::JoinNode>(source)) {
        source = join->left;
    }
    const auto* table = ast::nodeAs<ast::TablePrimary>(source);
    if (!table) {
        refuseForm();
    }
    return *table;
}

bool isAggregate(const ast::QuerySpecification& query) {
    return !query.groupBy.empty() || query.having ||
           std::any_of(query.columns.begin(), query.columns.end(),
                       [](const ast::NodePtr& column) { return hasAggregate(*column); });
}

/// The same query with the row number of its first table as one more result column.
ParseResult withRowNumber(const ast::QuerySpecification& query, const ast::TablePrimary& table) {
    const auto numbered = std::make_shared<ast::QuerySpecification>(query);
    numbered->into = nullptr;
    const std::wstring& qualifier = table.alias.empty() ? table.name : table.alias;
    numbered->columns.push_back(
        std::make_shared<ast::DerivedColumn>(std::make_shared<ast::ColumnReference>(qualifier, L"rowid")));
    return {numbered, false, {}};
}

std::vector<dp::FeatureId> findFeatures(const QString& sql, const Engine& engine) {
    QSqlQuery query(engine.engineDatabase());
    query.setForwardOnly(true);
    if (!query.exec(sql)) {
        refuse(query.lastError().databaseText());
    }
    const int rowNumber = query.record().count() - 1;
    std::vector<dp::FeatureId> ids;
    std::set<qint64> seen;
    while (query.next()) {
        const qint64 number = query.value(rowNumber).toLongLong();
        if (!query.isNull(rowNumber) && seen.insert(number).second) { // NULL: a join without partner
            ids.push_back(engine.cache()->intToId(number));
        }
    }
    if (query.lastError().isValid()) {
        refuse(query.lastError().databaseText());
    }
    return ids;
}

} // namespace

dp::Selection selectionOf(const std::string& query, Engine& engine,
                          const dp::DataCatalogWithSelection& catalog) {
    SqlParser parser(nullptr);
    if (!parser.parse(query)) {
        throw SelectionError(parser.errors().front()->what());
    }
    const auto* parsed = ast::nodeAs<ast::QuerySpecification>(parser.result().node());
    if (!parsed) {
        refuseForm();
    }
    const ast::TablePrimary& table = firstTable(*parsed);
    if (isAggregate(*parsed)) {
        refuseForm();
    }
    engine::SqliteStringBuilder builder(QString(), nullptr);
    builder.setSelection(catalog.selection(), engine.cache());
    builder.setNeedDependencies(true);
    engine.tryToTranslate(withRowNumber(*parsed, table), builder, Engine::ParseAsIs);
    if (!builder.errors().empty()) {
        throw SelectionError(builder.errors().front()->what());
    }
    std::vector<dp::FeatureId> ids = findFeatures(fromSqlString(builder.query()), engine);
    // The current selection stands for its table.
    const QString name =
        builder.primaries().empty() ? QString() : fromSqlString(builder.primaries().front().name);
    auto object = catalog.dataObject(name);
    if (!object) {
        refuse(QCoreApplication::translate("orvane::adaptor", "Нет открытой таблицы %0").arg(name));
    }
    return {std::move(object), std::move(ids)};
}

} // namespace orvane::adaptor

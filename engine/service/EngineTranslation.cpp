#include <orvane/Engine.h>

#include "engine/service/EngineInternal.h"
#include "engine/translation/NameSpellings.h"

#include "platform/log/Logger.h"
#include "platform/sql/lexing/SqlError.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/sql/parsing/SqlParser.h"
#include "platform/sql/parsing/SqlRuntime.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/SqliteStringBuilder.h>

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace orvane {

namespace {

/// What a query gives in its only column; with a parameter, if it has one.
std::vector<std::wstring> namesOf(const QSqlDatabase& database, const QString& text,
                                  const std::wstring& parameter = {}) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.prepare(text);
    if (!parameter.empty()) {
        query.addBindValue(sql::fromSqlString(parameter));
    }
    std::vector<std::wstring> names;
    for (query.exec(); query.next();) {
        names.push_back(sql::toSqlString(query.value(0).toString()));
    }
    return names;
}

/// The columns of a table of the engine database, hidden ones, geometry and style left out.
bool hasColumn(const QSqlDatabase& database, const std::wstring& table, const std::wstring& column) {
    const auto names = namesOf(database, QStringLiteral("Select name From pragma_table_xinfo(?)"), table);
    return std::find(names.begin(), names.end(), column) != names.end();
}

std::vector<std::wstring> joinableColumns(const QSqlDatabase& database, const std::wstring& table) {
    std::vector<std::wstring> columns =
        namesOf(database, QStringLiteral("Select name From pragma_table_xinfo(?) Where hidden = 0"), table);
    const auto isFixed = [](const std::wstring& name) {
        return name == engine::geometryColumnName() || name == engine::styleColumnName();
    };
    columns.erase(std::remove_if(columns.begin(), columns.end(), isFixed), columns.end());
    return columns;
}

/// None for other values, for an expression that fails, and for a blob too large to be repeated in a text.
std::optional<std::wstring> blobOf(const QSqlDatabase& database, const std::wstring& expression) {
    constexpr int largest = 1 << 16;
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("Select ") + sql::fromSqlString(expression)) || !query.next() ||
        query.value(0).type() != QVariant::ByteArray) {
        return std::nullopt;
    }
    const QByteArray blob = query.value(0).toByteArray();
    return blob.isEmpty() || blob.size() > largest
               ? std::nullopt
               : std::optional(sql::toSqlString(QString::fromLatin1(blob.toHex())));
}

} // namespace

bool Engine::tryToTranslate(const std::string& text, engine::SqliteStringBuilder& builder,
                            CheckParseResults check) const {
    sql::SqlParser parser(internal_->runtime());
    if (parser.parse(text)) {
        return tryToTranslate(parser.result(), builder, check);
    }
    builder.setError(std::make_shared<sql::GeneralSyntaxError>(
        sql::toSqlString(QObject::tr("проверьте корректность выражений в запросе"))));
    return !builder.query().empty();
}

bool Engine::tryToTranslate(const sql::ParseResult& statement, engine::SqliteStringBuilder& builder,
                            CheckParseResults check) const {
    if (check == ExpressionOnly && !statement.isExpression()) {
        builder.addError(
            std::make_shared<sql::UnexpectedParseResult>(sql::toSqlString(QObject::tr("Выражение"))));
    } else {
        builder.setCollate(QStringLiteral("Locale"));
        const bool isLent = !builder.tableColumns();
        if (isLent) {
            builder.setTableColumns(
                [this](const std::wstring& table) { return joinableColumns(internal_->database(), table); });
        }
        builder.setHasHiddenColumns([this](const std::wstring& table) {
            return hasColumn(internal_->database(), table, engine::secondOperandColumnName());
        });
        builder.setBlobOf(
            [this](const std::wstring& expression) { return blobOf(internal_->database(), expression); });
        builder.setSpellings(engine::nameSpellings(
            *statement.node(),
            [this] {
                return namesOf(
                    internal_->database(),
                    QStringLiteral(
                        "Select name From sqlite_master Union All Select name From sqlite_temp_master"));
            },
            builder.tableColumns()));
        std::wstring query = builder.buildString(*statement.node());
        builder.setHasHiddenColumns(nullptr);
        builder.setBlobOf(nullptr);
        if (isLent) {
            builder.setTableColumns(nullptr);
        }
        if (builder.hasErrors()) {
            builder.addTranslateErrors();
        } else {
            builder.setQuery(std::move(query));
            builder.setIsExpression(statement.isExpression());
        }
    }
    return !builder.query().empty();
}

QString Engine::translate(const std::string& text) const {
    engine::SqliteStringBuilder builder(QString(), nullptr);
    if (tryToTranslate(text, builder, ParseAsIs)) {
        return sql::fromSqlString(builder.query());
    }
    for (const auto& error : builder.errors()) {
        loggerInstance()->write(LogLevel::Info, QStringLiteral("Engine"), 338,
                                QStringLiteral("QString orvane::Engine::translate(const string&) const"),
                                QString::fromUtf8(error->what()));
    }
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

QString Engine::translate(const QString& text) const {
    return translate(text.toStdString());
}

} // namespace orvane

#include "SqlFunctions.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "platform/utils/Utf8.h"

#include <QLocale>
#include <QRegularExpression>

#include <sqlite3.h>

#include <spatialite.h>

#include <stdexcept>

namespace orvane::tests {

namespace {

QString quoted(QString expression) {
    static const QRegularExpression call(QStringLiteral("\\b(Left|Right|xor|Like|Glob|RegExp)\\("));
    expression.replace(call, QStringLiteral("\"\\1\"("));
    return expression;
}

QString textOf(sqlite3_stmt* statement) {
    switch (sqlite3_column_type(statement, 0)) {
    case SQLITE_INTEGER: return QStringLiteral("integer %1").arg(sqlite3_column_int64(statement, 0));
    case SQLITE_FLOAT: {
        const QString number =
            QString::number(sqlite3_column_double(statement, 0), 'g', QLocale::FloatingPointShortest);
        const bool whole = !number.contains(QLatin1Char('.')) && !number.contains(QLatin1Char('e'));
        return QLatin1String("real ") + number + QLatin1String(whole ? ".0" : "");
    }
    case SQLITE_TEXT: {
        const QString text = utf8::decode({reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                                           static_cast<std::size_t>(sqlite3_column_bytes(statement, 0))});
        return text.isEmpty() ? QStringLiteral("text") : QLatin1String("text ") + text;
    }
    case SQLITE_BLOB: {
        const QByteArray bytes(static_cast<const char*>(sqlite3_column_blob(statement, 0)),
                               sqlite3_column_bytes(statement, 0));
        return QLatin1String("blob ") + QString::fromLatin1(bytes.toHex());
    }
    default: return QStringLiteral("null");
    }
}

} // namespace

void SqlFunctions::Close::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

void SqlFunctions::CleanUp::operator()(void* spatialite) const {
    spatialite_cleanup_ex(spatialite);
}

SqlFunctions::SqlFunctions() : spatialite_(spatialite_alloc_connection()) {
    sqlite3* database = nullptr;
    if (sqlite3_open(":memory:", &database) != SQLITE_OK) {
        throw std::runtime_error("no database");
    }
    database_.reset(database);
    spatialite_init_ex(database, spatialite_.get(), 0);
    if (adaptor::registerAllFunctions(database, &cache_) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

std::vector<adaptor::FunctionRecord> SqlFunctions::records() {
    return adaptor::allFunctionRecords();
}

QString SqlFunctions::evaluate(const QString& expression) const {
    return run(QLatin1String("Select ") + quoted(expression));
}

QString SqlFunctions::run(const QString& sql, const std::vector<QByteArray>& parameters) const {
    sqlite3_stmt* raw = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(handle(), text.constData(), -1, &raw, nullptr) != SQLITE_OK) {
        return QLatin1String("error ") + QString::fromUtf8(sqlite3_errmsg(handle()));
    }
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(raw, sqlite3_finalize);
    for (size_t i = 0; i < parameters.size(); ++i) {
        sqlite3_bind_text(raw, static_cast<int>(i) + 1, parameters[i].constData(), parameters[i].size(),
                          SQLITE_TRANSIENT);
    }
    switch (sqlite3_step(raw)) {
    case SQLITE_ROW: return textOf(raw);
    case SQLITE_DONE: return QStringLiteral("no row");
    default: return QLatin1String("error ") + QString::fromUtf8(sqlite3_errmsg(handle()));
    }
}

} // namespace orvane::tests

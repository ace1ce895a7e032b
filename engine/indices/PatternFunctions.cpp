#include "engine/indices/PatternFunctions.h"

#include "engine/functions/Barrier.h"
#include "engine/functions/PreparedArgument.h"
#include "platform/utils/Patterns.h"
#include <orvane/engine/functions/Converters.h>

#include <QRegularExpression>

namespace orvane::engine {

namespace {

using ToRegular = QString (*)(const QString& pattern);

void match(sqlite3_context* context, sqlite3_value** values, ToRegular toRegular) {
    if (sqlite3_value_type(values[0]) == SQLITE_NULL || sqlite3_value_type(values[1]) == SQLITE_NULL) {
        return;
    }
    withPrepared<QRegularExpression>(
        context, 0, [](const QRegularExpression&) { return true; },
        [&] {
            return QRegularExpression(toRegular(toQString(values[0])),
                                      QRegularExpression::CaseInsensitiveOption);
        },
        [&](const QRegularExpression& expression) {
            sqlite3_result_int(context, expression.match(toQString(values[1])).hasMatch() ? 1 : 0);
        });
}

} // namespace

void searchLike(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        match(context, values, [](const QString& pattern) { return utils::likeToRegular(pattern, QChar()); });
    });
}

void searchGlob(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] { match(context, values, utils::globToRegular); });
}

} // namespace orvane::engine

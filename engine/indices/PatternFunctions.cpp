#include "engine/indices/PatternFunctions.h"

#include "engine/functions/Barrier.h"
#include "platform/utils/Patterns.h"
#include <orvane/engine/functions/Converters.h>

#include <QRegularExpression>

#include <memory>

namespace orvane::engine {

namespace {

using ToRegular = QString (*)(const QString& pattern);

void match(sqlite3_context* context, sqlite3_value** values, ToRegular toRegular) {
    if (sqlite3_value_type(values[0]) == SQLITE_NULL || sqlite3_value_type(values[1]) == SQLITE_NULL) {
        return;
    }
    const auto matches = [&](const QRegularExpression& expression) {
        return expression.match(toQString(values[1])).hasMatch() ? 1 : 0;
    };
    if (const void* kept = sqlite3_get_auxdata(context, 0)) {
        sqlite3_result_int(context, matches(*static_cast<const QRegularExpression*>(kept)));
        return;
    }
    auto expression = std::make_unique<QRegularExpression>(toRegular(toQString(values[0])),
                                                           QRegularExpression::CaseInsensitiveOption);
    sqlite3_result_int(context, matches(*expression));
    // SQLite drops it at once when the pattern is no constant.
    sqlite3_set_auxdata(context, 0, expression.release(),
                        [](void* kept) { delete static_cast<QRegularExpression*>(kept); });
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

#include <orvane/engine/functions/Text.h>

#include "Barrier.h"
#include "PreparedArgument.h"
#include "TextArguments.h"
#include <orvane/engine/functions/Converters.h>

#include <QRegularExpression>

#include <stdexcept>

namespace orvane::engine {

namespace {

/// Steps that a pattern may take on one text before it counts as one that never ends.
const QString stepLimit = QStringLiteral("(*LIMIT_MATCH=1000000)");

QRegularExpression expressionOf(sqlite3_value* pattern) {
    const QString text = toQString(pattern);
    QRegularExpression expression(stepLimit + text, QRegularExpression::CaseInsensitiveOption |
                                                        QRegularExpression::UseUnicodePropertiesOption);
    if (!expression.isValid()) {
        throw std::runtime_error("RegExp: " + expression.errorString().toStdString() + " at character " +
                                 std::to_string(expression.patternErrorOffset() - stepLimit.size() + 1) +
                                 " of the pattern");
    }
    expression.optimize();
    return expression;
}

} // namespace

void regExp(sqlite3_context* context, int, sqlite3_value** values) {
    barrier(context, [&] {
        if (isNull(values[0]) || isNull(values[1])) {
            return;
        }
        withPrepared<QRegularExpression>(
            context, 0, [](const QRegularExpression&) { return true; },
            [&] { return expressionOf(values[0]); },
            [&](const QRegularExpression& expression) {
                const QRegularExpressionMatch match = expression.match(toQString(values[1]));
                if (!match.isValid()) {
                    throw std::runtime_error("RegExp: the pattern takes too many steps on a text");
                }
                sqlite3_result_int(context, match.hasMatch() ? 1 : 0);
            });
    });
}

} // namespace orvane::engine

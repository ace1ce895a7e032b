#include "host/desk/session/QueryFault.h"

#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/FunctionNames.h>
#include <platform/sql/lexing/Lexer.h>
#include <platform/sql/lexing/Script.h>
#include <platform/sql/lexing/SqlStrings.h>
#include <platform/sql/parsing/SqlParser.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>

namespace orvane::desk {

namespace {

/// What SQLite says, with the name that it says it of.
struct Saying {
    const char* pattern;
    const char* text;
};

constexpr Saying sayings[] = {
    {"^no such table: (?:main\\.|temp\\.)?(.*)$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "нет таблицы «%0»")},
    {"^no such column: (.*)$", QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "нет столбца «%0»")},
    {"^no such function: (.*)$", QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "нет функции «%0»")},
    {"^ambiguous column name: (.*)$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "столбец «%0» есть в нескольких таблицах")},
    {"^wrong number of arguments to function (.*)\\(\\)$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "у функции %0 другое число аргументов")},
    {"^misuse of (?:aliased )?(?:aggregate|window function)(?: function)?:? ?(\\w+)",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault",
                       "функция %0 здесь недопустима: она считает по многим строкам")},
    {"^table (.*) may not be modified$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "таблица «%0» только для чтения")},
    {"^table .* has no column named (.*)$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "нет столбца «%0»")},
    {"^not authorized to use function: (.*)$",
     QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "функция %0 недоступна запросам")},
    {"^not authorized: (.*)$", QT_TRANSLATE_NOOP("orvane::desk::QueryFault", "запросам недоступно: %0")},
};

/// As the user writes it.
QString userName(const QString& name) {
    const std::wstring text = sql::toSqlString(name);
    if (text == engine::geometryColumnName()) {
        return QStringLiteral("obj");
    }
    return text == engine::styleColumnName() ? QStringLiteral("style") : engine::dialectFunctionName(name);
}

std::optional<TextPlace> placeOfName(const QString& name, const std::string& statement) {
    const sql::TokenizedText text = sql::tokenize(statement);
    for (const sql::Token& token : text.tokens) {
        const bool isName = token.kind == sql::TokenKind::Word || token.kind == sql::TokenKind::QuotedName;
        if (isName && sql::fromSqlString(text.value(token)).compare(name, Qt::CaseInsensitive) == 0) {
            const sql::TextPosition position = text.position(token.offset);
            return TextPlace{position.line, position.column, static_cast<int>(token.length)};
        }
    }
    return std::nullopt;
}

} // namespace

QueryFault faultOf(const sql::SqlError& error, const std::string& statement) {
    if (dynamic_cast<const sql::SelectionTableIsAbsent*>(&error)) {
        return {
            QCoreApplication::translate("orvane::desk::QueryFault",
                                        "ничего не выбрано: выберите объекты на карте или строки в таблице"),
            placeOfName(QStringLiteral("Selection"), statement)};
    }
    QueryFault fault{QString::fromUtf8(error.what()), std::nullopt};
    if (const auto& place = error.place()) {
        fault.place = {place->line, place->column, std::max(1, static_cast<int>(place->word.size()))};
        // The place is shown by itself, in the whole text.
        const QString prefix =
            QCoreApplication::translate("orvane::sql", "строка %0, столбец %1: %2")
                .arg(QString::number(place->line), QString::number(place->column), QString());
        if (fault.message.startsWith(prefix)) {
            fault.message.remove(0, prefix.size());
        }
    } else if (const auto* unknown = dynamic_cast<const sql::UnknownFunction*>(&error)) {
        fault.place = placeOfName(sql::fromSqlString(unknown->name()), statement);
    }
    return fault;
}

QueryFault faultOf(const QString& sqliteMessage, const std::string& statement) {
    for (const Saying& saying : sayings) {
        const auto match = QRegularExpression(QLatin1String(saying.pattern)).match(sqliteMessage);
        if (match.hasMatch()) {
            const QString name = match.captured(1);
            const QString word = userName(name.section(QLatin1Char('.'), -1));
            auto place = placeOfName(word, statement);
            return {QCoreApplication::translate("orvane::desk::QueryFault", saying.text)
                        .arg(name.contains(QLatin1Char('.')) && !place ? name : word),
                    place};
        }
    }
    return {sqliteMessage, std::nullopt};
}

std::optional<QueryFault> syntaxFault(const std::string& text) {
    for (const sql::ScriptStatement& statement : sql::splitScript(text).statements) {
        sql::SqlParser parser(nullptr);
        if (!parser.parse(statement.text)) {
            QueryFault fault = faultOf(*parser.errors().front(), statement.text);
            if (fault.place) {
                fault.place = shifted(*fault.place, statement.line, statement.column);
            }
            return fault;
        }
    }
    return std::nullopt;
}

TextPlace shifted(TextPlace place, int line, int column) {
    place.column += place.line == 1 ? column - 1 : 0;
    place.line += line - 1;
    return place;
}

} // namespace orvane::desk

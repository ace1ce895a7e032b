#include "host/shell/messages/SqliteErrors.h"

#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/PeerNames.h"
#include "host/shell/messages/Shell.h"

#include "platform/sql/lexing/SqlStrings.h"
#include <orvane/engine/FunctionNames.h>

#include <QRegularExpression>

#include <algorithm>

namespace orvane::shell {

namespace {

/// Messages that name nothing in the text, or nothing that could be looked up. "%1" takes what the pattern
/// captures.
struct PlainMessage {
    const char* pattern;
    const char* text;
    sql::Keyword keyword = sql::Keyword::None; ///< stands where the fault is, unless something else tells
};

constexpr PlainMessage plainMessages[] = {
    {"^misuse of (?:aliased )?(?:aggregate|window function)(?: function)?:? ?(\\w+)",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "функция %1 здесь недопустима: она считает по многим строкам")},
    {"^no such collation sequence: (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "нет порядка сравнения «%1»")},
    {"^no such window: (.*)$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "нет окна «%1»")},
    {"^(.*)\\(\\) may not be used as a window function$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "функция %1 не может быть оконной")},
    {"^FILTER may not be used with non-aggregate (.*)\\(\\)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "Filter недопустим с функцией %1: она не считает по многим строкам")},
    {"^DISTINCT aggregates must have exactly one argument$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "с Distinct функция принимает ровно один аргумент"),
     sql::Keyword::Distinct},
    {"^DISTINCT is not supported for window functions$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Distinct недопустим в оконной функции"),
     sql::Keyword::Distinct},
    {"^SELECTs to the left and right of (.*) do not have the same number of result columns$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "запросы по обе стороны %1 дают разное число столбцов")},
    {"^sub-select returns (.*) columns - expected (?:\\d+)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "вложенный запрос даёт столбцов: %1, здесь нужно другое число")},
    {"^row value misused$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "составное значение здесь недопустимо")},
    {"^(\\S+) (?:ORDER|GROUP) BY term out of range",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "столбца с таким номером в запросе нет (%1 выражение сортировки или группы)"),
     sql::Keyword::Order},
    {"^(\\S+) ORDER BY term does not match any column in the result set$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "%1 выражение сортировки должно быть столбцом результата")},
    {"^cannot join using column (.*) - column not present in both tables$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "столбец «%1» из Using есть не в обеих таблицах")},
    {"^HAVING clause on a non-aggregate query$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Having без Group By и без функций по многим строкам"),
     sql::Keyword::Having},
    {"^table (.*) may not be modified$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "таблица «%1» только для чтения")},
    {"^(?:table|view) (.*) already exists$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "таблица «%1» уже есть")},
    {"^table (.*) has (?:\\d+) values for (?:\\d+) columns$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "у запроса «%1» другое число столбцов")},
    {"^table (.*) has (?:\\d+) columns but (?:\\d+) values were supplied$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "число значений не равно числу столбцов таблицы «%1»"),
     sql::Keyword::Values},
    {"^(?:\\d+) columns assigned (?:\\d+) values$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "слева и справа от знака равенства разное число значений"),
     sql::Keyword::Set},
    {"^all VALUES must have the same number of terms$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в строках после Values разное число значений"),
     sql::Keyword::Values},
    {"^IN\\(\\.\\.\\.\\) element has",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в списке In элементы с разным числом значений"),
     sql::Keyword::In},
    {"^duplicate WITH table name: (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "запрос «%1» назван дважды"), sql::Keyword::With},
    {"^aggregate functions are not allowed in the GROUP BY clause$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в Group By недопустимы функции по многим строкам"),
     sql::Keyword::Group},
    {"^multiple (?:references to recursive table|recursive references): (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "запрос «%1» ссылается на себя больше одного раза")},
    {"^recursive aggregate queries not supported$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "рекурсивный запрос не может считать по многим строкам"),
     sql::Keyword::Recursive},
    {"^cannot use window functions in recursive queries$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в рекурсивном запросе недопустимы оконные функции"),
     sql::Keyword::Recursive},
    {"^RANGE with offset PRECEDING/FOLLOWING requires one ORDER BY expression$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Range со сдвигом требует одного выражения после Order By")},
    {"^unsupported frame ", QT_TRANSLATE_NOOP("orvane::shell::Shell", "такие границы окна недопустимы")},
    {"^frame (?:starting|ending) offset must be a non-negative",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "сдвиг границы окна должен быть неотрицательным числом")},
    {"^argument of (ntile) must be a positive integer$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "аргумент функции %1 должен быть положительным целым числом")},
    {"^second argument to (nth_value) must be a positive integer$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "второй аргумент функции %1 должен быть положительным целым числом")},
    {"^datatype mismatch$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "после Limit и Offset нужны целые числа"),
     sql::Keyword::Limit},
    {"^too many arguments on function (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "у функции %1 слишком много аргументов")},
    {"^too many (?:columns|terms) in (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "слишком длинный список: %1")},
    {"^too many FROM clause terms",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "слишком много таблиц после From"), sql::Keyword::From},
    {"^variable number must be between",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "номер параметра слишком велик")},
    {"^database or disk is full$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "на диске нет места")},
    {"^disk I/O error$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "ошибка чтения или записи на диске")},
    {"^(.*) values for (?:\\d+) columns$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "число значений (%1) не равно числу столбцов"),
     sql::Keyword::Values},
    {"^no tables specified$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "звёздочка требует таблицы после From")},
    {"^Expression tree is too large", QT_TRANSLATE_NOOP("orvane::shell::Shell", "выражение слишком велико")},
    {"^at most (\\d+) tables in a join$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в одном запросе можно соединить не больше %1 таблиц")},
    {"^circular reference: (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "запрос «%1» ссылается на самого себя")},
    {"^integer overflow$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "сумма целых чисел не помещается в 64 бита")},
    {"^Division by zero$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "деление на ноль")},
    {"^Integer overflow$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "частное не помещается в 64 бита")},
    {"^Power overflow$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "степень слишком велика или не определена")},
    {"^Sum overflow\\.$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "сумма слишком велика")},
    {"^(\\w+): width out of range$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "ширина в шаблоне функции %1 больше десяти миллионов")},
    {"^Square root from negative value$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "корень извлекается только из числа, которое не меньше нуля")},
    {"^start_at must be >= 1$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "место, с которого ищет InStr, должно быть не меньше 1")},
    {"^occurence must be >= 1$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "номер вхождения для InStr должен быть не меньше 1")},
    {"^RegExp: the pattern takes too many steps",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "регулярное выражение требует на одном тексте больше миллиона шагов: упростите его"),
     sql::Keyword::RegExp},
    {"^RegExp: (.*)$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "ошибка в регулярном выражении: %1"),
     sql::Keyword::RegExp},
    {"^(?:Extract|Date_Trunc): unknown part (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "неизвестная часть даты: %1")},
    {"^Percentile: the share has to lie",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "доля для Percentile лежит между 0 и 1: девяносто процентов пишутся 0.9")},
    {"^Percentile: the share differs",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "доля для Percentile должна быть одной на всю группу")},
    {"^cannot modify (.*) because it is a view$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "именованный запрос «%1» не таблица: строки меняются в таблицах")},
    {"^no such view: (.*)$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "нет именованного запроса «%1»")},
    {"^no such savepoint: (.*)$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "нет точки возврата «%1»")},
    {"^cannot start a transaction within a transaction$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "транзакция уже начата: её завершает Commit или Rollback")},
    {"^cannot (?:commit|rollback) - no transaction is active$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "транзакция не начата: её начинает Begin")},
    {"^parameters are not allowed in views$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "в именованном запросе нет места параметрам")},
    {"^too many arguments on (.*)\\(\\) - max \\d+$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "у функции %1 слишком много аргументов")},
    {"^Generate_Series: expected the first and the last value$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Generate_Series: нужны первое и последнее значение")},
    {"^Generate_Series: expected finite numbers",
     QT_TRANSLATE_NOOP("orvane::shell::Shell",
                       "Generate_Series: нужны конечные числа и шаг, отличный от нуля")},
    {"^Generate_Series: expected two numbers or two dates$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Generate_Series: нужны два числа или две даты")},
    {"^Generate_Series: expected a step",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Generate_Series: нужен шаг вроде '1 day' или '3 months'")},
    {"^Generate_Series: the step is 0$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "Generate_Series: шаг равен нулю")},
    {"^(?:Unexpected error|Unknown failure)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "функция не смогла вычислить значение")},
    {"^malformed JSON$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "текст не является записью JSON")},
    {"^JSON path error near '(.*)'$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "ошибка в пути JSON возле «%1»")},
    {"^JSON cannot hold BLOB values$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "JSON не хранит двоичных значений")},
    {"^json_object\\(\\) labels must be TEXT$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "имена в json_object должны быть текстами")},
    {"^(json_object)\\(\\) requires an even number of arguments$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "у функции %1 должно быть чётное число аргументов")},
    {"^(json_\\w+)\\(\\) needs an odd number of arguments$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "у функции %1 должно быть нечётное число аргументов")},
    {"^second argument to (\\w+)\\(\\) must be a constant between 0\\.0 and 1\\.0$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "второй аргумент функции %1 должен быть числом от 0 до 1")},
    {"^not authorized to use function: (.*)$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "функция %1 недоступна: её нет в справке по функциям")},
    {"^not authorized: (.*)$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "запросам недоступно: %1")},
    {"^string or blob too big$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "значение больше 256 мегабайт")},
    {"^out of memory$", QT_TRANSLATE_NOOP("orvane::shell::Shell", "не хватает памяти")},
    {"^near \"(.*)\": syntax error$",
     QT_TRANSLATE_NOOP("orvane::shell::Shell", "ошибка в тексте возле «%1»")},
};

QString withSuggestion(const QString& message, const QString& nearest) {
    return nearest.isEmpty() ? message : Shell::tr("%0; возможно, имелось в виду «%1»").arg(message, nearest);
}

bool isName(const sql::Token& token) {
    return token.kind == sql::TokenKind::Word || token.kind == sql::TokenKind::QuotedName;
}

/// Whether the user's word stands for that name of the engine database.
bool means(const QString& word, const QString& name) {
    const auto same = [&word](const QString& other) { return word.compare(other, Qt::CaseInsensitive) == 0; };
    if (same(name) || same(engine::dialectFunctionName(name))) {
        return true;
    }
    const QString column = userColumnName(name);
    return same(column) ||
           (column != name && same(column == QLatin1String("obj") ? QStringLiteral("object")
                                                                  : QStringLiteral("tr$$_rendition")));
}

/// The tokens with that value, whatever their letter case.
std::vector<std::size_t> wordsOf(const sql::TokenizedText& text, const QString& value) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < text.tokens.size(); ++i) {
        const QString other = sql::fromSqlString(text.value(text.tokens[i]));
        if (other.compare(value, Qt::CaseInsensitive) == 0) {
            found.push_back(i);
        }
    }
    return found;
}

std::size_t charactersIn(const std::string& utf8, int bytes) {
    if (bytes < 0) {
        return std::string::npos;
    }
    std::wstring characters;
    sql::appendUtf8(characters, std::string_view(utf8).substr(0, static_cast<std::size_t>(bytes)));
    return characters.size();
}

} // namespace

SqliteErrors::SqliteErrors(const sql::TokenizedText& statement, const sql::ast::NodeList& tables,
                           std::string sqliteText, int errorOffset, const Names& names)
    : statement_(statement), sqliteText_(sql::tokenize(sqliteText)),
      errorOffset_(charactersIn(sqliteText, errorOffset)), names_(names), used_(tables, names) {}

Problem SqliteErrors::explain(const QString& message) const {
    using Explain = Problem (SqliteErrors::*)(const QString&) const;
    static constexpr std::pair<const char*, Explain> named[] = {
        {"^no such table: (?:main\\.|temp\\.)?(.*)$", &SqliteErrors::missingTable},
        {"^no such column: (.*)$", &SqliteErrors::missingColumn},
        {"^no such function: (.*)$", &SqliteErrors::missingFunction},
        {"^wrong number of arguments to function (.*)\\(\\)$", &SqliteErrors::wrongArguments},
        {"^Invalid argument count\\. Usage: (\\w+) ", &SqliteErrors::wrongArguments},
        {"^ambiguous column name: (.*)$", &SqliteErrors::ambiguousColumn},
        {"^table (.* has no column named .*)$", &SqliteErrors::missingTargetColumn},
        {"^misuse of (?:aliased )?window function (row_number)\\(\\)$", &SqliteErrors::misusedRowNumber},
    };
    for (const auto& [pattern, explainName] : named) {
        const auto match = QRegularExpression(QLatin1String(pattern)).match(message);
        if (match.hasMatch()) {
            return (this->*explainName)(match.captured(1));
        }
    }
    for (const PlainMessage& plain : plainMessages) {
        const auto match = QRegularExpression(QLatin1String(plain.pattern)).match(message);
        if (!match.hasMatch()) {
            continue;
        }
        const QString name = match.captured(1);
        const QString text = Shell::tr(plain.text);
        auto place = name.isEmpty() ? std::nullopt : placeOf(name, Role::Function);
        if (!place && !name.isEmpty()) {
            place = placeOf(name, Role::Table);
        }
        if (!place) {
            place = placeOfOffset();
        }
        if (!place) {
            place = placeOfKeyword(plain.keyword);
        }
        if (!place) {
            place = placeOfNamedFunction(message);
        }
        return {text.contains(QLatin1String("%1")) ? text.arg(engine::dialectFunctionName(name)) : text,
                place};
    }
    if (message == QLatin1String("parser stack overflow")) {
        return tooDeep();
    }
    const auto place = placeOfOffset();
    return {message, place ? place : placeOfNamedFunction(message)};
}

/// Of the function that the message begins with, under whichever of its names the statement calls it.
std::optional<TextPlace> SqliteErrors::placeOfNamedFunction(const QString& message) const {
    const int colon = message.indexOf(QLatin1String(": "));
    if (colon < 0) {
        return std::nullopt;
    }
    const QByteArray name = message.left(colon).toUtf8();
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        if (!record.isNamed(name.constData())) {
            continue;
        }
        for (const char* const each : record.names()) {
            if (const auto place = placeOf(QLatin1String(each), Role::Function)) {
                return place;
            }
        }
    }
    return std::nullopt;
}

/// SQLite's parser holds about 22 calls within one another.
Problem SqliteErrors::tooDeep() const {
    using Kind = sql::TokenKind;
    int depth = 0;
    int deepest = 0;
    std::size_t place = 0;
    for (std::size_t i = 0; i < sqliteText_.tokens.size(); ++i) {
        const Kind kind = sqliteText_.tokens[i].kind;
        if (kind == Kind::LeftParenthesis) {
            ++depth;
        } else if (kind == Kind::RightParenthesis) {
            --depth;
        } else if (depth > deepest) {
            deepest = depth;
            place = i;
        }
    }
    return {
        Shell::tr("слишком глубоко вложено: SQLite допускает около 20 вызовов функций, Case или операторов "
                  "+ / \\ ^ друг в друге; вычислите внутреннюю часть во вложенном запросе (With или From)"),
        placeOfTranslated(place)};
}

Problem SqliteErrors::missingTable(const QString& name) const {
    const QStringList tables = names_.tables();
    if (tables.contains(name, Qt::CaseInsensitive)) { // "name.*"
        return {Shell::tr("таблицы «%0» нет после From").arg(name), placeOfQualifier(name)};
    }
    if (tables.isEmpty()) {
        return {Shell::tr("нет таблицы «%0»: ни один файл не открыт").arg(name), placeOf(name, Role::Table)};
    }
    const auto written = placeOf(name, Role::Table);
    const auto place = written ? written : placeOfQualifier(name);
    if (!place && !names_.views().isEmpty()) {
        return {Shell::tr("нет таблицы «%0», которую читает именованный запрос").arg(name), std::nullopt};
    }
    return {withSuggestion(Shell::tr("нет таблицы «%0»").arg(name), nearestName(name, tables)), place};
}

Problem SqliteErrors::missingColumn(const QString& name) const {
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString qualifier = name.left(std::max(dot, 0));
    const QString column = userColumnName(name.mid(dot + 1));
    if (!qualifier.isEmpty()) {
        const QString table = used_.tableBehind(qualifier);
        const QString alias = used_.aliasOf(qualifier);
        if (table.isEmpty() && used_.countOf(qualifier) == 0) {
            const QString message =
                alias.isEmpty()
                    ? Shell::tr("нет таблицы «%0», из которой берётся столбец «%1»").arg(qualifier, column)
                    : Shell::tr("таблица «%0» названа здесь «%1»: столбец пишется %1.%2")
                          .arg(qualifier, alias, column);
            return {message, placeOf(name, Role::Column)};
        }
        const QString message =
            Shell::tr("в таблице «%0» нет столбца «%1»").arg(table.isEmpty() ? qualifier : table, column);
        return {withSuggestion(message, nearestName(column, names_.columns(table))),
                placeOf(name, Role::Column)};
    }
    const auto place = placeOf(name, Role::Column);
    if (place && isQuoted(*place)) {
        const QString message = Shell::tr("нет столбца «%0»; тексты пишутся в апострофах: '%0'").arg(column);
        return {message, place};
    }
    QStringList known;
    for (const QString& table : used_.tables()) {
        known += names_.columns(table);
    }
    return {withSuggestion(Shell::tr("нет столбца «%0»").arg(column), nearestName(column, known)), place};
}

Problem SqliteErrors::missingTargetColumn(const QString& tableAndColumn) const {
    const QString separator = QStringLiteral(" has no column named ");
    const QString table = tableAndColumn.section(separator, 0, 0);
    const QString column = userColumnName(tableAndColumn.section(separator, 1));
    return {withSuggestion(Shell::tr("в таблице «%0» нет столбца «%1»").arg(table, column),
                           nearestName(column, names_.columns(table))),
            placeOf(column, Role::Column)};
}

Problem SqliteErrors::missingFunction(const QString& name) const {
    const QString here = nameHere(name);
    return {withSuggestion(Shell::tr("нет функции «%0»").arg(engine::dialectFunctionName(name)),
                           here.isEmpty() ? nearestName(name, names_.functions()) : here),
            placeOf(name, Role::Function)};
}

Problem SqliteErrors::wrongArguments(const QString& name) const {
    const auto place = placeOf(name, Role::Function);
    const auto message = [](const QString& function) {
        return Shell::tr("у функции %0 не столько аргументов").arg(engine::dialectFunctionName(function));
    };
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        if (record.isNamed(name.toUtf8().constData())) {
            return {Shell::tr("%0; она вызывается как %1")
                        .arg(message(QLatin1String(record.name)), QString::fromUtf8(record.signature)),
                    place};
        }
    }
    return {message(name), place};
}

/// The function stands for the dialect's rownum.
Problem SqliteErrors::misusedRowNumber(const QString& name) const {
    const QString dialectName = QStringLiteral("rownum");
    const auto written = wordsOf(statement_, dialectName);
    const auto translated = wordsOf(sqliteText_, name);
    std::optional<TextPlace> place;
    for (std::size_t i = 0; written.size() == translated.size() && i < written.size(); ++i) {
        if (errorOffset_ == sqliteText_.tokens[translated[i]].offset) {
            place = placeOfTokens(written[i], written[i]);
        }
    }
    return {Shell::tr("%0 здесь недопустим: строки нумеруются после отбора; чтобы отобрать по номеру, "
                      "пронумеруйте их во вложенном запросе")
                .arg(written.empty() ? name : dialectName),
            place};
}

Problem SqliteErrors::ambiguousColumn(const QString& name) const {
    const QString column = userColumnName(name.section(QLatin1Char('.'), -1));
    const QString qualifier = name.section(QLatin1Char('.'), 0, -2);
    if (used_.countOf(qualifier) > 1) {
        return {Shell::tr("имя «%0» дано после From дважды: таблицам нужны разные имена").arg(qualifier),
                placeOf(name, Role::Column)};
    }
    return {Shell::tr("столбец «%0» есть в нескольких таблицах: укажите таблицу перед ним").arg(column),
            placeOf(name, Role::Column)};
}

std::optional<TextPlace> SqliteErrors::placeOf(const QString& name, Role role) const {
    if (const auto whole = placeOfPath({name}, role)) {
        return whole;
    }
    // A dot may separate names or belong to one.
    for (int dot = name.indexOf(QLatin1Char('.')); dot >= 0; dot = name.indexOf(QLatin1Char('.'), dot + 1)) {
        if (const auto parts = placeOfPath({name.left(dot), name.mid(dot + 1)}, role)) {
            return parts;
        }
    }
    return std::nullopt;
}

std::optional<TextPlace> SqliteErrors::placeOfPath(const QStringList& path, Role role) const {
    const std::vector<std::size_t> written = occurrences(statement_, path, role);
    if (written.empty()) {
        return std::nullopt;
    }
    // Where the name occurs more than once, the translation keeps their order: the one SQLite points at
    // counts.
    const std::vector<std::size_t> translated = occurrences(sqliteText_, path, role);
    std::size_t chosen = 0;
    for (std::size_t i = 0; translated.size() == written.size() && i < written.size(); ++i) {
        const sql::Token& first = sqliteText_.tokens[translated[i]];
        const sql::Token& last =
            sqliteText_.tokens[translated[i] + 2 * (static_cast<std::size_t>(path.size()) - 1)];
        if (errorOffset_ >= first.offset && errorOffset_ < last.offset + last.length) {
            chosen = i;
        }
    }
    return placeOfTokens(written[chosen], written[chosen] + 2 * (static_cast<std::size_t>(path.size()) - 1));
}

TextPlace SqliteErrors::placeOfTokens(std::size_t first, std::size_t last) const {
    const sql::Token& begin = statement_.tokens[first];
    const sql::Token& end = statement_.tokens[last];
    const sql::TextPosition position = statement_.position(begin.offset);
    return {position.line, position.column, static_cast<int>(end.offset + end.length - begin.offset)};
}

std::optional<TextPlace> SqliteErrors::placeOfQualifier(const QString& name) const {
    const auto& tokens = statement_.tokens;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        if (isName(tokens[i]) && tokens[i + 1].kind == sql::TokenKind::Dot &&
            means(sql::fromSqlString(statement_.value(tokens[i])), name)) {
            return placeOfTokens(i, i);
        }
    }
    return std::nullopt;
}

std::optional<TextPlace> SqliteErrors::placeOfKeyword(sql::Keyword keyword) const {
    const auto& tokens = statement_.tokens;
    for (std::size_t i = 0; keyword != sql::Keyword::None && i < tokens.size(); ++i) {
        if (tokens[i].keyword == keyword) {
            return placeOfTokens(i, i);
        }
    }
    return std::nullopt;
}

std::optional<TextPlace> SqliteErrors::placeOfOffset() const {
    for (std::size_t i = 0; errorOffset_ != std::string::npos && i < sqliteText_.tokens.size(); ++i) {
        const sql::Token& token = sqliteText_.tokens[i];
        if (errorOffset_ >= token.offset && errorOffset_ < token.offset + token.length) {
            return placeOfTranslated(i);
        }
    }
    return std::nullopt;
}

std::optional<TextPlace> SqliteErrors::placeOfTranslated(std::size_t token) const {
    const auto& [kind, keyword, offset, length] = sqliteText_.tokens[token];
    const bool isValue = kind == sql::TokenKind::Word || kind == sql::TokenKind::QuotedName ||
                         kind == sql::TokenKind::Text || kind == sql::TokenKind::Number;
    if (!isValue) {
        return std::nullopt;
    }
    const QString value = sql::fromSqlString(sqliteText_.value(sqliteText_.tokens[token]));
    const auto translated = wordsOf(sqliteText_, value);
    const auto written = wordsOf(statement_, value);
    const auto ordinal =
        static_cast<std::size_t>(std::find(translated.begin(), translated.end(), token) - translated.begin());
    if (written.size() != translated.size() || ordinal >= written.size()) {
        return std::nullopt;
    }
    return placeOfTokens(written[ordinal], written[ordinal]);
}

bool SqliteErrors::isQuoted(const TextPlace& place) const {
    for (const sql::Token& token : statement_.tokens) {
        const sql::TextPosition position = statement_.position(token.offset);
        if (position.line == place.line && position.column == place.column) {
            return token.kind == sql::TokenKind::QuotedName;
        }
    }
    return false;
}

std::vector<std::size_t> SqliteErrors::occurrences(const sql::TokenizedText& text, const QStringList& path,
                                                   Role role) const {
    const auto& tokens = text.tokens;
    const auto length = 2 * static_cast<std::size_t>(path.size()) - 1; // names and the dots between them
    std::vector<std::size_t> found;
    for (std::size_t start = 0; start + length < tokens.size(); ++start) {
        bool fits = true;
        for (std::size_t i = 0; i < length && fits; ++i) {
            const sql::Token& token = tokens[start + i];
            fits = i % 2 == 1 ? token.kind == sql::TokenKind::Dot
                              : isName(token) && means(sql::fromSqlString(text.value(token)),
                                                       path[static_cast<int>(i / 2)]);
        }
        const bool isCall = tokens[start + length].kind == sql::TokenKind::LeftParenthesis;
        const bool isQualifier = tokens[start + length].kind == sql::TokenKind::Dot;
        const bool isQualified = start > 0 && tokens[start - 1].kind == sql::TokenKind::Dot;
        if (fits && isCall == (role == Role::Function) && !isQualifier && !isQualified) {
            found.push_back(start);
        }
    }
    return found;
}

} // namespace orvane::shell

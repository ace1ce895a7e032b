#include "host/shell/prompt/PromptCommands.h"

#include "host/adaptor/functions/FunctionReference.h"
#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/shell/maps/MapWriter.h"
#include "host/shell/messages/DisplayWidth.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/messages/StandardError.h"
#include "host/shell/output/NumberText.h"
#include "host/shell/session/TableInfo.h"

#include "platform/cs/CoordSystem.h"
#include "platform/dp/Table.h"
#include "platform/utils/Quoting.h"
#include "platform/utils/VisibleText.h"
#include <orvane/engine/FunctionNames.h>

#include <algorithm>
#include <utility>

namespace orvane::shell {

namespace {

/// As a statement would write it.
QString textOf(const ParameterValue& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        return QString::number(*integer);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        std::string text;
        appendReal(text, *real);
        return QString::fromStdString(text);
    }
    const auto* text = std::get_if<std::string>(&value);
    return text ? QString::fromStdString(utils::sqlText(*text)) : QStringLiteral("NULL");
}

} // namespace

struct PromptCommands::Command {
    const char* name;
    Argument kind;
    const char* argument; ///< as the help shows it
    const char* summary;
    Outcome (PromptCommands::*run)(const QString& argument); ///< null for what the Console does
};

const std::vector<PromptCommands::Command>& PromptCommands::commands() {
    static const std::vector<Command> all{
        {".tables", Argument::None, "",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "таблицы: число строк, геометрии, файл"),
         &PromptCommands::showTables},
        {".schema", Argument::Table, "[TABLE]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "столбцы таблицы или всех таблиц"),
         &PromptCommands::showSchema},
        {".info", Argument::Table, "[TABLE]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "геометрии, их охват и сколько значений в столбцах"),
         &PromptCommands::showInfo},
        {".functions", Argument::Text, "[TEXT]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "функции, в имени или описании которых есть TEXT"),
         &PromptCommands::showFunctions},
        {".help", Argument::Function, "[FUNCTION]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "команды или описание функции"),
         &PromptCommands::showHelp},
        {".translate", Argument::Statement, "STATEMENT",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "запрос на языке SQLite"),
         &PromptCommands::showTranslation},
        {".explain", Argument::Statement, "STATEMENT",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "выполнить запрос и показать, чем получен ответ"),
         &PromptCommands::explain},
        {".map", Argument::Statement, "[STATEMENT]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "карта того, что находит запрос, этот или прошлый"),
         &PromptCommands::drawMap},
        {".geometry", Argument::Text, "wkt|short|geojson",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "как показывать геометрии в таблицах"),
         &PromptCommands::setGeometryForm},
        {".mode", Argument::Text, "table|line|markdown|csv|json|geojson",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "вид ответа"), &PromptCommands::setFormat},
        {".set", Argument::Text, "[NAME=VALUE]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "значение параметра :NAME, или все, какие есть"),
         &PromptCommands::setParameter},
        {".read", Argument::File, "FILE",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "выполнить запросы и команды из файла"), nullptr},
        {".open", Argument::File, "FILE | NAME=FILE[|LAYER]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "открыть слои файла"), &PromptCommands::open},
        {".close", Argument::Table, "TABLE", QT_TRANSLATE_NOOP("orvane::shell::Shell", "закрыть таблицу"),
         &PromptCommands::close},
        {".quit", Argument::None, "", QT_TRANSLATE_NOOP("orvane::shell::Shell", "выйти"), nullptr},
    };
    return all;
}

QStringList PromptCommands::names() {
    QStringList names;
    for (const Command& command : commands()) {
        names += QLatin1String(command.name);
    }
    return names;
}

PromptCommands::Argument PromptCommands::argumentOf(const QString& name) {
    const auto& all = commands();
    const auto found = std::find_if(all.begin(), all.end(), [&name](const Command& command) {
        return name.compare(QLatin1String(command.name), Qt::CaseInsensitive) == 0;
    });
    return found == all.end() ? Argument::None : found->kind;
}

Outcome PromptCommands::run(const QString& line) {
    const QString name = line.section(QLatin1Char(' '), 0, 0);
    for (const Command& command : commands()) {
        if (command.run && name.compare(QLatin1String(command.name), Qt::CaseInsensitive) == 0) {
            const Outcome outcome = (this->*command.run)(line.mid(name.size()).trimmed());
            output_.commit();
            return outcome;
        }
    }
    const QString nearest = nearestName(name, names());
    return fail(nearest.isEmpty()
                    ? Shell::tr("нет команды %0, все команды показывает .help").arg(name)
                    : Shell::tr("нет команды %0; возможно, имелось в виду %1").arg(name, nearest));
}

Outcome PromptCommands::fail(const QString& message) {
    printMessage(message);
    return Outcome::Failed;
}

void PromptCommands::printLine(const QString& text) {
    output_.text() += utils::visibleText(text.toStdString());
    output_.text() += '\n';
    output_.rowDone();
}

/// Lines of cells, each column as wide as it has to be; the second holds numbers.
void PromptCommands::printColumns(const std::vector<QStringList>& lines) {
    std::vector<int> widths;
    const auto shown = [](const QString& cell) { return utils::visibleText(cell.toStdString()); };
    for (const QStringList& line : lines) {
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(line.size())));
        for (int i = 0; i < line.size(); ++i) {
            int& width = widths[static_cast<std::size_t>(i)];
            width = std::max(width, displayWidth(shown(line[i])));
        }
    }
    for (const QStringList& line : lines) {
        std::string text;
        for (int i = 0; i < line.size(); ++i) {
            const std::string cell = shown(line[i]);
            const auto padding =
                static_cast<std::size_t>(widths[static_cast<std::size_t>(i)] - displayWidth(cell));
            text += i == 0 ? "" : "  ";
            text += i == 1 ? std::string(padding, ' ') + cell : cell + std::string(padding, ' ');
        }
        text.erase(text.find_last_not_of(' ') + 1);
        output_.text() += text + '\n';
        output_.rowDone();
    }
}

Outcome PromptCommands::showTables(const QString&) {
    std::vector<QStringList> lines;
    for (const auto& object : session_.catalog().dataObjects()) {
        auto* table = qobject_cast<dp::Table*>(object.get());
        const auto count = table ? table->featureCount() : std::nullopt;
        const auto system = table ? table->coordSystem() : nullptr;
        lines.push_back({object->name(), count ? QString::number(*count) : QStringLiteral("?"),
                         table ? firstGeometryKinds(*table).join(QStringLiteral(", ")) : QString(),
                         system ? system->taggedString() : QString(), Session::sourceOf(*object)});
    }
    for (const QString& view : session_.names().views()) {
        lines.push_back({view, QString(), QString(), QString(), Shell::tr("именованный запрос")});
    }
    printColumns(lines);
    return Outcome::Done;
}

Outcome PromptCommands::showSchema(const QString& name) {
    bool found = false;
    for (const auto& object : session_.catalog().dataObjects()) {
        const auto* table = qobject_cast<const dp::Table*>(object.get());
        if (!table || (!name.isEmpty() && name.compare(table->name(), Qt::CaseInsensitive) != 0)) {
            continue;
        }
        found = true;
        printLine(table->name());
        const auto schema = table->schema();
        for (const auto& attribute : schema->attributes()) {
            const bool isGeometry = dynamic_cast<const dp::GeometryAttributeDefinition*>(attribute.data());
            printLine(QStringLiteral("  %0  %1")
                          .arg(isGeometry ? QStringLiteral("obj") : attribute->name(), typeName(*attribute)));
        }
    }
    return found || name.isEmpty() ? Outcome::Done : fail(Shell::tr("нет таблицы «%0»").arg(name));
}

Outcome PromptCommands::showInfo(const QString& name) {
    bool isFound = false;
    const bool isJson = runner_.settings().writer.format == Format::Json;
    std::string json;
    const work::Cancellation cancellation;
    try {
        for (const auto& object : session_.catalog().dataObjects()) {
            auto* table = qobject_cast<dp::Table*>(object.get());
            if (!table || (!name.isEmpty() && name.compare(table->name(), Qt::CaseInsensitive) != 0)) {
                continue;
            }
            const TableInfo info = TableInfo::of(*table, Session::sourceOf(*table), cancellation);
            if (isJson) {
                json += (isFound ? ",\n" : "") + info.toJson();
            } else {
                printInfo(info);
            }
            isFound = true;
        }
    } catch (const std::runtime_error& failure) {
        output_.discard();
        return fail(QString::fromUtf8(failure.what()));
    }
    if (isJson) {
        output_.text() += "[\n" + json + "\n]\n";
        output_.rowDone();
    }
    return isFound || name.isEmpty() ? Outcome::Done : fail(Shell::tr("нет таблицы «%0»").arg(name));
}

void PromptCommands::printInfo(const TableInfo& info) {
    const auto real = [](double number) {
        std::string text;
        appendReal(text, number);
        return QString::fromStdString(text);
    };
    printLine(info.name);
    std::vector<QStringList> lines;
    const auto add = [&lines](const QString& title, const QString& text) {
        if (!text.isEmpty()) {
            lines.push_back({QStringLiteral("  ") + title, QString(), text});
        }
    };
    add(Shell::tr("файл"), info.source);
    add(Shell::tr("строк"), QString::number(info.rows));
    QStringList kinds;
    for (const auto& [kind, number] : info.kinds) {
        kinds += QStringLiteral("%0 %1").arg(kind, QString::number(number));
    }
    add(Shell::tr("геометрии"), kinds.join(QStringLiteral(", ")));
    add(Shell::tr("система координат"), info.system);
    if (!info.extent.isEmpty()) {
        add(Shell::tr("охват"), QStringLiteral("%0 %1, %2 %3")
                                    .arg(real(info.extent.minX), real(info.extent.minY),
                                         real(info.extent.maxX), real(info.extent.maxY)));
    }
    printColumns(lines);
    lines.clear();
    for (const TableInfo::Column& column : info.columns) {
        lines.push_back({QStringLiteral("    ") + column.name, QString::number(column.values), column.type});
    }
    printColumns(lines);
}

Outcome PromptCommands::showFunctions(const QString& pattern) {
    QString group;
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        const QString signature = QString::fromUtf8(record.signature);
        const QString summary = QString::fromUtf8(record.summary);
        if (!signature.contains(pattern, Qt::CaseInsensitive) &&
            !summary.contains(pattern, Qt::CaseInsensitive)) {
            continue;
        }
        if (group != QLatin1String(record.group)) {
            group = QLatin1String(record.group);
            printLine(group);
        }
        printLine(QStringLiteral("  %0  %1").arg(signature, summary));
    }
    return Outcome::Done;
}

Outcome PromptCommands::showHelp(const QString& topic) {
    if (topic.isEmpty()) {
        for (const Command& command : commands()) {
            printLine(QStringLiteral("%0 %1  %2")
                          .arg(QLatin1String(command.name), QLatin1String(command.argument),
                               Shell::tr(command.summary)));
        }
        printLine(Shell::tr(
            "Запрос кончается точкой с запятой или пустой строкой. Tab дополняет слово, Ctrl-C прерывает "
            "запрос, Ctrl-D завершает работу."));
        return Outcome::Done;
    }
    const std::string help = adaptor::functionHelp(topic.toStdString());
    if (help.empty()) {
        return fail(Shell::tr("описания «%0» нет").arg(topic));
    }
    output_.text() += help;
    output_.rowDone();
    return Outcome::Done;
}

Outcome PromptCommands::showTranslation(const QString& statement) {
    const std::string text = statement.toStdString();
    StatementRunner::Settings& settings = runner_.settings();
    settings.translateOnly = true;
    const Outcome outcome = runner_.run({QString(), text});
    settings.translateOnly = false;
    return outcome;
}

Outcome PromptCommands::explain(const QString& statement) {
    StatementRunner::Settings& settings = runner_.settings();
    const bool always = std::exchange(settings.explain, true);
    const std::string text = statement.toStdString();
    const Outcome outcome = runner_.run({QString(), text});
    settings.explain = always;
    return outcome;
}

Outcome PromptCommands::drawMap(const QString& statement) {
    const std::string text = statement.isEmpty() ? last_ : statement.toStdString();
    if (text.empty()) {
        return fail(Shell::tr("запроса ещё не было: .map ЗАПРОС"));
    }
    last_ = text;
    StatementRunner::Settings& settings = runner_.settings();
    const Format format = std::exchange(settings.writer.format, Format::Map);
    settings.map.terminal = terminalSpace(true);
    const Outcome outcome = runner_.run({QString(), text});
    settings.writer.format = format;
    return outcome;
}

Outcome PromptCommands::setGeometryForm(const QString& form) {
    try {
        runner_.settings().writer.geometry = parseGeometryForm(form.toLower().toStdString());
    } catch (const UsageError& error) {
        return fail(QString::fromUtf8(error.what()));
    }
    return Outcome::Done;
}

Outcome PromptCommands::setFormat(const QString& format) {
    try {
        runner_.settings().writer.format = parseFormat(format.toLower().toStdString());
    } catch (const UsageError& error) {
        return fail(QString::fromUtf8(error.what()));
    }
    return Outcome::Done;
}

Outcome PromptCommands::setParameter(const QString& text) {
    Parameters& parameters = runner_.settings().parameters;
    if (!text.isEmpty()) {
        const auto [name, value] = parseParameter(text.toStdString());
        if (name.empty()) {
            return fail(Shell::tr(".set: ожидается ИМЯ=ЗНАЧЕНИЕ, а не «%0»").arg(text));
        }
        parameters[name] = value;
        return Outcome::Done;
    }
    for (const auto& [name, value] : parameters) {
        printLine(QStringLiteral("%0=%1").arg(QString::fromStdString(name), textOf(value)));
    }
    return Outcome::Done;
}

Outcome PromptCommands::open(const QString& source) {
    try {
        if (source.contains(QLatin1Char('='))) {
            session_.openTable(parseTable(source.toStdString()));
        } else {
            session_.openFile(source);
        }
    } catch (const UsageError& error) {
        return fail(QString::fromUtf8(error.what()));
    }
    return Outcome::Done;
}

Outcome PromptCommands::close(const QString& table) {
    return session_.closeTable(table) ? Outcome::Done : fail(Shell::tr("нет таблицы «%0»").arg(table));
}

} // namespace orvane::shell

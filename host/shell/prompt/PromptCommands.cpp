#include "host/shell/prompt/PromptCommands.h"

#include "host/adaptor/functions/FunctionReference.h"
#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/shell/maps/MapWriter.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/messages/StandardError.h"

#include "platform/cs/CoordSystem.h"
#include "platform/dp/Table.h"
#include "platform/utils/VisibleText.h"
#include <orvane/engine/FunctionNames.h>

#include <algorithm>
#include <utility>

namespace orvane::shell {

namespace {

/// What a column holds, in the words of SQL.
QString typeName(const dp::AttributeDefinition& attribute) {
    if (const auto* geometry = dynamic_cast<const dp::GeometryAttributeDefinition*>(&attribute)) {
        const auto system = geometry->coordSystem();
        return system ? QStringLiteral("Geometry, ") + system->taggedString() : QStringLiteral("Geometry");
    }
    switch (attribute.type()) {
    case QMetaType::Bool: return QStringLiteral("Boolean");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return QStringLiteral("Integer");
    case QMetaType::Float:
    case QMetaType::Double: return QStringLiteral("Real");
    case QMetaType::QDate: return QStringLiteral("Date");
    case QMetaType::QTime: return QStringLiteral("Time");
    case QMetaType::QDateTime: return QStringLiteral("Timestamp");
    case QMetaType::QByteArray: return QStringLiteral("Blob");
    default: return QStringLiteral("Text");
    }
}

} // namespace

struct PromptCommands::Command {
    const char* name;
    Argument kind;
    const char* argument; ///< as the help shows it
    const char* summary;
    void (PromptCommands::*run)(const QString& argument);
};

const std::vector<PromptCommands::Command>& PromptCommands::commands() {
    static const std::vector<Command> all{
        {".tables", Argument::None, "", QT_TRANSLATE_NOOP("orvane::shell::Shell", "таблицы и число их строк"),
         &PromptCommands::showTables},
        {".schema", Argument::Table, "[TABLE]",
         QT_TRANSLATE_NOOP("orvane::shell::Shell", "столбцы таблицы или всех таблиц"),
         &PromptCommands::showSchema},
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

bool PromptCommands::run(const QString& line) {
    const QString name = line.section(QLatin1Char(' '), 0, 0);
    for (const Command& command : commands()) {
        if (name.compare(QLatin1String(command.name), Qt::CaseInsensitive) != 0) {
            continue;
        }
        if (!command.run) {
            return false;
        }
        (this->*command.run)(line.mid(name.size()).trimmed());
        output_.commit();
        return true;
    }
    const QString nearest = nearestName(name, names());
    printMessage(nearest.isEmpty()
                     ? Shell::tr("нет команды %0, все команды показывает .help").arg(name)
                     : Shell::tr("нет команды %0; возможно, имелось в виду %1").arg(name, nearest));
    return true;
}

void PromptCommands::printLine(const QString& text) {
    output_.text() += utils::visibleText(text.toStdString());
    output_.text() += '\n';
    output_.rowDone();
}

void PromptCommands::showTables(const QString&) {
    for (const auto& object : session_.catalog().dataObjects()) {
        const auto* table = qobject_cast<const dp::Table*>(object.get());
        const auto count = table ? table->featureCount() : std::nullopt;
        printLine(count ? QStringLiteral("%0  %1").arg(object->name(), QString::number(*count))
                        : object->name());
    }
}

void PromptCommands::showSchema(const QString& name) {
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
    if (!found && !name.isEmpty()) {
        printMessage(Shell::tr("нет таблицы «%0»").arg(name));
    }
}

void PromptCommands::showFunctions(const QString& pattern) {
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
}

void PromptCommands::showHelp(const QString& topic) {
    if (topic.isEmpty()) {
        for (const Command& command : commands()) {
            printLine(QStringLiteral("%0 %1  %2")
                          .arg(QLatin1String(command.name), QLatin1String(command.argument),
                               Shell::tr(command.summary)));
        }
        printLine(Shell::tr(
            "Запрос кончается точкой с запятой или пустой строкой. Tab дополняет слово, Ctrl-C прерывает "
            "запрос, Ctrl-D завершает работу."));
        return;
    }
    const std::string help = adaptor::functionHelp(topic.toStdString());
    if (help.empty()) {
        printMessage(Shell::tr("описания «%0» нет").arg(topic));
    } else {
        output_.text() += help;
        output_.rowDone();
    }
}

void PromptCommands::showTranslation(const QString& statement) {
    const std::string text = statement.toStdString();
    StatementRunner::Settings& settings = runner_.settings();
    settings.translateOnly = true;
    runner_.run({QString(), text});
    settings.translateOnly = false;
}

void PromptCommands::explain(const QString& statement) {
    StatementRunner::Settings& settings = runner_.settings();
    const bool always = std::exchange(settings.explain, true);
    const std::string text = statement.toStdString();
    runner_.run({QString(), text});
    settings.explain = always;
}

void PromptCommands::drawMap(const QString& statement) {
    const std::string text = statement.isEmpty() ? last_ : statement.toStdString();
    if (text.empty()) {
        printMessage(Shell::tr("запроса ещё не было: .map ЗАПРОС"));
        return;
    }
    last_ = text;
    StatementRunner::Settings& settings = runner_.settings();
    const Format format = std::exchange(settings.writer.format, Format::Map);
    settings.map.terminal = terminalSpace(true);
    runner_.run({QString(), text});
    settings.writer.format = format;
}

void PromptCommands::setGeometryForm(const QString& form) {
    try {
        runner_.settings().writer.geometry = parseGeometryForm(form.toLower().toStdString());
    } catch (const UsageError& error) {
        printMessage(QString::fromUtf8(error.what()));
    }
}

void PromptCommands::open(const QString& source) {
    try {
        if (source.contains(QLatin1Char('='))) {
            session_.openTable(parseTable(source.toStdString()));
        } else {
            session_.openFile(source);
        }
    } catch (const UsageError& error) {
        printMessage(QString::fromUtf8(error.what()));
    }
}

void PromptCommands::close(const QString& table) {
    if (!session_.closeTable(table)) {
        printMessage(Shell::tr("нет таблицы «%0»").arg(table));
    }
}

} // namespace orvane::shell

#include "host/shell/session/Options.h"

#include "host/adaptor/functions/FunctionReference.h"
#include "host/adaptor/functions/FunctionRegistry.h"
#include "host/providers/results/ResultFile.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/session/MapArguments.h"

#include <CLI/CLI.hpp>

#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <charconv>
#include <iostream>
#include <map>
#include <string_view>

namespace orvane::shell {

namespace {

/// What CLI11 fills in, before the texts are taken apart.
struct RawOptions {
    std::vector<std::string> files, tables, commands, scripts, parameters;
    std::string format = "table", memo = "off", log = "warning", locale, output, null, selection, function,
                indexDirectory, geometry, mapSize, mapSystem, mapFill, mapLabel, mapTitle, mapClasses;
    std::vector<std::string> mapBackground;
    bool overwrite = false, noHeader = false, translate = false, sqlite = false, timing = false,
         explain = false, noIndices = false, trustReferences = false, mapGraticule = false, info = false;
};

const std::map<std::string, Format> formats{
    {"table", Format::Table}, {"line", Format::Line}, {"markdown", Format::Markdown},
    {"csv", Format::Csv},     {"json", Format::Json}, {"geojson", Format::GeoJson},
    {"map", Format::Map}};
const std::map<std::string, GeometryForm> geometryForms{
    {"wkt", GeometryForm::Wkt}, {"short", GeometryForm::Short}, {"geojson", GeometryForm::GeoJson}};
const std::map<std::string, engine::EngineCache::GaiaCache> memoModes{
    {"off", engine::EngineCache::NoMemo},
    {"always", engine::EngineCache::AlwaysMemo},
    {"request", engine::EngineCache::MemoOnRequest}};
const std::map<std::string, LogLevel> logLevels{{"trace", LogLevel::Trace},
                                                {"debug", LogLevel::Debug},
                                                {"info", LogLevel::Info},
                                                {"warning", LogLevel::Warning}};

std::string text(const QString& translated) {
    return translated.toStdString();
}

template<typename Value>
Value oneOf(const std::map<std::string, Value>& values, const std::string& word, const char* option) {
    if (const auto found = values.find(word); found != values.end()) {
        return found->second;
    }
    QStringList known;
    for (const auto& [name, value] : values) {
        known += QString::fromStdString(name);
    }
    throw UsageError(Shell::tr("%0: значения «%1» нет, возможны %2")
                         .arg(QString::fromLatin1(option), QString::fromStdString(word),
                              known.join(QStringLiteral(", "))));
}

bool isQuery(const std::string& argument) {
    const QString word = QString::fromStdString(argument).simplified().section(QLatin1Char(' '), 0, 0);
    return word.compare(QLatin1String("select"), Qt::CaseInsensitive) == 0 ||
           word.compare(QLatin1String("with"), Qt::CaseInsensitive) == 0;
}

/// TABLE=ID,ID,... or a query; the name may hold equals signs of its own.
SelectionSource parseSelection(const std::string& argument) {
    if (isQuery(argument)) {
        return {{}, {}, argument};
    }
    const std::size_t equals = argument.rfind('=');
    const auto fail = [&argument] {
        throw UsageError(Shell::tr("--select: ожидается ТАБЛИЦА=НОМЕР,НОМЕР,... или Select, а не «%0»")
                             .arg(QString::fromStdString(argument)));
    };
    if (equals == std::string::npos || equals == 0) {
        fail();
    }
    SelectionSource selection{QString::fromStdString(argument.substr(0, equals)), {}, {}};
    const char* const end = argument.data() + argument.size();
    for (const char* position = argument.data() + equals + 1;; ++position) {
        qint64 id = 0;
        const auto [next, error] = std::from_chars(position, end, id);
        if (error != std::errc() || (next != end && *next != ',')) {
            fail();
        }
        selection.ids.push_back(id);
        position = next;
        if (position == end) {
            return selection;
        }
    }
}

/// Statements from -c and -f in the order in which the user gave them.
std::vector<StatementSource> inOrder(const CLI::App& app, const CLI::Option* command,
                                     const CLI::Option* script, const RawOptions& raw) {
    std::vector<StatementSource> statements;
    std::size_t commands = 0;
    std::size_t scripts = 0;
    for (const CLI::Option* option : app.parse_order()) {
        if (option == command) {
            statements.push_back({StatementSource::Command, raw.commands.at(commands++)});
        } else if (option == script) {
            statements.push_back({StatementSource::Script, raw.scripts.at(scripts++)});
        }
    }
    return statements;
}

/// The reason in the user's language; CLI11 has English texts only.
UsageError usageError(const CLI::ParseError& error) {
    const QString details = QString::fromStdString(error.what());
    const QString hint = Shell::tr("справка: orvane --help");
    if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
        return UsageError(
            Shell::tr("неизвестные параметры: %0; %1").arg(details.section(QStringLiteral(": "), 1), hint));
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        return UsageError(Shell::tr("параметру %0 нужно одно значение; %1")
                              .arg(details.section(QLatin1Char(':'), 0, 0), hint));
    }
    return UsageError(QStringLiteral("%0; %1").arg(details, hint));
}

/// Refuses a file name that promises another format than the one that would be written. `format` is empty
/// when the user names none.
void requireFittingEnding(const QString& path, const std::string& format) {
    static const std::map<std::string, QStringList> endings{
        {"table", {}},
        {"line", {}},
        {"markdown", {QStringLiteral("md")}},
        {"map", {}},
        {"csv", {QStringLiteral("csv")}},
        {"json", {QStringLiteral("json")}},
        {"geojson", {QStringLiteral("geojson"), QStringLiteral("json")}}};
    // Those that people expect to hold tables, layers or pictures.
    static const QStringList otherFormats =
        QStringLiteral(
            "arrow avro bmp csv db dbf dgn dwg dxf e00 feather fgb gdb geojson geojsonl geojsons gif "
            "gml gmt gpkg gpx gz jpeg jpg json jsonl kml kmz mbtiles mdb mid mif mvt nc ods parquet "
            "pdf png prj rar shp shx shz sqlite sqlite3 svg tab tif tiff topojson vrt wkb xls xlsm "
            "xlsx xml zip 7z")
            .split(QLatin1Char(' '));
    const QString ending = QFileInfo(path).suffix().toLower();
    const auto chosen = endings.find(format);
    const bool fits = format.empty() ? files::ResultFile::isKnown(path) || pictureFormatOf(path)
                                     : chosen != endings.end() && chosen->second.contains(ending);
    if (fits || !otherFormats.contains(ending)) {
        return;
    }
    if (!format.empty()) {
        throw UsageError(Shell::tr("--output: ответ вида %0 не записать в файл .%1")
                             .arg(QString::fromStdString(format), ending));
    }
    QStringList known = files::ResultFile::endings();
    known += pictureEndings();
    for (const auto& [name, own] : endings) {
        for (const QString& each : own) {
            known += QStringLiteral(".%0 (--format %1)").arg(each, QString::fromStdString(name));
        }
    }
    throw UsageError(Shell::tr("--output: файлы .%0 не пишутся; пишутся %1")
                         .arg(ending, known.join(QStringLiteral(", "))));
}

/// What --help-function prints. Throws UsageError for a function that has no description.
std::string describeFunction(const std::string& name) {
    if (std::string help = adaptor::functionHelp(name); !help.empty()) {
        return help;
    }
    QStringList known;
    for (const adaptor::FunctionRecord& record : adaptor::allFunctionRecords()) {
        for (const char* called : record.names()) {
            known += QString::fromUtf8(called);
        }
    }
    const QString asked = QString::fromStdString(name);
    const QString nearest = nearestName(asked, known);
    throw UsageError(nearest.isEmpty()
                         ? Shell::tr("нет описания функции «%0»").arg(asked)
                         : Shell::tr("нет описания функции «%0»; возможно, «%1»").arg(asked, nearest));
}

} // namespace

QString localeOption(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--locale" && i + 1 < argc) {
            return QString::fromUtf8(argv[i + 1]);
        }
        if (argument.substr(0, 9) == "--locale=") {
            return QString::fromUtf8(argv[i] + 9);
        }
    }
    return {};
}

bool wantsPicture(int argc, const char* const* argv) {
    QString path;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if ((argument == "-o" || argument == "--output") && i + 1 < argc) {
            path = QString::fromUtf8(argv[++i]);
        } else if (argument.substr(0, 9) == "--output=") {
            path = QString::fromUtf8(argv[i] + 9);
        } else if (argument.substr(0, 2) == "-o" && argument.size() > 2) {
            path = QString::fromUtf8(argv[i] + 2);
        }
    }
    return pictureFormatOf(path).has_value();
}

Format parseFormat(const std::string& word) {
    return oneOf(formats, word, "format");
}

GeometryForm parseGeometryForm(const std::string& word) {
    return oneOf(geometryForms, word, "geometry");
}

std::pair<std::string, ParameterValue> parseParameter(const std::string& argument) {
    // Of "a=b" the name is what could be one; else all is the value of a nameless parameter.
    static const QRegularExpression named(QStringLiteral("^[:?]?([\\p{L}\\p{N}_]+)\\s*=\\s*(.*)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    const auto match = named.match(QString::fromStdString(argument));
    const std::string name = match.hasMatch() ? match.captured(1).toLower().toStdString() : std::string();
    const std::string text = match.hasMatch() ? match.captured(2).toStdString() : argument;
    const char* const end = text.data() + text.size();
    std::int64_t integer = 0;
    if (const auto read = std::from_chars(text.data(), end, integer);
        read.ec == std::errc() && read.ptr == end) {
        return {name, integer};
    }
    double real = 0;
    if (const auto read = std::from_chars(text.data(), end, real);
        read.ec == std::errc() && read.ptr == end) {
        return {name, real};
    }
    if (QString::fromStdString(text).compare(QLatin1String("null"), Qt::CaseInsensitive) == 0) {
        return {name, std::monostate()};
    }
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') {
        return {name, QString::fromStdString(text.substr(1, text.size() - 2))
                          .replace(QLatin1String("''"), QLatin1String("'"))
                          .toStdString()};
    }
    return {name, text};
}

TableSource parseTable(const std::string& argument) {
    const QString whole = QString::fromStdString(argument);
    const int equals = whole.indexOf(QLatin1Char('='));
    const int bar = whole.lastIndexOf(QLatin1Char('|'));
    TableSource source;
    source.name = whole.left(equals);
    source.path = whole.mid(equals + 1, bar > equals ? bar - equals - 1 : -1);
    source.layer = bar > equals ? whole.mid(bar + 1) : QString();
    if (equals < 1 || source.path.isEmpty()) {
        throw UsageError(Shell::tr("--table: ожидается ИМЯ=ФАЙЛ или ИМЯ=ФАЙЛ|СЛОЙ, а не «%0»").arg(whole));
    }
    return source;
}

std::optional<Options> parseOptions(int argc, const char* const* argv) {
    RawOptions raw;
    CLI::App app(text(Shell::tr(
                     "Запросы SQL к таблицам и слоям из файлов любых форматов.\n"
                     "Код завершения: 0 выполнено, 1 ошибка в запросе (остальные не выполняются), 2 неверный "
                     "вызов или файл не открывается, 130 прервано, 143 завершено сигналом.")),
                 "orvane");
    const auto list = [&app](const char* names, std::vector<std::string>& values, const QString& help,
                             const char* valueName) {
        return app.add_option(names, values, text(help))->type_name(valueName)->allow_extra_args(false);
    };
    const auto value = [&app](const char* names, std::string& word, const QString& help,
                              const char* valueName) {
        return app.add_option(names, word, text(help))
            ->type_name(valueName)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    };
    app.add_option("FILE", raw.files, text(Shell::tr("открыть каждый слой файла под его именем")))
        ->type_name("");
    list("-t,--table", raw.tables, Shell::tr("открыть один слой под именем NAME"), "NAME=FILE[|LAYER]");
    app.add_flag(
        "--trust-references", raw.trustReferences,
        text(Shell::tr("открывать и то, на что файлы ссылаются вне своей папки: другие файлы, сеть")));
    const auto* command = list("-c,--command", raw.commands, Shell::tr("выполнить запрос"), "TEXT");
    const auto* script = list("-f,--script", raw.scripts, Shell::tr("выполнить запросы из файла"), "FILE");
    list("-p,--parameter", raw.parameters, Shell::tr("значение параметра :NAME или, по порядку, ?"),
         "[NAME=]VALUE");
    const auto* format =
        value("-F,--format", raw.format, Shell::tr("вид ответа"), "table|line|markdown|csv|json|geojson|map");
    const auto* output =
        value("-o,--output", raw.output,
              Shell::tr("записать ответ в файл, который появится, когда выполнены все запросы; «-» значит "
                        "стандартный вывод. Без --format окончания %0 дают файл данных с типами и "
                        "системой координат, окончания %1 — карту")
                  .arg(files::ResultFile::endings().join(QStringLiteral(", ")),
                       pictureEndings().join(QStringLiteral(", "))),
              "FILE");
    app.add_flag("--overwrite", raw.overwrite,
                 text(Shell::tr("заменять файлы данных, которые уже есть, в --output и Into")));
    app.add_flag("--no-header", raw.noHeader, text(Shell::tr("без строки заголовков")));
    const auto* null = value("--null", raw.null, Shell::tr("чем обозначить NULL в table и csv"), "TEXT");
    const auto* geometry =
        value("--geometry", raw.geometry,
              Shell::tr("геометрии в table; на терминале short, вид и число точек"), "wkt|short|geojson");
    const std::vector<const CLI::Option*> mapOptions{
        value("--map-size", raw.mapSize, Shell::tr("размер карты в точках, 1600x1200"), "WIDTHxHEIGHT"),
        value("--map-crs", raw.mapSystem,
              Shell::tr("система координат карты; без неё такая, что подходит к месту"),
              "EPSG:CODE|proj:TEXT"),
        value("--map-fill", raw.mapFill, Shell::tr("цвет по значению: столбец ответа или выражение"), "TEXT"),
        value("--map-classes", raw.mapClasses,
              Shell::tr("как делить числа на классы и на сколько, до 9; quantiles:5"),
              "quantiles|equal|natural[:COUNT]"),
        value("--map-label", raw.mapLabel, Shell::tr("подписи: столбец ответа или выражение"), "TEXT"),
        list("--map-background", raw.mapBackground, Shell::tr("таблица, которая видна под ответом"), "TABLE"),
        value("--map-title", raw.mapTitle, Shell::tr("заголовок карты"), "TEXT"),
        app.add_flag("--map-graticule", raw.mapGraticule, text(Shell::tr("сетка параллелей и меридианов")))};
    app.add_flag("--info", raw.info,
                 text(Shell::tr("что в таблицах: геометрии, охват, столбцы, число значений; как -c .info")));
    app.add_flag("--translate", raw.translate,
                 text(Shell::tr("показать текст для SQLite, а не выполнять его")));
    app.add_flag("--sqlite", raw.sqlite, text(Shell::tr("запросы уже написаны для SQLite")));
    const auto* selection = value("--select", raw.selection,
                                  Shell::tr("текущая выборка: строки таблицы или то, что находит запрос"),
                                  "TABLE=ID,ID,...|SELECT");
    value("--locale", raw.locale, Shell::tr("язык сообщений и порядок сравнения текстов"), "NAME");
    value("--memo", raw.memo, Shell::tr("запоминать ли разобранные геометрии"), "off|always|request");
    value("--log", raw.log, Shell::tr("с какого уровня показывать журнал"), "trace|debug|info|warning");
    app.add_flag("--timing", raw.timing, text(Shell::tr("время каждого запроса в стандартный вывод ошибок")));
    app.add_flag("--explain", raw.explain,
                 text(Shell::tr("чем получен ответ каждого запроса, в стандартный вывод ошибок")));
    app.add_flag("--no-indices", raw.noIndices, text(Shell::tr("не делать индексов по столбцам")));
    value("--index-directory", raw.indexDirectory, Shell::tr("где хранить индексы, пока работает программа"),
          "DIRECTORY");
    const auto* function = value("--help-function", raw.function, Shell::tr("описание функции"), "NAME");
    app.set_version_flag("--version", "orvane " ORVANE_VERSION, text(Shell::tr("показать версию")));
    app.set_help_flag("-h,--help", text(Shell::tr("показать эту справку")));

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        app.exit(request, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw usageError(error);
    }

    if (function->count() != 0) {
        std::cout << describeFunction(raw.function);
        return std::nullopt;
    }

    Options options;
    for (const auto& file : raw.files) {
        options.files.push_back(QString::fromStdString(file));
    }
    for (const auto& table : raw.tables) {
        options.tables.push_back(parseTable(table));
    }
    options.statements = inOrder(app, command, script, raw);
    if (raw.info) {
        options.statements.insert(options.statements.begin(), {StatementSource::Command, ".info"});
    }
    if (selection->count() != 0) {
        options.selection = parseSelection(raw.selection);
    }
    options.format = oneOf(formats, raw.format, "--format");
    if (output->count() != 0 && raw.output != "-") { // standard output, as everywhere
        options.outputPath = raw.output;
    }
    options.overwrite = raw.overwrite;
    if (options.outputPath && !raw.translate) {
        requireFittingEnding(QString::fromStdString(raw.output), format->count() != 0 ? raw.format : "");
    }
    options.outputIsData = options.outputPath && format->count() == 0 && !raw.translate &&
                           files::ResultFile::isKnown(QString::fromStdString(raw.output)) &&
                           !raw.output.starts_with("/dev/");
    if (options.outputPath && format->count() == 0 && !raw.translate) {
        options.picture = pictureFormatOf(QString::fromStdString(raw.output));
    }
    for (const CLI::Option* each : mapOptions) {
        // At the prompt a map may still be asked for.
        const bool mayBeMap = options.picture || options.format == Format::Map || options.statements.empty();
        if (each->count() != 0 && !mayBeMap) {
            throw UsageError(Shell::tr("%0 касается карт: --output с окончанием %1 или --format map")
                                 .arg(QString::fromStdString(each->get_name()),
                                      pictureEndings().join(QStringLiteral(", "))));
        }
    }
    options.map = parseMapOptions({raw.mapSize, raw.mapSystem, raw.mapClasses});
    options.map.title = QString::fromStdString(raw.mapTitle);
    options.map.hasGraticule = raw.mapGraticule;
    options.mapFill = QString::fromStdString(raw.mapFill);
    options.mapLabel = QString::fromStdString(raw.mapLabel);
    for (const std::string& table : raw.mapBackground) {
        options.mapBackground += QString::fromStdString(table);
    }
    if (geometry->count() != 0) {
        options.geometry = oneOf(geometryForms, raw.geometry, "--geometry");
    }
    if (null->count() != 0) {
        options.nullText = raw.null;
    }
    int position = 0;
    for (const std::string& parameter : raw.parameters) {
        const auto [name, given] = parseParameter(parameter);
        options.parameters[name.empty() ? std::to_string(++position) : name] = given;
    }
    options.header = !raw.noHeader;
    options.translateOnly = raw.translate;
    options.sqlite = raw.sqlite;
    options.timing = raw.timing;
    options.explain = raw.explain;
    options.trustReferences = raw.trustReferences;
    options.noIndices = raw.noIndices;
    options.indexDirectory = QString::fromStdString(raw.indexDirectory);
    options.memo = oneOf(memoModes, raw.memo, "--memo");
    options.logLevel = oneOf(logLevels, raw.log, "--log");
    return options;
}

} // namespace orvane::shell

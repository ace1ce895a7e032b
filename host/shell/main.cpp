#include "host/shell/maps/MapCanvas.h"
#include "host/shell/messages/Language.h"
#include "host/shell/messages/NearestName.h"
#include "host/shell/messages/Shell.h"
#include "host/shell/messages/StandardError.h"
#include "host/shell/prompt/Console.h"
#include "host/shell/prompt/Prompt.h"
#include "host/shell/session/Interrupt.h"
#include "host/shell/session/Options.h"
#include "host/shell/session/Session.h"
#include "host/shell/statements/StatementRunner.h"

#include <orvane/Engine.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <langinfo.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::shell {

namespace {

/// A text to run and what it is called in messages.
struct Input {
    QString origin;
    std::string text;
};

Input scriptInput(const std::string& path) {
    return {path == "-" ? QString() : QString::fromStdString(path), readScript(path)};
}

/// Everything to run, read before anything runs, so that a script that is missing stops all.
std::vector<Input> readInputs(const Options& options) {
    std::vector<Input> inputs;
    for (const StatementSource& source : options.statements) {
        inputs.push_back(source.kind == StatementSource::Script ? scriptInput(source.value)
                                                                : Input{{}, source.value});
    }
    if (options.statements.empty() && !::isatty(STDIN_FILENO)) {
        inputs.push_back(scriptInput("-"));
    }
    return inputs;
}

bool isOtherThanFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

std::unique_ptr<Output> makeOutput(const Options& options, bool isPrompt, Interrupt& interrupt) {
    if (!options.outputPath || options.outputIsData) {
        if (::isatty(STDOUT_FILENO) && isPrompt) {
            return std::make_unique<PagedOutput>(
                STDOUT_FILENO, [&interrupt](bool isShown) { interrupt.setIgnoresKeyboard(isShown); });
        }
        if (::isatty(STDOUT_FILENO)) {
            return std::make_unique<TerminalOutput>(STDOUT_FILENO);
        }
        return std::make_unique<HeldOutput>(STDOUT_FILENO);
    }
    try {
        // A device or a named pipe cannot be replaced: it is written to.
        if (isOtherThanFile(*options.outputPath)) {
            const int descriptor = ::open(options.outputPath->c_str(), O_WRONLY | O_CLOEXEC);
            if (descriptor < 0) {
                throw OutputError(*options.outputPath + ": " + std::strerror(errno));
            }
            return std::make_unique<HeldOutput>(descriptor);
        }
        return std::make_unique<FileOutput>(*options.outputPath, options.overwrite);
    } catch (const OutputError& error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
}

std::shared_ptr<files::ResultFile> makeDataFile(const Options& options) {
    if (!options.outputIsData) {
        return nullptr;
    }
    try {
        return std::make_shared<files::ResultFile>(QString::fromStdString(*options.outputPath),
                                                   options.overwrite);
    } catch (const std::runtime_error& error) {
        throw UsageError(QString::fromUtf8(error.what()));
    }
}

void requireTables(const Session& session, const QStringList& names) {
    const QStringList known = session.names().tables();
    for (const QString& name : names) {
        if (!known.contains(name, Qt::CaseInsensitive)) {
            const QString nearest = nearestName(name, known);
            throw UsageError(
                nearest.isEmpty()
                    ? Shell::tr("--map-background: нет таблицы «%0»").arg(name)
                    : Shell::tr("--map-background: нет таблицы «%0»; возможно, имелось в виду «%1»")
                          .arg(name, nearest));
        }
    }
}

StatementRunner::Settings runnerSettings(const Options& options, const Output& output) {
    StatementRunner::Settings settings;
    const bool isOnTerminal = !options.outputPath && ::isatty(STDOUT_FILENO);
    settings.writer = {options.format, options.header, options.nullText,
                       output.isLive() ? terminalWidth() : 0,
                       options.geometry.value_or(isOnTerminal ? GeometryForm::Short : GeometryForm::Wkt)};
    settings.map = {options.map,     options.picture,  terminalSpace(!options.outputPath),
                    options.mapFill, options.mapLabel, options.mapBackground};
    settings.parameters = options.parameters;
    settings.translateOnly = options.translateOnly;
    settings.sqlite = options.sqlite;
    settings.timing = options.timing;
    settings.explain = options.explain;
    settings.overwrite = options.overwrite;
    settings.dataFile = makeDataFile(options);
    return settings;
}

void logToStandardError(LogLevel lowest) {
    // A progress line may stand where the entry begins.
    const char* const wipe = ::isatty(STDERR_FILENO) ? "\r\033[K" : "";
    loggerInstance()->exchangeSink([lowest, wipe](const LogEntry& entry) {
        static constexpr const char* names[] = {"trace", "debug", "info", "warning"};
        if (entry.level >= lowest) {
            std::fputs(wipe, stderr);
            printErrorLine(QLatin1String(names[static_cast<int>(entry.level)]) +
                           QStringLiteral(": %0:%1: ").arg(entry.sourceFile, QString::number(entry.line)) +
                           entry.text);
        }
    });
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { printErrorLine(text); });
}

/// Cancels the engine's statement for as long as it lives.
class Cancelling {
public:
    Cancelling(Interrupt& interrupt, Engine& engine) : interrupt_(interrupt) {
        interrupt_.setCancel([&engine] { engine.cancelQuery(); });
    }
    ~Cancelling() { interrupt_.setCancel({}); }
    Cancelling(const Cancelling&) = delete;
    Cancelling& operator=(const Cancelling&) = delete;

private:
    Interrupt& interrupt_;
};

/// All statements have succeeded: what they wrote takes its place.
void finishOutput(StatementRunner& runner, Output& output) {
    if (runner.settings().dataFile) {
        runner.settings().dataFile->publish();
    }
    output.finish();
}

ExitStatus runInputs(const Options& options, const std::vector<Input>& inputs, Interrupt& interrupt) {
    interrupt.setCleanUp(files::removeResultDirectories);
    const bool isPrompt = options.statements.empty() && inputs.empty();
    const auto output = makeOutput(options, isPrompt, interrupt);
    Session session;
    const Cancelling cancelling(interrupt, session.engine());
    session.open(options);
    requireTables(session, options.mapBackground);
    StatementRunner runner(session, runnerSettings(options, *output), *output, interrupt);
    if (isPrompt) {
        runPrompt(session, runner, *output, interrupt);
        finishOutput(runner, *output);
        return Done;
    }
    Console console(session, runner, *output);
    for (const Input& input : inputs) {
        switch (console.run({input.origin, input.text})) {
        case Outcome::Done: break;
        case Outcome::Failed: return StatementFailed;
        case Outcome::Cancelled: return Interrupted;
        }
        if (console.isLeaving()) {
            break;
        }
    }
    finishOutput(runner, *output);
    return Done;
}

ExitStatus run(int argc, char** argv, Interrupt& interrupt) {
    try {
        const auto options = parseOptions(argc, argv);
        if (!options) {
            return Done;
        }
        logToStandardError(options->logLevel);
        return runInputs(*options, readInputs(*options), interrupt);
    } catch (const UsageError& error) {
        printMessage(QString::fromUtf8(error.what()));
        return WrongUse;
    } catch (const std::exception& error) {
        printMessage(QString::fromUtf8(error.what()));
        return StatementFailed;
    }
}

} // namespace

} // namespace orvane::shell

int main(int argc, char** argv) {
    using namespace orvane::shell;
    Interrupt interrupt;
    // Counting the memory in use would take a lock for every text of every row.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    // What draws is loaded only for those who want a picture; without it they are told later.
    std::unique_ptr<QCoreApplication> application;
    if (wantsPicture(argc, argv)) {
        application = makeDrawingApplication(argc, argv);
    }
    if (!application) {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    // Qt has taken the locale of the environment; numbers are written and read the same everywhere, and texts
    // are UTF-8.
    std::setlocale(LC_NUMERIC, "C");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
    for (const char* directory : {"/../plugins", "/../" ORVANE_PLUGIN_DIR}) {
        QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath() +
                                         QString::fromLatin1(directory));
    }
    const Language language(localeOption(argc, argv));
    const ExitStatus status = run(argc, argv, interrupt);
    return interrupt.requested() ? interrupt.status() : status;
}

#include "host/shell/Program.h"

#include <csignal>

#include <sys/resource.h>

namespace orvane::shell {

void RunningProgram::Process::setupChildProcess() {
    const auto limit = [](auto resource, qint64 most) {
        const rlimit value{static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
        if (most > 0) {
            ::setrlimit(resource, &value);
        }
    };
    ::signal(SIGXFSZ, SIG_IGN); // the write fails instead
    limit(RLIMIT_FSIZE, limits.mostBytes);
    limit(RLIMIT_NOFILE, limits.mostOpenFiles);
}

RunningProgram::RunningProgram(const QStringList& arguments, const QByteArray& input, Limits limits) {
    process_.limits = limits;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.remove(QStringLiteral("LANGUAGE"));
    process_.setProcessEnvironment(environment);
    process_.start(QStringLiteral(ORVANE_PROGRAM), arguments);
    process_.waitForStarted();
    process_.write(input);
    process_.closeWriteChannel();
}

void RunningProgram::signal(int number) {
    if (const auto id = process_.processId(); id > 0) { // 0 would mean every process of the group
        ::kill(static_cast<pid_t>(id), number);
    }
}

Answer RunningProgram::finish() {
    const bool ended = process_.waitForFinished(120'000);
    Answer answer;
    if (ended && process_.exitStatus() == QProcess::NormalExit) {
        answer.status = process_.exitCode();
    }
    answer.output = process_.readAllStandardOutput().toStdString();
    answer.errors = process_.readAllStandardError().toStdString();
    return answer;
}

Answer runProgram(const QStringList& arguments, const QByteArray& input) {
    return RunningProgram(arguments, input).finish();
}

Answer runWithFullDisk(const QStringList& arguments, qint64 mostBytes) {
    return RunningProgram(arguments, {}, {mostBytes, 0}).finish();
}

QString exampleFile(const char* name) {
    return QStringLiteral(ORVANE_EXAMPLE_DATA "/") + QString::fromUtf8(name);
}

Answer ask(const char* options, const char* statement) {
    return runProgram(
        QStringList{exampleFile("countries.gpkg"), exampleFile("cities.shp"), exampleFile("indicators.csv")} +
        QString::fromUtf8(options).split(QLatin1Char(' '), Qt::SkipEmptyParts) +
        QStringList{QStringLiteral("-c"), QString::fromUtf8(statement)});
}

int slowdown() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 20;
#else
    return 1;
#endif
}

} // namespace orvane::shell

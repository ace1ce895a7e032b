#include "platform/log/Logger.h"

#include "platform/utils/VisibleText.h"

#include <QMutex>
#include <QMutexLocker>

#include <cstdio>
#include <utility>

namespace orvane {

namespace {

struct SinkHolder {
    QMutex mutex;
    CuteMessageLogger::Sink sink = [](const LogEntry& entry) {
        if (entry.level == LogLevel::Warning) {
            const QString line = entry.sourceFile + QStringLiteral(": ") + entry.text;
            std::fprintf(stderr, "%s\n", utils::visibleText(line.toStdString()).c_str());
        }
    };
};

SinkHolder& sinkHolder() {
    // Never destroyed: what ends last at the end of the process may still have something to say.
    static auto& holder = *new SinkHolder;
    return holder;
}

} // namespace

void CuteMessageLogger::write(LogLevel level, const QString& sourceFile, int line, const QString& function,
                              const QString& text) {
    SinkHolder& holder = sinkHolder();
    const QMutexLocker lock(&holder.mutex);
    if (holder.sink) {
        holder.sink({level, sourceFile, line, function, text});
    }
}

CuteMessageLogger::Sink CuteMessageLogger::exchangeSink(Sink sink) {
    SinkHolder& holder = sinkHolder();
    const QMutexLocker lock(&holder.mutex);
    return std::exchange(holder.sink, std::move(sink));
}

CuteMessageLogger* loggerInstance() {
    static CuteMessageLogger logger;
    return &logger;
}

} // namespace orvane

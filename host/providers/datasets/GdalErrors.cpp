#include "host/providers/datasets/GdalErrors.h"

#include "host/providers/datasets/ResultDirectory.h"
#include "platform/log/Logger.h"

#include <QDir>
#include <QFile>

#include <cpl_conv.h>
#include <gdal.h>

#include <mutex>
#include <stdexcept>

namespace orvane::files {

namespace {

constexpr int mostLoggedWarnings = 10;

void logMessage(LogLevel level, const char* text) {
    loggerInstance()->write(level, QStringLiteral("GdalErrors"), __LINE__, QString::fromLatin1(__func__),
                            QStringLiteral("GDAL: ") + QString::fromUtf8(text).trimmed());
}

LogLevel logLevel(CPLErr level) {
    return level == CE_Debug ? LogLevel::Trace : LogLevel::Warning;
}

std::mutex failuresMutex;
FailuresOutsideScopes failures;

void CPL_STDCALL logOutsideScopes(CPLErr level, CPLErrorNum, const char* text) {
    if (level >= CE_Failure) {
        const std::lock_guard lock(failuresMutex);
        ++failures.count;
        failures.last = QString::fromUtf8(text).trimmed();
    }
    logMessage(logLevel(level), text);
}

/// Drivers give their temporary files names that others can foresee, and make them where CPL_TMPDIR says or
/// else in the current directory.
void hideTemporaryFiles() {
    constexpr char option[] = "CPL_TMPDIR";
    try {
        static const auto directory =
            ResultDirectory::temporary(QFile::decodeName(CPLGetConfigOption(option, "")));
        CPLSetConfigOption(option, QFile::encodeName(directory->path()).constData());
    } catch (const std::runtime_error&) {
        CPLSetConfigOption(option, QFile::encodeName(QDir::tempPath()).constData()); // to fail there
    }
}

} // namespace

void registerDrivers() {
    static std::once_flag once;
    std::call_once(once, [] {
        GDALAllRegister();
        CPLSetErrorHandler(logOutsideScopes);
        hideTemporaryFiles();
    });
}

FailuresOutsideScopes failuresOutsideScopes() {
    const std::lock_guard lock(failuresMutex);
    return failures;
}

GdalErrorScope::GdalErrorScope() {
    CPLPushErrorHandlerEx(collect, this);
}

GdalErrorScope::~GdalErrorScope() {
    CPLPopErrorHandler();
}

void GdalErrorScope::raise(const QString& what) const {
    throw std::runtime_error((error_.isEmpty() ? what : what + QStringLiteral(": ") + error_).toStdString());
}

void GdalErrorScope::raiseIfFailed(const QString& what) const {
    if (!error_.isEmpty()) {
        raise(what);
    }
}

void GdalErrorScope::collect(CPLErr level, CPLErrorNum, const char* text) {
    auto* scope = static_cast<GdalErrorScope*>(CPLGetErrorHandlerUserData());
    if (level >= CE_Failure) {
        scope->error_ = QString::fromUtf8(text).trimmed();
    } else if (level == CE_Debug || ++scope->warnings_ <= mostLoggedWarnings) {
        logMessage(logLevel(level), text);
    }
}

} // namespace orvane::files

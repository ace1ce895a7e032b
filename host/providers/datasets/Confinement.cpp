#include "host/providers/datasets/Confinement.h"

#include "host/providers/datasets/SqliteConfinement.h"
#include "platform/log/Logger.h"

#include <QCoreApplication>
#include <QUrl>

#include <cpl_conv.h>
#include <cpl_http.h>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::Confinement)
};

/// Whether it is the server that the user's own URL names.
bool isNamedServer(const QUrl& url, const QUrl& source) {
    return !source.host().isEmpty() && url.host() == source.host() && url.port() == source.port();
}

/// Answers in place of the network; null has GDAL ask it.
CPLHTTPResult* answer(const char* url, CSLConstList options, GDALProgressFunc, void*, CPLHTTPFetchWriteFunc,
                      void*, void* path) {
    const QString source = QString::fromUtf8(*static_cast<const QByteArray*>(path));
    const QString wanted = QString::fromUtf8(url);
    if (isNamedServer(QUrl(wanted), QUrl(source))) {
        return nullptr;
    }
    auto* const result = static_cast<CPLHTTPResult*>(CPLCalloc(1, sizeof(CPLHTTPResult)));
    if (!CSLFetchNameValue(options, "CLOSE_PERSISTENT")) {
        result->nStatus = 1;
        result->pszErrBuf = CPLStrdup("not asked");
        loggerInstance()->write(LogLevel::Warning, QStringLiteral("Confinement"), __LINE__,
                                QString::fromLatin1(__func__),
                                Texts::tr("«%1» ссылается на «%2», что читается только с --trust-references")
                                    .arg(source, wanted));
    }
    return result;
}

/// A service or a database may have several servers.
bool limitsNetwork(Reach reach, const QByteArray& path) {
    return reach == Reach::OwnFolder || (reach == Reach::NamedSource && path.startsWith("http"));
}

} // namespace

Confinement::Confinement(Reach reach, const QByteArray& path)
    : reach_(reach), limitsNetwork_(limitsNetwork(reach, path)) {
    if (reach_ != Reach::Everything) {
        beginConfiningDatabases();
    }
    if (limitsNetwork_) {
        CPLHTTPPushFetchCallback(answer, const_cast<QByteArray*>(&path));
    }
}

Confinement::~Confinement() {
    if (limitsNetwork_) {
        CPLHTTPPopFetchCallback();
    }
    if (reach_ != Reach::Everything) {
        endConfiningDatabases();
    }
}

} // namespace orvane::files

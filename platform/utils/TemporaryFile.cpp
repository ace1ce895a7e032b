#include "platform/utils/TemporaryFile.h"

#include <QDir>
#include <QFile>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace orvane::utils {

int openTemporaryFile() {
    const QByteArray directory = QFile::encodeName(QDir::tempPath());
#ifdef O_TMPFILE
    const int descriptor = ::open(directory.constData(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        return descriptor;
    }
#endif
    // Some file systems have no files without a name.
    QByteArray path = directory + "/orvane-XXXXXX";
    const int named = ::mkostemp(path.data(), O_CLOEXEC);
    if (named >= 0) {
        ::unlink(path.constData());
    }
    return named;
}

std::FILE* openTemporaryStream() {
    const int descriptor = openTemporaryFile();
    return descriptor < 0 ? nullptr : ::fdopen(descriptor, "w+");
}

} // namespace orvane::utils

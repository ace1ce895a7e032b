#include "host/providers/datasets/FileChecks.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/CheckedFiles.h"
#include "host/providers/datasets/DatasetPool.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <stdexcept>

#include <sys/stat.h>

namespace orvane::files {

namespace {

/// In place of the ending of the file.
constexpr const char* partEndings[] = {"shx",  "dbf", "prj", "cpg", "qix", "sbn", "sbx", "idm", "ind",
                                       "csvt", "dat", "map", "id",  "mid", "xsd", "gfs", "qpj"};
/// Behind the ending.
constexpr const char* logEndings[] = {"-wal", "-shm", "-journal", ".aux.xml"};

void requireOrdinary(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISREG(status.st_mode) &&
        !S_ISDIR(status.st_mode)) {
        throw std::runtime_error(
            DatasetPool::tr("Не удалось открыть «%1»: это не файл и не папка").arg(path).toStdString());
    }
}

constexpr qint64 headerSize = 100;   // of a .shp and of a .shx file
constexpr qint64 kindInHeader = 32;  // little-endian
constexpr qint64 kindInRecord = 8;   // little-endian
constexpr qint64 indexEntrySize = 8; // of a .shx file: offset and length in words of two bytes, big-endian
constexpr std::uint32_t emptyShape = 0;

/// A file as bytes that nobody else changes.
class Mapped {
public:
    explicit Mapped(const QString& path) : file_(path) {
        if (file_.open(QIODevice::ReadOnly) && file_.size() >= headerSize) {
            bytes_ = file_.map(0, file_.size());
        }
    }
    bool isThere() const { return bytes_ != nullptr; }
    qint64 size() const { return file_.size(); }
    const uchar* at(qint64 offset) const { return bytes_ + offset; }

private:
    QFile file_;
    const uchar* bytes_ = nullptr;
};

} // namespace

void requireOrdinaryFile(const QByteArray& gdalPath) {
    const QString path = pathOnDisk(withoutCheckedPrefix(QString::fromUtf8(gdalPath)));
    requireOrdinary(path);
    const QString stem = path.left(path.size() - QFileInfo(path).suffix().size());
    for (const char* ending : partEndings) {
        requireOrdinary(stem + QLatin1String(ending));
    }
    for (const char* ending : logEndings) {
        requireOrdinary(path + QLatin1String(ending));
    }
}

void requireShapesOfOneKind(const QString& path) {
    if (QFileInfo(path).isDir()) {
        const QDir directory(path);
        for (const QString& name : directory.entryList({QStringLiteral("*.shp")}, QDir::Files)) {
            requireShapesOfOneKind(directory.filePath(name));
        }
        return;
    }
    if (QFileInfo(path).suffix().compare(QLatin1String("shp"), Qt::CaseInsensitive) != 0) {
        return;
    }
    const Mapped shapes(path);
    const bool isUpper = path.endsWith(QLatin1String("SHP"));
    const Mapped index(path.left(path.size() - 1) + QLatin1Char(isUpper ? 'X' : 'x'));
    if (!shapes.isThere() || !index.isThere()) {
        return;
    }
    const auto kind = qFromLittleEndian<std::uint32_t>(shapes.at(kindInHeader));
    for (qint64 entry = headerSize; entry + indexEntrySize <= index.size(); entry += indexEntrySize) {
        const qint64 offset = 2 * qint64{qFromBigEndian<std::uint32_t>(index.at(entry))} + kindInRecord;
        if (offset + 4 > shapes.size()) {
            continue; // reading it fails properly
        }
        const auto found = qFromLittleEndian<std::uint32_t>(shapes.at(offset));
        if (found != kind && found != emptyShape) {
            throw std::runtime_error(
                DatasetPool::tr("файл повреждён: фигура %1 другого вида, чем все; его можно только читать")
                    .arg((entry - headerSize) / indexEntrySize)
                    .toStdString());
        }
    }
}

} // namespace orvane::files

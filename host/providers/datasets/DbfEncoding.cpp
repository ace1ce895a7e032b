#include "host/providers/datasets/DbfEncoding.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/GdalHandles.h"
#include "platform/utils/Utf8.h"

#include <QFileInfo>
#include <QStringList>

#include <array>

namespace orvane::files {

namespace {

constexpr unsigned char ansiOfSystem = 0x57; ///< of the system that wrote the file, whatever that is

bool isThere(const QByteArray& path) {
    VSIStatBufL found;
    return VSIStatL(path.constData(), &found) == 0;
}

/// Of the table with that name, without the ending.
QByteArray tablePath(const QByteArray& name) {
    for (const char* ending : {"dbf", "DBF"}) {
        if (isThere(name + ending)) {
            return name + ending;
        }
    }
    return {};
}

struct Counts {
    int wellFormed = 0, illFormed = 0; ///< characters outside ASCII, as UTF-8
    int high = 0, inner = 0;           ///< bytes above 0x7F, and those between two such
    int lower = 0, upper = 0;          ///< most letters of CP866, and of CP1251
};

Counts countBytes(const QByteArray& bytes) {
    Counts counts;
    const auto* const begin = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto* const end = begin + bytes.size();
    for (const auto* at = begin; at != end;) {
        const int length = utf8::characterLength(at, end);
        counts.wellFormed += length > 1;
        counts.illFormed += length == 0;
        at += length == 0 ? 1 : length;
    }
    for (const auto* at = begin; at != end; ++at) {
        if (*at < 0x80) {
            continue;
        }
        ++counts.high;
        counts.inner += at != begin && at[-1] >= 0x80 && at + 1 != end && at[1] >= 0x80;
        counts.lower += *at < 0xB0;
        counts.upper += *at >= 0xC0;
    }
    return counts;
}

} // namespace

QByteArray encodingOfDbf(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    const bool isTable = suffix == QLatin1String("shp") || suffix == QLatin1String("dbf");
    if (!isTable) {
        if (!isInArchive(path) && !QFileInfo(path).isDir()) {
            return {};
        }
        for (const auto& file : filesIn(path)) {
            const auto encoding = file.endsWith(QLatin1String(".dbf"), Qt::CaseInsensitive)
                                      ? encodingOfDbf(file)
                                      : QByteArray();
            if (!encoding.isEmpty()) {
                return encoding;
            }
        }
        return {};
    }
    const QByteArray name = path.toUtf8().chopped(3);
    const QByteArray table = tablePath(name);
    if (table.isEmpty() || isThere(name + "cpg") || isThere(name + "CPG")) {
        return {};
    }
    constexpr int lookedAt = 1 << 20, headerSize = 32, language = 29;
    QByteArray bytes(lookedAt, '\0');
    const VsiHandle file(VSIFOpenL(table.constData(), "rb"));
    bytes.truncate(file ? static_cast<int>(VSIFReadL(bytes.data(), 1, lookedAt, file.get())) : 0);
    const unsigned char driver = bytes.size() > headerSize ? static_cast<unsigned char>(bytes[language]) : 1;
    if (driver != 0 && driver != ansiOfSystem) {
        return {};
    }
    const Counts counts = countBytes(bytes.mid(headerSize));
    if (counts.high == 0) {
        return {};
    }
    if (counts.wellFormed > 9 * counts.illFormed) { // a text that was cut off may end in half a character
        return "UTF-8";
    }
    if (4 * counts.inner > counts.high) { // whole words: no Latin alphabet with some accents
        return counts.lower > counts.upper ? "CP866" : "CP1251";
    }
    return driver == ansiOfSystem ? "" : "CP1252";
}

} // namespace orvane::files

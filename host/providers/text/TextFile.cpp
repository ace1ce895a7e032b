#include "host/providers/text/TextFile.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/GdalHandles.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace orvane::files {

namespace {

constexpr qint64 LOOKED_AT = qint64{16} << 20;
constexpr qint64 CHUNK = qint64{1} << 20;

[[noreturn]] void raise(const QString& text) {
    throw std::runtime_error(text.toStdString());
}

/// Whether the bytes are UTF-8; a character cut off at the end is allowed.
bool isUtf8(const QByteArray& bytes) {
    const bool isAscii = std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0; });
    if (isAscii)
        return true;
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0;
}

VsiHandle openForReading(const QString& path) {
    errno = 0;
    VsiHandle file(VSIFOpenL(path.toUtf8().constData(), "rb"));
    if (!file)
        raise(TextStandIn::tr("Не удалось прочитать «%1»: %2").arg(pathOnDisk(path), qt_error_string(errno)));
    return file;
}

/// The next bytes, fewer at the end.
QByteArray read(const VsiHandle& file, qint64 size) {
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    bytes.truncate(static_cast<int>(VSIFReadL(bytes.data(), 1, static_cast<std::size_t>(size), file.get())));
    return bytes;
}

QTextCodec* codecNamed(const QByteArray& encoding) {
    QTextCodec* const codec = QTextCodec::codecForName(encoding.isEmpty() ? "UTF-8" : encoding);
    if (!codec)
        raise(TextStandIn::tr("Неизвестная кодировка «%1»").arg(QString::fromUtf8(encoding)));
    return codec;
}

int endOfFirstLine(const QByteArray& text) {
    const int end = text.indexOf('\n');
    const int last = end < 0 ? text.size() : end;
    return last > 0 && text[last - 1] == '\r' ? last - 1 : last;
}

} // namespace

TextStandIn::TextStandIn(QString original, Changes changes)
    : original_(std::move(original)), changes_(std::move(changes)), codec_(codecNamed(changes_.encoding)) {
    update();
}

QByteArray TextStandIn::path() const {
    return directory_.filePath(QFileInfo(original_).fileName()).toUtf8();
}

void TextStandIn::update() {
    const auto path = QString::fromUtf8(this->path());
    QFile::remove(path);
    const bool canLink = !changes_.ofText() && !isInArchive(original_);
    if (!canLink || !QFile::link(QFileInfo(original_).absoluteFilePath(), path))
        copyText();
    copyTypes();
}

void TextStandIn::copyText() const {
    const VsiHandle source = openForReading(original_);
    QFile copy(QString::fromUtf8(path()));
    if (!copy.open(QIODevice::WriteOnly))
        raise(tr("Не удалось записать «%1»: %2").arg(copy.fileName(), copy.errorString()));
    const std::unique_ptr<QTextDecoder> decoder(codec_->makeDecoder());
    bool isFirstLine = changes_.addedSeparator != 0;
    for (QByteArray chunk = read(source, CHUNK); !chunk.isEmpty(); chunk = read(source, CHUNK)) {
        auto text = decoder->toUnicode(chunk).toUtf8();
        if (isFirstLine) { // no name of a column is longer than a chunk
            text.insert(endOfFirstLine(text), changes_.addedSeparator);
            isFirstLine = false;
        }
        if (copy.write(text) != text.size())
            raise(tr("Не удалось записать «%1»: %2").arg(copy.fileName(), copy.errorString()));
    }
}

void TextStandIn::copyTypes() const {
    const QFileInfo original(original_);
    const auto name = original.completeBaseName() + QStringLiteral(".csvt");
    const auto target = directory_.filePath(name);
    if (changes_.types.isEmpty()) {
        QFile::copy(original.path() + QLatin1Char('/') + name, target);
        return;
    }
    QFile file(target);
    if (!file.open(QIODevice::WriteOnly) || file.write(changes_.types) != changes_.types.size())
        raise(tr("Не удалось записать «%1»: %2").arg(target, file.errorString()));
}

QByteArray encodingOfTextFile(const QString& path, const QString& requested) {
    const auto start = read(openForReading(path), LOOKED_AT);
    if (start.startsWith("\xff\xfe") || start.startsWith("\xfe\xff"))
        return "UTF-16";
    if (!requested.isEmpty()) {
        const auto* codec = QTextCodec::codecForName(requested.toUtf8());
        return codec && codec->name() == "UTF-8" ? QByteArray() : requested.toUtf8();
    }
    if (!isUtf8(start))
        raise(TextStandIn::tr("Текст в «%1» не в UTF-8: укажите кодировку, например "
                              "«%1|encoding=windows-1251»")
                  .arg(pathOnDisk(path)));
    return {};
}

char separatorForOneColumn(const QString& path, const QByteArray& encoding) {
    const auto textFrom = [&](qint64 size) {
        return codecNamed(encoding)->toUnicode(read(openForReading(path), size)).toUtf8();
    };
    const auto isIn = [](const QByteArray& text) {
        return [&text](char separator) { return text.contains(separator); };
    };
    constexpr std::string_view separators = "\t;,";
    constexpr qint64 longestHeader = qint64{64} << 10;
    const QByteArray start = textFrom(longestHeader);
    const QByteArray header = start.left(endOfFirstLine(start));
    const bool hasSeparator =
        header.contains('|') || std::any_of(separators.begin(), separators.end(), isIn(header));
    if (header.trimmed().isEmpty() || hasSeparator)
        return 0;
    const auto unused = std::find_if_not(separators.begin(), separators.end(), isIn(textFrom(LOOKED_AT)));
    return unused == separators.end() ? 0 : *unused;
}

bool mayHoldCodes(const QString& path) {
    constexpr int longestNumber = 18; // digits that certainly fit into 64 bits
    constexpr auto isBetweenValues = [] {
        std::array<bool, 256> is{};
        for (const char character : std::string_view(",;\t|\n\r\""))
            is[static_cast<unsigned char>(character)] = true;
        return is;
    }();
    int digits = 0; // of the number so far
    bool isWhole = true, beginsWithZero = false;
    const QByteArray start = read(openForReading(path), LOOKED_AT) + '\n';
    for (const char character : start) {
        if (character >= '0' && character <= '9') {
            beginsWithZero = digits == 0 ? character == '0' : beginsWithZero;
            ++digits;
            continue;
        }
        if (character == ' ' && digits == 0)
            continue; // before a number
        const bool isBetween = isBetweenValues[static_cast<unsigned char>(character)];
        const bool isCode = isWhole && digits > (beginsWithZero ? 1 : longestNumber);
        // What goes on otherwise is none: a date with a year before 1000.
        if (isCode && (isBetween || character == ' ' || character == '.'))
            return true;
        digits = 0;
        isWhole = isBetween;
    }
    return false;
}

} // namespace orvane::files

#include "host/providers/TextEncoding.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <algorithm>
#include <memory>
#include <stdexcept>

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

} // namespace

TranscodedFile::TranscodedFile(QString original, const QByteArray& encoding)
    : original_(std::move(original)), codec_(QTextCodec::codecForName(encoding)) {
    if (!codec_)
        raise(tr("Неизвестная кодировка «%1»").arg(QString::fromUtf8(encoding)));
    update();
}

QByteArray TranscodedFile::path() const {
    return directory_.filePath(QFileInfo(original_).fileName()).toUtf8();
}

void TranscodedFile::update() {
    QFile source(original_);
    QFile copy(QString::fromUtf8(path()));
    if (!source.open(QIODevice::ReadOnly))
        raise(tr("Не удалось прочитать «%1»: %2").arg(original_, source.errorString()));
    if (!copy.open(QIODevice::WriteOnly))
        raise(tr("Не удалось записать «%1»: %2").arg(copy.fileName(), copy.errorString()));
    const std::unique_ptr<QTextDecoder> decoder(codec_->makeDecoder());
    while (!source.atEnd()) {
        const auto text = decoder->toUnicode(source.read(CHUNK)).toUtf8();
        if (copy.write(text) != text.size())
            raise(tr("Не удалось записать «%1»: %2").arg(copy.fileName(), copy.errorString()));
    }
    // The types of the columns may stand in a file beside it.
    const auto types = QFileInfo(original_).path() + QLatin1Char('/') +
                       QFileInfo(original_).completeBaseName() + QStringLiteral(".csvt");
    QFile::copy(types, directory_.filePath(QFileInfo(types).fileName()));
}

QByteArray encodingOfTextFile(const QString& path, const QString& requested) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        raise(TranscodedFile::tr("Не удалось прочитать «%1»: %2").arg(path, file.errorString()));
    const auto start = file.read(LOOKED_AT);
    if (start.startsWith("\xff\xfe") || start.startsWith("\xfe\xff"))
        return "UTF-16";
    if (!requested.isEmpty()) {
        const auto* codec = QTextCodec::codecForName(requested.toUtf8());
        return codec && codec->name() == "UTF-8" ? QByteArray() : requested.toUtf8();
    }
    if (!isUtf8(start))
        raise(TranscodedFile::tr("Текст в «%1» не в UTF-8: укажите кодировку, например "
                                 "«%1|encoding=windows-1251»")
                  .arg(path));
    return {};
}

} // namespace orvane::files

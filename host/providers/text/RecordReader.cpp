#include "host/providers/text/RecordReader.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/FileChecks.h"
#include "platform/utils/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace orvane::files {

namespace {

/// SQLite takes no longer text.
constexpr std::size_t longestRecord = 1'000'000'000;
constexpr std::string_view utf8Mark = "\xef\xbb\xbf";

bool isBlank(char character, char separator) {
    return character == ' ' || (character == '\t' && separator != '\t');
}

/// Where well-formed UTF-8 ends.
std::size_t endOfUtf8(std::string_view text, std::size_t from) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const end = begin + text.size();
    const auto* at = begin + from;
    for (int length = 1; at != end && length > 0; at += length) {
        for (std::uint64_t eight = 0; end - at > 8; at += 8) { // mostly ASCII
            std::memcpy(&eight, at, sizeof eight);
            if ((eight & 0x8080808080808080U) != 0) {
                break;
            }
        }
        length = utf8::characterLength(at, end);
    }
    return static_cast<std::size_t>(at - begin);
}

} // namespace

QTextCodec* codecNamed(const QByteArray& encoding) {
    QTextCodec* const codec = QTextCodec::codecForName(encoding.isEmpty() ? "UTF-8" : encoding);
    if (!codec) {
        throw std::runtime_error(
            RecordReader::tr("Неизвестная кодировка «%1»").arg(QString::fromUtf8(encoding)).toStdString());
    }
    return codec;
}

VsiHandle openTextFile(const QByteArray& path) {
    requireOrdinaryFile(path);
    errno = 0;
    VsiHandle file(VSIFOpenL(path.constData(), "rb"));
    if (!file) {
        throw std::runtime_error(
            RecordReader::tr("Не удалось открыть «%1»: %2")
                .arg(pathOnDisk(QString::fromUtf8(path)), QString::fromLocal8Bit(std::strerror(errno)))
                .toStdString());
    }
    return file;
}

RecordReader::RecordReader(std::string_view text, char separator) : separator_(separator) {
    for (const char character : {separator, '\n', '\r'}) {
        endsValue_[static_cast<unsigned char>(character)] = true;
    }
    data_ = text.data();
    size_ = text.size();
    isAtEnd_ = true;
}

RecordReader::RecordReader(const QByteArray& path, const QByteArray& encoding, char separator, bool isNew)
    : RecordReader(std::string_view(), separator) {
    isNew_ = isNew;
    path_ = path;
    file_ = openTextFile(path);
    VSIStatBufL found;
    if (VSIStatL(path.constData(), &found) == 0) {
        fileSize_ = bytesLeft_ = static_cast<qint64>(found.st_size);
    }
    if (!encoding.isEmpty()) {
        decoder_.reset(codecNamed(encoding)->makeDecoder());
    }
    isAtEnd_ = false;
    fill();
    if (view(0, size_).substr(0, utf8Mark.size()) == utf8Mark) {
        mark_ = utf8Mark.size();
    }
}

bool RecordReader::next() {
    for (;;) {
        const Found found = parse();
        if (found != Found::TooLittle) {
            return found == Found::Record;
        }
        fill();
    }
}

RecordReader::Found RecordReader::parse() {
    const char* const end = data_ + size_;
    const char* at = data_ + next_ + mark_;
    std::int64_t line = nextLine_;
    for (; at != end && (*at == '\n' || *at == '\r'); ++at) {
        line += *at == '\n';
    }
    if (at == end && !isAtEnd_) {
        return Found::TooLittle;
    }
    fields_.clear();
    const char* const begin = at;
    line_ = line;
    const auto finish = [&](const char* recordEnd, const char* next) {
        before_ = next_;
        record_ = static_cast<std::size_t>(begin - data_);
        recordEnd_ = static_cast<std::size_t>(recordEnd - data_);
        next_ = static_cast<std::size_t>(next - data_);
        nextLine_ = line;
        mark_ = 0;
    };
    if (at == end) {
        finish(end, end);
        return Found::End;
    }
    for (;; ++at) {
        const char* const value = at;
        while (at != end && isBlank(*at, separator_)) {
            ++at;
        }
        const bool isQuoted = at != end && *at == '"';
        if (isQuoted) {
            const char* const quote = at;
            at = endOfQuotes(quote, end);
            if (!at) {
                return Found::TooLittle;
            }
            line += std::count(quote, at, '\n');
        }
        while (at != end && !endsValue_[static_cast<unsigned char>(*at)]) {
            ++at;
        }
        if (at == end && !isAtEnd_) {
            return Found::TooLittle;
        }
        fields_.push_back({{value, static_cast<std::size_t>(at - value)}, isQuoted});
        if (at == end || *at != separator_) {
            break;
        }
    }
    const char* const recordEnd = at;
    if (at != end && *at == '\r' && ++at == end && !isAtEnd_) {
        return Found::TooLittle;
    }
    if (at != end && *at == '\n') {
        ++at;
    }
    ++line;
    finish(recordEnd, at);
    return Found::Record;
}

const char* RecordReader::endOfQuotes(const char* quote, const char* end) {
    for (const char* at = quote + 1;; at += 2) {
        at = static_cast<const char*>(std::memchr(at, '"', static_cast<std::size_t>(end - at)));
        if (!at && isAtEnd_) {
            raise(tr("кавычка в строке %1 не закрыта").arg(line_));
        }
        if (!at || (at + 1 == end && !isAtEnd_)) {
            return nullptr;
        }
        if (at + 1 == end || at[1] != '"') {
            return at + 1;
        }
    }
}

std::string_view RecordReader::value(std::size_t field) {
    const std::string_view text = fields_[field].text;
    if (!fields_[field].isQuoted) {
        return text;
    }
    std::size_t from = text.find('"') + 1;
    std::size_t quote = text.find('"', from);
    if (quote + 1 == text.size()) {
        return text.substr(from, quote - from);
    }
    unquoted_.clear();
    while (quote + 1 < text.size() && text[quote + 1] == '"') {
        unquoted_ += text.substr(from, quote + 1 - from);
        from = quote + 2;
        quote = text.find('"', from);
    }
    unquoted_ += text.substr(from, quote - from);
    const std::string_view rest = text.substr(quote + 1);
    if (rest.find_first_not_of(" \t") != std::string_view::npos) {
        unquoted_ += rest;
    }
    return unquoted_;
}

void RecordReader::jumpTo(std::int64_t offset) {
    if (VSIFSeekL(file_.get(), static_cast<vsi_l_offset>(offset), SEEK_SET) != 0) {
        raise(tr("ошибка чтения данных"));
    }
    chunkSize_ = 4096; // a page
    bytesLeft_ = fileSize_ - offset;
    base_ = offset;
    buffer_.clear();
    data_ = buffer_.data();
    size_ = checked_ = before_ = record_ = recordEnd_ = next_ = mark_ = 0;
    isAtEnd_ = false;
}

void RecordReader::fill() {
    base_ += static_cast<std::int64_t>(next_);
    buffer_.erase(0, next_);
    checked_ -= std::min(checked_, next_);
    before_ = record_ = recordEnd_ = next_ = 0;
    // What is read at once grows with the record, which is looked at anew each time.
    const std::size_t wanted = std::max(chunkSize_, buffer_.size());
    for (std::size_t read = 0; read < wanted && !isAtEnd_;) {
        if (buffer_.size() > longestRecord) {
            raise(tr("запись в строке %1 длиннее %2 байт").arg(line_).arg(longestRecord));
        }
        const QByteArray chunk = readChunk();
        isAtEnd_ = chunk.isEmpty();
        buffer_.append(chunk.constData(), static_cast<std::size_t>(chunk.size()));
        read += static_cast<std::size_t>(chunk.size());
    }
    data_ = buffer_.data();
    size_ = buffer_.size();
    if (!isNew_ || decoder_) {
        return;
    }
    checked_ = endOfUtf8(view(0, size_), checked_);
    if (size_ - checked_ > (isAtEnd_ ? 0 : 3)) { // the rest of a character may come
        raise(tr("текст не в UTF-8: укажите кодировку, например «%1|encoding=windows-1251»")
                  .arg(pathOnDisk(QString::fromUtf8(path_))));
    }
}

QByteArray RecordReader::readChunk() {
    QByteArray bytes(static_cast<int>(chunkSize_), Qt::Uninitialized);
    bytes.truncate(static_cast<int>(VSIFReadL(bytes.data(), 1, chunkSize_, file_.get())));
    bytesLeft_ -= bytes.size();
    if (bytes.size() < static_cast<int>(chunkSize_) && bytesLeft_ > 0) {
        raise(tr("ошибка чтения данных"));
    }
    if (decoder_) {
        return decoder_->toUnicode(bytes).toUtf8();
    }
    return bytes;
}

void RecordReader::raise(const QString& reason) const {
    throw std::runtime_error(tr("«%1»: %2").arg(pathOnDisk(QString::fromUtf8(path_)), reason).toStdString());
}

} // namespace orvane::files

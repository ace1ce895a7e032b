#pragma once

#include "host/providers/datasets/GdalHandles.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QTextCodec>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::files {

/// Takes a text table apart, record by record: values between separators, a value that holds separators, line
/// ends or quotes between quotes, which are doubled within. A line ends with LF, CR LF or CR; empty lines are
/// no records. Everything but the values can be had as it stands, so that a table can be copied byte by byte.
/// Throws std::runtime_error with the name of the file: not readable, a quote that does not end, a record of
/// a gigabyte or more.
class RecordReader {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::RecordReader)
public:
    /// `path` is GDAL's, `encoding` is empty for UTF-8, which is looked at when it `isNew`: a text in another
    /// character set is refused.
    RecordReader(const QByteArray& path, const QByteArray& encoding, char separator, bool isNew = false);
    /// Of text that outlives the reader.
    RecordReader(std::string_view text, char separator);

    /// The views on a record end with the next one.
    bool next();
    /// Where the next record begins in a file in UTF-8. Lines are not counted after a jump, and little is
    /// read at once.
    std::int64_t offset() const { return base_ + static_cast<std::int64_t>(next_); }
    void jumpTo(std::int64_t offset);
    std::size_t size() const { return fields_.size(); }
    std::string_view raw(std::size_t field) const { return fields_[field].text; }
    bool isQuoted(std::size_t field) const { return fields_[field].isQuoted; }
    /// Without quotes; ends with the next call.
    std::string_view value(std::size_t field);

    /// The empty lines before the record (at the end of the text: those that are left) and a byte order mark.
    std::string_view before() const { return view(before_, record_); }
    std::string_view record() const { return view(record_, recordEnd_); }
    std::string_view lineEnd() const { return view(recordEnd_, next_); }
    /// The three together.
    std::string_view whole() const { return view(before_, next_); }
    /// Of the record, from 1.
    std::int64_t line() const { return line_; }

private:
    struct Field {
        std::string_view text;
        bool isQuoted;
    };
    enum class Found : std::uint8_t { Record, End, TooLittle };

    std::string_view view(std::size_t from, std::size_t to) const { return {data_ + from, to - from}; }
    Found parse();
    /// Behind the quoted part of a value; null when it does not end in what has been read.
    const char* endOfQuotes(const char* quote, const char* end);
    void fill();
    QByteArray readChunk();
    [[noreturn]] void raise(const QString& reason) const;

    QByteArray path_;
    VsiHandle file_;
    qint64 fileSize_ = 0;
    qint64 bytesLeft_ = 0;
    std::int64_t base_ = 0; ///< place of the buffer in the file
    std::size_t chunkSize_ = std::size_t{1} << 20;
    std::unique_ptr<QTextDecoder> decoder_; ///< null for UTF-8
    bool isNew_ = false;
    std::size_t checked_ = 0; ///< up to here the buffer is in UTF-8
    char separator_;
    std::array<bool, 256> endsValue_{};

    std::string buffer_;
    const char* data_ = nullptr;
    std::size_t size_ = 0;
    bool isAtEnd_ = false; ///< nothing is left to read into the buffer
    std::size_t before_ = 0, record_ = 0, recordEnd_ = 0, next_ = 0;
    std::size_t mark_ = 0; ///< length of the byte order mark, until the first record
    std::int64_t line_ = 0, nextLine_ = 1;
    std::vector<Field> fields_;
    std::string unquoted_;
};

/// The codec of that name; throws std::runtime_error when there is none.
QTextCodec* codecNamed(const QByteArray& encoding);

/// Opens a file for reading, GDAL's path; throws std::runtime_error with the reason.
VsiHandle openTextFile(const QByteArray& path);

} // namespace orvane::files

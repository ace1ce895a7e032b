#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QTemporaryDir>

class QTextCodec;

namespace orvane::files {

/// Opened instead of a text file, under the same name in a directory of its own, where GDAL would not read
/// the file as it should be read.
class TextStandIn {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::TextStandIn)
public:
    struct Changes {
        QByteArray encoding;     ///< that the text is converted from; empty for UTF-8
        char addedSeparator = 0; ///< put behind the first line, so that it has a second column
        QByteArray types;        ///< of the columns, as a .csvt file names them; empty for those of the file

        bool ofText() const { return !encoding.isEmpty() || addedSeparator != 0; }
    };

    /// Throws std::runtime_error, as update() does: unknown character set, file not readable, no room.
    TextStandIn(QString original, Changes changes);

    const Changes& changes() const { return changes_; }
    /// UTF-8.
    QByteArray path() const;
    /// Makes it again, for the original has changed.
    void update();

private:
    void copyText() const;
    void copyTypes() const;

    QString original_;
    Changes changes_;
    QTextCodec* codec_;
    QTemporaryDir directory_;
};

/// The character set that a text file has to be converted from; empty when it is UTF-8. A byte order mark of
/// UTF-16 tells, else `requested` counts, else the file has to be UTF-8 (its first 16 MB are looked at).
/// Throws std::runtime_error when it is not, or cannot be read.
QByteArray encodingOfTextFile(const QString& path, const QString& requested);

/// For a file of one column, which GDAL does not take for a table: a separator that is nowhere in its text. 0
/// for any other file. Throws as above.
char separatorForOneColumn(const QString& path, const QByteArray& encoding);

/// Whether a value in UTF-8 text may be a code: a number with a needless zero at its front, or one that is
/// too long (its first 16 MB are looked at). Throws as above.
bool mayHoldCodes(const QString& path);

} // namespace orvane::files

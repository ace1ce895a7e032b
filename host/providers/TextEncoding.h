#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QTemporaryDir>

class QTextCodec;

namespace orvane::files {

/// A copy of a text file in UTF-8, under the same name in a directory of its own, for drivers that read no
/// other character set.
class TranscodedFile {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::TranscodedFile)
public:
    /// Throws std::runtime_error, as update() does: unknown character set, file not readable, no room.
    TranscodedFile(QString original, const QByteArray& encoding);

    /// Of the copy, UTF-8.
    QByteArray path() const;
    /// Copies again, for the original has changed.
    void update();

private:
    QString original_;
    QTextCodec* codec_;
    QTemporaryDir directory_;
};

/// The character set that a text file has to be converted from; empty when it is UTF-8. A byte order mark of
/// UTF-16 tells, else `requested` counts, else the file has to be UTF-8 (its first 16 MB are looked at).
/// Throws std::runtime_error when it is not, or cannot be read.
QByteArray encodingOfTextFile(const QString& path, const QString& requested);

} // namespace orvane::files

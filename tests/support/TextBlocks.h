#pragma once

#include <QFile>
#include <QStringList>

#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::tests {

/// The blocks of a file below tests/data, each as its lines. Empty lines part them; a block that begins with
/// "#" is a comment. A file that is not there is an exception.
inline std::vector<QStringList> readBlocks(const char* path) {
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/") + QLatin1String(path));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error(std::string("no file ") + path);
    }
    std::vector<QStringList> blocks;
    for (const QString& block :
         QString::fromUtf8(file.readAll()).split(QStringLiteral("\n\n"), Qt::SkipEmptyParts)) {
        if (!block.startsWith(QLatin1Char('#'))) {
            blocks.push_back(block.split(QLatin1Char('\n'), Qt::SkipEmptyParts));
        }
    }
    return blocks;
}

/// A block of four parts: words, a colon and what is shown; the question; "=>"; the answer, line by line.
struct QuestionBlock {
    QStringList words;
    std::string title;
    std::string question;
    std::string answer;
};

inline std::vector<QuestionBlock> readQuestions(const char* path) {
    std::vector<QuestionBlock> questions;
    for (const QStringList& lines : readBlocks(path)) {
        const int arrow = lines.indexOf(QStringLiteral("=>"));
        if (arrow < 2) {
            throw std::runtime_error(std::string(path) + ": no question in " + lines.front().toStdString());
        }
        questions.push_back(
            {lines.front().section(QLatin1Char(':'), 0, 0).split(QLatin1Char(' ')),
             lines.front().toStdString(), lines.mid(1, arrow - 1).join(QLatin1Char('\n')).toStdString(),
             (lines.mid(arrow + 1).join(QLatin1Char('\n')) + QLatin1Char('\n')).toStdString()});
    }
    return questions;
}

} // namespace orvane::tests

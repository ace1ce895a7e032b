#pragma once

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::tests {

/// One line of a table in tests/data.
struct TableRow {
    QStringList fields; ///< without the blanks around them
    std::string place;  ///< file and line, for the message of a failure

    double number(int field) const { return fields.at(field).toDouble(); }
    std::string text(int field) const { return fields.at(field).toStdString(); }
    /// The fields by names: `const auto& [a, b] = row.columns<2>();`. Another number of them is an exception.
    template<std::size_t count>
    std::array<QString, count> columns() const {
        if (static_cast<std::size_t>(fields.size()) != count) {
            throw std::runtime_error(place + ": another number of fields");
        }
        std::array<QString, count> all;
        std::copy(fields.begin(), fields.end(), all.begin());
        return all;
    }
};

/// The lines of a file below tests/data, cut at the separator. Empty lines and comments, which begin with
/// "#", are left out; "\uXXXX" stands for a code unit, also for a blank at the end of a field. A file that is
/// not there is an exception.
inline std::vector<TableRow> readTable(const char* path, const QString& separator = QStringLiteral(" | ")) {
    QFile file(QStringLiteral(ORVANE_TEST_DATA "/") + QLatin1String(path));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error(std::string("no table ") + path);
    }
    std::vector<TableRow> rows;
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromUtf8(file.readLine());
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        TableRow row{line.split(separator), path + (':' + std::to_string(number))};
        for (QString& field : row.fields) {
            field = field.trimmed();
            for (int at = 0; (at = field.indexOf(QLatin1String("\\u"), at)) >= 0; ++at) {
                field.replace(at, 6, QChar(field.mid(at + 2, 4).toUShort(nullptr, 16)));
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace orvane::tests

#include "platform/dp/AttributeNames.h"

#include <QSet>

namespace orvane::dp {

namespace {

/// What the dialect rewrites wherever it stands as a column: an attribute of that name could not be reached.
const QStringList& reservedNames() {
    static const QStringList names{QStringLiteral("obj"),
                                   QStringLiteral("object"),
                                   QStringLiteral("style"),
                                   QStringLiteral("tr$$_rendition"),
                                   QStringLiteral("rowid"),
                                   QStringLiteral("cd750f8a9a2b4fac9b9b05eb53795d97"),
                                   QStringLiteral("d39f65c319974aa198a899a89b1240c7")};
    return names;
}

QString withoutControlCharacters(QString name) {
    QString kept;
    kept.reserve(name.size());
    for (const QChar character : name) {
        if (character.category() != QChar::Other_Control) {
            kept += character;
        }
    }
    return kept.trimmed();
}

} // namespace

std::size_t bytesThatFit(std::string_view text, int mostBytes) {
    auto size = static_cast<std::size_t>(mostBytes);
    if (text.size() <= size) {
        return text.size();
    }
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) { // in a character
        --size;
    }
    return size;
}

QStringList distinctNames(const QStringList& names, int mostBytes) {
    const auto numbered = [mostBytes](const QString& name, const QString& number) {
        if (mostBytes == 0) {
            return name + number;
        }
        const QByteArray text = name.toUtf8();
        const std::string_view bytes(text.constData(), static_cast<std::size_t>(text.size()));
        const std::size_t kept = bytesThatFit(bytes, mostBytes - number.size());
        return QString::fromUtf8(text.constData(), static_cast<int>(kept)).trimmed() + number;
    };
    QSet<QString> taken;
    for (const auto& name : reservedNames()) {
        taken.insert(name.toCaseFolded());
    }
    QStringList distinct;
    for (int i = 0; i < names.size(); ++i) {
        auto wanted = withoutControlCharacters(names[i]);
        if (wanted.isEmpty()) {
            wanted = QStringLiteral("field%1").arg(i + 1);
        }
        auto name = numbered(wanted, QString());
        for (int number = 2; taken.contains(name.toCaseFolded()); ++number) {
            name = numbered(wanted, QLatin1Char('_') + QString::number(number));
        }
        taken.insert(name.toCaseFolded());
        distinct.append(name);
    }
    return distinct;
}

} // namespace orvane::dp

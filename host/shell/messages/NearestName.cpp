#include "host/shell/messages/NearestName.h"

#include "platform/sql/lexing/Keywords.h"
#include "platform/sql/lexing/SqlStrings.h"

#include <algorithm>

namespace orvane::shell {

QString nearestName(const QString& word, const QStringList& known) {
    const std::wstring wanted = sql::toSqlString(word);
    QString nearest;
    int nearestDistance = 0;
    for (const QString& name : known) {
        if (name.compare(word, Qt::CaseInsensitive) == 0) {
            continue; // nothing new
        }
        const int allowed = std::max(1, std::max(name.size(), word.size()) / 3);
        const int distance = sql::editDistance(wanted, sql::toSqlString(name), allowed);
        if (distance <= allowed && (nearest.isEmpty() || distance < nearestDistance)) {
            nearest = name;
            nearestDistance = distance;
        }
    }
    if (!nearest.isEmpty() || word.size() < 3) {
        return nearest;
    }
    const auto longer = std::find_if(known.begin(), known.end(), [&word](const QString& name) {
        return name.size() > word.size() && name.startsWith(word, Qt::CaseInsensitive);
    });
    return longer != known.end() ? *longer : QString();
}

} // namespace orvane::shell

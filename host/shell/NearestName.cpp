#include "host/shell/NearestName.h"

#include "platform/sql/Keywords.h"
#include "platform/sql/SqlStrings.h"

#include <algorithm>

namespace orvane::shell {

QString nearestName(const QString& word, const QStringList& known) {
    const std::wstring wanted = sql::toSqlString(word);
    QString nearest;
    int nearestDistance = 0;
    for (const QString& name : known) {
        const int allowed = std::max(1, std::min(name.size(), word.size()) / 3);
        const int distance = sql::editDistance(wanted, sql::toSqlString(name), allowed);
        if (distance <= allowed && (nearest.isEmpty() || distance < nearestDistance)) {
            nearest = name;
            nearestDistance = distance;
        }
    }
    return nearest;
}

} // namespace orvane::shell

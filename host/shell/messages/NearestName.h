#pragma once

#include <QString>
#include <QStringList>

namespace orvane::shell {

/// The known name that a user most probably meant: the one that takes the fewest changes of single characters
/// (sql::editDistance), provided that they are no more than a third of the shorter name; else, for three
/// letters or more, one that begins with the word. Empty when there is none; of equally near ones the first.
QString nearestName(const QString& word, const QStringList& known);

} // namespace orvane::shell

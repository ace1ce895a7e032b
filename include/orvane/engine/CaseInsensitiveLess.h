#pragma once

#include <QString>

namespace orvane::engine {

/// Orders function names: two spellings that differ in letter case only are one name.
struct caseInsensitiveLess {
    bool operator()(const QString& a, const QString& b) const {
        return QString::compare(a, b, Qt::CaseInsensitive) < 0;
    }
};

} // namespace orvane::engine

#pragma once

#include <orvane/engine/Export.h>

#include <QString>

#include <string>

namespace orvane::engine {

// Four functions of the dialect bear another name in SQL, where SQLite or SpatiaLite has something else under
// the plain one: Area is ObjectArea, Perimeter ObjectPerimeter, Round RoundTo, MakeValid MakeValidGeo.

/// The SQL name of a function of the dialect, with the letters as they were written. Other names stay.
ORVANE_ENGINE_EXPORT std::wstring sqlFunctionName(const std::wstring& dialectName);
/// The dialect's name of an SQL function, for people to read. Other names stay.
ORVANE_ENGINE_EXPORT QString dialectFunctionName(const QString& sqlName);

} // namespace orvane::engine

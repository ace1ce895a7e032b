#pragma once

#include <string>

namespace orvane::engine {

/// The fixed name of the column that a name of the dialect stands for: "obj" and "object" for the geometry,
/// "style" and "tr$$_rendition" for the style, in any letter case. Null for any other name.
const std::wstring* fixedColumnName(const std::wstring& name);

} // namespace orvane::engine

#pragma once

#include <proj.h>

namespace orvane::cs {

/// Lets the context read files of PROJ's own folders only: a definition of a coordinate system, which may
/// come from a query or a file, can name any file as a grid. Everything else it does not find; it writes
/// nothing and asks no network.
void keepToResourceFolders(PJ_CONTEXT* context);

} // namespace orvane::cs

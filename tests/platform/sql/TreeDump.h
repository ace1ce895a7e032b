#pragma once

#include "platform/sql/tree/Node.h"

#include <string>

namespace orvane::tests {

/// A tree with all its fields as one text: equal texts, equal trees. Unlike the dialect's text it hides
/// nothing behind precedence or defaults.
std::wstring dumpTree(const sql::ast::Node& node);

} // namespace orvane::tests

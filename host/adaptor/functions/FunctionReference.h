#pragma once

#include <host/adaptor/Export.h>

#include <string>
#include <string_view>

namespace orvane::adaptor {

/// The reference of all functions as a Markdown text.
ORVANE_ADAPTOR_EXPORT std::string functionReference();

/// Signature, summary and example of the function of that name, letter case ignored, under the name that the
/// dialect gives it; empty when no record has it. What to use
/// instead of a retired one.
ORVANE_ADAPTOR_EXPORT std::string functionHelp(std::string_view name);

} // namespace orvane::adaptor

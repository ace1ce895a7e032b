#pragma once

#include "host/postgres/connection/Connection.h"
#include "host/postgres/description/ValueKind.h"
#include "platform/dp/Condition.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::postgres {

/// Whether the server can test a condition on such a column so that it leaves out no row that we would take.
bool isTestable(ValueKind kind, dp::Comparison comparison, dp::TextCollation collation);

/// The term as SQL, true for every row whose value passes it, perhaps for others; nothing where it would
/// be true for all. `name` is the column as SQL has it; what it is compared with is appended to the
/// arguments.
std::optional<std::string> serverCondition(const std::string& name, ValueKind kind, dp::ScanTerm term,
                                           std::vector<Argument>& arguments);

/// Appends an argument and answers how the statement names it.
std::string placeArgument(std::string value, const char* type, std::vector<Argument>& arguments);

/// An array of values as the server reads it.
class ArrayText {
public:
    void add(std::string_view value);
    std::string finish() && { return text_.empty() ? "{}" : std::move(text_) + "}"; }

private:
    std::string text_;
};

} // namespace orvane::postgres

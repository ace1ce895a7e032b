#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvane::tests {

/// One block of a file in tests/data/dialect. Lines are `key: value`; a repeated input line continues the
/// text.
struct DialectCase {
    std::string place; ///< file and line, for the message of a failure
    std::string reason;
    std::string input;
    std::string dialect; ///< as the dialect prints it; empty: not checked
    std::string sqlite;  ///< as it is translated; empty: not checked
    std::string error;   ///< `line:column message`
};

/// Every case of every file. A file that does not follow the form is a failure of the test program.
std::vector<DialectCase> readDialectCases();

std::ostream& operator<<(std::ostream& stream, const DialectCase& dialectCase);

} // namespace orvane::tests

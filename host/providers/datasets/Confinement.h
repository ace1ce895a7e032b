#pragma once

#include <QByteArray>

#include <cstdint>

namespace orvane::files {

/// What the content of a file may make GDAL reach.
enum class Reach : std::uint8_t {
    OwnFolder,   ///< nothing but the file and what lies below its folder
    NamedSource, ///< the network too, which the user's own words name: a URL, a database
    Everything,  ///< whatever it refers to, for the user trusts it
};

/// While it lives, what GDAL opens and reads on this thread for a file stays within its reach:
///
/// - A database of SQLite's, opened with confiningStatement, keeps only those virtual tables and functions
/// that work on the database itself. It does not open where that fails.
/// - The network is not asked, but for the server of a URL that is the user's own; the log tells what the
/// file wanted there.
///
/// GDAL puts some of its opening off until rows are read. Scopes nest.
class Confinement {
public:
    /// The path is only for messages, and outlives the object.
    Confinement(Reach reach, const QByteArray& path);
    ~Confinement();
    Confinement(const Confinement&) = delete;
    Confinement& operator=(const Confinement&) = delete;

private:
    const Reach reach_;
    const bool limitsNetwork_;
};

} // namespace orvane::files

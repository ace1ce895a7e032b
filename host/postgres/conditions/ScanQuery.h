#pragma once

#include "host/postgres/connection/Connection.h"
#include "host/postgres/description/TableDescription.h"
#include "platform/dp/ScanRequest.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::postgres {

/// Joins and separates the values of a key of several columns.
constexpr char keySeparator = '\x1F';

/// Puts together what asks the server for rows of one table. Each row has the attributes in the order given,
/// then what identifies it: an integer, a place (tid), or the texts of the key columns.
class ScanQuery {
public:
    explicit ScanQuery(const TableDescription& table) : table_(table) {}

    /// The rows that a request asks for, perhaps more; each attribute once.
    Command rows(const dp::ScanRequest& request, const std::vector<int>& attributes) const;
    /// About so many rows of a table that has `tableRows`: some of the rows of pages at random.
    Command sample(const std::vector<int>& attributes, double rows, double tableRows) const;
    Command count() const;
    /// The plan of a whole scan, in JSON, which tells how many rows the server expects.
    Command estimate() const;

    /// Just the rows with these identifiers, of the table `t`.
    std::string condition(const std::vector<dp::FeatureId>& ids, std::vector<Argument>& arguments) const;
    /// What identifies a row of the table `t`.
    std::string key() const;
    /// Columns behind those of the attributes.
    std::size_t keySize() const;
    /// Whether rows() leaves rows out by a term of this kind.
    bool usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const;
    bool usesWindow() const;

private:
    const ColumnDescription& column(int attribute) const {
        return table_.columns[static_cast<std::size_t>(attribute)];
    }
    std::string nameOf(int attribute) const;
    std::string selected(const std::vector<int>& attributes) const;
    std::string source() const;
    std::optional<std::string> termText(const dp::ScanTerm& term, std::vector<Argument>& arguments) const;
    std::string windowText(const geometry::Envelope& window) const;

    const TableDescription& table_;
};

} // namespace orvane::postgres

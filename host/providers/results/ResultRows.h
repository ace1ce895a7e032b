#pragma once

#include "host/providers/Export.h"
#include "platform/dp/AttributeDefinition.h"
#include "platform/geometry/shapes/Geometry.h"

#include <QStringList>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace orvane::dp {
class DataCatalog;
}
namespace orvane::engine {
class EngineCache;
}

namespace orvane::files {

/// One value of a held row. Text and bytes, of a geometry its well-known binary, last until the next row is
/// read.
struct ResultCell {
    enum class Kind : std::uint8_t { Null, Integer, Real, Text, Bytes, Geometry };

    Kind kind = Kind::Null;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view bytes;
};

/// What the values of a result column have in common.
struct ResultColumn {
    QString name;
    /// The attribute of a table of the catalogue whose values the column passes on; null for a computed
    /// column.
    dp::AttributeDefinitionPointer source;

    // Over all values so far.
    bool hasIntegers = false;
    bool hasReals = false;
    bool hasTexts = false;
    bool hasBytes = false;
    bool hasNulls = false;
    bool isSingle = true;   ///< every number is a float
    bool areMoments = true; ///< every text has the form of the source's date, time or both
    bool hasNegatives = false;
    std::int64_t least = 0;
    std::int64_t greatest = 0;
    double largest = 0;          ///< of the numbers, without sign
    std::size_t longestText = 0; ///< in characters
    /// Bit n is set for geometries of the kind n of well-known binary.
    std::uint32_t geometryKinds = 0;
    bool hasZ = false;
    bool hasM = false;
    /// Of the geometries: the first that is known, into which the others are transformed.
    std::shared_ptr<cs::CoordSystem> coordSystem;

    /// Whether all values are geometries; NULL alone counts where the source is a geometry.
    bool isGeometry() const;
    /// The type that fits every value, under a name: the source's, widths included, while nothing else was
    /// mixed in, otherwise a 64-bit integer, a real, bytes or text.
    dp::AttributeDefinitionPointer attribute(const QString& attributeName) const;
};

/// The rows of a result, held in a nameless temporary file until all of them are there: only then the types
/// of computed columns are known. Takes a few megabytes of memory whatever the number of rows. Used from the
/// thread of the engine; throws std::runtime_error when the file cannot be written or read.
class ORVANE_FILES_EXPORT ResultRows {
public:
    /// `statement` is prepared and stays so while rows are appended; `names` are the titles of its columns.
    /// The catalogue tells the types of columns that come from tables. Nothing is owned.
    ResultRows(sqlite3_stmt* statement, const QStringList& names, const dp::DataCatalog& catalog,
               engine::EngineCache& cache);

    /// Takes over the current row of the statement. Geometries are recognised whatever their blob.
    void append();
    /// Steps the statement to its end and takes over every row. Throws std::runtime_error with SQLite's
    /// reason when it fails.
    void appendAll();

    const std::vector<ResultColumn>& columns() const { return columns_; }
    /// The column that is the geometry of the rows, the first with geometries; -1 when there is none.
    int geometryColumn() const;
    std::int64_t rowCount() const { return rowCount_; }

    /// Passes every row in turn; false from the visitor ends that. Nothing can be appended afterwards.
    using Visitor = std::function<bool(const std::vector<ResultCell>&)>;
    void forEachRow(const Visitor& visitor);

private:
    void append(ResultColumn& column, int index);
    void appendGeometry(ResultColumn& column, const geometry::GeometryPtr& geometry);
    void appendCell(ResultCell::Kind kind, std::string_view bytes);
    void flush();

    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    sqlite3_stmt* statement_;
    engine::EngineCache& cache_;
    std::vector<ResultColumn> columns_;
    std::int64_t rowCount_ = 0;
    std::string buffer_;
    std::unique_ptr<std::FILE, FileCloser> file_;
};

} // namespace orvane::files

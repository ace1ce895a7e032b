#pragma once

#include "host/providers/text/ColumnForm.h"
#include "platform/dp/TableSchema.h"

#include <QCoreApplication>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

namespace orvane::files {

/// How the text of a table is to be taken apart.
struct TextForm {
    QByteArray encoding; ///< empty for UTF-8
    char separator = ',';
    bool hasNames = true; ///< the first record holds the names of the columns
    std::string lineEnd = "\n";
};

/// Which columns hold the geometry, -1 for none: a pair of coordinates or a text.
struct TextGeometry {
    int x = -1, y = -1, text = -1;

    bool exists() const { return x >= 0 || text >= 0; }
};

/// Where a row of a text file begins.
struct TextPlace {
    std::int64_t row = 0;    ///< from 1
    std::int64_t offset = 0; ///< in bytes
};

/// What a text file holds as a table, found out from all of it: columns in the order of the file, then the
/// geometry. The first record gives the names unless one of its values is a number.
///
/// A pair of coordinate columns (lon and lat, longitude and latitude, x and y, easting and northing, ...)
/// makes points, a column wkt, geom, geometry, the_geom or wkt_geom geometries; letter case is ignored. A
/// .csvt file beside the table says what the types are, a .prj file what the coordinate system is.
///
/// Any thread may use it.
class TextTable {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::TextTable)
public:
    /// GDAL's path, UTF-8. Throws std::runtime_error with the name of the file and the reason: not readable,
    /// not in the character set (UTF-16 is known by its mark, else it is `encoding` or UTF-8), empty.
    TextTable(QByteArray path, const QByteArray& encoding);

    const QByteArray& path() const { return path_; }
    /// What is read: the file, or a copy of it that is edited.
    const QByteArray& currentPath() const { return currentPath_; }
    /// From the thread that edits.
    void follow(const QByteArray& path) { currentPath_ = path; }
    const TextForm& form() const { return form_; }
    const std::vector<ColumnForm>& columns() const { return columns_; }
    const TextGeometry& geometry() const { return geometry_; }
    const std::shared_ptr<const dp::TableSchema>& schema() const { return schema_; }

    /// Looks at the file again when it was written since; throws std::runtime_error when it is another table
    /// now, or cannot be read.
    std::int64_t rowCount();
    /// Places all over the file as rowCount() has seen it last, each so many rows behind the one before; none
    /// where reading from the middle is not possible, or slow. Never null.
    std::shared_ptr<const std::vector<TextPlace>> places();
    static constexpr std::int64_t rowsBetweenPlaces = 8; ///< or twice, four times, ... as many
    /// Changes when rowCount() has found another file.
    std::uint64_t revision() const { return revision_; }

private:
    struct Content {
        std::vector<std::string> names;
        std::vector<FormFinder> finders;
        std::int64_t rows = 0;
        std::vector<TextPlace> places;
    };
    struct Stamp {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type time{};

        bool operator==(const Stamp&) const = default;
    };

    void findSeparator();
    Content look();
    void findGeometry(const std::vector<std::string>& names);
    void makeSchema(const std::vector<std::string>& names);
    void readTypesBeside();
    Stamp stamp() const;
    [[noreturn]] void raise(const QString& reason) const;

    const QByteArray path_;
    QByteArray currentPath_;
    TextForm form_;
    std::vector<ColumnForm> columns_;
    std::vector<std::optional<TextType>> declared_;
    std::vector<std::string> names_;
    TextGeometry geometry_;
    std::shared_ptr<cs::CoordSystem> coordSystem_;
    std::shared_ptr<const dp::TableSchema> schema_;
    std::mutex mutex_;
    Stamp stamp_;
    std::int64_t rows_ = 0;
    std::shared_ptr<const std::vector<TextPlace>> places_;
    std::atomic<std::uint64_t> revision_{0};
};

} // namespace orvane::files

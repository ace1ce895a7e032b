#pragma once

#include "host/shell/output/ResultWriter.h"

namespace orvane::cs {
class CoordSystem;
}

namespace orvane::shell {

/// An array with one object for each row. Integers keep all 64 bits, reals read back as they were (an
/// infinity as 1e999), geometries are GeoJSON geometries in their own coordinates, other bytes hexadecimal
/// texts. A column whose name came before gets a number appended, since readers keep only one member of a
/// name.
class JsonWriter : public ResultWriter {
public:
    explicit JsonWriter(Output& output) : ResultWriter(output) {}

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    std::vector<std::string> keys_; ///< quoted, with the colon
    bool first_ = true;
};

/// A FeatureCollection after RFC 7946: coordinates in longitude and latitude of WGS 84, whatever system the
/// geometries carry; row() throws std::runtime_error for one that cannot be transformed. The geometry of the
/// features is the column "obj", else the first column that holds a geometry; the other columns are
/// properties.
class GeoJsonWriter : public ResultWriter {
public:
    explicit GeoJsonWriter(Output& output);
    ~GeoJsonWriter() override;

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    void appendInWgs84(const geometry::Geometry& geometry);
    /// Whether geometries of that system have to be transformed. Asked for each geometry, so the last answer
    /// is kept.
    bool needsTransformation(const std::shared_ptr<cs::CoordSystem>& coordSystem);

    std::vector<std::string> keys_;
    std::string properties_; ///< of the current feature; a member to keep its memory
    int geometryColumn_ = -1;
    bool first_ = true;
    std::shared_ptr<cs::CoordSystem> wgs84_;
    std::shared_ptr<cs::CoordSystem> lastCoordSystem_;
    bool lastNeedsTransformation_ = false;
};

/// A JSON string with its quotes. What is not visible as it is (platform/utils/VisibleText.h) is escaped;
/// bytes that are no UTF-8 become U+FFFD.
void appendJsonText(std::string& text, std::string_view bytes);

} // namespace orvane::shell

#include <orvane/engine/SpatialiteBlob.h>

#include "engine/geometry/SpatialiteLayout.h"
#include "platform/cs/Transformer.h"
#include "platform/geometry/forms/GeometryWalker.h"

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace orvane::engine {

using namespace spatialite;

namespace {

/// Looks at runs of positions, and refuses parts that have parts.
template<typename Visit>
struct PartsVisitor : geometry::GeometryVisitor {
    explicit PartsVisitor(Visit toVisit) : visit(std::move(toVisit)) {}

    bool begin(geometry::GeometryType type, Dimensions, std::size_t) {
        const bool allowed = type < geometry::GeometryType::MultiPoint || !isInside;
        isInside = true;
        return allowed;
    }
    bool positions(const geometry::PositionRun& run) { return visit(run); }

    Visit visit;
    bool isInside = false;
};

bool isPoint(const SpatialiteHeader& header) {
    const auto dimensions = dimensionsOf(header.kind);
    return header.kind % 1000 == Point && dimensions &&
           header.content.size() == strideOf(*dimensions) * sizeof(double);
}

/// Whether the content of a plain kind is sound; `visit(const PositionRun&)` may end it.
template<typename Visit>
bool walk(const SpatialiteHeader& header, Visit visit) {
    if (isPoint(header)) { // a short way for the usual rows
        return visit({header.content.data(), 1, *dimensionsOf(header.kind), header.littleEndian, false});
    }
    PartsVisitor<Visit> visitor(std::move(visit));
    geometry::GeometryWalker<geometry::Framing::Spatialite, PartsVisitor<Visit>> walker(
        header.content, visitor, header.littleEndian);
    return walker.walkContent(header.kind);
}

/// A compressed line or polygon: the first and the last position of each run in doubles, those between them
/// as floats relative to the one before (m in doubles).
bool isSoundCompressed(const SpatialiteHeader& header) {
    Bytes bytes(header.content);
    std::uint32_t rings = 1;
    const auto dimensions = dimensionsOf(header.kind - compressedKinds);
    const std::uint32_t plain = header.kind % 1000;
    if (!dimensions || (plain != LineString && plain != Polygon) ||
        (plain == Polygon && !bytes.takeUInt32(header.littleEndian, rings))) {
        return false;
    }
    const std::size_t whole = strideOf(*dimensions) * sizeof(double);
    const std::size_t between =
        (hasZ(*dimensions) ? 3 : 2) * sizeof(float) + (hasM(*dimensions) ? sizeof(double) : 0);
    for (std::uint32_t i = 0; i < rings; ++i) {
        std::uint32_t count = 0;
        if (!bytes.takeUInt32(header.littleEndian, count) || count > bytes.left() / between) {
            return false;
        }
        const std::size_t size = count > 2 ? 2 * whole + (count - 2) * between : count * whole;
        if (!bytes.take(size)) {
            return false;
        }
    }
    return bytes.isAtEnd();
}

std::optional<SpatialiteHeader> readTinyPoint(std::string_view blob) {
    if (blob.size() <= tinyContentOffset) {
        return std::nullopt;
    }
    const auto dimensions = static_cast<unsigned char>(blob[tinyContentOffset - 1]);
    if (dimensions < 1 || dimensions > 4) {
        return std::nullopt;
    }
    SpatialiteHeader header;
    header.littleEndian = (blob[1] & 1) == 1;
    header.kind = Point + 1000 * (dimensions - 1U);
    header.content = blob.substr(tinyContentOffset, blob.size() - tinyContentOffset - 1);
    header.srid = readNumber<qint32>(blob.data() + 2, header.littleEndian);
    double x = 0.0;
    double y = 0.0;
    if (!spatialiteBlobPoint(header, x, y)) {
        return std::nullopt;
    }
    header.envelope.add(x, y);
    return header;
}

/// A short way for the usual rows: a point of x and y.
BlobTransformation appendTransformedPoint(const SpatialiteHeader& header, const cs::Transformer& transformer,
                                          int srid, std::string& out) {
    std::array<double, 2> position;
    std::memcpy(position.data(), header.content.data(), sizeof position);
    const bool isEmpty = std::isnan(position[0]) && std::isnan(position[1]);
    if (!isEmpty && !transformer.transform(position.data(), 1, position.size(), false)) {
        return BlobTransformation::NoImage;
    }
    constexpr std::size_t contentOffset = bodyOffset + kindSize;
    std::array<char, contentOffset + sizeof position + 1> blob;
    Envelope envelope;
    envelope.add(position[0], position[1]);
    putHeader(blob.data(), srid, envelope);
    qToLittleEndian<quint32>(Point, blob.data() + bodyOffset);
    std::memcpy(blob.data() + contentOffset, position.data(), sizeof position);
    blob.back() = endMark;
    out.append(blob.data(), blob.size());
    return BlobTransformation::Done;
}

} // namespace

std::optional<SpatialiteHeader> readSpatialiteHeader(std::string_view blob) {
    if (blob.size() < tinyContentOffset || blob.front() != startMark || blob.back() != endMark) {
        return std::nullopt;
    }
    const auto order = static_cast<unsigned char>(blob[1]);
    if (order == tinyPointOrder || order == tinyPointOrder + 1) {
        return readTinyPoint(blob);
    }
    if (blob.size() < leastSize || order > 1 || blob[bodyOffset - 1] != envelopeMark) {
        return std::nullopt;
    }
    SpatialiteHeader header;
    header.littleEndian = order == 1;
    header.srid = readNumber<qint32>(blob.data() + 2, header.littleEndian);
    double sides[4];
    header.littleEndian ? qFromLittleEndian<double>(blob.data() + envelopeOffset, 4, sides)
                        : qFromBigEndian<double>(blob.data() + envelopeOffset, 4, sides);
    header.envelope = {sides[0], sides[1], sides[2], sides[3]};
    header.kind = readNumber<quint32>(blob.data() + bodyOffset, header.littleEndian);
    header.content = blob.substr(bodyOffset + kindSize, blob.size() - bodyOffset - kindSize - 1);
    return header;
}

bool spatialiteBlobPoint(const SpatialiteHeader& header, double& x, double& y) {
    if (!isPoint(header)) {
        return false;
    }
    x = readNumber<double>(header.content.data(), header.littleEndian);
    y = readNumber<double>(header.content.data() + sizeof(double), header.littleEndian);
    return true;
}

bool isSoundSpatialiteBlob(const SpatialiteHeader& header) {
    return header.kind >= compressedKinds ? isSoundCompressed(header)
                                          : walk(header, [](const geometry::PositionRun&) { return true; });
}

BlobTransformation appendTransformedBlob(const SpatialiteHeader& header, const cs::Transformer& transformer,
                                         int srid, std::string& out) {
    const std::size_t start = out.size();
    if (!header.littleEndian || QSysInfo::ByteOrder != QSysInfo::LittleEndian) {
        return BlobTransformation::NotLinear;
    }
    if (header.kind == Point && isPoint(header)) {
        return appendTransformedPoint(header, transformer, srid, out);
    }
    out.resize(start + bodyOffset + kindSize + header.content.size() + 1);
    qToLittleEndian<quint32>(header.kind, out.data() + start + bodyOffset);
    char* target = out.data() + start + bodyOffset + kindSize;
    std::memcpy(target, header.content.data(), header.content.size());
    target[header.content.size()] = endMark;
    Envelope envelope;
    bool hasImage = true;
    const bool isWhole = walk(header, [&](const geometry::PositionRun& run) {
        const std::size_t stride = strideOf(run.dimensions);
        constexpr std::size_t inlinePositions = 64;
        double few[inlinePositions * 4];
        std::vector<double> many(run.count > inlinePositions ? run.doubles() : 0);
        double* positions = many.empty() ? few : many.data();
        run.copyTo(positions);
        const bool isEmptyPoint = run.count == 1 && std::isnan(positions[0]) && std::isnan(positions[1]);
        hasImage = isEmptyPoint || transformer.transform(positions, run.count, stride, hasZ(run.dimensions));
        for (std::size_t i = 0; hasImage && !run.isHole && i < run.count; ++i) {
            envelope.add(positions[i * stride], positions[i * stride + 1]);
        }
        std::memcpy(target + (run.data - header.content.data()), positions, run.doubles() * sizeof(double));
        return hasImage;
    });
    if (!isWhole) {
        out.resize(start);
        return hasImage ? BlobTransformation::NotLinear : BlobTransformation::NoImage;
    }
    putHeader(out.data() + start, srid, envelope);
    return BlobTransformation::Done;
}

} // namespace orvane::engine

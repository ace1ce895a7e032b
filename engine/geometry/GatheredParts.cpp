#include "engine/geometry/GatheredParts.h"

#include "engine/geometry/SpatialiteLayout.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/geometry/shapes/Shapes.h"

#include <array>

namespace orvane::engine {

using namespace spatialite;

namespace {

void appendUInt32(std::string& out, std::size_t value) {
    std::array<char, sizeof(quint32)> bytes;
    qToLittleEndian<quint32>(static_cast<quint32>(value), bytes.data());
    out.append(bytes.data(), bytes.size());
}

std::uint32_t withDimensions(std::uint32_t plainKind, Dimensions dimensions) {
    return plainKind + 1000 * static_cast<std::uint32_t>(dimensions);
}

/// Appends positions with z and m as wanted, 0 where there were none.
void appendPositions(std::string_view positions, Dimensions given, Dimensions wanted, std::string& out) {
    if (given == wanted) {
        out.append(positions);
        return;
    }
    const std::size_t stride = strideOf(given) * sizeof(double);
    for (; positions.size() >= stride; positions.remove_prefix(stride)) {
        constexpr std::string_view zero("\0\0\0\0\0\0\0\0", sizeof(double));
        constexpr std::size_t heightOffset = 2 * sizeof(double);
        out.append(positions.substr(0, heightOffset));
        if (hasZ(wanted)) {
            out.append(hasZ(given) ? positions.substr(heightOffset, sizeof(double)) : zero);
        }
        if (hasM(wanted)) {
            out.append(hasM(given) ? positions.substr(stride - sizeof(double), sizeof(double)) : zero);
        }
    }
}

/// A sound part without its mark: kind and content.
class PartBody {
public:
    explicit PartBody(std::string_view body) : content_(body) {
        std::uint32_t kind = 0;
        content_.takeUInt32(true, kind);
        kind_ = kind % 1000;
        dimensions_ = dimensionsOf(kind).value_or(Dimensions::XY);
    }

    std::uint32_t kind() const { return kind_; }
    Dimensions dimensions() const { return dimensions_; }

    void appendContent(Dimensions wanted, std::string& out) {
        std::uint32_t runs = 1;
        if (kind_ == Polygon) {
            content_.takeUInt32(true, runs);
            appendUInt32(out, runs);
        }
        for (std::uint32_t i = 0; i < runs; ++i) {
            const std::string_view positions = takePositions();
            if (kind_ != Point) {
                appendUInt32(out, positions.size() / (strideOf(dimensions_) * sizeof(double)));
            }
            appendPositions(positions, dimensions_, wanted, out);
        }
    }

    /// The next run of positions: the only one of a point or line.
    std::string_view takePositions() {
        std::uint32_t count = 1;
        if (kind_ != Point) {
            content_.takeUInt32(true, count);
        }
        const std::size_t size = count * strideOf(dimensions_) * sizeof(double);
        return {content_.take(size), size};
    }

private:
    Bytes content_;
    std::uint32_t kind_ = 0;
    Dimensions dimensions_ = Dimensions::XY;
};

std::string finished(std::string blob, int srid, const Envelope& envelope) {
    blob += endMark;
    putHeader(blob.data(), srid, envelope);
    return blob;
}

} // namespace

bool GatheredParts::add(const SpatialiteHeader& header) {
    if (!header.littleEndian || !dimensionsOf(header.kind) || header.kind % 1000 > Polygon ||
        !isSoundSpatialiteBlob(header)) {
        return false;
    }
    if (!header.envelope.isEmpty()) {
        envelope_.add(header.envelope);
        countGeometry(header.kind % 1000);
        addPart(header.kind, header.content);
    }
    return true;
}

void GatheredParts::add(const geometry::Geometry& linear) {
    if (linear.isEmpty()) {
        return;
    }
    envelope_.add(linear.envelope());
    countGeometry(static_cast<std::uint32_t>(linear.type()));
    const auto addParts = [this](const auto& self, const geometry::Geometry& geometry) -> void {
        if (const auto* collection = dynamic_cast<const geometry::GeometryCollection*>(&geometry)) {
            for (const geometry::GeometryPtr& part : collection->parts()) {
                self(self, *part);
            }
        } else if (!geometry.isEmpty()) {
            const geometry::GeometryPtr borrowed(std::shared_ptr<void>(), &geometry);
            const QByteArray wkb =
                geometry::GeometryFactory::toWkb(borrowed, QSysInfo::LittleEndian); // mark, kind, content
            const std::string_view bytes(wkb.constData(), static_cast<std::size_t>(wkb.size()));
            addPart(readNumber<quint32>(wkb.constData() + 1, true), bytes.substr(1 + kindSize));
        }
    };
    addParts(addParts, linear);
}

void GatheredParts::countGeometry(std::uint32_t kind) {
    if (geometries_++ == 0) {
        firstKind_ = kind;
    }
    hasCollections_ = hasCollections_ || kind == GeometryCollection;
}

void GatheredParts::addPart(std::uint32_t kind, std::string_view content) {
    hasKind_[kind % 1000] = true;
    const Dimensions own = dimensionsOf(kind).value_or(Dimensions::XY);
    const Dimensions all = ends_.empty() ? own
                                         : geometry::makeDimensions(hasZ(dimensions_) || hasZ(own),
                                                                    hasM(dimensions_) || hasM(own));
    isMixed_ = isMixed_ || all != own || (!ends_.empty() && all != dimensions_);
    dimensions_ = all;
    bytes_ += partMark;
    appendUInt32(bytes_, kind);
    bytes_.append(content);
    ends_.push_back(bytes_.size());
}

std::string_view GatheredParts::bytesOf(std::size_t index) const {
    const std::size_t begin = (index == 0 ? 0 : ends_[index - 1]) + 1;
    return std::string_view(bytes_).substr(begin, ends_[index] - begin);
}

geometry::GeometryPtr GatheredParts::part(std::size_t index) const {
    const std::string_view part = bytesOf(index);
    return geometry::GeometryFactory::fromSpatialite(readNumber<quint32>(part.data(), true),
                                                     part.substr(kindSize), true, nullptr);
}

std::uint32_t GatheredParts::kindOfAll() const {
    if (geometries_ == 1) {
        return firstKind_;
    }
    const int kinds = hasKind_[Point] + hasKind_[LineString] + hasKind_[Polygon];
    if (hasCollections_ || kinds > 1) {
        return GeometryCollection;
    }
    return hasKind_[Point] ? MultiPoint : hasKind_[LineString] ? MultiLineString : MultiPolygon;
}

std::string GatheredParts::collected(int srid, const work::Cancellation& cancellation) const {
    if (ends_.empty()) {
        return {};
    }
    const std::uint32_t kind = kindOfAll();
    std::string blob;
    blob.reserve(bodyOffset + 2 * kindSize + bytes_.size() + 1);
    blob.resize(bodyOffset);
    appendUInt32(blob, withDimensions(kind, dimensions_));
    if (kind <= Polygon) {
        PartBody(bytesOf(0)).appendContent(dimensions_, blob);
        return finished(std::move(blob), srid, envelope_);
    }
    appendUInt32(blob, ends_.size());
    if (kind != GeometryCollection && !isMixed_) {
        blob.append(bytes_);
        return finished(std::move(blob), srid, envelope_);
    }
    // A collection has its points first, then its lines, then its areas.
    for (const std::uint32_t partKind : {Point, LineString, Polygon}) {
        for (std::size_t i = 0; hasKind_[partKind] && i < ends_.size(); ++i) {
            cancellation.check();
            PartBody part(bytesOf(i));
            if (part.kind() == partKind) {
                blob += partMark;
                appendUInt32(blob, withDimensions(partKind, dimensions_));
                part.appendContent(dimensions_, blob);
            }
        }
    }
    return finished(std::move(blob), srid, envelope_);
}

std::string GatheredParts::line(int srid, const work::Cancellation& cancellation) const {
    std::string blob(bodyOffset, '\0');
    appendUInt32(blob, withDimensions(LineString, dimensions_));
    const std::size_t countOffset = blob.size();
    appendUInt32(blob, 0);
    const std::size_t positionsOffset = blob.size();
    blob.reserve(positionsOffset + bytes_.size());
    for (std::size_t i = 0; !hasKind_[Polygon] && i < ends_.size(); ++i) {
        cancellation.check();
        PartBody part(bytesOf(i));
        appendPositions(part.takePositions(), part.dimensions(), dimensions_, blob);
    }
    const std::size_t count = (blob.size() - positionsOffset) / (strideOf(dimensions_) * sizeof(double));
    if (count < 2) {
        return {};
    }
    qToLittleEndian<quint32>(static_cast<quint32>(count), blob.data() + countOffset);
    return finished(std::move(blob), srid, envelope_);
}

} // namespace orvane::engine

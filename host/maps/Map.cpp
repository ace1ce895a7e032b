#include "host/maps/Map.h"

#include "host/maps/FeatureStore.h"
#include "host/maps/decorations/Graticule.h"
#include "host/maps/decorations/Legend.h"
#include "host/maps/decorations/ScaleBar.h"
#include "host/maps/drawing/LayerPainter.h"

#include <QFontMetricsF>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::maps {

struct Map::Layer {
    LayerSettings settings;
    FeatureStore store;
    ValueSummary values;
    geometry::Envelope extent;       ///< in its own units
    std::optional<double> tolerance; ///< of a background, whose view is known
    geometry::Envelope visible = geometry::Envelope::everything();
    std::array<std::uint64_t, 3> kinds{}; ///< parts that are areas, lines, points
    bool isGeographic = false;
};

namespace {

const QColor sea(0xEE, 0xF4, 0xF8);
const QColor graticuleColour(0xC9, 0xD3, 0xDA);
const QColor globeOutline(0x9A, 0xA8, 0xB2);

/// The size of a label, for a picture of that size.
double fontSize(QSizeF size) {
    return std::clamp(std::min(size.width(), size.height()) / 75, 9.0, 40.0);
}

QFont mapFont(QSizeF size, double factor = 1) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(factor * fontSize(size)))));
    return font;
}

QFont titleFont(QSizeF size) {
    QFont font = mapFont(size, 1.6);
    font.setBold(true);
    return font;
}

/// Passes positions of a shape, and some on its longer segments.
template<typename Visit>
void forEachPosition(const FlatShape& shape, double longest, Visit visit) {
    for (const FlatShape::Part& part : shape.parts) {
        const double* before = nullptr;
        for (std::uint32_t i = part.begin; i < part.begin + part.count; ++i) {
            const double* here = shape.position(i);
            const double span =
                before ? std::max(std::abs(here[0] - before[0]), std::abs(here[1] - before[1])) : 0;
            constexpr int most = 64;
            const int pieces = span > longest ? std::min(static_cast<int>(span / longest) + 1, most) : 1;
            for (int k = 1; k < pieces; ++k) {
                const double share = static_cast<double>(k) / pieces;
                visit(before[0] + share * (here[0] - before[0]), before[1] + share * (here[1] - before[1]));
            }
            visit(here[0], here[1]);
            before = here;
        }
    }
}

} // namespace

Map::Map(MapSettings settings) : settings_(std::move(settings)) {}
Map::~Map() = default;
Map::Map(Map&&) noexcept = default;
Map& Map::operator=(Map&&) noexcept = default;

void Map::beginLayer(LayerSettings settings) {
    auto layer = std::make_unique<Layer>();
    layer->settings = std::move(settings);
    layer->isGeographic = layer->settings.system && layer->settings.system->isGeographic();
    layers_.push_back(std::move(layer));
}

/// The view is known when a background comes: what it does not show need not be kept.
void Map::beginBackground(Layer& layer) {
    settle();
    if (!layer.settings.system) {
        layer.settings.system = layers_.front()->settings.system;
    }
    const LayerProjection projection(layer.settings.system, system_, view_);
    layer.tolerance = projection.tolerance();
    layer.visible = projection.visible();
}

/// Units of the layer that will not be seen. As its extent only grows, what is left out early is not missed
/// later.
double Map::tolerance() const {
    const Layer& layer = *layers_.back();
    if (layer.tolerance) {
        return *layer.tolerance;
    }
    if (layer.extent.isEmpty()) {
        return 0;
    }
    const double x = (layer.extent.maxX - layer.extent.minX) / settings_.size.width();
    const double y = (layer.extent.maxY - layer.extent.minY) / settings_.size.height();
    const double least = x > 0 && y > 0 ? std::min(x, y) : 0;
    return (settings_.system ? 0.1 : 0.25) * least; // a system of the user's may stretch what it likes
}

bool Map::add(const ShapeView& shape, const Value& value, std::string_view label,
              const std::shared_ptr<cs::CoordSystem>& system) {
    Layer& layer = *layers_.back();
    if (system && !layer.settings.system) {
        layer.settings.system = system;
        layer.isGeographic = system->isGeographic();
    }
    if (layer.settings.isBackground && !layer.tolerance) {
        beginBackground(layer);
    }
    const bool isForeign =
        system && system != layer.settings.system && !system->equals(*layer.settings.system);
    shape_.clear();
    if (!reader_.read(shape, isForeign ? 0 : tolerance(), shape_)) {
        return false;
    }
    if (isForeign && !shape_.isEmpty()) {
        const auto transformer = cs::Transformer::between(*system, *layer.settings.system);
        if (!transformer || !transformer->transform(shape_.ordinates.data(), shape_.size(), 2, false)) {
            return false;
        }
    }
    const geometry::Envelope envelope = shape_.envelope();
    if (layer.settings.isBackground && !layer.visible.intersects(envelope) &&
        std::abs(envelope.minX) <= 180 && std::abs(envelope.maxX) <= 180) {
        return true;
    }
    layer.extent.add(envelope);
    if (!layer.settings.isBackground) {
        isSettled_ = false;
        if (layer.isGeographic) {
            ground_.add(shape_);
        }
    }
    for (const FlatShape::Part& part : shape_.parts) {
        ++layer.kinds[part.kind == PartKind::Line ? 1 : part.kind == PartKind::Point ? 2 : 0];
    }
    if (layer.settings.classes) {
        layer.values.add(value);
    }
    layer.store.add(shape_, value, label);
    return true;
}

bool Map::isEmpty() const {
    return std::all_of(layers_.begin(), layers_.end(),
                       [](const auto& layer) { return layer->extent.isEmpty(); });
}

std::shared_ptr<cs::CoordSystem> Map::system() {
    settle();
    return system_;
}

View Map::view() {
    settle();
    return view_;
}

/// What a layer takes of the plane of the map: exact to a 64th of its own extent.
geometry::Envelope Map::extentInPlane(Layer& layer) const {
    const PlaneProjection projection(layer.settings.system, system_);
    if (projection.isDirect() || layer.extent.isEmpty()) {
        return layer.extent;
    }
    constexpr int cells = 64;
    std::vector<geometry::Envelope> boxes(std::size_t{cells} * cells);
    const double width = std::max(layer.extent.maxX - layer.extent.minX, 1e-12) / cells;
    const double height = std::max(layer.extent.maxY - layer.extent.minY, 1e-12) / cells;
    const auto cellOf = [](double offset) {
        return static_cast<std::size_t>(std::clamp(offset, 0.0, cells - 1.0));
    };
    layer.store.forEach([&](FlatShape& shape, const Value&, std::string_view) {
        forEachPosition(shape, std::max(width, height), [&](double x, double y) {
            boxes[cellOf((y - layer.extent.minY) / height) * cells + cellOf((x - layer.extent.minX) / width)]
                .add(x, y);
        });
        return true;
    });
    geometry::Envelope extent;
    for (const geometry::Envelope& box : boxes) {
        if (box.isEmpty()) {
            continue;
        }
        for (const QPointF corner : {QPointF(box.minX, box.minY), QPointF(box.minX, box.maxY),
                                     QPointF(box.maxX, box.minY), QPointF(box.maxX, box.maxY)}) {
            if (const auto position = projection.toPlane(corner)) {
                extent.add(position->x(), position->y());
            }
        }
    }
    const MapPlane& plane = projection.plane();
    const bool isWholeWorld = plane.isWorld && layer.isGeographic && ground_.width() > 300 &&
                              ground_.north() - ground_.south() > 100;
    for (int i = -9; isWholeWorld && i <= 9; ++i) {
        for (const double side : {-0.9999, 0.9999}) {
            if (const auto position =
                    projection.toPlane({plane.centralMeridian + side * plane.halfWidth, 10.0 * i})) {
                extent.add(position->x(), position->y());
            }
        }
    }
    return extent;
}

void Map::settle() {
    if (isSettled_) {
        return;
    }
    isSettled_ = true;
    system_ = settings_.system;
    std::shared_ptr<cs::CoordSystem> known;
    for (const auto& layer : layers_) {
        known = known ? known : layer->settings.system;
    }
    if (!system_ && known) {
        system_ = known->isGeographic() ? suitableSystem(ground_) : known;
    }
    top_ = settings_.title.isEmpty() || !settings_.hasTexts ? 0 : 2.0 * 1.6 * fontSize(settings_.size);
    extent_ = {};
    double radius = 0;
    for (const auto& layer : layers_) {
        if (!layer->settings.isBackground) {
            layer->settings.system = layer->settings.system ? layer->settings.system : known;
            extent_.add(extentInPlane(*layer));
            radius = std::max(radius, layer->kinds[2] != 0 ? 2 * styleOf(*layer).pointRadius : 0.0);
        }
    }
    const QSizeF size(settings_.size.width(), std::max(1.0, settings_.size.height() - top_));
    const double margin = settings_.isSmooth ? 0.025 * std::min(size.width(), size.height()) + radius : 0;
    const double metresAround = 1000; // of a single point
    const double unit = system_ && !system_->isGeographic() ? system_->unitFactor() : 111000;
    view_ = View::fitting(extent_, size, margin, system_ ? metresAround / unit : 1);
}

void Map::setSize(QSizeF size) {
    settings_.size = size;
    isSettled_ = false;
}

geometry::Envelope Map::extent() {
    settle();
    return extent_;
}

std::vector<std::pair<QString, std::shared_ptr<const Classes>>> Map::classes() {
    std::vector<std::pair<QString, std::shared_ptr<const Classes>>> all;
    for (const auto& layer : layers_) {
        classify(*layer);
        if (layer->settings.style.classes) {
            all.emplace_back(layer->settings.title, layer->settings.style.classes);
        }
    }
    return all;
}

void Map::classify(Layer& layer) const {
    if (layer.settings.classes && !layer.values.isEmpty()) {
        ClassSettings settings = *layer.settings.classes;
        settings.isForAreas = layer.kinds[0] >= layer.kinds[1] + layer.kinds[2];
        layer.settings.style.classes = std::make_shared<const Classes>(Classes::of(layer.values, settings));
    }
}

/// The style for the size of the picture: as it is in one of 800 pixels.
LayerStyle Map::styleOf(const Layer& layer) const {
    LayerStyle style = layer.settings.style;
    if (settings_.isSmooth) {
        const double factor =
            std::clamp(std::min(settings_.size.width(), settings_.size.height()) / 800, 0.6, 5.0);
        style.outlineWidth *= factor;
        style.lineWidth *= factor;
        // Many points are drawn small, so that they stay apart.
        constexpr double few = 500;
        const double crowd = static_cast<double>(layer.kinds[2]);
        style.pointRadius *= factor * (crowd > few ? std::max(0.4, std::pow(few / crowd, 0.25)) : 1.0);
    }
    return style;
}

void Map::draw(QPainter& painter, Pass pass) {
    settle();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, settings_.isSmooth);
    const bool isGlobe = showsGlobe(system_, view_);
    if (pass == Pass::Everything) {
        painter.fillRect(QRectF(QPointF(0, 0), settings_.size), Qt::white);
    }
    painter.translate(0, top_);
    painter.setClipRect(view_.rect());
    if (isGlobe && pass == Pass::Everything) {
        drawGlobe(painter, system_, view_, sea, globeOutline);
    }
    if (settings_.hasGraticule) {
        drawGraticule(painter, system_, view_, graticuleColour);
    }
    std::unique_ptr<LabelPlacer> labels;
    if (settings_.hasTexts) {
        labels = std::make_unique<LabelPlacer>(mapFont(settings_.size), view_.rect());
    }
    Coverage coverage(view_.size());
    drawLayers(painter, pass, labels.get(), coverage);
    drawDecorations(painter, labels.get(), coverage);
    if (labels) {
        labels->draw(painter, settings_.isCancelled);
    }
    painter.restore();
    if (top_ > 0) {
        painter.save();
        painter.setFont(titleFont(settings_.size));
        painter.setPen(QColor(0x20, 0x20, 0x20));
        painter.drawText(QRectF(0, 0, settings_.size.width(), top_), Qt::AlignCenter | Qt::TextSingleLine,
                         settings_.title);
        painter.restore();
    }
}

void Map::drawLayers(QPainter& painter, Pass pass, LabelPlacer* labels, Coverage& coverage) {
    for (const bool isBackground : {true, false}) {
        for (const auto& layer : layers_) {
            if (layer->settings.isBackground != isBackground) {
                continue;
            }
            classify(*layer);
            LayerPainter layerPainter(painter, layer->settings.style,
                                      LayerProjection(layer->settings.system, system_, view_),
                                      {isBackground ? nullptr : labels, isBackground ? nullptr : &coverage,
                                       settings_.isCancelled, pass != Pass::Lines, pass != Pass::Areas});
            layer->store.forEach(
                [&layerPainter](FlatShape& shape, const Value& value, std::string_view label) {
                    return layerPainter.add(shape, value, label);
                });
        }
    }
}

void Map::drawDecorations(QPainter& painter, LabelPlacer* labels, const Coverage& given) const {
    if (!labels) {
        return;
    }
    Coverage coverage = given;
    const QFont font = mapFont(settings_.size, 0.95);
    const double margin = 0.012 * std::min(view_.size().width(), view_.size().height()) + 2;
    const auto placeBox = [&](QSizeF size) {
        const QRectF rect = coverage.emptiestCorner(size, margin);
        coverage.add(rect.adjusted(-margin, -margin, margin, margin));
        labels->block(rect.adjusted(-2, -2, 2, 2));
        return rect.topLeft();
    };
    for (const auto& layer : layers_) {
        const auto& classes = layer->settings.style.classes;
        if (!settings_.hasLegend || !classes || classes->isEmpty()) {
            continue;
        }
        const auto most = std::max_element(layer->kinds.begin(), layer->kinds.end()) - layer->kinds.begin();
        const Legend legend{layer->settings.title, static_cast<Legend::Symbol>(most), styleOf(*layer)};
        const QSizeF size = sizeOf(legend, font);
        if (size.width() < 0.6 * view_.size().width() && size.height() < 0.8 * view_.size().height()) {
            drawLegend(painter, legend, placeBox(size), font);
        }
    }
    if (settings_.hasScaleBar) {
        const ScaleBar bar = scaleBarOf(system_, view_, 0.2 * view_.size().width());
        if (bar.pixels > 0) {
            drawScaleBar(painter, bar, placeBox(sizeOf(bar, font)), font);
        }
    }
}

} // namespace orvane::maps

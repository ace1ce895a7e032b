#include "host/desk/map/MapPicture.h"

#include <host/maps/decorations/Graticule.h>
#include <host/maps/decorations/ScaleBar.h>
#include <host/maps/drawing/LayerPainter.h>
#include <host/maps/labels/LabelPlacer.h>
#include <host/maps/projection/GroundExtent.h>
#include <host/maps/projection/LayerProjection.h>
#include <host/maps/projection/MapPlane.h>
#include <platform/cs/CoordSystem.h>

#include <algorithm>
#include <cmath>

namespace orvane::desk {

namespace {

const QColor paper(0xFF, 0xFF, 0xFF);
const QColor sea(0xEE, 0xF4, 0xF8);
const QColor grid(0xC9, 0xD3, 0xDA);
const QColor selectionColour(0xF2, 0xB7, 0x05);
const QColor selectionBorder(0x8A, 0x4B, 0x00);

QFont mapFont() {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    return font;
}

maps::LayerStyle highlighted(maps::LayerStyle style) {
    style.classes = nullptr;
    style.fill = style.line = style.point = selectionColour;
    style.fill.setAlpha(190);
    style.outline = selectionBorder;
    style.outlineWidth = 1.4;
    style.lineWidth += 1.2;
    style.pointRadius += 1.5;
    return style;
}

/// What is drawn of a layer.
enum class Pass { All, Selected };

/// Draws layers; one object for one picture.
class Drawing {
public:
    Drawing(QPainter& painter, const MapPicture& picture, const std::function<bool()>& goesOn)
        : painter_(painter), picture_(picture), goesOn_(goesOn), labels_(mapFont(), picture.view.rect()) {}

    MissedLabels draw() {
        drawBackground();
        for (const MapLayer& layer : picture_.layers) {
            drawLayer(layer, Pass::All);
        }
        for (const MapLayer& layer : picture_.layers) {
            if (layer.selected && !layer.selected->empty()) {
                drawLayer(layer, Pass::Selected);
            }
        }
        if (goesOn_()) {
            drawScale();
            labels_.draw(painter_, [this] { return !goesOn_(); });
        }
        return missed_;
    }

private:
    void drawBackground() {
        const bool isGlobe = picture_.system && maps::showsGlobe(picture_.system, picture_.view);
        painter_.fillRect(picture_.view.rect(), isGlobe ? paper : sea);
        if (isGlobe) {
            maps::drawGlobe(painter_, picture_.system, picture_.view, sea, grid);
        }
        if (isGlobe || picture_.hasGraticule) {
            maps::drawGraticule(painter_, picture_.system, picture_.view, grid);
        }
    }

    void drawScale() {
        constexpr double longest = 160;
        constexpr double margin = 12;
        const auto bar = maps::scaleBarOf(picture_.system, picture_.view, longest);
        if (bar.pixels > 0 && !picture_.layers.empty()) {
            const QSizeF size = maps::sizeOf(bar, mapFont());
            const QRectF place(QPointF(margin, picture_.view.size().height() - size.height() - margin), size);
            labels_.block(place);
            maps::drawScaleBar(painter_, bar, place.topLeft(), mapFont());
        }
    }

    void drawLayer(const MapLayer& layer, Pass pass) {
        const int geometryColumn = layer.features->geometryColumn();
        if (geometryColumn < 0 || !goesOn_()) {
            return;
        }
        maps::LayerPainter::Extras extras;
        extras.labels = pass == Pass::All ? &labels_ : nullptr;
        extras.isCancelled = [this] { return !goesOn_(); };
        maps::LayerPainter painter(painter_, pass == Pass::All ? layer.style : highlighted(layer.style),
                                   {layer.features->coordSystem(), picture_.system, picture_.view}, extras);
        const geometry::Envelope visible = painter.projection().visible();
        for (const auto& block : layer.features->blocks()) {
            for (int row = 0; row < block->size(); ++row) {
                if (!block->box(row).intersects(visible)) {
                    continue;
                }
                const qint64 id = layer.idOf(*block, row);
                if (pass == Pass::Selected && !layer.isSelected(id)) {
                    continue;
                }
                const Value value = block->value(row, geometryColumn);
                if (value.kind == Value::Kind::Geometry &&
                    !painter.add(maps::ShapeView::ofWkb(value.bytes), {}, labelOf(layer, *block, row, id))) {
                    return;
                }
            }
        }
    }

    /// The text lasts until the next call.
    std::string_view labelOf(const MapLayer& layer, const RowBlock& block, int row, qint64 id) {
        if (layer.labelColumn >= 0) {
            const Value value = block.value(row, layer.labelColumn);
            switch (value.kind) {
            case Value::Kind::Text: return value.bytes;
            case Value::Kind::Integer: label_ = std::to_string(value.integer); return label_;
            case Value::Kind::Real:
                label_ = QByteArray::number(value.real, 'g', 6).toStdString();
                return label_;
            default: return {};
            }
        }
        if (!layer.isLabelled) {
            return {};
        }
        // A picture has no room for more; what is missing is computed for the next one.
        constexpr int mostLabels = 3000;
        int& known = known_[layer.table];
        const auto text = layer.labels ? layer.labels->find(id) : Labels::const_iterator();
        if (layer.labels && text != layer.labels->end()) {
            ++known;
            label_ = text->toStdString();
            return label_;
        }
        QVector<qint64>& missed = missed_[layer.table];
        if (known + missed.size() < mostLabels) {
            missed.append(id);
        }
        return {};
    }

    QPainter& painter_;
    const MapPicture& picture_;
    const std::function<bool()>& goesOn_;
    maps::LabelPlacer labels_;
    MissedLabels missed_;
    std::map<quint64, int> known_; ///< labels that were there
    std::string label_;
};

bool isGeographic(const MapLayer& layer) {
    const auto system = layer.features->coordSystem();
    return system && system->isGeographic();
}

/// Of features in longitude and latitude. Very many are told of as one.
maps::GroundExtent groundOf(const std::vector<MapLayer>& layers) {
    constexpr std::int64_t many = 200'000;
    maps::GroundExtent ground;
    for (const MapLayer& layer : layers) {
        if (!isGeographic(layer)) {
            continue;
        }
        if (layer.features->rowCount() > many) {
            const auto all = layer.features->envelope();
            if (!all.isEmpty()) {
                ground.add(all.minX, all.minY, all.maxX, all.maxY);
            }
            continue;
        }
        for (const auto& block : layer.features->blocks()) {
            for (int row = 0; row < block->size(); ++row) {
                if (const Box box = block->box(row); !box.isEmpty()) {
                    ground.add(double{box.minX}, double{box.minY}, double{box.maxX}, double{box.maxY});
                }
            }
        }
    }
    return ground;
}

/// Takes positions all over a rectangle into the plane.
void addGrid(const maps::PlaneProjection& projection, const geometry::Envelope& area,
             geometry::Envelope& extent) {
    constexpr int steps = 24;
    for (int i = 0; i <= steps; ++i) {
        for (int k = 0; k <= steps; ++k) {
            const QPointF position(area.minX + (area.maxX - area.minX) * i / steps,
                                   area.minY + (area.maxY - area.minY) * k / steps);
            const auto place = projection.toPlane(position);
            if (place && std::isfinite(place->x()) && std::isfinite(place->y())) {
                extent.add(place->x(), place->y());
            }
        }
    }
}

} // namespace

bool MapLayer::isSelected(qint64 id) const {
    return selected && std::binary_search(selected->begin(), selected->end(), id);
}

std::optional<int> MapLayer::dimension() const {
    const int column = features->geometryColumn();
    for (const auto& block : features->blocks()) {
        for (int row = 0; column >= 0 && row < block->size(); ++row) {
            const Value value = block->value(row, column);
            if (value.kind == Value::Kind::Geometry && value.bytes.size() > 4) {
                // The low byte of the kind, whichever comes first; thousands stand for z and m.
                const bool isLittle = value.bytes[0] == 1;
                const auto low = static_cast<unsigned char>(value.bytes[isLittle ? 1 : 4]);
                const auto high = static_cast<unsigned char>(value.bytes[isLittle ? 2 : 3]);
                const int kind = (low + 256 * high) % 1000;
                const bool isPoint = kind == 1 || kind == 4;
                const bool isLine = kind == 2 || kind == 5 || kind == 8 || kind == 9 || kind == 11;
                return isPoint ? 0 : isLine ? 1 : 2;
            }
        }
    }
    return std::nullopt;
}

MissedLabels drawMap(QPainter& painter, const MapPicture& picture, const std::function<bool()>& goesOn) {
    return Drawing(painter, picture, goesOn).draw();
}

std::shared_ptr<cs::CoordSystem> suitableSystem(const std::vector<MapLayer>& layers) {
    if (!layers.empty() && std::all_of(layers.begin(), layers.end(), isGeographic)) {
        return maps::suitableSystem(groundOf(layers));
    }
    for (const MapLayer& layer : layers) {
        if (const auto system = layer.features->coordSystem(); system && !system->isGeographic()) {
            return system;
        }
    }
    return nullptr;
}

maps::View viewOf(const std::vector<MapLayer>& layers, const std::shared_ptr<cs::CoordSystem>& system,
                  QSizeF size) {
    geometry::Envelope extent;
    for (const MapLayer& layer : layers) {
        const geometry::Envelope area = layer.features->envelope();
        if (area.isEmpty()) {
            continue;
        }
        const maps::PlaneProjection projection(layer.features->coordSystem(), system);
        if (!isGeographic(layer)) {
            addGrid(projection, area, extent);
        } else if (const auto ground = groundOf({layer}); !ground.isEmpty()) {
            addGrid(projection,
                    {std::max(area.minX, ground.west()), ground.south(),
                     std::min(std::max(area.maxX, ground.west()), ground.west() + ground.width()),
                     ground.north()},
                    extent);
            if (ground.west() + ground.width() > 180) { // over the antimeridian
                addGrid(projection,
                        {ground.west(), ground.south(), ground.west() + ground.width(), ground.north()},
                        extent);
            }
        }
    }
    constexpr double margin = 24;
    const double leastSpan = system && system->isGeographic() ? 0.01 : 1000;
    return maps::View::fitting(extent, size, margin, leastSpan);
}

} // namespace orvane::desk

#pragma once

#include "host/maps/classes/Classes.h"
#include "host/maps/drawing/LayerStyle.h"
#include "host/maps/projection/GroundExtent.h"
#include "host/maps/projection/View.h"
#include "host/maps/shapes/ShapeReader.h"

#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QPainter;

namespace orvane::maps {

class Coverage;
class LabelPlacer;

struct MapSettings {
    QSizeF size{1600, 1200}; ///< in pixels of the painter
    /// Of the map; null for one that suits the extent where the layers are geographic, else for the first
    /// layer's.
    std::shared_ptr<cs::CoordSystem> system;
    QString title;
    bool hasLegend = true;   ///< of layers with classes
    bool hasScaleBar = true; ///< where one scale is true for the picture
    bool hasGraticule = false;
    /// Pictures without any text need no fonts, and so no QGuiApplication.
    bool hasTexts = true;
    bool isSmooth = true; ///< antialiased
    /// Asked now and then while the map is drawn; once it says so, the drawing ends as it is. May be empty.
    std::function<bool()> isCancelled;
};

struct LayerSettings {
    QString title;    ///< of the legend
    LayerStyle style; ///< for a picture of 800 pixels; larger in larger ones
    /// Of features that do not tell theirs; null where it is not known, they are then taken to be in that of
    /// the other layers.
    std::shared_ptr<cs::CoordSystem> system;
    /// Makes the style's classes of the values.
    std::optional<ClassSettings> classes;
    /// Lies below the others, in grey if it likes, and has no say about the extent. Comes behind them.
    bool isBackground = false;
};

/// A picture of features whose extent is not known beforehand. They are read once, made as simple as the size
/// of the picture allows, and drawn when all are there:
///
///     maps::Map map({.size = {800, 600}});
///     map.beginLayer({.title = "Население", .system = wgs84, .classes = maps::ClassSettings()});
///     for (...) map.add(maps::ShapeView::ofWkb(wkb), maps::Value::ofNumber(population), name);
///     QImage image(800, 600, QImage::Format_ARGB32_Premultiplied);
///     QPainter painter(&image);
///     map.draw(painter);
///
/// Memory stays bounded, whatever the number of features. Used from one thread, which need not be the GUI's.
/// Throws std::runtime_error, for the user: systems without a way between them, no room for a temporary file.
class ORVANE_MAPS_EXPORT Map {
public:
    explicit Map(MapSettings settings);
    ~Map();
    Map(Map&&) noexcept;
    Map& operator=(Map&&) noexcept;

    void beginLayer(LayerSettings settings);
    /// Adds a feature to the layer begun last. `system` is its own, null for the layer's; the label is UTF-8.
    /// False for bytes that are no geometry, or have no place in the layer's system.
    bool add(const ShapeView& shape, const Value& value = {}, std::string_view label = {},
             const std::shared_ptr<cs::CoordSystem>& system = nullptr);
    /// Whether no feature has a position.
    bool isEmpty() const;

    /// What is drawn: all of it, or areas apart from outlines, lines and points, for pictures of few dots.
    enum class Pass { Everything, Areas, Lines };
    /// Draws the picture from 0, 0 on. May be called again.
    void draw(QPainter& painter, Pass pass = Pass::Everything);
    /// Of the picture; not larger than the one for which features were added.
    void setSize(QSizeF size);
    /// What the features take of the plane of the map.
    geometry::Envelope extent();
    /// The classes of the layers that have some, with the layer's title, in their order.
    std::vector<std::pair<QString, std::shared_ptr<const Classes>>> classes();
    /// The system and the view of the map as it is drawn; the system is null where none is known.
    std::shared_ptr<cs::CoordSystem> system();
    View view();

private:
    struct Layer;

    void settle();
    void beginBackground(Layer& layer);
    void classify(Layer& layer) const;
    LayerStyle styleOf(const Layer& layer) const;
    geometry::Envelope extentInPlane(Layer& layer) const;
    double tolerance() const;
    void drawLayers(QPainter& painter, Pass pass, LabelPlacer* labels, Coverage& coverage);
    void drawDecorations(QPainter& painter, LabelPlacer* labels, const Coverage& coverage) const;

    MapSettings settings_;
    std::vector<std::unique_ptr<Layer>> layers_;
    ShapeReader reader_;
    FlatShape shape_;
    GroundExtent ground_;       ///< of geographic layers
    geometry::Envelope extent_; ///< in the plane of the map
    bool isSettled_ = false;    ///< system and view are known
    std::shared_ptr<cs::CoordSystem> system_;
    View view_;
    double top_ = 0; ///< what the title takes
};

} // namespace orvane::maps

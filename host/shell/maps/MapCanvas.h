#pragma once

#include "host/maps/classes/Breaks.h"
#include "host/maps/classes/ValueSummary.h"
#include "host/maps/shapes/ShapeReader.h"
#include "platform/cs/CoordSystem.h"

#include <QCoreApplication>
#include <QString>

#include <memory>
#include <string>

namespace orvane::shell {

/// What a map is to look like, as the user asks for it.
struct MapOptions {
    bool isPicture = true; ///< not for a terminal, whose maps have no texts in them and no smooth edges
    int width = 1600;      ///< in pixels, or the dots of characters
    int height = 1200;
    std::shared_ptr<cs::CoordSystem> system; ///< null for one that suits the result
    QString title;
    bool hasGraticule = false;
    maps::ClassMethod method = maps::ClassMethod::Quantiles;
    int classes = 5;
};

enum class PictureFormat { Png, Svg, Pdf };

/// The terminal that a map is drawn for.
struct TerminalSpace {
    int columns = 80;
    int rows = 40; ///< most of them
    bool hasColours = false;
    bool hasAllColours = false; ///< not only the 256 of the palette
};

/// Collects the features of a map and draws them. Stands in a module of its own, so that a shell that draws
/// no map loads nothing of Qt's drawing. All calls throw std::runtime_error, for the user.
class MapCanvas {
public:
    virtual ~MapCanvas() = default;

    /// The result's features follow.
    virtual void beginResult(const QString& fillTitle, bool hasFill) = 0;
    /// A table's features follow, which lie below the result's in grey.
    virtual void beginBackground() = 0;
    /// As maps::Map::add.
    virtual bool add(const maps::ShapeView& shape, const maps::Value& value, std::string_view label,
                     const std::shared_ptr<cs::CoordSystem>& system) = 0;
    virtual bool isEmpty() const = 0;

    virtual std::string picture(PictureFormat format) = 0;
    /// In lines of braille and blocks.
    virtual std::string text(const TerminalSpace& space) = 0;
};

/// The canvas of the module. Throws std::runtime_error when the module is not there.
std::unique_ptr<MapCanvas> makeMapCanvas(const MapOptions& options);

/// An application that has fonts, for programs that will draw pictures; null when the module is not there.
std::unique_ptr<QCoreApplication> makeDrawingApplication(int& argc, char** argv);

/// The functions of the module, by their names.
using MakeMapCanvas = MapCanvas* (*)(const MapOptions&);
using MakeDrawingApplication = QCoreApplication* (*)(int& argc, char** argv);
inline constexpr const char* mapModuleName = "orvane/liborvane_drawing.so";
inline constexpr const char* makeMapCanvasName = "orvaneMakeMapCanvas";
inline constexpr const char* makeDrawingApplicationName = "orvaneMakeDrawingApplication";

} // namespace orvane::shell

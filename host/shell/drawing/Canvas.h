#pragma once

#include "host/maps/Map.h"
#include "host/shell/maps/MapCanvas.h"

#include "platform/work/Cancellation.h"

namespace orvane::shell {

/// Draws the shell's maps with a maps::Map.
class Canvas final : public MapCanvas {
public:
    explicit Canvas(const MapOptions& options);

    void beginResult(const QString& fillTitle, bool hasFill) override;
    void beginBackground() override;
    bool add(const maps::ShapeView& shape, const maps::Value& value, std::string_view label,
             const std::shared_ptr<cs::CoordSystem>& system) override;
    bool isEmpty() const override { return map_.isEmpty(); }
    std::string picture(PictureFormat format) override;
    std::string text(const TerminalSpace& space) override;

private:
    /// Throws work::Cancelled where that came in between: a picture that is not whole need not be written.
    void draw(QPainter& painter);
    std::string png();
    std::string svg();
    std::string pdf();

    work::Cancellation cancellation_;
    MapOptions options_;
    maps::Map map_;
};

} // namespace orvane::shell

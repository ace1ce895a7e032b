#pragma once

#include "host/maps/Export.h"

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>
#include <QString>

#include <functional>
#include <vector>

namespace orvane::maps {

/// Places labels so that none overlaps another, the important ones first, and draws them with a halo. What
/// finds no room is left out. Used from one thread; needs a QGuiApplication, as all that has a font.
class ORVANE_MAPS_EXPORT LabelPlacer {
public:
    enum class Position {
        Beside, ///< right of a point, or on another side of it
        Within  ///< centred on it
    };
    struct Candidate {
        QString text;
        QPointF anchor;
        Position position = Position::Beside;
        double distance = 0; ///< from the anchor, of labels beside it
        QSizeF room;         ///< of labels within, which they exceed by a little at most; empty for any
        double priority = 0;
    };

    LabelPlacer(QFont font, QRectF area);

    void setColours(const QColor& text, const QColor& halo);
    /// Where no label may be. Of very many places the later ones do not count.
    void block(const QRectF& rect) {
        constexpr std::size_t most = 50'000;
        if (blocked_.size() < most) {
            blocked_.push_back(rect);
        }
    }
    /// Of very many those of the highest priority are kept.
    void add(Candidate candidate);
    /// Whether a candidate of that priority would be kept for long: texts need not be made for others.
    bool takes(double priority) const { return priority > threshold_; }

    /// Draws what has room; tells where each label is. `isCancelled` may be empty.
    struct Placed {
        QString text;
        QRectF rect;
    };
    std::vector<Placed> draw(QPainter& painter, const std::function<bool()>& isCancelled = {});

private:
    bool tryPlaces(const Candidate& candidate, QRectF& rect) const;
    bool isFree(const QRectF& rect) const;
    void occupy(const QRectF& rect);
    template<typename Visit>
    bool forEachCell(const QRectF& rect, Visit visit) const;

    QFont font_;
    QRectF area_;
    QColor text_{0x20, 0x20, 0x20};
    QColor halo_{255, 255, 255, 215};
    std::vector<QRectF> blocked_;
    std::vector<Candidate> candidates_;
    double threshold_ = -1e300;
    int columns_ = 1, rows_ = 1;
    std::vector<std::vector<QRectF>> cells_; ///< of a grid over the area: the labels that reach into each
};

} // namespace orvane::maps

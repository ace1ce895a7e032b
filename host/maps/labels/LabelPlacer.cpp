#include "host/maps/labels/LabelPlacer.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

constexpr double cellSize = 64;
constexpr std::size_t mostCandidates = 40'000;
constexpr int longestLabel = 60;

/// One line, not too long.
QString shownText(const QString& text) {
    const QString line = text.simplified();
    return line.size() <= longestLabel ? line : line.left(longestLabel - 1) + QChar(0x2026);
}

} // namespace

LabelPlacer::LabelPlacer(QFont font, QRectF area) : font_(std::move(font)), area_(area) {
    columns_ = std::max(1, static_cast<int>(std::ceil(area_.width() / cellSize)));
    rows_ = std::max(1, static_cast<int>(std::ceil(area_.height() / cellSize)));
    cells_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
}

void LabelPlacer::setColours(const QColor& text, const QColor& halo) {
    text_ = text;
    halo_ = halo;
}

void LabelPlacer::add(Candidate candidate) {
    if (!takes(candidate.priority) || !area_.contains(candidate.anchor)) {
        return;
    }
    candidate.text = shownText(candidate.text);
    if (candidate.text.isEmpty()) {
        return;
    }
    candidates_.push_back(std::move(candidate));
    if (candidates_.size() < mostCandidates) {
        return;
    }
    const auto middle = candidates_.begin() + mostCandidates / 2;
    std::nth_element(candidates_.begin(), middle, candidates_.end(),
                     [](const Candidate& a, const Candidate& b) { return a.priority > b.priority; });
    threshold_ = middle->priority;
    candidates_.erase(middle, candidates_.end());
}

template<typename Visit>
bool LabelPlacer::forEachCell(const QRectF& rect, Visit visit) const {
    const auto cell = [](double offset, int most) {
        return std::clamp(static_cast<int>(std::floor(offset / cellSize)), 0, most - 1);
    };
    for (int row = cell(rect.top() - area_.top(), rows_); row <= cell(rect.bottom() - area_.top(), rows_);
         ++row) {
        for (int column = cell(rect.left() - area_.left(), columns_);
             column <= cell(rect.right() - area_.left(), columns_); ++column) {
            if (!visit(static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                       static_cast<std::size_t>(column))) {
                return false;
            }
        }
    }
    return true;
}

bool LabelPlacer::isFree(const QRectF& rect) const {
    return area_.contains(rect) && forEachCell(rect, [&](std::size_t cell) {
               return std::none_of(cells_[cell].begin(), cells_[cell].end(),
                                   [&rect](const QRectF& other) { return rect.intersects(other); });
           });
}

void LabelPlacer::occupy(const QRectF& rect) {
    forEachCell(rect, [&](std::size_t cell) {
        cells_[cell].push_back(rect);
        return true;
    });
}

/// `rect` has the size of the label, and gets its place.
bool LabelPlacer::tryPlaces(const Candidate& candidate, QRectF& rect) const {
    const double width = rect.width();
    const double height = rect.height();
    if (candidate.position == Position::Within) {
        constexpr double overhang = 1.15;
        const bool fits = candidate.room.isEmpty() || (width <= overhang * candidate.room.width() &&
                                                       height <= overhang * candidate.room.height());
        rect.moveCenter(candidate.anchor);
        return fits && isFree(rect);
    }
    // Right of the point first, as readers expect (Imhof), then the other corners, above, below and left.
    const double far = candidate.distance;
    const double near = 0.7 * far;
    const double x = candidate.anchor.x();
    const double y = candidate.anchor.y();
    const QPointF places[] = {{x + far, y - height / 2},
                              {x + near, y - height - near + 2},
                              {x + near, y + near - 2},
                              {x - far - width, y - height / 2},
                              {x - near - width, y - height - near + 2},
                              {x - near - width, y + near - 2},
                              {x - width / 2, y - height - far},
                              {x - width / 2, y + far}};
    return std::any_of(std::begin(places), std::end(places), [&](const QPointF& place) {
        rect.moveTopLeft(place);
        return isFree(rect);
    });
}

std::vector<LabelPlacer::Placed> LabelPlacer::draw(QPainter& painter,
                                                   const std::function<bool()>& isCancelled) {
    std::stable_sort(candidates_.begin(), candidates_.end(),
                     [](const Candidate& a, const Candidate& b) { return a.priority > b.priority; });
    for (const QRectF& rect : blocked_) {
        occupy(rect);
    }
    const QFontMetricsF metrics(font_);
    const double height = metrics.ascent() + metrics.descent();
    std::vector<Placed> placed;
    QPainterPath texts;
    std::size_t count = 0;
    for (const Candidate& candidate : candidates_) {
        if (++count % 256 == 0 && isCancelled && isCancelled()) {
            break;
        }
        QRectF rect(0, 0, metrics.horizontalAdvance(candidate.text), height);
        if (!tryPlaces(candidate, rect)) {
            continue;
        }
        constexpr double space = 2;
        occupy(rect.adjusted(-space, 0, space, 0));
        texts.addText(rect.left(), rect.top() + metrics.ascent(), font_, candidate.text);
        placed.push_back({candidate.text, rect});
    }
    // Halos first: none covers a neighbour's letters.
    const double haloWidth = std::max(2.0, 0.28 * height / 1.2);
    painter.strokePath(texts, QPen(halo_, haloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setFont(font_);
    painter.setPen(text_);
    for (const Placed& label : placed) {
        painter.drawText(QPointF(label.rect.left(), label.rect.top() + metrics.ascent()), label.text);
    }
    return placed;
}

} // namespace orvane::maps

#pragma once

#include "host/desk/rows/RowStore.h"

#include <host/maps/drawing/LayerStyle.h>
#include <host/maps/projection/View.h>

#include <QHash>
#include <QPainter>
#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::desk {

/// Texts of features by their identifiers.
using Labels = QHash<qint64, QString>;

/// Identifiers of features, or numbers of rows, ascending.
using Numbers = std::vector<qint64>;

/// Some features on a map. Those of a table have their identifiers in the first column and the geometry in
/// the second; those of the result are its rows, in which the row's number is the identifier.
struct MapLayer {
    quint64 table = 0; ///< key of the table, 0 for the result
    std::shared_ptr<const RowStore> features;
    maps::LayerStyle style;
    std::shared_ptr<const Numbers> selected = {}; ///< null for none
    bool isLabelled = false;                      ///< by texts that come as they are asked for
    std::shared_ptr<const Labels> labels = {};    ///< those that came
    int labelColumn = -1;                         ///< of the result

    bool isResult() const { return table == 0; }
    qint64 idOf(const RowBlock& block, int row) const {
        return isResult() ? block.firstRow() + row : block.value(row, 0).integer;
    }
    bool isSelected(qint64 id) const;
    /// 2 for areas, 1 for lines, 0 for points, as the first feature tells; none without one.
    std::optional<int> dimension() const;
};

/// What a map shows. A value: the drawing goes on with its copy.
struct MapPicture {
    std::vector<MapLayer> layers; ///< from the lowest on
    std::shared_ptr<cs::CoordSystem> system;
    maps::View view;
    bool hasGraticule = false;
};

/// Identifiers of features whose texts a drawing missed, by table.
using MissedLabels = std::map<quint64, QVector<qint64>>;

/// Draws a picture, from any thread. `goesOn` is asked often; once it says no, the picture stays as it is.
/// Throws std::runtime_error when a layer has no way into the system of the map.
MissedLabels drawMap(QPainter& painter, const MapPicture& picture, const std::function<bool()>& goesOn);

/// The system in which these layers look right together, null when nothing is known.
std::shared_ptr<cs::CoordSystem> suitableSystem(const std::vector<MapLayer>& layers);
/// The view of a map in a system that shows all of the layers.
maps::View viewOf(const std::vector<MapLayer>& layers, const std::shared_ptr<cs::CoordSystem>& system,
                  QSizeF size);

} // namespace orvane::desk

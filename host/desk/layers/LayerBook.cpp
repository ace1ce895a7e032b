#include "host/desk/layers/LayerBook.h"

#include <algorithm>
#include <iterator>

namespace orvane::desk {

namespace {

/// Quiet ones, beside which the result stands out.
constexpr QRgb colours[] = {0xFFB7C9A8, 0xFFA9BFD6, 0xFFD9C6A3, 0xFFC4B3D4, 0xFFA8CBC6, 0xFFD3B1B1};
const QColor resultColour(0xE0, 0x6A, 0x1B);

} // namespace

LayerBook::LayerBook(Session& session, QObject* parent) : QObject(parent), session_(session) {
    constexpr int pauseMs = 100;
    growthTimer_.setSingleShot(true);
    growthTimer_.setInterval(pauseMs);
    connect(&growthTimer_, &QTimer::timeout, this, &LayerBook::grown);
    connect(&session_, &Session::tablesChanged, this, &LayerBook::follow);
    connect(&session_, &Session::selectionChanged, this, &LayerBook::changed);
    connect(&session_, &Session::layerRead, this,
            [this](quint64 table, const std::shared_ptr<RowStore>& features, bool isWhole) {
                const auto state = states_.find(table);
                if (state != states_.end()) {
                    state->second.features = features;
                    state->second.isWhole = isWhole;
                    isWhole ? Q_EMIT changed() : growthTimer_.start();
                }
            });
    connect(&session_, &Session::labelled, this,
            [this](quint64 table, const QString& expression, const LabelTexts& texts) {
                const auto state = states_.find(table);
                if (state != states_.end() && state->second.expression == expression) {
                    auto labels =
                        std::make_shared<Labels>(state->second.labels ? *state->second.labels : Labels());
                    for (auto text = texts.begin(); text != texts.end(); ++text) {
                        labels->insert(text.key(), text.value());
                    }
                    state->second.labels = labels;
                    Q_EMIT changed();
                }
            });
    connect(&session_, &Session::labellingFailed, this,
            [this](quint64 table, const QString& expression, const QString& reason) {
                const auto state = states_.find(table);
                if (state != states_.end() && state->second.expression == expression) {
                    state->second.expression.clear(); // it would fail for every picture
                    Q_EMIT labellingFailed(table, reason);
                }
            });
}

/// What is opened is seen, what is closed goes, what has changed is read again.
void LayerBook::follow() {
    std::map<quint64, State> states;
    for (const TableInfo& table : session_.tables()) {
        const auto known = states_.find(table.key);
        State& state = states[table.key];
        if (known != states_.end()) {
            state = std::move(known->second);
        } else {
            state.colour = QColor::fromRgba(colours[colours_++ % std::size(colours)]);
            state.isVisible = table.hasGeometry;
        }
        const bool isOld = state.revision != table.revision || !state.features;
        state.revision = table.revision;
        if (state.isVisible && isOld) {
            state.labels = nullptr;
            read(table.key, state);
        }
    }
    states_ = std::move(states);
    Q_EMIT changed();
}

void LayerBook::read(quint64 table, State& state) {
    state.isWhole = false;
    session_.readLayer(table);
}

void LayerBook::setVisible(quint64 table, bool isVisible) {
    if (table == 0) {
        isResultVisible_ = isVisible;
    } else if (const auto state = states_.find(table); state != states_.end()) {
        state->second.isVisible = isVisible;
        if (isVisible && !state->second.features) {
            read(table, state->second);
        }
    }
    Q_EMIT changed();
}

bool LayerBook::isVisible(quint64 table) const {
    const auto state = states_.find(table);
    return table == 0 ? isResultVisible_ : state != states_.end() && state->second.isVisible;
}

QColor LayerBook::colour(quint64 table) const {
    const auto state = states_.find(table);
    return state == states_.end() ? resultColour : state->second.colour;
}

void LayerBook::setLabel(quint64 table, const QString& expression) {
    if (table == 0) {
        resultLabel_ = expression;
    } else if (const auto state = states_.find(table); state != states_.end()) {
        state->second.expression = expression;
        state->second.labels = nullptr;
    }
    Q_EMIT changed();
}

QString LayerBook::label(quint64 table) const {
    const auto state = states_.find(table);
    return table == 0 ? resultLabel_ : state == states_.end() ? QString() : state->second.expression;
}

void LayerBook::setResult(const ResultRowsInfo& result) {
    result_ = result;
    selectedRows_ = nullptr;
    Q_EMIT resultChanged();
    Q_EMIT changed();
}

void LayerBook::setSelectedRows(Numbers rows) {
    selectedRows_ = std::make_shared<const Numbers>(std::move(rows));
    Q_EMIT changed();
}

void LayerBook::addLabels(const MissedLabels& missed) {
    for (const auto& [table, ids] : missed) {
        if (const QString expression = label(table); !expression.isEmpty() && !ids.isEmpty()) {
            session_.label(table, expression, ids);
        }
    }
}

maps::LayerStyle LayerBook::styleOf(const QColor& colour) const {
    maps::LayerStyle style;
    style.fill = colour;
    style.outline = colour.darker(150);
    style.line = colour.darker(130);
    style.point = colour.darker(125);
    return style;
}

std::vector<MapLayer> LayerBook::layers() const {
    std::vector<MapLayer> layers;
    const SelectedFeatures& selection = session_.selection();
    for (const TableInfo& table : session_.tables()) {
        const auto state = states_.find(table.key);
        if (state == states_.end() || !state->second.isVisible || !state->second.features) {
            continue;
        }
        MapLayer layer{table.key, state->second.features, styleOf(state->second.colour)};
        layer.isLabelled = !state->second.expression.isEmpty();
        layer.labels = state->second.labels;
        if (selection.table == table.key) {
            layer.selected = std::make_shared<const Numbers>(selection.ids.begin(), selection.ids.end());
        }
        layers.push_back(std::move(layer));
    }
    std::stable_sort(layers.begin(), layers.end(), [](const MapLayer& a, const MapLayer& b) {
        return a.dimension().value_or(0) > b.dimension().value_or(0);
    });
    if (result_.rows && isResultVisible_ && result_.rows->geometryColumn() >= 0) {
        MapLayer layer{0, result_.rows, styleOf(resultColour)};
        layer.style.fill.setAlpha(110);
        layer.style.lineWidth = 2;
        layer.style.pointRadius = 3.5;
        layer.labelColumn = result_.rows->columns().indexOf(resultLabel_);
        layer.selected = selectedRows_;
        layers.push_back(std::move(layer));
    }
    return layers;
}

bool LayerBook::isWhole() const {
    return std::all_of(states_.begin(), states_.end(),
                       [](const auto& each) { return !each.second.isVisible || each.second.isWhole; });
}

} // namespace orvane::desk

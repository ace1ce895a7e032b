#pragma once

#include "host/desk/map/MapPicture.h"
#include "host/desk/session/Session.h"

#include <QColor>
#include <QTimer>

#include <map>

namespace orvane::desk {

/// How each open table, and the result, stands on the map: whether it is seen, its colour, its labels, its
/// features as far as they are read, which of them are selected. Reads features and labels through the
/// session.
class LayerBook final : public QObject {
    Q_OBJECT
public:
    /// The session is not owned.
    explicit LayerBook(Session& session, QObject* parent = nullptr);

    /// A layer that is seen for the first time is read.
    void setVisible(quint64 table, bool isVisible);
    bool isVisible(quint64 table) const;
    QColor colour(quint64 table) const;
    /// An expression of the dialect, of the result a title of a column; empty for no labels.
    void setLabel(quint64 table, const QString& expression);
    QString label(quint64 table) const;

    /// The result; null rows for none.
    void setResult(const ResultRowsInfo& result);
    const ResultRowsInfo& result() const { return result_; }
    void setSelectedRows(Numbers rows);
    /// Computes texts that a drawing missed.
    void addLabels(const MissedLabels& missed);
    /// What is to be drawn, from the lowest on: areas, lines, points, and the result above all.
    std::vector<MapLayer> layers() const;
    /// Whether the features of every visible layer are there.
    bool isWhole() const;
    /// To look at the result again, which has got more rows.
    void refresh() { Q_EMIT changed(); }

Q_SIGNALS:
    void changed();
    /// There are more features than before, and more to come.
    void grown();
    void resultChanged();
    /// Labels of a table cannot be computed.
    void labellingFailed(quint64 table, const QString& reason);

private:
    struct State {
        bool isVisible = false;
        bool isWhole = false;
        QColor colour;
        quint64 revision = 0;
        std::shared_ptr<const RowStore> features;
        QString expression;
        std::shared_ptr<const Labels> labels;
    };

    void follow();
    void read(quint64 table, State& state);
    maps::LayerStyle styleOf(const QColor& colour) const;

    Session& session_;
    std::map<quint64, State> states_; ///< of the tables
    int colours_ = 0;                 ///< that were given
    ResultRowsInfo result_;
    bool isResultVisible_ = true;
    QString resultLabel_;
    std::shared_ptr<const Numbers> selectedRows_;
    QTimer growthTimer_; ///< several portions in a row are one
};

} // namespace orvane::desk

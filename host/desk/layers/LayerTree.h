#pragma once

#include "host/desk/layers/LayerBook.h"

#include <QTreeWidget>

namespace orvane::desk {

/// The open tables with their columns, and the result: switched on and off, renamed (F2), labelled and closed
/// here.
class LayerTree final : public QTreeWidget {
    Q_OBJECT
public:
    /// Nothing is owned.
    LayerTree(Session& session, LayerBook& book, QWidget* parent = nullptr);

    /// The table of the current item, 0 for the result; none where there is no item.
    std::optional<quint64> currentTable() const;
    void renameCurrent();
    void closeCurrent();
    /// Asks for the expression of its labels.
    void labelCurrent();

Q_SIGNALS:
    void showRequested(quint64 table);
    /// To ask a query for all of a table.
    void queryRequested(const QString& table);
    /// To write a name into the query.
    void nameRequested(const QString& name);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void follow();
    void takeChange(QTreeWidgetItem* item);
    QTreeWidgetItem* itemOf(quint64 table) const;

    Session& session_;
    LayerBook& book_;
    bool isFollowing_ = false; ///< changes of items are ours
};

} // namespace orvane::desk

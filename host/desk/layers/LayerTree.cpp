#include "host/desk/layers/LayerTree.h"

#include <QContextMenuEvent>
#include <QInputDialog>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>

namespace orvane::desk {

namespace {

constexpr int tableRole = Qt::UserRole;

QIcon swatch(const QColor& colour) {
    QPixmap pixmap(14, 14);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour.darker(150));
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(1.5, 1.5, 11, 11), 2, 2);
    return QIcon(pixmap);
}

} // namespace

LayerTree::LayerTree(Session& session, LayerBook& book, QWidget* parent)
    : QTreeWidget(parent), session_(session), book_(book) {
    setColumnCount(1);
    setHeaderHidden(true);
    setEditTriggers(EditKeyPressed | SelectedClicked);
    setUniformRowHeights(true);
    setIndentation(16);
    connect(&session_, &Session::tablesChanged, this, &LayerTree::follow);
    connect(&book_, &LayerBook::resultChanged, this, &LayerTree::follow);
    connect(this, &QTreeWidget::itemChanged, this, &LayerTree::takeChange);
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        if (item->parent()) {
            Q_EMIT nameRequested(item->data(0, tableRole).toString());
        }
    });
}

std::optional<quint64> LayerTree::currentTable() const {
    const QTreeWidgetItem* item = currentItem();
    if (!item) {
        return std::nullopt;
    }
    return (item->parent() ? item->parent() : item)->data(0, tableRole).toULongLong();
}

QTreeWidgetItem* LayerTree::itemOf(quint64 table) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        if (topLevelItem(i)->data(0, tableRole).toULongLong() == table) {
            return topLevelItem(i);
        }
    }
    return nullptr;
}

void LayerTree::follow() {
    const QScopedValueRollback<bool> following(isFollowing_, true);
    for (int i = topLevelItemCount() - 1; i >= 0; --i) {
        const quint64 key = topLevelItem(i)->data(0, tableRole).toULongLong();
        if (key != 0 && !session_.table(key)) {
            delete takeTopLevelItem(i);
        }
    }
    if (book_.result().rows && !itemOf(0)) {
        auto* item = new QTreeWidgetItem({tr("Результат запроса")});
        item->setData(0, tableRole, 0);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setIcon(0, swatch(book_.colour(0)));
        item->setCheckState(0, Qt::Checked);
        insertTopLevelItem(0, item);
    }
    for (const TableInfo& table : session_.tables()) {
        QTreeWidgetItem* item = itemOf(table.key);
        if (!item) {
            item = new QTreeWidgetItem(this);
            item->setData(0, tableRole, table.key);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable |
                           (table.hasGeometry ? Qt::ItemIsUserCheckable : Qt::NoItemFlags));
            for (const TableInfo::Column& column : table.columns) {
                auto* child =
                    new QTreeWidgetItem(item, {QStringLiteral("%0: %1").arg(column.name, column.type)});
                child->setData(0, tableRole, column.name);
                child->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
                child->setForeground(0, palette().color(QPalette::PlaceholderText));
            }
            if (table.hasGeometry) {
                item->setIcon(0, swatch(book_.colour(table.key)));
            }
        }
        item->setText(0, table.name);
        if (table.hasGeometry) {
            item->setCheckState(0, book_.isVisible(table.key) ? Qt::Checked : Qt::Unchecked);
        }
        const QString count = table.featureCount
                                  ? tr("объектов: %0").arg(QLocale().toString(qlonglong{*table.featureCount}))
                                  : QString();
        item->setToolTip(0, QStringList{table.name, count, table.coordSystem}.join(QLatin1Char('\n')));
    }
}

void LayerTree::takeChange(QTreeWidgetItem* item) {
    if (isFollowing_ || item->parent()) {
        return;
    }
    const quint64 key = item->data(0, tableRole).toULongLong();
    if (const bool isVisible = item->checkState(0) == Qt::Checked;
        (item->flags() & Qt::ItemIsUserCheckable) && isVisible != book_.isVisible(key)) {
        book_.setVisible(key, isVisible);
    }
    if (const TableInfo* table = session_.table(key); table && table->name != item->text(0)) {
        session_.rename(key, item->text(0).trimmed());
    }
}

void LayerTree::renameCurrent() {
    if (const auto table = currentTable(); table && *table != 0) {
        editItem(itemOf(*table));
    }
}

void LayerTree::closeCurrent() {
    if (const auto table = currentTable(); table && *table != 0) {
        session_.close(*table);
    }
}

void LayerTree::labelCurrent() {
    const auto table = currentTable();
    if (!table) {
        return;
    }
    bool isAccepted = false;
    QString expression;
    if (*table == 0) {
        QStringList titles{QString()};
        titles += book_.result().rows ? book_.result().rows->columns() : QStringList();
        expression =
            QInputDialog::getItem(this, tr("Подписи"), tr("Столбец, которым подписаны строки:"), titles,
                                  std::max(0, titles.indexOf(book_.label(0))), false, &isAccepted);
    } else {
        expression = QInputDialog::getText(
            this, tr("Подписи"), tr("Выражение, например: name & ' ' & Round(population / 1000) & ' тыс.'"),
            QLineEdit::Normal, book_.label(*table), &isAccepted);
    }
    if (isAccepted) {
        book_.setLabel(*table, expression.trimmed());
    }
}

void LayerTree::contextMenuEvent(QContextMenuEvent* event) {
    setCurrentItem(itemAt(event->pos()));
    const auto table = currentTable();
    if (!table) {
        return;
    }
    QMenu menu;
    menu.addAction(tr("Показать на карте"), this, [this, table] { Q_EMIT showRequested(*table); });
    menu.addAction(tr("Подписи…"), this, &LayerTree::labelCurrent);
    if (const TableInfo* info = session_.table(*table)) {
        menu.addAction(tr("Запросить все строки"), this,
                       [this, name = info->name] { Q_EMIT queryRequested(name); });
        menu.addSeparator();
        menu.addAction(tr("Переименовать"), this, &LayerTree::renameCurrent);
        menu.addAction(tr("Закрыть"), this, &LayerTree::closeCurrent);
    }
    menu.exec(event->globalPos());
}

void LayerTree::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete) {
        closeCurrent();
    } else {
        QTreeWidget::keyPressEvent(event);
    }
}

} // namespace orvane::desk

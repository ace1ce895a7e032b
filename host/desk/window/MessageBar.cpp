#include "host/desk/window/MessageBar.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace orvane::desk {

MessageBar::MessageBar(QWidget* parent) : QFrame(parent), list_(new QListWidget) {
    setStyleSheet(
        QStringLiteral("orvane--desk--MessageBar { background: #FFF4D6; border-bottom: 1px solid #E0C36A; }"
                       "QListWidget { background: transparent; border: none; color: #4A3B00; }"
                       "QToolButton { border: none; }"));
    list_->setWordWrap(true);
    list_->setSelectionMode(QAbstractItemView::NoSelection);
    list_->setFocusPolicy(Qt::NoFocus);
    auto* close = new QToolButton;
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Скрыть сообщения"));
    connect(close, &QToolButton::clicked, this, &MessageBar::clear);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 4, 4);
    layout->addWidget(list_);
    layout->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void MessageBar::add(const QString& text) {
    if (text.isEmpty() || messages().contains(text)) {
        return;
    }
    auto* item = new QListWidgetItem(style()->standardIcon(QStyle::SP_MessageBoxWarning), text, list_);
    list_->scrollToItem(item);
    fit();
    show();
}

QStringList MessageBar::messages() const {
    QStringList texts;
    for (int i = 0; i < list_->count(); ++i) {
        texts += list_->item(i)->text();
    }
    return texts;
}

void MessageBar::clear() {
    list_->clear();
    hide();
}

void MessageBar::fit() {
    constexpr int mostRows = 4; // the others are scrolled to
    const int rowHeight = std::max(list_->sizeHintForRow(0), fontMetrics().height() + 4);
    list_->setFixedHeight(rowHeight * std::min(list_->count(), mostRows) + 2);
}

} // namespace orvane::desk

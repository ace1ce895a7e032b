#include "platform/dp/DataCatalogWithSelection.h"

#include <utility>

namespace orvane::dp {

DataCatalogWithSelection::DataCatalogWithSelection(QObject* parent) : DataCatalog(parent) {
    connect(this, &DataCatalog::dataObjectRemoved, this, [this](const QString& name) {
        if (selection_.dataObject() && selection_.dataObject()->name() == name) {
            setSelection({});
        }
    });
}

QString DataCatalogWithSelection::selectionTableName() {
    return QStringLiteral("Selection");
}

void DataCatalogWithSelection::setSelection(Selection selection) {
    selection_ = std::move(selection);
    Q_EMIT selectionChanged();
}

} // namespace orvane::dp

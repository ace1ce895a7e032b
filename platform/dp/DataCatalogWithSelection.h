#pragma once

#include "platform/dp/DataCatalog.h"
#include "platform/dp/Selection.h"

namespace orvane::dp {

/// A catalogue in which the user selects features of one object at a time. Closing that object ends the
/// selection.
class ORVANE_PLATFORM_EXPORT DataCatalogWithSelection : public DataCatalog {
    Q_OBJECT
public:
    explicit DataCatalogWithSelection(QObject* parent = nullptr);

    /// The name under which queries reach the selection as a table: "Selection".
    static QString selectionTableName();

    const Selection& selection() const { return selection_; }
    void setSelection(Selection selection);

Q_SIGNALS:
    void selectionChanged();

private:
    Selection selection_;
};

} // namespace orvane::dp

#pragma once

#include "platform/dp/DataCatalogWithSelection.h"
#include <host/adaptor/Export.h>

#include <stdexcept>
#include <string>

namespace orvane {
class Engine;
}

namespace orvane::adaptor {

/// A query selects nothing because it is faulty, or not of the right form. The text is UTF-8 for the user.
class ORVANE_ADAPTOR_EXPORT SelectionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The features that a query of the dialect finds: those rows of the first table of its From that have part
/// in the result, each once, in the order of the result. The result columns do not matter. The query is one
/// Select without Group By and without functions over many rows; it may use the current selection. Give the
/// result to DataCatalogWithSelection::setSelection. Throws SelectionError. The engine's thread.
ORVANE_ADAPTOR_EXPORT dp::Selection selectionOf(const std::string& query, Engine& engine,
                                                const dp::DataCatalogWithSelection& catalog);

} // namespace orvane::adaptor

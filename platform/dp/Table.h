#pragma once

#include "platform/dp/Cursor.h"
#include "platform/dp/DataObject.h"
#include "platform/dp/Feature.h"
#include "platform/dp/ScanRequest.h"
#include "platform/dp/TableSchema.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

namespace orvane::dp {

/// Raised by edits that a table does not allow or cannot carry out; the text is UTF-8 for the user.
class ORVANE_PLATFORM_EXPORT EditError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A table of features. Used from one thread at a time, except where a cursor says otherwise.
class ORVANE_PLATFORM_EXPORT Table : public DataObject {
    Q_OBJECT
public:
    using DataObject::DataObject;

    virtual std::shared_ptr<const TableSchema> schema() const = 0;

    /// Starts a scan. Throws std::runtime_error when the source cannot be read.
    virtual std::unique_ptr<Cursor> openCursor(const ScanRequest& request) = 0;

    /// Reads about so many rows, all of a smaller table, at a fraction of what a scan costs: each row is as
    /// likely as the other where the format finds rows fast, else the first ones come. The same ones as long
    /// as the table does not change. The geometry may be among the attributes. Null when the provider has no
    /// such way. Throws as openCursor().
    virtual std::unique_ptr<SampleCursor> openSample(const std::vector<int>& attributes, std::int64_t rows);

    /// Number of features where the provider knows it without a scan.
    virtual std::optional<std::int64_t> featureCount() const { return std::nullopt; }

    /// A number that changes with every change of the rows, whoever made it, as far as the provider can see.
    virtual std::uint64_t revision() const { return 0; }

    /// Whether openCursor makes use of a term of this kind, so that offering it saves rows.
    virtual bool usesTerm(int attribute, Comparison comparison, TextCollation collation) const;
    /// Whether an index of the source's own finds the rows of a term of this kind.
    virtual bool looksUp(int attribute, Comparison comparison, TextCollation collation) const;
    /// Whether openCursor makes use of a window: the table has a spatial index.
    virtual bool usesWindow() const { return false; }

    /// The feature with that identifier, null when there is none. The base reads it through a cursor.
    virtual FeaturePtr feature(const FeatureId& id);

    /// The coordinate system of the geometry attribute; null when there is neither.
    std::shared_ptr<cs::CoordSystem> coordSystem() const;

    virtual bool isReadOnly() const { return true; }
    /// A group of edits: begun, changed, prepared and committed, or rolled back at any moment. The table's
    /// own cursors that are opened during the group show its edits; after a commit everybody's do. Throws
    /// EditError, as the others but the last two.
    virtual void beginEdits();
    /// Everything of a commit that can fail. commitEdits() or rollbackEdits() comes next.
    virtual void prepareEdits();
    virtual void commitEdits() noexcept;
    virtual void rollbackEdits() noexcept;
    /// Savepoints within the group bear numbers; a higher one is within a lower one. One that is released
    /// ends, with those within it. Rolling back to one takes back the edits since and leaves it standing; to
    /// one that was not set in this group, takes back all of the group. A table that has no savepoints throws
    /// then, so that the whole transaction is rolled back.
    virtual void setSavepoint(int number);
    virtual void releaseSavepoint(int number);
    virtual void rollbackToSavepoint(int number);
    /// Adds a feature and returns the identifier it got. Throws EditError, as the three below.
    virtual FeatureId insertFeature(const Feature& feature);
    virtual void updateFeature(const Feature& feature);
    /// Gives the feature with the identifier of `changes` the values at these positions; the others stay. The
    /// base reads the feature and passes the whole to updateFeature().
    virtual void updateAttributes(const Feature& changes, const std::vector<int>& positions);
    virtual void deleteFeature(const FeatureId& id);
};

} // namespace orvane::dp

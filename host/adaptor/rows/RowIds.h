#pragma once

#include "platform/dp/Cursor.h"
#include "platform/utils/LargePages.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvane::adaptor {

/// The identifiers of rows by their number: as integers for as long as all are such.
class RowIds {
public:
    void reserve(std::size_t rows) { numbers_.reserve(rows); }
    /// The identifier of a cursor's row.
    void add(dp::Cursor& row) {
        if (const auto number = row.integerId(); number && others_.empty()) {
            numbers_.push_back(*number);
            return;
        }
        dp::FeatureId id = row.featureId();
        const QVariant& value = id.value();
        if (others_.empty() && value.userType() == QMetaType::LongLong) {
            numbers_.push_back(*static_cast<const qint64*>(value.constData()));
            return;
        }
        while (others_.size() < numbers_.size()) {
            others_.push_back(ofNumber(numbers_[others_.size()]));
        }
        numbers_.clear();
        others_.push_back(std::move(id));
    }
    std::size_t size() const { return others_.empty() ? numbers_.size() : others_.size(); }
    std::size_t bytes() const {
        return numbers_.size() * sizeof(std::int64_t) + others_.size() * sizeof(dp::FeatureId);
    }
    dp::FeatureId at(std::size_t row) const {
        return others_.empty() ? ofNumber(numbers_[row]) : others_[row];
    }

private:
    static dp::FeatureId ofNumber(std::int64_t number) {
        return dp::FeatureId(QVariant(static_cast<qlonglong>(number)));
    }

    std::vector<std::int64_t, utils::LargePages<std::int64_t>> numbers_; ///< empty once there are others
    std::vector<dp::FeatureId> others_;
};

} // namespace orvane::adaptor

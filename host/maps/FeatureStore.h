#pragma once

#include "host/maps/classes/ValueSummary.h"
#include "host/maps/shapes/FlatShape.h"

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

namespace orvane::maps {

/// Features in the order in which they came, until it is known where and how they are drawn: shapes with the
/// precision of floats, values and labels. What takes more than some memory goes to a nameless file. Throws
/// std::runtime_error when that cannot be written or read.
class FeatureStore {
public:
    void add(const FlatShape& shape, const Value& value, std::string_view label);
    /// The shape may be changed; value and label last as long as the call. False ends the visit.
    using Visitor = std::function<bool(FlatShape& shape, const Value& value, std::string_view label)>;
    void forEach(const Visitor& visitor);
    std::uint64_t size() const { return size_; }

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void flush();
    /// Reads the features of a block; false when the visitor wants no more.
    bool visit(const std::string& block, FlatShape& shape, const Visitor& visitor) const;

    std::vector<std::string> blocks_; ///< full ones in memory
    std::string current_;
    std::unique_ptr<std::FILE, FileCloser> file_; ///< blocks with their sizes, after the ones in memory
    std::uint64_t size_ = 0;
};

} // namespace orvane::maps

#include "host/providers/conditions/SqlFilter.h"

#include "host/providers/conditions/SqlNumber.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/GdalHandles.h"
#include "platform/utils/Quoting.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace orvane::files {

namespace {

/// Longer lists are replaced by the range they span; the cursor tests the values anyway.
constexpr std::size_t mostRanges = 64;

/// Up to here all integers are reals, and reals have fractions.
constexpr std::int64_t mostFractional = std::int64_t{1} << 52;

/// The end of a range for what is stored with a fraction in a column of integers and read without it: 5.7
/// counts as 5, -0.3 as 0.
std::string withFractions(std::int64_t end, bool isLow) {
    if (isLow && end == std::numeric_limits<std::int64_t>::min()) {
        return sqlNumber(-std::numeric_limits<double>::infinity()); // read as the least integer
    }
    const bool isInwards = isLow ? end > 0 : end < 0;
    if (isInwards || end <= -mostFractional || end >= mostFractional) {
        return sqlNumber(end);
    }
    const double next = static_cast<double>(end) + (isLow ? -1.0 : 1.0);
    return sqlNumber(std::nextafter(next, 0.0));
}

/// One comparison where SQLite computes the column once: it counts where every row is looked at.
std::string sqlRange(const std::string& name, dp::Range<std::int64_t> range) {
    return name + " BETWEEN " + withFractions(range.low, true) + " AND " + withFractions(range.high, false);
}

/// Stored integers beyond 2^53 are read as the nearest real: the range is widened by one real at each end.
std::string sqlRange(const std::string& name, dp::Range<double> range) {
    const double infinite = std::numeric_limits<double>::infinity();
    return name + " BETWEEN " + sqlNumber(std::nextafter(range.low, -infinite)) + " AND " +
           sqlNumber(std::nextafter(range.high, infinite));
}

/// Texts and blobs compare greater than every number.
constexpr const char* aboveIntegers = "9223372036854775807";
constexpr const char* aboveReals = "9e999";

template<class Number>
std::string sqlRanges(const std::string& name, const std::vector<dp::Range<Number>>& ranges,
                      const char* aboveAll) {
    if (ranges.empty()) {
        return "0";
    }
    std::string text = name + " > " + aboveAll;
    if (ranges.size() > mostRanges) {
        return text + " OR (" + sqlRange(name, dp::Range<Number>{ranges.front().low, ranges.back().high}) +
               ")";
    }
    for (const auto& range : ranges) {
        text += " OR (" + sqlRange(name, range) + ")";
    }
    return text;
}

/// Identifiers are integers whatever is stored elsewhere.
std::string sqlIdentifiers(const std::string& name, const std::vector<dp::Range<std::int64_t>>& ranges) {
    std::string list;
    std::string text;
    for (const auto& range : ranges) {
        if (range.low == range.high) {
            list += (list.empty() ? "" : ", ") + sqlNumber(range.low);
        } else {
            text += name + " BETWEEN " + sqlNumber(range.low) + " AND " + sqlNumber(range.high) + " OR ";
        }
    }
    return text + (list.empty() ? "0" : name + " IN (" + list + ")");
}

/// Nothing where the file may compare otherwise: by another order, or unequal texts as equal, as a column
/// that ignores letter case does. Values of other types come before and after the texts.
std::optional<std::string> sqlTexts(const std::string& name, const dp::Condition& condition) {
    if (condition.textTest() != dp::Condition::TextTest::Listed ||
        condition.collation() != dp::TextCollation::Binary) {
        return std::nullopt;
    }
    std::string list;
    for (const auto& text : condition.texts()) {
        if (text.find('\0') != std::string::npos) {
            return std::nullopt;
        }
        list += (list.empty() ? "" : ", ") + utils::sqlText(text);
    }
    return name + " IN (" + list + ") OR " + name + " < '' OR " + name + " >= x''";
}

/// The first column of a query's result.
QSet<QByteArray> queryColumn(GDALDatasetH dataset, const std::string& sql) {
    const GdalErrorScope errors;
    QSet<QByteArray> values;
    const OGRLayerH result = GDALDatasetExecuteSQL(dataset, sql.c_str(), nullptr, nullptr);
    if (!result) {
        return values;
    }
    while (const FeatureHandle feature{OGR_L_GetNextFeature(result)}) {
        values.insert(QByteArray(OGR_F_GetFieldAsString(feature.get(), 0)));
    }
    GDALDatasetReleaseResultSet(dataset, result);
    return values;
}

} // namespace

SqlTraits sqlTraitsOf(GDALDatasetH dataset, OGRLayerH layer, const LayerSchema& schema) {
    SqlTraits traits;
    traits.isIndexed.resize(schema.columns.size());
    const QByteArray driver(GDALGetDriverShortName(GDALGetDatasetDriver(dataset)));
    const QByteArray identifier(OGR_L_GetFIDColumn(layer));
    traits.evaluatesSql = !identifier.isEmpty() && (driver == "GPKG" || driver == "SQLite");
    if (!traits.evaluatesSql) {
        return traits;
    }
    traits.identifier = utils::sqlIdentifier(identifier.toStdString());

    const std::string table = OGR_L_GetName(layer);
    const auto indexed = queryColumn(
        dataset,
        "SELECT c.name FROM pragma_index_list(" + utils::sqlText(table) +
            ") AS i, pragma_index_xinfo(i.name) AS c WHERE c.seqno = 0 AND NOT i.partial AND (c.coll = "
            "'BINARY' OR c.name IN (SELECT name FROM pragma_table_info(" +
            utils::sqlText(table) + ") WHERE type NOT LIKE '%TEXT%' AND type NOT LIKE '%CHAR%'))");
    for (std::size_t i = 0; i < schema.columns.size(); ++i) {
        const auto& column = schema.columns[i];
        traits.isIndexed[i] = column.source == LayerColumn::Source::FeatureId ||
                              indexed.contains(QByteArray::fromStdString(column.name));
    }
    return traits;
}

std::optional<std::string> sqlOfCondition(const LayerColumn& column, ValueClass valueClass,
                                          const dp::Condition& condition) {
    // Types that the driver converts: what SQLite compares is not what the cursor delivers.
    if (!column.isArrowExact) {
        return std::nullopt;
    }
    const auto name = utils::sqlIdentifier(column.name);
    if (condition.isNullTest()) {
        return name + (condition.acceptsNull() ? " IS NULL" : " IS NOT NULL");
    }
    if (condition.acceptsNothing()) {
        return "0";
    }
    std::optional<std::string> text;
    if (column.source == LayerColumn::Source::FeatureId) {
        text = sqlIdentifiers(name, condition.integers());
    } else if (valueClass == ValueClass::Integer) {
        text = sqlRanges(name, condition.integers(), aboveIntegers);
    } else if (valueClass == ValueClass::Real) {
        text = sqlRanges(name, condition.reals(), aboveReals);
    } else if (valueClass == ValueClass::Text) {
        text = sqlTexts(name, condition);
    }
    if (text && condition.acceptsNull()) {
        *text += " OR " + name + " IS NULL";
    }
    return text ? std::optional("(" + *text + ")") : std::nullopt;
}

} // namespace orvane::files

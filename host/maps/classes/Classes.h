#pragma once

#include "host/maps/classes/Breaks.h"
#include "host/maps/classes/ValueSummary.h"

#include <QColor>
#include <QString>

#include <unordered_map>
#include <vector>

namespace orvane::maps {

struct ClassSettings {
    ClassMethod method = ClassMethod::Quantiles;
    int count = 5;          ///< of numbers; as many as that where the values allow for it
    bool isForAreas = true; ///< of lines and points the lightest colours would not be seen
};

/// Which colour a value has: classes of numbers, or categories of texts, the most frequent ones. Immutable;
/// any thread may read it.
class ORVANE_MAPS_EXPORT Classes {
public:
    struct Class {
        QString title; ///< for the legend
        QColor colour;
        double scale = 1; ///< of symbols: larger for larger numbers
    };

    Classes() = default;
    /// Texts in the locale of the process. No classes for no values.
    static Classes of(const ValueSummary& values, const ClassSettings& settings);

    bool isEmpty() const { return classes_.empty(); }
    /// In the order of the legend. Behind the classes of values come those for other texts and for no value,
    /// as far as the summary had any.
    const std::vector<Class>& classes() const { return classes_; }
    /// Index into classes(); -1 for a value that has none.
    int classOf(const Value& value) const;

private:
    void makeNumberClasses(const ValueSummary& values, const ClassSettings& settings);
    void makeCategories(const ValueSummary& values);

    std::vector<Class> classes_;
    std::vector<double> breaks_; ///< of numbers
    std::unordered_map<std::string, int> categories_;
    bool isNumeric_ = false;
    int others_ = -1;
    int none_ = -1;
};

} // namespace orvane::maps

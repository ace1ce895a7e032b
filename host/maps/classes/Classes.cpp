#include "host/maps/classes/Classes.h"

#include "host/maps/classes/Palettes.h"
#include "platform/utils/VisibleText.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace orvane::maps {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::maps)
};

/// As many digits as the number has, up to six that matter, and never an exponent.
QString numberText(double number) {
    const double size = std::abs(number);
    const int digits = size == 0 ? 0 : std::max(0, 5 - static_cast<int>(std::floor(std::log10(size))));
    QString text = QLocale().toString(number, 'f', std::min(digits, 12));
    if (digits > 0) {
        while (text.endsWith(QLocale().zeroDigit())) {
            text.chop(1);
        }
        if (text.endsWith(QLocale().decimalPoint())) {
            text.chop(1);
        }
    }
    return text;
}

} // namespace

Classes Classes::of(const ValueSummary& values, const ClassSettings& settings) {
    Classes made;
    if (values.hasTexts()) {
        made.makeCategories(values);
    } else if (!values.isEmpty()) {
        made.makeNumberClasses(values, settings);
    }
    if (values.hasNone() && !made.isEmpty()) {
        made.none_ = static_cast<int>(made.classes_.size());
        made.classes_.push_back({Texts::tr("нет данных"), noValueColour(), 0.6});
    }
    return made;
}

void Classes::makeNumberClasses(const ValueSummary& values, const ClassSettings& settings) {
    isNumeric_ = true;
    constexpr int mostClasses = 9;
    const int count = std::clamp(settings.count, 1, mostClasses);
    breaks_ = classBreaks(values.sortedSample(), settings.method, count);
    const bool isDiverging = values.least() < 0 && values.greatest() > 0;
    if (isDiverging && !breaks_.empty()) { // the break that is nearest to zero is zero
        *std::min_element(breaks_.begin(), breaks_.end(),
                          [](double a, double b) { return std::abs(a) < std::abs(b); }) = 0;
    }
    const int numClasses = static_cast<int>(breaks_.size()) + 1;
    const auto numBelow =
        static_cast<int>(std::upper_bound(breaks_.begin(), breaks_.end(), 0.0) - breaks_.begin());
    const auto colours = isDiverging && !breaks_.empty() ? divergingColours(numBelow, numClasses - numBelow)
                                                         : sequentialColours(numClasses, settings.isForAreas);
    for (int i = 0; i < numClasses; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const bool isFirst = i == 0;
        const bool isLast = i + 1 == numClasses;
        const QString title =
            isFirst && isLast ? values.least() == values.greatest()
                                    ? numberText(values.least())
                                    : QStringLiteral("%0 – %1").arg(numberText(values.least()),
                                                                    numberText(values.greatest()))
            : isFirst ? QStringLiteral("< %0").arg(numberText(breaks_.front()))
            : isLast          ? QStringLiteral("≥ %0").arg(numberText(breaks_.back()))
                     : QStringLiteral("%0 – %1").arg(numberText(breaks_[at - 1]), numberText(breaks_[at]));
        const double scale = numClasses < 2 ? 1 : 0.6 + 1.4 * i / (numClasses - 1);
        classes_.push_back({title, colours[at], scale});
    }
}

void Classes::makeCategories(const ValueSummary& values) {
    std::vector<std::pair<std::string, std::uint64_t>> texts(values.texts().begin(), values.texts().end());
    std::sort(texts.begin(), texts.end(), [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    const auto colours = categoryColours(static_cast<int>(std::min<std::size_t>(texts.size(), 1000)));
    const bool hasOthers = texts.size() > colours.size() || values.numbers() != 0;
    texts.resize(colours.size());
    std::sort(texts.begin(), texts.end()); // so that colours stay when counts change a little
    constexpr int longestTitle = 40;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        QString title = QString::fromStdString(utils::visibleText(texts[i].first));
        if (title.size() > longestTitle) {
            title = title.left(longestTitle - 1) + QChar(0x2026);
        }
        categories_.emplace(texts[i].first, static_cast<int>(i));
        classes_.push_back({title, colours[i], 1});
    }
    if (hasOthers) {
        others_ = static_cast<int>(classes_.size());
        classes_.push_back({Texts::tr("прочие"), otherValueColour(), 1});
    }
}

int Classes::classOf(const Value& value) const {
    switch (value.kind) {
    case Value::Kind::None: return none_;
    case Value::Kind::Number:
        if (!isNumeric_) {
            return others_;
        }
        return std::isfinite(value.number)
                   ? static_cast<int>(std::upper_bound(breaks_.begin(), breaks_.end(), value.number) -
                                      breaks_.begin())
                   : none_;
    case Value::Kind::Text: break;
    }
    if (const auto found = categories_.find(std::string(value.text)); found != categories_.end()) {
        return found->second;
    }
    return others_;
}

} // namespace orvane::maps

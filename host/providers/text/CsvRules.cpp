#include "host/providers/text/CsvRules.h"

#include "host/providers/datasets/GdalHandles.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace orvane::files {

namespace {

struct CoordinateNames {
    const char* x;
    const char* y;
    bool isGeographic;
};

/// In the order of preference.
constexpr CoordinateNames COORDINATES[] = {
    {"lon", "lat", true},           {"long", "lat", true},
    {"lng", "lat", true},           {"longitude", "latitude", true},
    {"долгота", "широта", true},    {"x", "y", false},
    {"easting", "northing", false}, {"coord_x", "coord_y", false},
    {"x_coord", "y_coord", false},  {"point_x", "point_y", false},
};

/// Bytes of a file.
constexpr std::size_t typesFoundIn = 10'000'000;

constexpr const char* GEOMETRY_NAMES = "wkt,geom,geometry,the_geom,wkt_geom";

/// The layer's own spelling of a column name; empty when there is none.
QByteArray columnNamed(OGRLayerH layer, const char* name) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    const auto wanted = QString::fromUtf8(name);
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        const char* spelling = OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, i));
        if (QString::fromUtf8(spelling).trimmed().compare(wanted, Qt::CaseInsensitive) == 0)
            return spelling;
    }
    return {};
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool isMissing(std::string_view text) {
    static constexpr const char* MARKS[] = {"na", "n/a", "#n/a", "null", "nan", "-", ".."};
    return text.empty() || std::any_of(std::begin(MARKS), std::end(MARKS), [text](const char* mark) {
               return std::string_view(mark).size() == text.size() && EQUALN(mark, text.data(), text.size());
           });
}

/// Whether a number is written as a code: with a needless zero at its front, or as a whole number that is too
/// long for one. As a number it would lose digits.
bool isCode(std::string_view number) {
    const auto digits = number.substr(number.front() == '-' ? 1 : 0);
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    if (digits.size() > 1 && digits[0] == '0')
        return isDigit(digits[1]);
    return std::all_of(digits.begin(), digits.end(), isDigit) && !integerInText(number);
}

/// What the values of a text column have been so far.
struct Candidate {
    int field;
    bool isInteger = true;
    bool hasNumber = false;
};

/// False when the value shows that the column is one of texts.
bool stillNumbers(Candidate& candidate, std::string_view value) {
    const auto text = trimmed(value);
    if (isMissing(text))
        return true;
    if (!realInText(text) || isCode(text))
        return false;
    candidate.hasNumber = true;
    candidate.isInteger = candidate.isInteger && integerInText(text).has_value();
    return true;
}

template<class Number>
std::optional<Number> numberInText(std::string_view value) {
    const auto text = trimmed(value);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::optional<std::int64_t> integerInText(std::string_view text) {
    return numberInText<std::int64_t>(text);
}

std::optional<double> realInText(std::string_view text) {
    const auto number = numberInText<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

CsvRules csvRulesOf(OGRLayerH layer) {
    CsvRules rules;
    rules.openOptions = {"AUTODETECT_TYPE=YES",
                         "AUTODETECT_SIZE_LIMIT=" + QByteArray::number(qulonglong{typesFoundIn}),
                         "KEEP_GEOM_COLUMNS=YES", QByteArray("GEOM_POSSIBLE_NAMES=") + GEOMETRY_NAMES};
    const auto geometryNames = QByteArray(GEOMETRY_NAMES).split(',');
    const bool hasGeometry =
        std::any_of(geometryNames.begin(), geometryNames.end(),
                    [&](const QByteArray& name) { return !columnNamed(layer, name.constData()).isEmpty(); });
    for (const auto& names : COORDINATES) {
        const auto x = columnNamed(layer, names.x);
        const auto y = columnNamed(layer, names.y);
        if (hasGeometry || x.isEmpty() || y.isEmpty())
            continue;
        rules.openOptions.append("X_POSSIBLE_NAMES=" + x);
        rules.openOptions.append("Y_POSSIBLE_NAMES=" + y);
        rules.isGeographic = names.isGeographic;
        break;
    }
    return rules;
}

QByteArray typesKeepingCodes(OGRLayerH plain, OGRLayerH typed) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(typed);
    std::vector<int> numbers;
    QList<QByteArray> types;
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        const OGRFieldDefnH field = OGR_FD_GetFieldDefn(definition, i);
        const OGRFieldType type = OGR_Fld_GetType(field);
        types.append(OGR_Fld_GetSubType(field) == OFSTBoolean ? "Integer(Boolean)"
                                                              : OGR_GetFieldTypeName(type));
        if (type == OFTInteger || type == OFTInteger64 || type == OFTReal)
            numbers.push_back(i);
    }
    const std::size_t numberCount = numbers.size();
    std::size_t read = 0;
    OGR_L_ResetReading(plain);
    while (!numbers.empty() && read < typesFoundIn) {
        const FeatureHandle feature(OGR_L_GetNextFeature(plain));
        if (!feature)
            break;
        const auto holdsCodes = [&](int field) {
            const auto text = trimmed(OGR_F_GetFieldAsString(feature.get(), field));
            read += text.size() + 1;
            const bool found = !text.empty() && isCode(text);
            if (found)
                types[field] = "String";
            return found;
        };
        numbers.erase(std::remove_if(numbers.begin(), numbers.end(), holdsCodes), numbers.end());
    }
    OGR_L_ResetReading(plain);
    return numbers.size() < numberCount ? types.join(',') : QByteArray();
}

FieldReadings numbersWithGaps(OGRLayerH layer) {
    const OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    std::vector<Candidate> candidates;
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        if (OGR_Fld_GetType(OGR_FD_GetFieldDefn(definition, i)) == OFTString)
            candidates.push_back({i});
    }
    OGR_L_ResetReading(layer);
    while (!candidates.empty()) {
        const FeatureHandle feature(OGR_L_GetNextFeature(layer));
        if (!feature)
            break;
        const auto isText = [&](Candidate& candidate) {
            return OGR_F_IsFieldSetAndNotNull(feature.get(), candidate.field) &&
                   !stillNumbers(candidate, OGR_F_GetFieldAsString(feature.get(), candidate.field));
        };
        candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isText), candidates.end());
    }
    OGR_L_ResetReading(layer);
    FieldReadings readings;
    for (const auto& candidate : candidates) {
        if (candidate.hasNumber)
            readings[candidate.field] =
                candidate.isInteger ? LayerColumn::Reading::IntegerText : LayerColumn::Reading::RealText;
    }
    return readings;
}

} // namespace orvane::files

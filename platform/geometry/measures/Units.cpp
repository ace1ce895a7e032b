#include "platform/geometry/measures/Units.h"

#include "platform/geometry/shapes/Failure.h"

#include <QHash>

#include <algorithm>
#include <optional>
#include <utility>

namespace orvane::geometry {

namespace {

/// Names parted by "|", English ones first. Lists show the first of each language.
struct NamedUnit {
    const char16_t* names;
    double factor;
    bool isAngular = false;
};

// Factors: the international yard and pound agreement of 1959 (yard 0.9144 m exactly), the U.S. survey foot
// of 1893 (1200/3937 m), the international nautical mile of 1929 (1852 m).
constexpr NamedUnit lengthUnits[] = {
    {u"m|metre|metres|meter|meters|м|метр|метра|метры|метров", 1.0},
    {u"km|kilometre|kilometres|kilometer|kilometers|км|километр|километра|километры|километров", 1000.0},
    {u"cm|centimetre|centimetres|centimeter|centimeters|см|сантиметр|сантиметра|сантиметры|сантиметров",
     0.01},
    {u"mm|millimetre|millimetres|millimeter|millimeters|мм|миллиметр|миллиметра|миллиметры|миллиметров",
     0.001},
    {u"mi|mile|miles|миля|мили|миль", 1609.344},
    {u"nmi|nautical mi|nautical mile|nautical miles|морская миля|морской мили|морские мили|морских миль",
     1852.0},
    {u"ft|foot|feet|фут|фута|футы|футов", 0.3048},
    {u"survey ft|survey foot|survey feet|us survey ft|us survey foot|us survey feet|геодезический фут|"
     u"геодезического фута|геодезические футы|геодезических футов",
     1200.0 / 3937.0},
    {u"yd|yard|yards|ярд|ярда|ярды|ярдов", 0.9144},
    {u"in|inch|inches|дюйм|дюйма|дюймы|дюймов", 0.0254},
    {u"deg|degree|degrees|градус|градуса|градусы|градусов|°", 1.0, true},
};

// The international acre: 4840 square yards.
constexpr NamedUnit areaOnlyUnits[] = {
    {u"ha|hectare|hectares|га|гектар|гектара|гектары|гектаров", 10000.0},
    {u"acre|acres|акр|акра|акры|акров", 4046.8564224},
    {u"are|ares|ар|ара|ары|аров|сотка|сотки|соток", 100.0},
};

/// Before or behind a unit of length, longer ones first.
constexpr const char16_t* squareWords[] = {
    u"квадратных", u"квадратного", u"квадратный", u"квадратная", u"квадратной",
    u"квадратные", u"square",      u"sq",         u"кв",         u"2"};

using UnitTable = QHash<QString, Unit>;

QStringList namesOf(const NamedUnit& unit) {
    return QString::fromUtf16(unit.names).split(QLatin1Char('|'));
}

/// A name without what people write or leave out: blanks, full stops, the sign of a power, letter case.
QString bare(const QString& name) {
    QString text;
    text.reserve(name.size());
    for (const QChar letter : name) {
        if (letter == QChar(0x00B2)) {
            text += QLatin1Char('2');
        } else if (!letter.isSpace() && letter != QLatin1Char('.') && letter != QLatin1Char('^')) {
            text += letter.toLower();
        }
    }
    return text;
}

template<std::size_t count>
UnitTable tableOf(const NamedUnit (&units)[count]) {
    UnitTable table;
    for (const NamedUnit& unit : units) {
        for (const QString& name : namesOf(unit)) {
            table.insert(bare(name), {unit.factor, unit.isAngular});
        }
    }
    return table;
}

std::optional<Unit> findLength(const QString& bareName) {
    static const UnitTable table = tableOf(lengthUnits);
    const auto found = table.constFind(bareName);
    return found == table.constEnd() ? std::nullopt : std::optional(*found);
}

std::optional<Unit> findArea(const QString& bareName) {
    static const UnitTable table = tableOf(areaOnlyUnits);
    if (const auto found = table.constFind(bareName); found != table.constEnd()) {
        return *found;
    }
    for (const char16_t* text : squareWords) {
        const QString word = QString::fromUtf16(text);
        std::optional<Unit> side;
        if (bareName.endsWith(word)) {
            side = findLength(bareName.chopped(word.size()));
        }
        if (!side && bareName.startsWith(word) && word != QLatin1String("2")) {
            side = findLength(bareName.mid(word.size()));
        }
        if (side) {
            return Unit{side->factor * side->factor, side->isAngular};
        }
    }
    return std::nullopt;
}

/// The name of a unit in each language, with what stands before it there.
QStringList listedNames(const NamedUnit& unit, const QString& english = {}, const QString& russian = {}) {
    const QStringList names = namesOf(unit);
    const auto isRussian = [](const QString& name) {
        return name.front().script() == QChar::Script_Cyrillic;
    };
    return {english + names.first(), russian + *std::find_if(names.begin(), names.end(), isRussian)};
}

} // namespace

Unit lengthUnit(const QString& name) {
    thread_local std::pair<QString, std::optional<Unit>> last; // a statement asks for one again and again
    if (last.second && last.first == name) {
        return *last.second;
    }
    if (const auto unit = findLength(bare(name))) {
        last = {name, unit};
        return *unit;
    }
    throw failure(
        QT_TRANSLATE_NOOP("orvane::geometry", "Неизвестная единица длины «%0». Известные единицы: %1."), name,
        lengthUnitNames().join(QLatin1String(", ")));
}

Unit areaUnit(const QString& name) {
    if (const auto unit = findArea(bare(name))) {
        return *unit;
    }
    throw failure(
        QT_TRANSLATE_NOOP("orvane::geometry", "Неизвестная единица площади «%0». Известные единицы: %1."),
        name, areaUnitNames().join(QLatin1String(", ")));
}

QStringList lengthUnitNames() {
    QStringList names;
    for (const NamedUnit& unit : lengthUnits) {
        names += listedNames(unit);
    }
    return names;
}

QStringList areaUnitNames() {
    QStringList names;
    for (const NamedUnit& unit : lengthUnits) {
        names += listedNames(unit, QStringLiteral("sq "), QStringLiteral("кв. "));
    }
    for (const NamedUnit& unit : areaOnlyUnits) {
        names += listedNames(unit);
    }
    return names;
}

} // namespace orvane::geometry

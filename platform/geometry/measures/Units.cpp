#include "platform/geometry/measures/Units.h"

#include "platform/geometry/shapes/Failure.h"

#include <QHash>

#include <algorithm>

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

// Also with a full stop behind the short ones.
constexpr const char16_t* squarePrefixes[] = {u"sq",         u"sq.",         u"square",     u"кв",
                                              u"кв.",        u"квадратный",  u"квадратная", u"квадратные",
                                              u"квадратных", u"квадратного", u"квадратной"};

using UnitTable = QHash<QString, Unit>;

QStringList namesOf(const NamedUnit& unit) {
    return QString::fromUtf16(unit.names).split(QLatin1Char('|'));
}

UnitTable makeLengthTable() {
    UnitTable table;
    for (const NamedUnit& unit : lengthUnits) {
        for (const QString& name : namesOf(unit)) {
            table.insert(name, {unit.factor, unit.isAngular});
        }
    }
    return table;
}

UnitTable makeAreaTable() {
    UnitTable table;
    for (const NamedUnit& unit : lengthUnits) {
        const Unit square{unit.factor * unit.factor, unit.isAngular};
        for (const QString& name : namesOf(unit)) {
            for (const char16_t* prefix : squarePrefixes) {
                table.insert(QString::fromUtf16(prefix) + QLatin1Char(' ') + name, square);
            }
            table.insert(name + QLatin1Char('2'), square);
            table.insert(name + QChar(0x00B2), square);
        }
    }
    for (const NamedUnit& unit : areaOnlyUnits) {
        for (const QString& name : namesOf(unit)) {
            table.insert(name, {unit.factor, unit.isAngular});
        }
    }
    return table;
}

Unit find(const UnitTable& table, const QString& name, const char* unknown, QStringList (*known)()) {
    const auto found = table.constFind(name.simplified().toLower());
    if (found == table.constEnd()) {
        throw failure(unknown, name, known().join(QLatin1String(", ")));
    }
    return *found;
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
    static const UnitTable table = makeLengthTable();
    return find(
        table, name,
        QT_TRANSLATE_NOOP("orvane::geometry", "Неизвестная единица длины «%0». Известные единицы: %1."),
        lengthUnitNames);
}

Unit areaUnit(const QString& name) {
    static const UnitTable table = makeAreaTable();
    return find(
        table, name,
        QT_TRANSLATE_NOOP("orvane::geometry", "Неизвестная единица площади «%0». Известные единицы: %1."),
        areaUnitNames);
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

#include "platform/geometry/making/BufferOptions.h"

#include "platform/geometry/shapes/Failure.h"

#include <QStringList>

#include <cmath>
#include <initializer_list>
#include <utility>

namespace orvane::geometry {

namespace {

[[noreturn]] void rejectValue(const QString& option, const QString& value, const QString& expected) {
    throw failure(QT_TRANSLATE_NOOP("orvane::geometry", "Параметр «%0»: вместо «%1» нужно %2."), option,
                  value, expected);
}

template<typename Value>
Value chosen(const QString& option, const QString& text,
             std::initializer_list<std::pair<const char*, Value>> values) {
    QStringList names;
    for (const auto& [name, value] : values) {
        names += QLatin1String(name);
        if (text == names.back()) {
            return value;
        }
    }
    rejectValue(option, text, names.join(QLatin1String(", ")));
}

double numberOf(const QString& option, const QString& text, double least) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number) || number < least) {
        rejectValue(option, text, QStringLiteral(">= %1").arg(least));
    }
    return number;
}

void setOption(BufferOptions& options, const QString& name, const QString& value) {
    using Cap = BufferOptions::Cap;
    using Join = BufferOptions::Join;
    using Side = BufferOptions::Side;
    if (name == QLatin1String("quad_segs")) {
        options.quadrantSegments = quadrantSegments(numberOf(name, value, 1.0));
    } else if (name == QLatin1String("endcap")) {
        options.cap = chosen<Cap>(
            name, value,
            {{"round", Cap::Round}, {"flat", Cap::Flat}, {"square", Cap::Square}, {"butt", Cap::Flat}});
    } else if (name == QLatin1String("join")) {
        options.join = chosen<Join>(
            name, value,
            {{"round", Join::Round}, {"mitre", Join::Mitre}, {"bevel", Join::Bevel}, {"miter", Join::Mitre}});
    } else if (name == QLatin1String("mitre_limit") || name == QLatin1String("miter_limit")) {
        options.mitreLimit = numberOf(name, value, 1.0);
    } else if (name == QLatin1String("side")) {
        options.side =
            chosen<Side>(name, value, {{"both", Side::Both}, {"left", Side::Left}, {"right", Side::Right}});
    } else {
        throw failure(QT_TRANSLATE_NOOP("orvane::geometry",
                                        "Неизвестный параметр «%0». Известны: quad_segs, endcap, join, "
                                        "mitre_limit, side."),
                      name);
    }
}

} // namespace

int quadrantSegments(double count) {
    if (!(count >= 1.0 && count <= BufferOptions::mostQuadrantSegments)) {
        rejectValue(QStringLiteral("quad_segs"), QString::number(count),
                    QStringLiteral("1 ... %1").arg(BufferOptions::mostQuadrantSegments));
    }
    return static_cast<int>(count);
}

BufferOptions bufferOptions(const QString& text) {
    BufferOptions options;
    const QStringList words = text.toLower().simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        setOption(options, word.section(QLatin1Char('='), 0, 0), word.section(QLatin1Char('='), 1));
    }
    return options;
}

} // namespace orvane::geometry

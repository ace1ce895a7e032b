#include "host/shell/session/MapArguments.h"

#include "host/shell/messages/Shell.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace orvane::shell {

namespace {

constexpr const char* endings[] = {".png", ".svg", ".pdf"}; // in the order of PictureFormat

constexpr int leastSide = 16;
constexpr int greatestSide = 20000;
constexpr qint64 mostPixels = 100'000'000;

void readSize(const std::string& text, MapOptions& options) {
    static const QRegularExpression form(QStringLiteral("^(\\d{1,6})[xX×](\\d{1,6})$"));
    const QString size = QString::fromStdString(text);
    const auto match = form.match(size);
    const int width = match.captured(1).toInt();
    const int height = match.captured(2).toInt();
    const bool isPossible = std::min(width, height) >= leastSide && std::max(width, height) <= greatestSide &&
                            qint64{width} * height <= mostPixels;
    if (!match.hasMatch() || !isPossible) {
        throw UsageError(
            Shell::tr("--map-size: ожидается ШИРИНАxВЫСОТА от %0 до %1, не больше %2 млн точек, а не «%3»")
                .arg(QString::number(leastSide), QString::number(greatestSide),
                     QString::number(mostPixels / 1'000'000), size));
    }
    options.width = width;
    options.height = height;
}

void readSystem(const std::string& text, MapOptions& options) {
    const QString system = QString::fromStdString(text);
    options.system = cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(system);
    if (!options.system) {
        throw UsageError(Shell::tr("--map-crs: неизвестная система координат «%0»; ожидается epsg:КОД, "
                                   "proj:+proj=... или wkt:...")
                             .arg(system));
    }
}

void readClasses(const std::string& text, MapOptions& options) {
    const QString classes = QString::fromStdString(text);
    const QString method = classes.section(QLatin1Char(':'), 0, 0);
    const QString count = classes.section(QLatin1Char(':'), 1);
    constexpr int mostClasses = 9;
    bool isNumber = true;
    options.classes = count.isEmpty() ? options.classes : count.toInt(&isNumber);
    bool isKnown = true;
    if (method == QLatin1String("quantiles")) {
        options.method = maps::ClassMethod::Quantiles;
    } else if (method == QLatin1String("equal")) {
        options.method = maps::ClassMethod::EqualIntervals;
    } else if (method == QLatin1String("natural")) {
        options.method = maps::ClassMethod::NaturalBreaks;
    } else {
        isKnown = false;
    }
    if (!isKnown || !isNumber || options.classes < 2 || options.classes > mostClasses) {
        throw UsageError(Shell::tr("--map-classes: ожидается quantiles, equal или natural и число от 2 до %0 "
                                   "после двоеточия, а не «%1»")
                             .arg(QString::number(mostClasses), classes));
    }
}

} // namespace

std::optional<PictureFormat> pictureFormatOf(const QString& path) {
    const QString suffix = QLatin1Char('.') + QFileInfo(path).suffix().toLower();
    for (std::size_t i = 0; i < std::size(endings); ++i) {
        if (suffix == QLatin1String(endings[i])) {
            return static_cast<PictureFormat>(i);
        }
    }
    return std::nullopt;
}

QStringList pictureEndings() {
    QStringList all;
    for (const char* ending : endings) {
        all += QLatin1String(ending);
    }
    return all;
}

MapOptions parseMapOptions(const MapArguments& arguments) {
    MapOptions options;
    if (!arguments.size.empty()) {
        readSize(arguments.size, options);
    }
    if (!arguments.system.empty()) {
        readSystem(arguments.system, options);
    }
    if (!arguments.classes.empty()) {
        readClasses(arguments.classes, options);
    }
    return options;
}

} // namespace orvane::shell

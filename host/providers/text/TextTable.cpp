#include "host/providers/text/TextTable.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/LayerSchema.h"
#include "host/providers/text/RecordReader.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/AttributeNames.h"
#include "platform/log/Logger.h"

#include <ogr_srs_api.h>

#include <QMetaType>

#include <algorithm>
#include <stdexcept>

namespace orvane::files {

namespace {

struct CoordinateNames {
    const char* x;
    const char* y;
    bool isGeographic;
};

/// In the order of preference.
constexpr CoordinateNames coordinateNames[] = {
    {"lon", "lat", true},           {"long", "lat", true},
    {"lng", "lat", true},           {"longitude", "latitude", true},
    {"долгота", "широта", true},    {"x", "y", false},
    {"easting", "northing", false}, {"coord_x", "coord_y", false},
    {"x_coord", "y_coord", false},  {"point_x", "point_y", false},
};
/// A control character, which no value holds.
constexpr char unitSeparator = '\x1f';
constexpr const char* geometryNames[] = {"wkt", "geom", "geometry", "the_geom", "wkt_geom"};

/// The position of a name, letter case and blanks around ignored; -1 when it is not there.
int positionOf(const char* name, const std::vector<std::string>& names) {
    const auto wanted = QString::fromUtf8(name);
    const auto found = std::find_if(names.begin(), names.end(), [&wanted](const std::string& spelling) {
        return QString::fromStdString(spelling).trimmed().compare(wanted, Qt::CaseInsensitive) == 0;
    });
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

/// GDAL's path of a file of the same name with another ending.
QByteArray beside(const QByteArray& path, const char* ending) {
    return path.left(path.lastIndexOf('.')) + ending;
}

/// The text of a small file; empty when there is none.
QByteArray smallFile(const QByteArray& path) {
    constexpr std::size_t largest = std::size_t{1} << 20;
    QByteArray text(static_cast<int>(largest), '\0');
    const VsiHandle file(VSIFOpenL(path.constData(), "rb"));
    text.truncate(file ? static_cast<int>(VSIFReadL(text.data(), 1, largest, file.get())) : 0);
    return text;
}

/// The type that a word of a .csvt file means, widths left out: "Integer", "Real(10.2)", "CoordX". Nothing
/// for an unknown one.
std::optional<TextType> typeNamed(const QByteArray& word) {
    static constexpr std::pair<const char*, TextType> typeNames[] = {
        {"integer(boolean)", TextType::Boolean},
        {"integer", TextType::Integer},
        {"integer64", TextType::Integer},
        {"real", TextType::Real},
        {"coordx", TextType::Real},
        {"coordy", TextType::Real},
        {"point", TextType::Real},
        {"string", TextType::Text},
        {"wkt", TextType::Text},
        {"datetime", TextType::DateTime},
        {"date", TextType::Date},
        {"time", TextType::Time},
    };
    const QByteArray whole = word.toLower();
    const QByteArray plain = whole.left(whole.indexOf('('));
    for (const auto& [name, type] : typeNames) {
        if (whole == name || plain == name) {
            return type;
        }
    }
    return std::nullopt;
}

/// Picks places among more and more rows.
class PlaceCollector {
public:
    /// After each row, by its number.
    void pass(std::int64_t row, const RecordReader& records) {
        if (row % distance_ != 0) {
            return;
        }
        constexpr std::size_t most = 16'384;
        if (places_.size() == most) {
            for (std::size_t i = 0; i < most / 2; ++i) {
                places_[i] = places_[2 * i + 1]; // those that the doubled distance would have picked
            }
            places_.resize(most / 2);
            distance_ *= 2;
        }
        if (row % distance_ == 0) {
            places_.push_back({row + 1, records.offset()});
        }
    }
    /// Without the end of the file, behind the last row.
    std::vector<TextPlace> finish(std::int64_t rows) && {
        if (!places_.empty() && places_.back().row > rows) {
            places_.pop_back();
        }
        return std::move(places_);
    }

private:
    std::int64_t distance_ = TextTable::rowsBetweenPlaces;
    std::vector<TextPlace> places_;
};

} // namespace

TextTable::TextTable(QByteArray path, const QByteArray& encoding)
    : path_(std::move(path)), currentPath_(path_) {
    stamp_ = stamp();
    if (stamp_.size == 0 && !isInArchive(QString::fromUtf8(path_))) {
        openTextFile(path_); // which knows better where there is none
        throw std::runtime_error(
            tr("Не удалось открыть «%1»: файл пуст").arg(QString::fromUtf8(path_)).toStdString());
    }
    if (!encoding.isEmpty() && codecNamed(encoding)->name() != "UTF-8") {
        form_.encoding = encoding;
    }
    findSeparator();
    Content content = look();
    names_ = content.names;
    rows_ = content.rows;
    places_ = std::make_shared<const std::vector<TextPlace>>(std::move(content.places));
    declared_.resize(names_.size());
    readTypesBeside();
    for (std::size_t i = 0; i < names_.size(); ++i) {
        columns_.push_back(content.finders[i].form(declared_[i]));
        if (declared_[i] && typeOfBoth(*declared_[i], content.finders[i].type()) != *declared_[i]) {
            loggerInstance()->write(
                LogLevel::Warning, QStringLiteral("TextTable"), __LINE__, QString::fromLatin1(__func__),
                QStringLiteral("%1: column \"%2\" has values that are not of the type in the "
                               ".csvt file; they are read as NULL")
                    .arg(QString::fromUtf8(path_), QString::fromStdString(names_[i])));
        }
    }
    findGeometry(names_);
    makeSchema(names_);
}

void TextTable::findSeparator() {
    const VsiHandle file = openTextFile(path_);
    constexpr std::size_t longestHeader = std::size_t{64} << 10;
    QByteArray start(static_cast<int>(longestHeader), '\0');
    start.truncate(static_cast<int>(VSIFReadL(start.data(), 1, longestHeader, file.get())));
    if (start.startsWith("\xff\xfe") || start.startsWith("\xfe\xff")) {
        form_.encoding = "UTF-16";
    }
    const QByteArray text = codecNamed(form_.encoding)->toUnicode(start).toUtf8();

    constexpr std::string_view separators = "\t;,|";
    std::array<int, separators.size()> counts{};
    bool isInQuotes = false, hasBegun = false;
    for (const char character : text) {
        isInQuotes = isInQuotes != (character == '"');
        if (!isInQuotes && (character == '\n' || character == '\r')) {
            if (hasBegun) {
                break;
            }
            continue;
        }
        hasBegun = true;
        const auto found = isInQuotes ? std::string_view::npos : separators.find(character);
        if (found != std::string_view::npos) {
            ++counts[found];
        }
    }
    const auto most = std::max_element(counts.begin(), counts.end());
    if (*most > 0) {
        form_.separator = separators[static_cast<std::size_t>(most - counts.begin())];
    } else { // one column
        form_.separator = unitSeparator;
    }
}

TextTable::Content TextTable::look() {
    RecordReader records(currentPath_, form_.encoding, form_.separator, true);
    Content content;
    if (!records.next()) {
        raise(tr("в нём нет таблиц"));
    }
    if (!records.lineEnd().empty()) {
        form_.lineEnd = records.lineEnd();
    }
    const bool takesComma = form_.separator == ';';
    bool hasNames = true;
    for (std::size_t i = 0; i < records.size(); ++i) {
        content.names.emplace_back(records.value(i));
        hasNames = hasNames && !realInText(content.names.back(), takesComma);
    }
    form_.hasNames = hasNames;
    content.finders.assign(content.names.size(), FormFinder(takesComma));
    if (!hasNames) {
        for (std::size_t i = 0; i < content.names.size(); ++i) {
            content.names[i] = "field_" + std::to_string(i + 1);
        }
    }
    PlaceCollector places;
    for (bool hasRecord = !hasNames || records.next(); hasRecord; hasRecord = records.next()) {
        const std::size_t count = std::min(records.size(), content.finders.size());
        for (std::size_t i = 0; i < count; ++i) {
            if (content.finders[i].isOpen()) {
                content.finders[i].add(records.value(i), records.isQuoted(i));
            }
        }
        ++content.rows;
        places.pass(content.rows, records);
    }
    if (form_.encoding.isEmpty() && !isInArchive(QString::fromUtf8(currentPath_))) {
        content.places = std::move(places).finish(content.rows);
    }
    return content;
}

std::shared_ptr<const std::vector<TextPlace>> TextTable::places() {
    const std::lock_guard lock(mutex_);
    return places_;
}

void TextTable::readTypesBeside() {
    const QByteArray types = smallFile(beside(path_, ".csvt"));
    if (types.isEmpty()) {
        return;
    }
    RecordReader words({types.constData(), static_cast<std::size_t>(types.size())}, ',');
    if (!words.next()) {
        return;
    }
    for (std::size_t i = 0; i < std::min(words.size(), declared_.size()); ++i) {
        const auto value = words.value(i);
        declared_[i] = typeNamed(QByteArray(value.data(), static_cast<int>(value.size())).trimmed());
    }
}

void TextTable::findGeometry(const std::vector<std::string>& names) {
    for (const char* name : geometryNames) {
        if (geometry_.text < 0) {
            geometry_.text = positionOf(name, names);
        }
    }
    for (const auto& pair : coordinateNames) {
        const int x = positionOf(pair.x, names);
        const int y = positionOf(pair.y, names);
        if (geometry_.exists() || x < 0 || y < 0) {
            continue;
        }
        geometry_ = {x, y, -1};
        if (pair.isGeographic) {
            coordSystem_ = cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(4326);
        }
    }
    const QByteArray system = geometry_.exists() ? smallFile(beside(path_, ".prj")) : QByteArray();
    if (system.isEmpty()) {
        return;
    }
    const ReferenceHandle reference(OSRNewSpatialReference(nullptr));
    if (OSRSetFromUserInput(reference.get(), system.constData()) == OGRERR_NONE) {
        coordSystem_ = coordSystemOf(reference.get());
    }
}

void TextTable::makeSchema(const std::vector<std::string>& names) {
    QStringList titles;
    for (const auto& name : names) {
        titles.append(QString::fromStdString(name));
    }
    if (geometry_.exists()) {
        titles.append(QStringLiteral("geometry"));
    }
    titles = dp::distinctNames(titles);
    QVector<dp::AttributeDefinitionPointer> attributes;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        attributes.append(dp::AttributeDefinitionPointer(
            new dp::SimpleAttributeDefinition(titles[static_cast<int>(i)], columns_[i].metaType(), {})));
    }
    if (geometry_.exists()) {
        attributes.append(
            dp::AttributeDefinitionPointer(new dp::GeometryAttributeDefinition(titles.last(), coordSystem_)));
    }
    schema_ = std::make_shared<const dp::TableSchema>(std::move(attributes));
}

std::int64_t TextTable::rowCount() {
    const std::lock_guard lock(mutex_);
    const Stamp now = stamp();
    if (now == stamp_) {
        return rows_;
    }
    const TextForm before = form_;
    Content content = look();
    bool isSame = content.names == names_ && form_.hasNames == before.hasNames;
    for (std::size_t i = 0; isSame && i < columns_.size(); ++i) {
        isSame = declared_[i] || typeOfBoth(columns_[i].type, content.finders[i].type()) == columns_[i].type;
    }
    form_ = before;
    if (!isSame) {
        raise(tr("таблица изменила своё строение, откройте файл заново"));
    }
    stamp_ = now;
    ++revision_;
    rows_ = content.rows;
    places_ = std::make_shared<const std::vector<TextPlace>>(std::move(content.places));
    return rows_;
}

TextTable::Stamp TextTable::stamp() const {
    const std::filesystem::path path(pathOnDisk(QString::fromUtf8(currentPath_)).toStdU16String());
    std::error_code error;
    Stamp stamp;
    stamp.size = std::filesystem::file_size(path, error);
    if (error) {
        return {};
    }
    stamp.time = std::filesystem::last_write_time(path, error);
    return stamp;
}

void TextTable::raise(const QString& reason) const {
    throw std::runtime_error(tr("«%1»: %2").arg(pathOnDisk(QString::fromUtf8(path_)), reason).toStdString());
}

} // namespace orvane::files

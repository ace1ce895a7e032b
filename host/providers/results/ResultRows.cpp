#include "host/providers/results/ResultRows.h"

#include "host/providers/datasets/LayerSchema.h"
#include "platform/cs/CoordSystem.h"
#include "platform/dp/DataCatalog.h"
#include "platform/dp/Table.h"
#include "platform/geometry/forms/GeometryFactory.h"
#include "platform/sql/lexing/SqlStrings.h"
#include "platform/utils/TemporaryFile.h"
#include <orvane/engine/ColumnNames.h>
#include <orvane/engine/EngineCache.h>

#include <QCoreApplication>

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::ResultRows)
};

constexpr std::size_t blockSize = std::size_t{1} << 20;

[[noreturn]] void raise(const QString& what) {
    throw std::runtime_error(
        QStringLiteral("%1: %2").arg(what, QString::fromLocal8Bit(std::strerror(errno))).toStdString());
}

/// The attribute that a result column passes on, through however many queries; null for a computed one.
dp::AttributeDefinitionPointer sourceOf(sqlite3_stmt* statement, int column, const dp::DataCatalog& catalog) {
    const char* table = sqlite3_column_table_name(statement, column);
    const char* origin = sqlite3_column_origin_name(statement, column);
    if (!table || !origin) {
        return {};
    }
    const auto object = catalog.dataObject(QString::fromUtf8(table));
    const auto source = object ? std::dynamic_pointer_cast<dp::Table>(object->underlyingObject()) : nullptr;
    if (!source) {
        return {};
    }
    const auto schema = source->schema();
    static const QString geometryName = sql::fromSqlString(engine::geometryColumnName());
    const QString name = QString::fromUtf8(origin);
    const int position = name == geometryName ? schema->geometryIndex() : schema->indexOf(name);
    return position < 0 ? dp::AttributeDefinitionPointer() : schema->at(position);
}

const dp::GeometryAttributeDefinition* geometryAttribute(const dp::AttributeDefinitionPointer& attribute) {
    return dynamic_cast<const dp::GeometryAttributeDefinition*>(attribute.constData());
}

template<class Number>
std::string_view bytesOf(const Number& number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

/// Ellipses and rounded rectangles are written as other kinds: the well-known binary tells.
std::uint32_t kindOf(const QByteArray& littleEndianWkb) {
    std::uint32_t code = 0;
    std::memcpy(&code, littleEndianWkb.constData() + 1, sizeof code);
    return code % 1000;
}

std::size_t charactersIn(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; // not a continuation
    }));
}

/// Whether the text has the fixed form in which tables give values of that type; true for other types.
bool isMoment(std::string_view text, int metaType) {
    std::string_view form;
    switch (metaType) {
    case QMetaType::QDate: form = "0000-00-00"; break;
    case QMetaType::QTime: form = "00:00:00.000"; break;
    case QMetaType::QDateTime: form = "0000-00-00 00:00:00.000"; break;
    default: return true;
    }
    return text.size() == form.size() &&
           std::equal(text.begin(), text.end(), form.begin(),
                      [](char c, char f) { return f == '0' ? c >= '0' && c <= '9' : c == f; });
}

template<class Type>
bool isWithin(const ResultColumn& column) {
    return column.least >= std::numeric_limits<Type>::min() &&
           column.greatest <= std::numeric_limits<Type>::max();
}

/// Whether the type of the source takes every value.
bool fits(const ResultColumn& column, int metaType) {
    const bool hasNumbers = column.hasIntegers || column.hasReals;
    const bool hasOthers = column.hasBytes || column.geometryKinds != 0;
    switch (metaType) {
    case QMetaType::QByteArray: return !hasNumbers && !column.hasTexts && column.geometryKinds == 0;
    case QMetaType::QString: return !hasNumbers && !hasOthers;
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return !hasNumbers && !hasOthers && column.areMoments;
    default: break;
    }
    if (column.hasTexts || hasOthers) {
        return false;
    }
    switch (metaType) {
    case QMetaType::Bool: return !column.hasReals && column.least >= 0 && column.greatest <= 1;
    case QMetaType::Short: return !column.hasReals && isWithin<short>(column);
    case QMetaType::Int: return !column.hasReals && isWithin<int>(column);
    case QMetaType::LongLong: return !column.hasReals;
    case QMetaType::Float: return column.isSingle;
    case QMetaType::Double: return true;
    default: return false;
    }
}

/// The width of the source where every value keeps to it.
dp::SimpleAttributeDefinition::Options widthOf(const ResultColumn& column,
                                               const dp::SimpleAttributeDefinition& source) {
    dp::SimpleAttributeDefinition::Options options;
    if (source.length() <= 0) {
        return options;
    }
    const int decimals = source.precision() > 0 ? source.precision() + 1 : 0; // with their point
    const int sign = column.hasNegatives ? 1 : 0;
    const bool isKept = source.type() == QMetaType::QString
                            ? column.longestText <= static_cast<std::size_t>(source.length())
                            : column.largest < std::pow(10.0, source.length() - decimals - sign);
    if (isKept) {
        options.length = source.length();
        options.precision = source.precision();
    }
    return options;
}

} // namespace

dp::AttributeDefinitionPointer ResultColumn::attribute(const QString& attributeName) const {
    const auto* simple = dynamic_cast<const dp::SimpleAttributeDefinition*>(source.constData());
    if (simple && fits(*this, simple->type())) {
        return dp::AttributeDefinitionPointer(
            new dp::SimpleAttributeDefinition(attributeName, simple->type(), widthOf(*this, *simple)));
    }
    const bool hasNumbers = hasIntegers || hasReals;
    int type = QMetaType::QString;
    if ((hasBytes || geometryKinds != 0) && !hasTexts && !hasNumbers) {
        type = QMetaType::QByteArray;
    } else if (hasNumbers && !hasTexts && !hasBytes && geometryKinds == 0) {
        type = hasReals ? QMetaType::Double : QMetaType::LongLong;
    }
    return dp::AttributeDefinitionPointer(new dp::SimpleAttributeDefinition(attributeName, type));
}

bool ResultColumn::isGeometry() const {
    const bool hasOther = hasIntegers || hasReals || hasTexts || hasBytes;
    return !hasOther && (geometryKinds != 0 || geometryAttribute(source));
}

ResultRows::ResultRows(sqlite3_stmt* statement, const QStringList& names, const dp::DataCatalog& catalog,
                       engine::EngineCache& cache)
    : statement_(statement), cache_(cache), file_(utils::openTemporaryStream()) {
    if (!file_) {
        raise(Texts::tr("временный файл не создаётся"));
    }
    std::setvbuf(file_.get(), nullptr, _IOFBF, blockSize);
    buffer_.reserve(blockSize);
    for (int i = 0; i < names.size(); ++i) {
        ResultColumn column;
        column.name = names[i];
        column.source = sourceOf(statement, i, catalog);
        if (const auto* geometry = geometryAttribute(column.source)) {
            column.coordSystem = geometry->coordSystem();
        }
        columns_.push_back(std::move(column));
    }
}

void ResultRows::append() {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        append(columns_[i], static_cast<int>(i));
    }
    ++rowCount_;
    if (buffer_.size() >= blockSize) {
        flush();
    }
}

void ResultRows::appendAll() {
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement_)) == SQLITE_ROW) {
        append();
    }
    if (code != SQLITE_DONE) {
        throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(statement_)));
    }
}

void ResultRows::append(ResultColumn& column, int index) {
    using Kind = ResultCell::Kind;
    switch (sqlite3_column_type(statement_, index)) {
    case SQLITE_INTEGER: {
        const std::int64_t value = sqlite3_column_int64(statement_, index);
        column.isSingle = column.isSingle && static_cast<std::int64_t>(static_cast<float>(value)) == value;
        column.least = column.hasIntegers ? std::min(column.least, value) : value;
        column.greatest = column.hasIntegers ? std::max(column.greatest, value) : value;
        column.largest = std::max(column.largest, std::fabs(static_cast<double>(value)));
        column.hasNegatives = column.hasNegatives || value < 0;
        column.hasIntegers = true;
        return appendCell(Kind::Integer, bytesOf(value));
    }
    case SQLITE_FLOAT: {
        const double value = sqlite3_column_double(statement_, index);
        column.hasReals = true;
        column.hasNegatives = column.hasNegatives || value < 0;
        column.largest = std::max(column.largest, std::fabs(value));
        column.isSingle = column.isSingle && static_cast<double>(static_cast<float>(value)) == value;
        return appendCell(Kind::Real, bytesOf(value));
    }
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, index));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, index));
        column.hasTexts = true;
        column.longestText = std::max(column.longestText, charactersIn({text, size}));
        column.areMoments =
            column.areMoments && column.source && isMoment({text, size}, column.source->type());
        return appendCell(Kind::Text, {text, size});
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, index));
        const auto size = static_cast<unsigned>(sqlite3_column_bytes(statement_, index));
        const auto geometry = size == 0 ? nullptr : cache_.geometryInfo(bytes, size, false).geometry();
        if (geometry) {
            return appendGeometry(column, geometry);
        }
        column.hasBytes = true;
        return appendCell(Kind::Bytes, {bytes, size});
    }
    default: column.hasNulls = true; return appendCell(Kind::Null, {});
    }
}

void ResultRows::appendGeometry(ResultColumn& column, const geometry::GeometryPtr& geometry) {
    geometry::GeometryPtr placed = geometry;
    if (const auto system = geometry->coordSystem(); !column.coordSystem) {
        column.coordSystem = system;
    } else if (system && !system->equals(*column.coordSystem)) {
        placed = geometry->transformed(column.coordSystem);
        if (!placed) {
            throw std::runtime_error(
                Texts::tr("столбец «%1»: геометрия не переводится в систему координат «%2»")
                    .arg(column.name, column.coordSystem->name())
                    .toStdString());
        }
    }
    const QByteArray wkb = geometry::GeometryFactory::toWkb(placed, QSysInfo::LittleEndian);
    column.geometryKinds |= std::uint32_t{1} << kindOf(wkb);
    column.hasZ = column.hasZ || geometry::hasZ(placed->dimensions());
    column.hasM = column.hasM || geometry::hasM(placed->dimensions());
    appendCell(ResultCell::Kind::Geometry, {wkb.constData(), static_cast<std::size_t>(wkb.size())});
}

/// A kind, the size of what has no fixed one, the bytes.
void ResultRows::appendCell(ResultCell::Kind kind, std::string_view bytes) {
    buffer_.push_back(static_cast<char>(kind));
    if (kind >= ResultCell::Kind::Text) {
        buffer_ += bytesOf(static_cast<std::uint32_t>(bytes.size()));
    }
    buffer_ += bytes;
}

void ResultRows::flush() {
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_.get()) != buffer_.size()) {
        raise(Texts::tr("временный файл не записывается"));
    }
    buffer_.clear();
}

int ResultRows::geometryColumn() const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [](const ResultColumn& column) { return column.isGeometry(); });
    return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

void ResultRows::forEachRow(const Visitor& visitor) {
    flush();
    std::rewind(file_.get());
    const auto read = [this](void* target, std::size_t size) {
        if (std::fread(target, 1, size, file_.get()) != size) {
            raise(Texts::tr("временный файл не читается"));
        }
    };
    std::vector<ResultCell> cells(columns_.size());
    std::vector<std::string> contents(columns_.size());
    for (std::int64_t row = 0; row < rowCount_; ++row) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            ResultCell& cell = cells[i];
            read(&cell.kind, sizeof cell.kind);
            if (cell.kind == ResultCell::Kind::Integer) {
                read(&cell.integer, sizeof cell.integer);
            } else if (cell.kind == ResultCell::Kind::Real) {
                read(&cell.real, sizeof cell.real);
            } else if (cell.kind != ResultCell::Kind::Null) {
                std::uint32_t size = 0;
                read(&size, sizeof size);
                contents[i].resize(size);
                read(contents[i].data(), size);
                cell.bytes = contents[i];
            }
        }
        if (!visitor(cells)) {
            return;
        }
    }
}

} // namespace orvane::files

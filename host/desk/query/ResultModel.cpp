#include "host/desk/query/ResultModel.h"

#include <platform/geometry/forms/GeometryWalker.h>

#include <QBrush>
#include <QCoreApplication>
#include <QLocale>
#include <QPalette>

#include <algorithm>
#include <limits>

namespace orvane::desk {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::desk::ResultModel)
};

/// A view lays out what it knows of: enough to scroll in, few enough to be told of at once.
constexpr int portion = 100'000;
constexpr std::size_t shortestCut = 300; ///< bytes of a text that a cell shows at most
constexpr std::size_t tooltipCut = 4000;

/// Counts the positions of a geometry.
struct PositionCount {
    geometry::GeometryType type = geometry::GeometryType::Point;
    std::size_t positionCount = 0;
    bool isFirst = true;

    bool begin(geometry::GeometryType kind, geometry::Dimensions, std::size_t) {
        type = isFirst ? kind : type;
        isFirst = false;
        return true;
    }
    bool positions(const geometry::PositionRun& run) {
        positionCount += run.count;
        return true;
    }
    bool end(geometry::GeometryType, geometry::Dimensions) const { return true; }
};

QString kindName(geometry::GeometryType type) {
    using Type = geometry::GeometryType;
    switch (type) {
    case Type::Point: return Texts::tr("Точка");
    case Type::LineString: return Texts::tr("Линия");
    case Type::Polygon: return Texts::tr("Полигон");
    case Type::MultiPoint: return Texts::tr("Мультиточка");
    case Type::MultiLineString:
    case Type::MultiCurve: return Texts::tr("Мультилиния");
    case Type::MultiPolygon:
    case Type::MultiSurface: return Texts::tr("Мультиполигон");
    case Type::GeometryCollection: return Texts::tr("Коллекция");
    case Type::CircularString:
    case Type::CompoundCurve: return Texts::tr("Кривая");
    default: return Texts::tr("Криволинейный полигон");
    }
}

QString geometryText(std::string_view wkb) {
    PositionCount count;
    geometry::GeometryWalker<geometry::Framing::Wkb, PositionCount>(wkb, count).walk();
    return count.type == geometry::GeometryType::Point
               ? kindName(count.type)
               : Texts::tr("%0, вершин: %1").arg(kindName(count.type)).arg(count.positionCount);
}

/// The beginning of a text, not cut within a character.
QString cutText(std::string_view utf8, std::size_t most) {
    if (utf8.size() <= most) {
        return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
    }
    std::size_t size = most;
    while (size > 0 && (static_cast<unsigned char>(utf8[size]) & 0xC0) == 0x80) {
        --size;
    }
    return QString::fromUtf8(utf8.data(), static_cast<int>(size)) + QStringLiteral("…");
}

QString textOf(const Value& value, std::size_t most) {
    switch (value.kind) {
    case Value::Kind::Null: return QStringLiteral("NULL");
    case Value::Kind::Integer: return QString::number(value.integer);
    case Value::Kind::Real: return QString::number(value.real, 'g', QLocale::FloatingPointShortest);
    case Value::Kind::Text: return cutText(value.bytes, most);
    case Value::Kind::Bytes: return Texts::tr("байт: %0").arg(value.bytes.size());
    case Value::Kind::Geometry: return geometryText(value.bytes);
    }
    return {};
}

bool isNumber(const Value& value) {
    return value.kind == Value::Kind::Integer || value.kind == Value::Kind::Real;
}

} // namespace

QString shortText(const Value& value) {
    QString text = textOf(value, shortestCut);
    text.replace(QLatin1Char('\n'), QChar(0x21B5));
    return text;
}

QString fullText(const Value& value) {
    return textOf(value, std::numeric_limits<int>::max());
}

void ResultModel::setRows(std::shared_ptr<RowStore> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    block_.reset();
    shown_ = rows_ ? static_cast<int>(std::min<std::int64_t>(rows_->rowCount(), portion)) : 0;
    endResetModel();
}

void ResultModel::refresh() {
    if (rows_ && shown_ < portion) {
        showRows(portion);
    }
}

void ResultModel::reach(std::int64_t row) {
    if (row >= shown_) {
        showRows(row + portion);
    }
}

/// Up to that number, as far as they are there.
void ResultModel::showRows(std::int64_t count) {
    constexpr std::int64_t most = std::numeric_limits<int>::max() - 1;
    const auto target =
        static_cast<int>(std::min({count, rows_ ? rows_->rowCount() : std::int64_t{0}, most}));
    if (target > shown_) {
        beginInsertRows({}, shown_, target - 1);
        shown_ = target;
        endInsertRows();
    }
}

Value ResultModel::value(std::int64_t row, int column) const {
    const bool isInBlock = block_ && row >= block_->firstRow() && row < block_->firstRow() + block_->size();
    if (!isInBlock) {
        block_ = rows_ ? rows_->blockOf(row) : nullptr;
    }
    return block_ ? block_->value(static_cast<int>(row - block_->firstRow()), column) : Value();
}

int ResultModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_;
}

int ResultModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() || !rows_ ? 0 : rows_->columns().size();
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole: return shortText(value(index.row(), index.column()));
    case Qt::ToolTipRole: {
        const Value shown = value(index.row(), index.column());
        return shown.kind == Value::Kind::Text && shown.bytes.size() > shortestCut / 4
                   ? QVariant(cutText(shown.bytes, tooltipCut))
                   : QVariant();
    }
    case Qt::TextAlignmentRole:
        return static_cast<int>(
            Qt::AlignVCenter |
            (isNumber(value(index.row(), index.column())) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::ForegroundRole: {
        const Value::Kind kind = value(index.row(), index.column()).kind;
        const bool isOwn =
            kind == Value::Kind::Integer || kind == Value::Kind::Real || kind == Value::Kind::Text;
        return isOwn ? QVariant() : QVariant(QBrush(QPalette().color(QPalette::PlaceholderText)));
    }
    default: return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || !rows_) {
        return {};
    }
    return orientation == Qt::Horizontal ? QVariant(rows_->columns().value(section)) : QVariant(section + 1);
}

bool ResultModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && rows_ && shown_ < rows_->rowCount();
}

void ResultModel::fetchMore(const QModelIndex& parent) {
    if (!parent.isValid()) {
        showRows(std::int64_t{shown_} + portion);
    }
}

} // namespace orvane::desk

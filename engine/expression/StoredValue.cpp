#include "engine/expression/StoredValue.h"

#include "platform/decimal/QDecNumber.h"
#include "platform/utils/Numbers.h"
#include "platform/utils/Utf8.h"
#include <orvane/engine/functions/Converters.h>

#include <QDateTime>

#include <sqlite3.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace orvane::engine {

namespace {

using dp::Cell;

/// The most characters that SQLite writes for a number.
constexpr std::size_t longestNumber = 40;

bool isForNumbers(Affinity affinity) {
    return affinity == Affinity::Integer || affinity == Affinity::Numeric || affinity == Affinity::Real;
}

bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Reads the whole of a text as a decimal number.
template<class Number>
bool readWhole(std::string_view text, Number& number) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

Cell storedInteger(qint64 number, Affinity affinity, std::string& memory) {
    if (affinity == Affinity::Real) {
        return Cell::ofReal(static_cast<double>(number));
    }
    if (affinity == Affinity::Text) {
        memory = std::to_string(number);
        return Cell::ofText(memory);
    }
    return Cell::ofInteger(number);
}

Cell storedReal(double number, Affinity affinity, std::string& memory) {
    if (std::isnan(number)) {
        return {}; // SQLite has no other place for it
    }
    if (affinity == Affinity::Text) {
        std::array<char, longestNumber> text;
        memory = sqlite3_snprintf(static_cast<int>(text.size()), text.data(), "%!.15g", number);
        return Cell::ofText(memory);
    }
    const auto whole = utils::wholePart(number);
    const bool isInteger = whole && static_cast<double>(*whole) == number &&
                           *whole != std::numeric_limits<qint64>::min(); // which SQLite leaves a real
    return isInteger && (affinity == Affinity::Integer || affinity == Affinity::Numeric)
               ? Cell::ofInteger(*whole)
               : Cell::ofReal(number);
}

/// The number that a text is, blanks around it left out; nothing for any other text.
std::optional<Cell> numberInText(std::string_view text, Affinity affinity, std::string& memory) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) {
        return std::nullopt; // also "nan" and "inf"
    }
    if (qint64 integer = 0; readWhole(text, integer)) {
        return storedInteger(integer, affinity, memory);
    }
    if (double real = 0; readWhole(text, real)) {
        return storedReal(real, affinity, memory);
    }
    return std::nullopt;
}

Cell storedText(const QString& text, Affinity affinity, std::string& memory) {
    const std::size_t most = static_cast<std::size_t>(text.size()) * utf8::mostBytesOfUnit;
    if (memory.size() < most) {
        memory.resize(most);
    }
    const std::string_view bytes(memory.data(), utf8::encode(text, memory.data()));
    const auto number = isForNumbers(affinity) ? numberInText(bytes, affinity, memory) : std::nullopt;
    return number ? *number : Cell::ofText(bytes);
}

} // namespace

Affinity affinityOf(const char* declaredType) {
    const QByteArray type = QByteArray(declaredType).toUpper();
    if (type.contains("INT")) {
        return Affinity::Integer;
    }
    if (type.contains("CHAR") || type.contains("CLOB") || type.contains("TEXT")) {
        return Affinity::Text;
    }
    if (type.contains("BLOB") || type.isEmpty()) {
        return Affinity::Blob;
    }
    if (type.contains("REAL") || type.contains("FLOA") || type.contains("DOUB")) {
        return Affinity::Real;
    }
    return Affinity::Numeric;
}

const char* typeOf(Affinity affinity) {
    switch (affinity) {
    case Affinity::Blob: return "Blob";
    case Affinity::Text: return "Text";
    case Affinity::Numeric: return "Numeric";
    case Affinity::Integer: return "Integer";
    case Affinity::Real: return "Real";
    }
    return "Blob";
}

bool isStandardType(int metaType) {
    switch (metaType) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return true;
    case QMetaType::QString: return false;
    default: return metaType == qMetaTypeId<QDecNumber>();
    }
}

std::optional<QVariant> standardValue(const QVariant& value) {
    switch (value.userType()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short: return value.toInt();
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar: return value.toUInt();
    case QMetaType::LongLong:
    case QMetaType::Long: return value.toLongLong();
    case QMetaType::ULongLong:
    case QMetaType::ULong: return value.toULongLong();
    case QMetaType::Double:
    case QMetaType::Float: return value.toDouble();
    case QMetaType::QDate: return toString(value.toDate());
    case QMetaType::QTime: return toString(value.toTime());
    case QMetaType::QDateTime: return toString(value.toDateTime());
    default: break;
    }
    if (isStandardType(value.userType())) {
        return value.value<QDecNumber>().toDouble();
    }
    return std::nullopt;
}

dp::Cell storedValue(const QVariant& value, Affinity affinity, std::string& memory) {
    if (value.isNull()) {
        return {};
    }
    switch (value.userType()) {
    case QMetaType::QString:
        return storedText(*static_cast<const QString*>(value.constData()), affinity, memory);
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong: return storedInteger(value.toLongLong(), affinity, memory);
    case QMetaType::Double: return storedReal(value.toDouble(), affinity, memory);
    case QMetaType::QByteArray: {
        const auto& bytes = *static_cast<const QByteArray*>(value.constData());
        return Cell::ofBytes({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    }
    default: break;
    }
    if (const auto standard = standardValue(value); standard && standard->userType() != value.userType()) {
        return storedValue(*standard, affinity, memory);
    }
    return storedText(value.toString(), affinity, memory); // an unsigned number too large keeps its digits
}

} // namespace orvane::engine

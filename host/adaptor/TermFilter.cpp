#include "host/adaptor/TermFilter.h"

#include <orvane/engine/Collator.h>

#include <QChar>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <cmath>

namespace orvane::adaptor {

namespace {

using dp::Cell;
using dp::CellType;
using dp::Comparison;
using dp::ScanTerm;
using dp::TextCollation;

/// In lists with more operands that no look-up serves leave the row to SQLite, which searches a sorted list.
constexpr std::size_t scannedOperands = 32;

bool isPrintableAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c <= 0x7e; });
}

char foldAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

int compareFolded(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference =
            static_cast<unsigned char>(foldAscii(a[i])) - static_cast<unsigned char>(foldAscii(b[i]));
        if (difference != 0) {
            return difference;
        }
    }
    return a.size() < b.size() ? -1 : a.size() > b.size();
}

constexpr char32_t replacementCharacter = 0xfffd;

/// Takes one character off the front of a text that is not empty; what is no UTF-8 becomes U+FFFD, byte by
/// byte.
char32_t takeCharacter(std::string_view& utf8) {
    const auto byte = [&utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char first = byte(0);
    std::size_t length = 1;
    char32_t character = first;
    if (first >= 0x80) {
        length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : first >= 0xc2 ? 2 : 0;
        character = length == 0 ? replacementCharacter : first & (0x7fu >> length);
        for (std::size_t i = 1; i < length; ++i) {
            if (i >= utf8.size() || (byte(i) & 0xc0) != 0x80) {
                length = 0;
                character = replacementCharacter;
                break;
            }
            character = (character << 6) | (byte(i) & 0x3fu);
        }
    }
    utf8.remove_prefix(std::max<std::size_t>(length, 1));
    return character <= 0x10ffff ? character : replacementCharacter;
}

void toUtf16(std::string_view utf8, std::u16string& out) {
    out.clear();
    while (!utf8.empty()) {
        const char32_t character = takeCharacter(utf8);
        if (character < 0x10000) {
            out.push_back(static_cast<char16_t>(character));
        } else {
            out.push_back(QChar::highSurrogate(character));
            out.push_back(QChar::lowSurrogate(character));
        }
    }
}

/// Exact three-way comparison of a 64-bit integer with a double that is a number.
int compareNumbers(std::int64_t a, double b) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (b >= limit) {
        return -1;
    }
    if (b < -limit) {
        return 1;
    }
    const double whole = std::trunc(b);
    const auto integer = static_cast<std::int64_t>(whole);
    if (a != integer) {
        return a < integer ? -1 : 1;
    }
    return whole < b ? -1 : whole > b;
}

template<class Number>
int compareSame(Number a, Number b) {
    return a < b ? -1 : a > b;
}

/// Compares a number cell with a number operand.
int compareNumbers(const Cell& cell, const dp::ScanValue& operand) {
    if (cell.type() == CellType::Integer) {
        if (const auto* integer = std::get_if<std::int64_t>(&operand)) {
            return compareSame(cell.integer(), *integer);
        }
        return compareNumbers(cell.integer(), std::get<double>(operand));
    }
    if (const auto* real = std::get_if<double>(&operand)) {
        return compareSame(cell.real(), *real);
    }
    return -compareNumbers(std::get<std::int64_t>(operand), cell.real());
}

bool isNull(const Cell& cell) {
    return cell.isNull() ||
           (cell.type() == CellType::Real && std::isnan(cell.real())); // SQLite stores NaN as NULL
}

bool isNumber(const Cell& cell) {
    return cell.type() == CellType::Integer || cell.type() == CellType::Real;
}

bool isNumber(const dp::ScanValue& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value);
}

bool holds(Comparison comparison, int order) {
    switch (comparison) {
    case Comparison::Equal:
    case Comparison::Is: return order == 0;
    case Comparison::NotEqual:
    case Comparison::IsNot: return order != 0;
    case Comparison::Greater: return order > 0;
    case Comparison::GreaterOrEqual: return order >= 0;
    case Comparison::Less: return order < 0;
    case Comparison::LessOrEqual: return order <= 0;
    default: return true;
    }
}

bool isOrdering(Comparison comparison) {
    return comparison == Comparison::Greater || comparison == Comparison::GreaterOrEqual ||
           comparison == Comparison::Less || comparison == Comparison::LessOrEqual;
}

} // namespace

namespace {

/// Turkic languages tell "I" from "i"; Hungarian contractions make different ASCII texts equal ("ccs" sorts
/// as "cscs").
bool foldsAsciiAsUsual(const QCollator& collator) {
    for (ushort letter = 'a'; letter <= 'z'; ++letter) {
        if (collator.compare(QString(QChar(letter)), QString(QChar(letter).toUpper())) != 0) {
            return false;
        }
    }
    return collator.locale().language() != QLocale::Hungarian;
}

/// Making a collator costs more than a small query, so the last one of the thread is kept.
struct SharedCollator {
    QLocale locale;
    QCollator collator = engine::collator();
    bool foldsAscii = foldsAsciiAsUsual(collator);
};

const SharedCollator& sharedCollator() {
    thread_local SharedCollator shared;
    if (shared.locale != QLocale()) {
        shared = SharedCollator();
    }
    return shared;
}

} // namespace

LocaleComparator::LocaleComparator()
    : collator_(sharedCollator().collator), foldsAscii_(sharedCollator().foldsAscii) {}

int LocaleComparator::compare(std::string_view a, std::string_view b) {
    toUtf16(a, left_);
    toUtf16(b, right_);
    return engine::collatorCompare(collator_, static_cast<int>(left_.size() * sizeof(char16_t)), left_.data(),
                                   static_cast<int>(right_.size() * sizeof(char16_t)), right_.data());
}

bool LocaleComparator::equal(std::string_view a, std::string_view b) {
    if (a == b) {
        return true;
    }
    if (foldsAscii_ && isPrintableAscii(a) && isPrintableAscii(b)) {
        return a.size() == b.size() && compareFolded(a, b) == 0;
    }
    return compare(a, b) == 0;
}

bool TermFilter::isExact(bool textColumn, const dp::ScanValue& operand) {
    return textColumn ? std::holds_alternative<std::string>(operand) : isNumber(operand);
}

void TermFilter::assign(std::span<const ScanTerm> terms) {
    terms_ = terms;
    lists_.clear();
    lists_.resize(terms.size());
    matchesNothing_ = false;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        const ScanTerm& term = terms[i];
        if (term.comparison == Comparison::In) {
            lists_[i] = std::make_unique<InList>(
                arrange(term, term.collation == TextCollation::NoCase ||
                                  (term.collation == TextCollation::Locale && locale_.foldsAscii())));
        } else if (!term.operands.empty() && std::holds_alternative<std::monostate>(term.operands.front()) &&
                   (isOrdering(term.comparison) || term.comparison == Comparison::Equal ||
                    term.comparison == Comparison::NotEqual)) {
            matchesNothing_ = true;
        }
    }
}

TermFilter::InList TermFilter::arrange(const ScanTerm& term, bool foldTexts) {
    InList list;
    for (const dp::ScanValue& operand : term.operands) {
        if (const auto* integer = std::get_if<std::int64_t>(&operand)) {
            list.integers.push_back(*integer);
        } else if (const auto* real = std::get_if<double>(&operand)) {
            list.reals.push_back(*real);
        } else if (const auto* text = std::get_if<std::string>(&operand)) {
            if (term.collation == TextCollation::Binary) {
                list.asciiTexts.insert(*text);
            } else if (foldTexts && isPrintableAscii(*text)) {
                std::string folded = *text;
                std::transform(folded.begin(), folded.end(), folded.begin(), foldAscii);
                list.asciiTexts.insert(std::move(folded));
            } else {
                list.otherTexts.push_back(*text);
            }
        }
    }
    std::sort(list.integers.begin(), list.integers.end());
    std::sort(list.reals.begin(), list.reals.end());
    return list;
}

bool TermFilter::accepts(dp::Cursor& cursor) {
    for (std::size_t i = 0; i < terms_.size(); ++i) {
        if (!accepts(terms_[i], cursor.cell(terms_[i].attribute), lists_[i].get())) {
            return false;
        }
    }
    return true;
}

bool TermFilter::accepts(const ScanTerm& term, const Cell& cell, const InList* list) {
    const bool null = isNull(cell);
    switch (term.comparison) {
    case Comparison::IsNull: return null;
    case Comparison::IsNotNull: return !null;
    case Comparison::Like:
    case Comparison::Glob: return true;
    case Comparison::In: return !null && inList(term, cell, *list);
    default: break;
    }
    const dp::ScanValue& operand = term.operands.front();
    const bool operandNull = std::holds_alternative<std::monostate>(operand);
    if (term.comparison == Comparison::Is || term.comparison == Comparison::IsNot) {
        if (null || operandNull) {
            return (null && operandNull) == (term.comparison == Comparison::Is);
        }
    } else if (null) {
        return false;
    }
    if (isNumber(cell) && isNumber(operand)) {
        return holds(term.comparison, compareNumbers(cell, operand));
    }
    const auto* text = std::get_if<std::string>(&operand);
    if (cell.type() != CellType::Text || !text) {
        return true;
    }
    if (isOrdering(term.comparison)) {
        return holds(term.comparison, compareTexts(term.collation, cell.view(), *text));
    }
    return holds(term.comparison, equalTexts(term.collation, cell.view(), *text) ? 0 : 1);
}

bool TermFilter::inList(const ScanTerm& term, const Cell& cell, const InList& list) {
    if (cell.type() == CellType::Text) {
        // A number in the list is compared with the text by rules that only SQLite knows the operands of.
        return !list.integers.empty() || !list.reals.empty() || inTextList(term, cell.view(), list);
    }
    if (!isNumber(cell) || !list.asciiTexts.empty() || !list.otherTexts.empty()) {
        return true;
    }
    if (cell.type() == CellType::Integer) {
        return std::binary_search(list.integers.begin(), list.integers.end(), cell.integer()) ||
               std::any_of(list.reals.begin(), list.reals.end(),
                           [&cell](double real) { return compareNumbers(cell.integer(), real) == 0; });
    }
    return std::binary_search(list.reals.begin(), list.reals.end(), cell.real()) ||
           std::any_of(list.integers.begin(), list.integers.end(),
                       [&cell](std::int64_t integer) { return compareNumbers(integer, cell.real()) == 0; });
}

bool TermFilter::inTextList(const ScanTerm& term, std::string_view text, const InList& list) {
    if (term.collation == TextCollation::Binary) {
        folded_.assign(text);
        return list.asciiTexts.count(folded_) != 0;
    }
    if (isPrintableAscii(text)) {
        folded_.resize(text.size());
        std::transform(text.begin(), text.end(), folded_.begin(), foldAscii);
        if (list.asciiTexts.count(folded_) != 0) {
            return true;
        }
    } else if (list.asciiTexts.size() > scannedOperands) {
        return true;
    } else if (std::any_of(list.asciiTexts.begin(), list.asciiTexts.end(), [&](const std::string& operand) {
                   return equalTexts(term.collation, text, operand);
               })) {
        return true;
    }
    return list.otherTexts.size() > scannedOperands ||
           std::any_of(list.otherTexts.begin(), list.otherTexts.end(),
                       [&](std::string_view operand) { return equalTexts(term.collation, text, operand); });
}

int TermFilter::compareTexts(TextCollation collation, std::string_view a, std::string_view b) {
    switch (collation) {
    case TextCollation::Binary: return a.compare(b);
    case TextCollation::NoCase: return compareFolded(a, b);
    case TextCollation::Locale: return locale_.compare(a, b);
    }
    return 0;
}

bool TermFilter::equalTexts(TextCollation collation, std::string_view a, std::string_view b) {
    switch (collation) {
    case TextCollation::Binary: return a == b;
    case TextCollation::NoCase: return a.size() == b.size() && compareFolded(a, b) == 0;
    case TextCollation::Locale: return locale_.equal(a, b);
    }
    return false;
}

} // namespace orvane::adaptor

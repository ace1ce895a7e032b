#pragma once

#include "host/providers/columns/ColumnBuilder.h"
#include "host/providers/text/Moment.h"

#include <QVariant>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::files {

/// What the values of a column of a text table are. None: the column has no value.
enum class TextType : std::uint8_t { None, Integer, Real, Boolean, Date, Time, DateTime, Text };

/// The type of a column that holds values of both types.
TextType typeOfBoth(TextType a, TextType b);

/// What the values of a column are and how they are written: values are read by it and written back by it, so
/// that the column is the same for whoever reads it next.
struct ColumnForm {
    TextType type = TextType::Text;
    char decimalPoint = '.';
    std::string falseWord = "false", trueWord = "true";
    MomentForm momentForm;
    std::string missing;     ///< what stands for NULL
    bool quotesAll = false;  ///< every value is
    bool takesComma = false; ///< as a decimal point

    ColumnKind kind() const;
    /// QMetaType.
    int metaType() const;
    /// Appends the value in the text; NULL for a missing one and one that is not of the type.
    void read(std::string_view text, bool isQuoted, ColumnBuilder& builder) const;
    /// The text of a value that is not NULL, without quotes; nothing when it is not of the type.
    std::optional<std::string> write(const QVariant& value) const;
};

/// Finds the form of a column out from all its values.
class FormFinder {
public:
    explicit FormFinder(bool takesComma) {
        form_.type = TextType::None;
        form_.takesComma = takesComma;
    }

    /// Whether further values can still change anything.
    bool isOpen() const { return form_.type != TextType::Text || allQuoted_; }
    void add(std::string_view text, bool isQuoted);
    TextType type() const { return form_.type; }
    /// As found, or for the type that somebody has said the column is of.
    ColumnForm form(std::optional<TextType> declared) const;

private:
    TextType classify(std::string_view text);
    TextType classifyMoment(std::string_view text);

    ColumnForm form_;
    bool allQuoted_ = true, hasValue_ = false;
    bool hasEmpty_ = false, hasPoint_ = false, hasComma_ = false, hasTime_ = false;
};

/// The number in a text; nothing for any other text.
std::optional<double> realInText(std::string_view text, bool takesComma);

} // namespace orvane::files

#include "host/adaptor/functions/ScalarRecord.h"

#include <orvane/engine/functions/Text.h>

namespace orvane::adaptor {

namespace {

constexpr const char* group = "Text";
constexpr const char* patterns = "Patterns and comparison";
constexpr Arity one = Arity::exactly(1);
constexpr Arity two = Arity::exactly(2);

const FunctionRecord records[] = {
    pureFunction("Char", group, one, engine::charUTF16,
                 {"Char(code)", "The character of a UTF-16 code.", "Char(1046)", "Ж"}),
    pureFunction(
        "Asc", group, one, engine::ascUTF16,
        {"Asc(text)", "The UTF-16 code of the first character, 0 for an empty text.", "Asc('Ж')", "1046"}),
    pureFunction(
        "InStr", group, Arity::any(), engine::inStrUTF16,
        {"InStr(text, part [, start [, occurrence]])",
         "The position of a part in a text, from a start position and by its number; 0 when it is not "
         "there or either is NULL.",
         "InStr('abcabcabc', 'abc', 1, 3)", "7"}),
    alsoNamed("LCase",
              pureFunction("LoCase", group, one, engine::loCaseUTF16,
                           {"LoCase(text)", "The text in lower case.", "LoCase('МОСКВА')", "москва"})),
    alsoNamed("UCase",
              pureFunction("UpCase", group, one, engine::upCaseUTF16,
                           {"UpCase(text)", "The text in upper case.", "UpCase('straße')", "STRASSE"})),
    alsoNamed("LTrim",
              pureFunction("LeftTrim", group, one, engine::leftTrimUTF8,
                           {"LeftTrim(text)",
                            "The text without the blanks, tabs and line ends at its beginning; a text of "
                            "nothing else stays as it is.",
                            "LeftTrim('  a b')", "a b"})),
    alsoNamed("RTrim", pureFunction("RightTrim", group, one, engine::rightTrimUTF8,
                                    {"RightTrim(text)",
                                     "The text without the blanks, tabs and line ends at its end; a text of "
                                     "nothing else stays as it is.",
                                     "RightTrim('a b  ')", "a b"})),
    pureFunction("Len", group, one, engine::len,
                 {"Len(text)", "The length of a text in UTF-16 units; 0 for NULL.", "Len('Москва')", "6"}),
    pureFunction("Left", group, two, engine::left_utf16,
                 {"Left(text, count)", "The first characters of a text.", "Left('abcdef', 2)", "ab"}),
    pureFunction("Right", group, two, engine::right_utf16,
                 {"Right(text, count)", "The last characters of a text.", "Right('abcdef', 2)", "ef"}),
    pureFunction("Mid", group, Arity::exactly(3), engine::midUTF16,
                 {"Mid(text, start, count)", "Characters from a position; NULL when it is not in the text.",
                  "Mid('abcdef', 2, 3)", "bcd"}),
    pureFunction("Val", group, one, engine::valUTF8,
                 {"Val(text)",
                  "The number that a text begins with, 0 when there is none and for NULL; &H and 0x make it "
                  "hexadecimal.",
                  "Val('12.5 km')", "12.5"}),
    pureFunction("Capitalize", group, one, engine::capitalizeUTF16,
                 {"Capitalize(text)", "The text with the first letter of each word in upper case.",
                  "Capitalize('нижний новгород')", "Нижний Новгород"}),
    environmentFunction(
        "Str", group, one, engine::strUTF16,
        {"Str(value)", "Any value as text: dates in the short form of the locale, geometries by their type.",
         "Str(2.5)", "2.5"}),
    pureFunction("Space", group, one, engine::space,
                 {"Space(count)", "A text of blanks.", "Len(Space(3))", "3"}),
    pureFunction("Repeat", group, two, engine::repeat,
                 {"Repeat(count, text)",
                  "The first character of a text, a number of times; of an empty text or NULL, blanks.",
                  "Repeat(3, 'xyz')", "xxx"}),
    alsoNamed("ILike",
              pureFunction("Like", patterns, two, engine::caseInsensitiveLike,
                           {"text Like pattern",
                            "1 when the text matches without regard to case: % is any run, _ one character.",
                            "'МОСКВА' Like 'мос%'", "1"})),
    pureFunction(
        "RegExp", patterns, two, engine::regExp,
        {"text RegExp pattern",
         "1 when a part of the text matches a Perl-compatible regular expression, without regard to case "
         "unless the pattern begins with (?-i).",
         "'ул. Мира, 12' RegExp '^ул.*\\d+$'", "1"}),
    alsoNamed(
        "ILike",
        pureFunction(
            "Like", patterns, Arity::exactly(3), engine::caseInsensitiveLikeEscape,
            {"text Like pattern Escape character",
             "The same; the escape makes the next character literal. Of a longer one the first character "
             "counts; an empty one and NULL mean none.",
             "'100%' Like '1__!%' Escape '!'", "1"})),
    pureFunction("Glob", patterns, two, engine::caseInsensitiveGlob,
                 {"text Glob pattern",
                  "1 when the text matches without regard to case: * is any run, ? one character, [a-z] one "
                  "of a class.",
                  "'Map 12' Glob 'map [0-9]?'", "1"}),
    pureFunction("CaseSensitiveCompare", patterns, two, engine::caseSensitiveCompare,
                 {"CaseSensitiveCompare(a, b)",
                  "Negative, zero or positive as the first text comes before, with or after the second one "
                  "by its codes.",
                  "CaseSensitiveCompare('b', 'B') > 0", "1"}),
    environmentFunction("CaseSensitiveLocaleCompare", patterns, two, engine::caseSensitiveLocaleCompare,
                        {"CaseSensitiveLocaleCompare(a, b)", "The same by the rules of the locale.",
                         "CaseSensitiveLocaleCompare('a', 'a')", "0"}),
    pureFunction("IsInteger", group, one, engine::isInteger,
                 {"IsInteger(value)", "1 when the value is a whole number or a text of one.",
                  "IsInteger('-15')", "1"}),
    pureFunction("IsDecimalNumber", group, one, engine::isDecimalNumber,
                 {"IsDecimalNumber(value)",
                  "1 when the value is a number with a fraction or an exponent, or a text of one.",
                  "IsDecimalNumber('15')", "0"}),
    pureFunction(
        "IsNumber", group, one, engine::isNumber,
        {"IsNumber(value)", "1 when the value is a number or a text of one.", "IsNumber('1.5 km')", "0"}),
};

} // namespace

std::span<const FunctionRecord> textRecords() {
    return records;
}

} // namespace orvane::adaptor

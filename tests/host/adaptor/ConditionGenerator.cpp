#include "host/adaptor/ConditionGenerator.h"

namespace orvane::testing {

std::string ConditionGenerator::oneOf(std::initializer_list<const char*> texts) {
    return texts.begin()[below(static_cast<int>(texts.size()))];
}

std::string ConditionGenerator::text() {
    return oneOf({"''",     "'a'",    "'A'",      "'Ёлка'",       "'ёлка'",
                  "'Еж'",   "'ель'",  "'Straße'", "'STRASSE'",    "'é'",
                  "'e'",    "'1'",    "'12'",     "'1.5'",        "' 12'",
                  "'x_y'",  "'100%'", "'🚲'",      "'2021-03-04'", "'2021-03-04 05:06:07.000'",
                  "'b''c'", "'я'",    "'йод'"});
}

std::string ConditionGenerator::literal() {
    if (chance(45)) {
        return text();
    }
    return oneOf({"0",
                  "1",
                  "-1",
                  "2",
                  "3",
                  "12",
                  "1.5",
                  "2.0",
                  "-0.0",
                  "1e3",
                  "9007199254740993",
                  "9223372036854775807",
                  "-9223372036854775807 - 1",
                  "1e300",
                  "Null",
                  "True",
                  "False",
                  "X'61'",
                  "X''",
                  "Date'2021-03-04'",
                  "9007199254740992.0",
                  "0.1"});
}

std::string ConditionGenerator::pattern() {
    return oneOf({"'%'",       "''",       "'ё%'",    "'Ё%'",   "'%а'",       "'_'",    "'_л%'", "'a'",
                  "'x\\_y'",   "'x!_y'",   "'100!%'", "'1%'",   "'%12%'",     "'*'",    "'?л*'", "'[a-я]*'",
                  "'[^a]*'",   "'E*'",     "'é'",     "'str%'", "'2021-03%'", "'🚲'",    "'Ёл%'", "'ЁЛ*'",
                  "'STRASS%'", "'straß%'", "'и%'",    "'Й%'",   "'i%'",       "'İst*'", "'ı%'",  "'s%'",
                  "'ſT*'",     "'🚲 %'",    "'е%'",    "'я%'",   "'x_%'",      "'1*'",   "Null"});
}

std::string ConditionGenerator::column(const std::string& alias) {
    return alias + '.' + oneOf({"id", "i", "i", "big", "r", "r", "s", "s", "s", "t", "d", "f", "x"});
}

std::string ConditionGenerator::maybeCollated(std::string value) {
    return chance(15) ? std::move(value) + oneOf({" Collate NoCase", " Collate Binary"}) : value;
}

std::string ConditionGenerator::comparison(const std::string& alias) {
    const std::string operation = oneOf({" = ", " <> ", " < ", " <= ", " > ", " >= ", " Is ", " Is Not ",
                                         " Is Distinct From ", " Is Not Distinct From "});
    const std::string left = maybeCollated(column(alias));
    const int kind = below(10);
    if (kind == 0) {
        return '(' + maybeCollated(literal()) + ')' + operation + left;
    }
    if (kind == 1) {
        return left + operation + column(alias);
    }
    return left + operation + '(' + maybeCollated(literal()) + ')';
}

std::string ConditionGenerator::list(bool texts) {
    std::string items;
    for (int count = 1 + below(5); count > 0; --count) {
        items += (items.empty() ? "" : ", ") + (texts && chance(80) ? text() : literal());
    }
    return " In (" + items + ')';
}

std::string ConditionGenerator::relation(const std::string& alias) {
    const std::string point =
        "MakePoint(" + std::to_string(below(12)) + ", " + std::to_string(below(12)) + ", 4326)";
    const std::string area = "Buffer(" + point + ", " + std::to_string(1 + below(4)) + "00, 'km')";
    return alias + ".obj" + oneOf({" Intersects ", " Within ", " Entirely Within ", " Partly Within "}) +
           area;
}

std::string ConditionGenerator::term(const std::string& alias) {
    const std::string negation = chance(30) ? " Not" : "";
    switch (below(12)) {
    case 0: return column(alias) + " Is" + negation + oneOf({" Null", " True", " False", " Unknown"});
    case 1: {
        const bool isText = chance(60);
        return maybeCollated(isText ? alias + ".s" : column(alias)) + negation + list(isText);
    }
    case 2:
        return maybeCollated(column(alias)) + negation + " Between (" + literal() + ") And (" + literal() +
               ')';
    case 3: return column(alias) + negation + " Like " + pattern() + (chance(20) ? " Escape '!'" : "");
    case 4: return alias + '.' + oneOf({"s", "t", "i"}) + negation + " Like " + pattern();
    case 5: return alias + '.' + oneOf({"s", "t", "r"}) + negation + " Glob " + pattern();
    case 6: return relation(alias);
    case 7: return '(' + column(alias) + ", " + column(alias) + ") = (" + literal() + ", " + literal() + ')';
    default: return comparison(alias);
    }
}

std::string ConditionGenerator::condition(const std::string& alias, int depth) {
    if (depth == 0 || chance(25)) {
        return term(alias);
    }
    const std::string left = '(' + condition(alias, depth - 1) + ')';
    if (chance(15)) {
        return "Not " + left;
    }
    return left + oneOf({" And ", " And ", " And ", " Or ", " Or ", " Xor "}) + '(' +
           condition(alias, depth - 1) + ')';
}

std::string ConditionGenerator::joinCondition(const std::string& left, const std::string& right) {
    const std::string operation = oneOf({" = ", " = ", " = ", " = ", " < ", " Is ", " >= ", " <> "});
    if (chance(10)) {
        return chance(50) ? right + ".s Like " + left + ".s & '%'" : left + ".s Glob " + right + ".s & '*'";
    }
    if (chance(70)) { // columns of one name
        const std::string name = column("");
        return left + name + operation + right + name;
    }
    return maybeCollated(column(left)) + operation + column(right);
}

} // namespace orvane::testing

#include "platform/sql/parsing/Parser.h"

#include "platform/sql/lexing/SqlStrings.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <initializer_list>

namespace orvane::sql {

namespace {

template<class... Keywords>
std::bitset<keywordCount> keywordSet(Keywords... keywords) {
    std::bitset<keywordCount> set;
    (set.set(static_cast<std::size_t>(keywords)), ...);
    return set;
}

/// Words that begin a statement.
const std::bitset<keywordCount>& statementKeywords() {
    static const auto set = keywordSet(Keyword::Select, Keyword::Insert, Keyword::Update, Keyword::Delete,
                                       Keyword::Table, Keyword::With);
    return set;
}

/// Words that continue an expression; the parser does not ask for them one by one.
const std::bitset<keywordCount>& operatorKeywords() {
    static const auto set = keywordSet(
        Keyword::And, Keyword::Or, Keyword::Xor, Keyword::Not, Keyword::In, Keyword::Is, Keyword::Between,
        Keyword::Like, Keyword::ILike, Keyword::Glob, Keyword::RegExp, Keyword::Contains, Keyword::Intersects,
        Keyword::Within, Keyword::Entirely, Keyword::Partly, Keyword::Mod, Keyword::Collate);
    return set;
}

const wchar_t* symbolText(TokenKind kind) {
    switch (kind) {
    case TokenKind::LeftParenthesis: return L"(";
    case TokenKind::RightParenthesis: return L")";
    case TokenKind::Comma: return L",";
    case TokenKind::Dot: return L".";
    case TokenKind::Semicolon: return L";";
    case TokenKind::Asterisk: return L"*";
    case TokenKind::Equal: return L"=";
    default: return L"";
    }
}

/// How many expected words a message lists before it leaves the rest out.
constexpr int listedWords = 7;

QString joinExpected(const std::vector<std::wstring>& words) {
    QStringList shown;
    for (const std::wstring& word : words) {
        if (shown.size() == listedWords) {
            return shown.join(QStringLiteral(", ")) + QStringLiteral(", …");
        }
        const bool isSymbol = !isNameStart(word.front());
        const QString text = fromSqlString(word);
        shown.append(isSymbol ? QCoreApplication::translate("orvane::sql", "«%0»").arg(text) : text);
    }
    const QString last = shown.takeLast();
    return shown.isEmpty() ? last
                           : QCoreApplication::translate("orvane::sql", "%0 или %1")
                                 .arg(shown.join(QStringLiteral(", ")), last);
}

} // namespace

Parser::Level::Level(Parser& parser) : parser_(parser), outerHeight_(parser.height_) {
    if (parser.nesting_ >= nestingLimit) {
        parser.failAt(
            parser.peek(),
            QCoreApplication::translate("orvane::sql", "вложенность больше %0 уровней").arg(nestingLimit));
    }
    ++parser.nesting_;
    parser.height_ = 0;
}

Parser::Level::~Level() {
    --parser_.nesting_;
    parser_.height_ = std::max(outerHeight_, parser_.height_ + 1);
}

void Parser::grow() {
    if (++height_ > heightLimit) {
        failAt(peek(),
               QCoreApplication::translate("orvane::sql", "выражение глубже %0 уровней").arg(heightLimit));
    }
}

Parser::Result Parser::parseAll() {
    if (at(TokenKind::End) || (at(TokenKind::Semicolon) && atAhead(1, TokenKind::End))) {
        failAt(peek(), QCoreApplication::translate("orvane::sql", "запрос пуст"));
    }
    Result result;
    result.node = parseStatement();
    if (!result.node) {
        inExpression_ = true;
        result.isExpression = true;
        result.node = parseExpression();
    }
    result.node->place = since(0);
    accept(TokenKind::Semicolon);
    if (!at(TokenKind::End)) {
        failExpecting(Noun::EndOfText);
    }
    return result;
}

const Token& Parser::peek(std::size_t ahead) const {
    return text_.tokens[std::min(pos_ + ahead, text_.tokens.size() - 1)];
}

bool Parser::atName() const {
    const Token& token = peek();
    return token.kind == TokenKind::QuotedName ||
           (token.kind == TokenKind::Word && !isReserved(token.keyword));
}

void Parser::advance() {
    ++pos_;
    expected_ = {};
}

bool Parser::accept(Keyword keyword) {
    if (at(keyword)) {
        advance();
        return true;
    }
    expected_.keywords.set(static_cast<std::size_t>(keyword));
    return false;
}

bool Parser::accept(TokenKind kind) {
    if (at(kind)) {
        advance();
        return true;
    }
    expected_.symbols.set(static_cast<std::size_t>(kind));
    return false;
}

void Parser::expect(Keyword keyword) {
    if (!accept(keyword)) {
        fail();
    }
}

void Parser::expect(TokenKind kind) {
    if (!accept(kind)) {
        fail();
    }
}

std::wstring Parser::takeValue() {
    std::wstring value = text_.value(peek());
    advance();
    return value;
}

std::wstring Parser::expectName() {
    if (!atName()) {
        failExpecting(Noun::Name);
    }
    return takeValue();
}

ast::SourceRange Parser::since(std::size_t first) const {
    if (pos_ == first) {
        return {};
    }
    const Token& last = text_.tokens[pos_ - 1];
    const std::size_t begin = text_.tokens[first].offset;
    return {begin, last.offset + last.length - begin};
}

std::shared_ptr<ast::TablePrimary> Parser::parseTableName() {
    const std::size_t first = pos_;
    auto table = placed(first, std::make_shared<ast::TablePrimary>(expectName()));
    tables_.push_back(table);
    return table;
}

std::shared_ptr<ast::ExplicitTable> Parser::parseExplicitTable() {
    const std::size_t first = pos_;
    auto table = placed(first, std::make_shared<ast::ExplicitTable>(expectName()));
    tables_.push_back(table);
    return table;
}

std::wstring Parser::parseAlias() {
    if (accept(Keyword::As)) {
        return at(TokenKind::Text) ? takeValue() : expectName();
    }
    if (!atName()) {
        return {};
    }
    aliasPos_ = pos_;
    return takeValue();
}

void Parser::failExpecting(Noun noun) {
    expected_.nouns.set(static_cast<std::size_t>(noun));
    fail();
}

void Parser::fail() const {
    const Token& token = peek();
    const Token& first = text_.tokens.front();
    if (inExpression_ && first.keyword == Keyword::None) {
        const Keyword meant = nearestKeyword(first, statementKeywords());
        if (meant != Keyword::None) {
            failSuggesting(first, meant);
        }
    }
    if (pos_ > 0 && aliasPos_ == pos_ - 1) {
        const Token& alias = text_.tokens[aliasPos_];
        const Keyword meant = nearestKeyword(alias, expected_.keywords);
        if (meant != Keyword::None) {
            failSuggesting(alias, meant);
        }
    }
    const Keyword meant = nearestKeyword(token, expected_.keywords | operatorKeywords());
    if (meant != Keyword::None) {
        failSuggesting(token, meant);
    }

    std::vector<std::wstring> expected = expected_.texts();
    const QString word = fromSqlString(std::wstring(text_.text(token).substr(0, 60)));
    QString message;
    if (token.kind == TokenKind::End) {
        message = QCoreApplication::translate("orvane::sql", "запрос обрывается");
    } else if (isReserved(token.keyword) && looksLikeName()) {
        message = QCoreApplication::translate(
                      "orvane::sql", "слово «%0» занято языком; как имя оно пишется в кавычках: \"%0\"")
                      .arg(word);
        failAt(token, message, std::move(expected));
    } else if (token.kind == TokenKind::Word || token.kind == TokenKind::QuotedName) {
        message = QCoreApplication::translate("orvane::sql", "неожиданное слово «%0»").arg(word);
    } else if (token.kind <= TokenKind::Parameter) {
        message = QCoreApplication::translate("orvane::sql", "неожиданное значение «%0»").arg(word);
    } else {
        message = QCoreApplication::translate("orvane::sql", "неожиданный знак «%0»").arg(word);
    }
    if (!expected.empty()) {
        message = QCoreApplication::translate("orvane::sql", "%0, ожидается %1")
                      .arg(message, joinExpected(expected));
    }
    failAt(token, message, std::move(expected));
}

/// Whether the reserved word here was rather meant as a name: a name can stand here, and what follows goes
/// with one.
bool Parser::looksLikeName() const {
    if (expected_.nouns.test(static_cast<std::size_t>(Noun::Name))) {
        return true;
    }
    const Token& next = peek(1);
    return expected_.nouns.test(static_cast<std::size_t>(Noun::Expression)) &&
           (next.kind == TokenKind::Comma || next.kind == TokenKind::Dot || next.kind == TokenKind::End ||
            next.kind == TokenKind::RightParenthesis || next.keyword == Keyword::From ||
            (next.kind >= TokenKind::Equal && next.kind <= TokenKind::GreaterOrEqual));
}

void Parser::failSuggesting(const Token& token, Keyword meant) const {
    const std::wstring meantText(spelling(meant));
    failAt(token,
           QCoreApplication::translate("orvane::sql", "неожиданное слово «%0»; возможно, имелось в виду «%1»")
               .arg(fromSqlString(std::wstring(text_.text(token))), fromSqlString(meantText)),
           {meantText});
}

void Parser::failAt(const Token& token, const QString& message, std::vector<std::wstring> expected) const {
    const TextPosition position = text_.position(token.offset);
    const QString text = QCoreApplication::translate("orvane::sql", "строка %0, столбец %1: %2")
                             .arg(QString::number(position.line), QString::number(position.column), message);
    throw SqlSyntaxError(toSqlString(text), ErrorPlace{position.line, position.column,
                                                       std::wstring(text_.text(token)), std::move(expected)});
}

std::vector<std::wstring> Parser::Expectations::texts() const {
    std::vector<std::wstring> result;
    const QString nounTexts[] = {QCoreApplication::translate("orvane::sql", "выражение"),
                                 QCoreApplication::translate("orvane::sql", "имя"),
                                 QCoreApplication::translate("orvane::sql", "конец запроса"),
                                 QCoreApplication::translate("orvane::sql", "запрос")};
    for (std::size_t i = 0; i < nouns.size(); ++i) {
        if (nouns.test(i)) {
            result.push_back(toSqlString(nounTexts[i]));
        }
    }
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (symbols.test(i)) {
            result.emplace_back(symbolText(static_cast<TokenKind>(i)));
        }
    }
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (keywords.test(i)) {
            result.emplace_back(spelling(static_cast<Keyword>(i)));
        }
    }
    return result;
}

Keyword Parser::nearestKeyword(const Token& token, const std::bitset<keywordCount>& candidates) const {
    const std::wstring_view word = text_.text(token);
    if (token.kind != TokenKind::Word || isReserved(token.keyword) || word.size() < 2) {
        return Keyword::None;
    }
    // Of two keywords equally near, the one with the same first letter is meant. Words of two letters are
    // near to nothing of their own length: any two of them differ little.
    const std::wstring lowercase = toLowercase(std::wstring(word));
    Keyword nearest = Keyword::None;
    int limit = word.size() <= 5 ? 1 : 2;
    for (std::size_t i = 1; i < candidates.size(); ++i) {
        const auto candidate = static_cast<Keyword>(i);
        const std::wstring_view text = spelling(candidate);
        const int distance = candidates.test(i) ? editDistance(word, text, limit) : limit + 1;
        if (distance == 0 || distance > limit || (word.size() == 2 && text.size() == 2)) {
            continue;
        }
        const bool sameInitial = toLowercase(std::wstring(text.substr(0, 1))).front() == lowercase.front();
        if (nearest == Keyword::None || distance < limit || sameInitial) {
            nearest = candidate;
            limit = distance;
        }
    }
    return nearest;
}

} // namespace orvane::sql

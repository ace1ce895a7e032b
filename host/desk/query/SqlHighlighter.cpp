#include "host/desk/query/SqlHighlighter.h"

#include <platform/sql/lexing/Lexer.h>

#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <optional>

namespace orvane::desk {

namespace {

/// How many units of a QString each character before an offset takes, in total.
class Utf16Offsets {
public:
    explicit Utf16Offsets(const std::wstring& text) : text_(text) {}

    /// For ascending offsets.
    int at(std::size_t offset) {
        for (; wide_ < offset && wide_ < text_.size(); ++wide_) {
            narrow_ += static_cast<unsigned long>(text_[wide_]) > 0xFFFF ? 2 : 1;
        }
        return narrow_;
    }

private:
    const std::wstring& text_;
    std::size_t wide_ = 0;
    int narrow_ = 0;
};

} // namespace

/// The document is read before its blocks are highlighted: by who is told of a change first.
SqlHighlighter::SqlHighlighter(QTextDocument* textDocument)
    : QSyntaxHighlighter(static_cast<QObject*>(textDocument)) {
    connect(textDocument, &QTextDocument::contentsChange, this, [this, textDocument] {
        if (document() == textDocument) {
            readDocument();
        }
    });
    setDocument(textDocument);
}

void SqlHighlighter::readDocument() {
    const sql::TokenizedText text = sql::tokenize(document()->toPlainText().toStdString());
    Utf16Offsets offsets(text.source);
    spans_.clear();
    std::size_t end = 0; // of the token before
    for (std::size_t i = 0; i < text.tokens.size(); ++i) {
        const sql::Token& token = text.tokens[i];
        if (const std::size_t begin = text.source.find_first_of(L"-/", end); begin < token.offset) {
            // What is between tokens and not blank is a comment.
            const int first = offsets.at(begin);
            const std::size_t last = text.source.find_last_not_of(L" \t\n", token.offset - 1);
            spans_.push_back({first, offsets.at(last + 1), Kind::Comment});
        }
        end = token.offset + token.length;
        std::optional<Kind> kind;
        if (token.kind == sql::TokenKind::Word) {
            const bool isCalled =
                i + 1 < text.tokens.size() && text.tokens[i + 1].kind == sql::TokenKind::LeftParenthesis;
            if (isReserved(token.keyword)) {
                kind = Kind::Keyword;
            } else if (isCalled) {
                kind = Kind::Function;
            } else if (token.keyword != sql::Keyword::None) {
                kind = Kind::Keyword;
            }
        } else if (token.kind == sql::TokenKind::Text || token.kind == sql::TokenKind::Hexadecimal) {
            kind = Kind::Text;
        } else if (token.kind == sql::TokenKind::Number) {
            kind = Kind::Number;
        } else if (token.kind == sql::TokenKind::QuotedName) {
            kind = Kind::QuotedName;
        }
        if (kind) {
            const int first = offsets.at(token.offset);
            spans_.push_back({first, offsets.at(end), *kind});
        }
    }
}

QTextCharFormat SqlHighlighter::formatOf(Kind kind) {
    QTextCharFormat format;
    switch (kind) {
    case Kind::Keyword:
        format.setForeground(QColor(0x1F, 0x4E, 0x9C));
        format.setFontWeight(QFont::DemiBold);
        break;
    case Kind::Function: format.setForeground(QColor(0x7A, 0x3E, 0x9D)); break;
    case Kind::Text: format.setForeground(QColor(0x2E, 0x7D, 0x32)); break;
    case Kind::Number: format.setForeground(QColor(0xB3, 0x5C, 0x00)); break;
    case Kind::QuotedName: format.setForeground(QColor(0x00, 0x6A, 0x6A)); break;
    case Kind::Comment:
        format.setForeground(QColor(0x80, 0x86, 0x8C));
        format.setFontItalic(true);
        break;
    }
    return format;
}

void SqlHighlighter::highlightBlock(const QString& text) {
    const int begin = currentBlock().position();
    const int end = begin + text.size();
    auto span = std::upper_bound(spans_.begin(), spans_.end(), begin,
                                 [](int position, const Span& each) { return position < each.end; });
    int state = -1;
    for (; span != spans_.end() && span->begin < end; ++span) {
        const int first = std::max(span->begin, begin);
        setFormat(first - begin, std::min(span->end, end) - first, formatOf(span->kind));
        if (span->end > end) { // what follows depends on it
            state = static_cast<int>(span->kind);
        }
    }
    setCurrentBlockState(state);
}

} // namespace orvane::desk

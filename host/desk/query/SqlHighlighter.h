#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

#include <vector>

namespace orvane::desk {

/// Colours the words of the dialect, as its own lexer sees them.
class SqlHighlighter final : public QSyntaxHighlighter {
    Q_OBJECT
public:
    explicit SqlHighlighter(QTextDocument* document);
    /// Takes its colours back, while it still can read the document.
    ~SqlHighlighter() override { setDocument(nullptr); }

protected:
    void highlightBlock(const QString& text) override;

private:
    enum class Kind { Keyword, Function, Text, Number, QuotedName, Comment };

    /// A stretch of the document, in its units.
    struct Span {
        int begin;
        int end;
        Kind kind;
    };

    void readDocument();
    static QTextCharFormat formatOf(Kind kind);

    std::vector<Span> spans_; ///< in their order
};

} // namespace orvane::desk

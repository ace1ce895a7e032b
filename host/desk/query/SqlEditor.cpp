#include "host/desk/query/SqlEditor.h"

#include "host/desk/query/Completion.h"
#include "host/desk/query/SqlHighlighter.h"
#include "host/desk/session/QueryFault.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>

namespace orvane::desk {

namespace {

/// Units of a QString that so many characters of a line take.
int unitsOf(const QString& line, int characters) {
    int units = 0;
    for (; characters > 0 && units < line.size(); --characters) {
        units += line[units].isHighSurrogate() && units + 1 < line.size() ? 2 : 1;
    }
    return units;
}

} // namespace

/// The strip at the left.
class SqlEditor::LineNumbers final : public QWidget {
public:
    explicit LineNumbers(SqlEditor* editor) : QWidget(editor), editor_(editor) {}
    QSize sizeHint() const override { return {editor_->lineNumbersWidth(), 0}; }

protected:
    void paintEvent(QPaintEvent* event) override { editor_->paintLineNumbers(event); }

private:
    SqlEditor* editor_;
};

SqlEditor::SqlEditor(QueryHistory& history, QWidget* parent)
    : QPlainTextEdit(parent), history_(history), completer_(new QCompleter(this)),
      candidates_(new QStringListModel(this)), lineNumbers_(new LineNumbers(this)) {
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (!QFontInfo(fixed).fixedPitch()) { // a system that knows no desktop
        fixed.setFamily(QStringLiteral("monospace"));
    }
    setFont(fixed);
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
    setPlaceholderText(tr("Запрос, например: Select name, obj From cities Where population > 1000000"));
    new SqlHighlighter(document());

    completer_->setWidget(this);
    completer_->setModel(candidates_);
    completer_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this,
            &SqlEditor::insertCompletion);

    constexpr int pauseMs = 400; // after which someone has written a word
    checkTimer_.setSingleShot(true);
    checkTimer_.setInterval(pauseMs);
    connect(&checkTimer_, &QTimer::timeout, this, &SqlEditor::check);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        showFault(std::nullopt);
        checkTimer_.start();
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &SqlEditor::markCurrentLine);
    connect(this, &QPlainTextEdit::blockCountChanged, this,
            [this] { setViewportMargins(lineNumbersWidth(), 0, 0, 0); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rectangle, int scrolled) {
        scrolled != 0 ? lineNumbers_->scroll(0, scrolled)
                      : lineNumbers_->update(0, rectangle.y(), lineNumbers_->width(), rectangle.height());
    });
    setViewportMargins(lineNumbersWidth(), 0, 0, 0);
    markCurrentLine();
}

void SqlEditor::setNames(const TableInfos& tables, const QStringList& functions) {
    tables_ = tables;
    functions_ = functions;
}

QString SqlEditor::textToRun(TextPlace& start) const {
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        return toPlainText();
    }
    const QTextBlock block = document()->findBlock(cursor.selectionStart());
    start.line = block.blockNumber() + 1;
    const QString before = block.text().left(cursor.selectionStart() - block.position());
    start.column = before.toUcs4().size() + 1;
    QString text = cursor.selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    return text;
}

void SqlEditor::showFault(const std::optional<TextPlace>& place) {
    fault_.reset();
    const QTextBlock block = place ? document()->findBlockByNumber(place->line - 1) : QTextBlock();
    if (block.isValid()) {
        const QString line = block.text();
        int begin = unitsOf(line, place->column - 1);
        const int end = std::min(begin + std::max(1, place->length), static_cast<int>(line.size()));
        if (begin >= end) { // at the end of the text: what stands before it
            begin = std::max(0, end - 1);
        }
        QTextCursor cursor(block);
        cursor.setPosition(block.position() + begin);
        cursor.setPosition(block.position() + end, QTextCursor::KeepAnchor);
        fault_.emplace();
        fault_->cursor = cursor;
        fault_->format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        fault_->format.setUnderlineColor(QColor(0xC6, 0x28, 0x28));
        fault_->format.setBackground(QColor(0xFD, 0xE7, 0xE7));
    }
    markCurrentLine();
}

void SqlEditor::replaceText(const QString& text) {
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    moveCursor(QTextCursor::End);
}

void SqlEditor::insertName(const QString& name) {
    textCursor().insertText(quotedWhereNeeded(name));
    setFocus();
}

void SqlEditor::stepHistory(int step) {
    const QStringList& queries = history_.queries();
    const int place = historyPlace_ < 0 ? queries.size() : historyPlace_;
    const int next = place + step;
    if (next < 0 || next > queries.size() || place == next) {
        return;
    }
    if (historyPlace_ < 0) {
        written_ = toPlainText();
    }
    historyPlace_ = next == queries.size() ? -1 : next;
    replaceText(historyPlace_ < 0 ? written_ : queries[next]);
}

void SqlEditor::check() {
    const auto fault = syntaxFault(toPlainText().toStdString());
    // At the end of the text somebody may be writing still.
    const bool isAtEnd = fault && fault->place && fault->place->line == document()->blockCount() &&
                         unitsOf(document()->lastBlock().text(), fault->place->column - 1) + 1 >=
                             document()->lastBlock().length() - 1;
    if (!fault || (isAtEnd && hasFocus())) {
        Q_EMIT syntaxChecked({});
        return;
    }
    showFault(fault->place);
    Q_EMIT syntaxChecked(fault->message);
}

void SqlEditor::offerCompletion() {
    const Completion completion = complete(toPlainText(), textCursor().position(), tables_, functions_);
    if (completion.candidates.isEmpty()) {
        completer_->popup()->hide();
        return;
    }
    candidates_->setStringList(completion.candidates);
    completer_->setCompletionPrefix(completion.word);
    completer_->popup()->setCurrentIndex(completer_->completionModel()->index(0, 0));
    QRect place = cursorRect().translated(lineNumbersWidth(), 0);
    place.setWidth(completer_->popup()->sizeHintForColumn(0) +
                   completer_->popup()->verticalScrollBar()->sizeHint().width() + 16);
    completer_->complete(place);
}

void SqlEditor::insertCompletion(const QString& candidate) {
    const Completion completion = complete(toPlainText(), textCursor().position(), tables_, functions_);
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor, completion.word.size());
    cursor.insertText(candidate);
    setTextCursor(cursor);
}

void SqlEditor::keyPressEvent(QKeyEvent* event) {
    const bool isOpen = completer_->popup()->isVisible();
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & Qt::ControlModifier)) {
        completer_->popup()->hide();
        Q_EMIT runRequested();
        return;
    }
    if (isOpen && (isReturn || event->key() == Qt::Key_Escape || event->key() == Qt::Key_Tab)) {
        event->ignore(); // it is the popup's
        return;
    }
    if (event->key() == Qt::Key_Space && (event->modifiers() & Qt::ControlModifier)) {
        offerCompletion();
        return;
    }
    if ((event->modifiers() & Qt::AltModifier) &&
        (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)) {
        stepHistory(event->key() == Qt::Key_Up ? -1 : 1);
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
    const QString typed = event->text();
    constexpr int enoughLetters = 2; // to offer something unasked
    const bool isWord = !typed.isEmpty() && (typed[0].isLetterOrNumber() || typed[0] == QLatin1Char('_'));
    if (typed == QLatin1String(".")) {
        offerCompletion();
    } else if (isWord || (isOpen && event->key() == Qt::Key_Backspace)) {
        const Completion completion = complete(toPlainText(), textCursor().position(), tables_, functions_);
        if (completion.word.size() >= enoughLetters || (isOpen && !completion.word.isEmpty())) {
            offerCompletion();
        } else {
            completer_->popup()->hide();
        }
    } else if (!typed.isEmpty()) {
        completer_->popup()->hide();
    }
}

void SqlEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    const QRect inside = contentsRect();
    lineNumbers_->setGeometry(inside.left(), inside.top(), lineNumbersWidth(), inside.height());
}

void SqlEditor::markCurrentLine() {
    QList<QTextEdit::ExtraSelection> marks;
    QTextEdit::ExtraSelection line;
    line.format.setBackground(palette().color(QPalette::AlternateBase));
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    marks += line;
    if (fault_) {
        marks += *fault_;
    }
    setExtraSelections(marks);
}

int SqlEditor::lineNumbersWidth() const {
    const int digits = std::max(2, static_cast<int>(QString::number(blockCount()).size()));
    return 12 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * digits;
}

void SqlEditor::paintLineNumbers(QPaintEvent* event) {
    QPainter painter(lineNumbers_);
    painter.fillRect(event->rect(), palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.setFont(font());
    QTextBlock block = firstVisibleBlock();
    auto top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (; block.isValid() && top <= event->rect().bottom(); block = block.next()) {
        const auto height = blockBoundingRect(block).height();
        painter.drawText(QRectF(0, top, lineNumbers_->width() - 6, fontMetrics().height()), Qt::AlignRight,
                         QString::number(block.blockNumber() + 1));
        top += height;
    }
}

} // namespace orvane::desk

#pragma once

#include "host/desk/query/QueryHistory.h"
#include "host/desk/session/Tables.h"

#include <QPlainTextEdit>
#include <QTimer>

#include <optional>

class QCompleter;
class QStringListModel;

namespace orvane::desk {

/// Where queries are written: coloured, completed from the open tables, with faults underlined at their place
/// and the queries run before at hand (Alt with the arrows up and down).
class SqlEditor final : public QPlainTextEdit {
    Q_OBJECT
public:
    /// The history is not owned.
    explicit SqlEditor(QueryHistory& history, QWidget* parent = nullptr);

    /// What completion offers.
    void setNames(const TableInfos& tables, const QStringList& functions);
    /// What is to be run: the selected text, else all. `line` and `column` tell where it begins.
    QString textToRun(TextPlace& start) const;
    /// Underlines a place of the text until it is changed; none for nothing.
    void showFault(const std::optional<TextPlace>& place);
    /// Does not check what is written so far: who runs it learns more.
    void skipCheck() { checkTimer_.stop(); }
    /// Replaces the text, undoably.
    void replaceText(const QString& text);
    void insertName(const QString& name);
    /// Steps through the history: 1 to newer ones, -1 to older ones.
    void stepHistory(int step);
    /// Back to what was written, as the last of the history.
    void leaveHistory() { historyPlace_ = -1; }
    /// Offers what the word at the cursor may become.
    void offerCompletion();

Q_SIGNALS:
    void runRequested();
    /// While someone writes: the fault of the text's form, empty for none.
    void syntaxChecked(const QString& fault);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class LineNumbers;

    void check();
    void insertCompletion(const QString& candidate);
    void markCurrentLine();
    int lineNumbersWidth() const;
    void paintLineNumbers(QPaintEvent* event);

    QueryHistory& history_;
    int historyPlace_ = -1; ///< -1 for what is being written
    QString written_;
    TableInfos tables_;
    QStringList functions_;
    QCompleter* completer_;
    QStringListModel* candidates_;
    QWidget* lineNumbers_;
    QTimer checkTimer_;
    std::optional<QTextEdit::ExtraSelection> fault_;
};

} // namespace orvane::desk

#pragma once

#include "host/desk/query/SqlEditor.h"
#include "host/desk/session/Session.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QWidget>

namespace orvane::desk {

/// The editor, and below it what comes of the query: how far it is, how it ended, what is wrong with it.
class QueryPane final : public QWidget {
    Q_OBJECT
public:
    /// Nothing is owned.
    QueryPane(Session& session, QueryHistory& history, QWidget* parent = nullptr);

    SqlEditor& editor() { return *editor_; }
    /// Runs the selected text, else all of it.
    void run();
    void run(const QString& text);
    /// The line below the editor.
    QString message() const { return message_->text(); }
    bool isFault() const { return isFault_; }

Q_SIGNALS:
    /// What belongs to no query.
    void reported(const QString& text);

private:
    void showRunning();
    void showOutcome(const QueryOutcome& outcome);
    void setMessage(const QString& text, bool isFault);

    Session& session_;
    QueryHistory& history_;
    SqlEditor* editor_;
    QLabel* message_;
    QProgressBar* busy_;
    QToolButton* cancel_;
    TextPlace start_; ///< of what runs, in the editor
    bool isFault_ = false;
    bool isWritten_ = false;         ///< the fault was found while someone wrote, and goes when it is mended
    std::shared_ptr<RowStore> rows_; ///< of what runs
    QString work_;                   ///< within what runs
    QElapsedTimer since_;
    QTimer tick_;
};

} // namespace orvane::desk

#include "host/desk/window/QueryPane.h"

#include "host/desk/session/QueryFault.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QVBoxLayout>

namespace orvane::desk {

namespace {

QString secondsText(qint64 milliseconds) {
    return QLocale().toString(static_cast<double>(milliseconds) / 1000, 'f', milliseconds < 10'000 ? 2 : 1);
}

QString countText(std::int64_t count) {
    return QLocale().toString(qlonglong{count});
}

} // namespace

QueryPane::QueryPane(Session& session, QueryHistory& history, QWidget* parent)
    : QWidget(parent), session_(session), history_(history), editor_(new SqlEditor(history)),
      message_(new QLabel), busy_(new QProgressBar), cancel_(new QToolButton) {
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message_->setTextFormat(Qt::PlainText);
    message_->setWordWrap(true);
    message_->setMinimumHeight(message_->fontMetrics().height() + 6);
    busy_->setRange(0, 0);
    busy_->setTextVisible(false);
    busy_->setFixedSize(90, 12);
    busy_->hide();
    cancel_->setText(tr("Прервать"));
    cancel_->setToolTip(tr("Прервать запрос (Esc)"));
    cancel_->hide();
    connect(cancel_, &QToolButton::clicked, &session_, &Session::cancel);

    auto* line = new QHBoxLayout;
    line->setContentsMargins(6, 2, 6, 2);
    line->addWidget(message_, 1);
    line->addWidget(busy_);
    line->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(editor_, 1);
    layout->addLayout(line);

    constexpr int tickMs = 100;
    tick_.setInterval(tickMs);
    connect(&tick_, &QTimer::timeout, this, &QueryPane::showRunning);
    connect(editor_, &SqlEditor::runRequested, this, qOverload<>(&QueryPane::run));
    connect(editor_, &SqlEditor::syntaxChecked, this, [this](const QString& fault) {
        if (!session_.isRunning() && (isWritten_ || !fault.isEmpty())) {
            setMessage(fault, !fault.isEmpty());
            isWritten_ = isFault_;
        }
    });
    connect(&session_, &Session::tablesChanged, this,
            [this] { editor_->setNames(session_.tables(), session_.functions()); });
    connect(&session_, &Session::queryBegun, this, [this] {
        rows_.reset();
        work_.clear();
        since_.start();
        tick_.start();
        busy_->show();
        cancel_->show();
        setMessage(tr("Выполняется…"), false);
    });
    connect(&session_, &Session::resultBegun, this,
            [this](const ResultRowsInfo& result) { rows_ = result.rows; });
    connect(&session_, &Session::progressed, this, [this](const QString& work) { work_ = work; });
    connect(&session_, &Session::queryEnded, this, &QueryPane::showOutcome);
    connect(&session_, &Session::exported, this, [this](const QString& path, const QueryOutcome& outcome) {
        showOutcome(outcome);
        if (outcome.kind == QueryOutcome::Kind::Failed) {
            Q_EMIT reported(outcome.message); // it is not the query that is wrong
        } else if (outcome.kind == QueryOutcome::Kind::Done) {
            setMessage(tr("Записан файл %0, строк: %1").arg(path, countText(outcome.rows)), false);
            Q_EMIT reported(outcome.message);
        }
    });
}

void QueryPane::run() {
    TextPlace start;
    const QString text = editor_->textToRun(start);
    start_ = start;
    if (text.trimmed().isEmpty()) {
        return;
    }
    editor_->showFault(std::nullopt);
    editor_->skipCheck();
    if (!history_.add(text)) {
        Q_EMIT reported(tr("История запросов не записывается"));
    }
    editor_->leaveHistory();
    session_.run(text);
}

void QueryPane::run(const QString& text) {
    editor_->replaceText(text);
    run();
}

void QueryPane::showRunning() {
    const std::int64_t rows = rows_ ? rows_->rowCount() : 0;
    const QString done = work_.isEmpty() ? tr("Выполняется") : work_;
    setMessage(rows > 0 ? tr("%0… %1 с, строк: %2").arg(done, secondsText(since_.elapsed()), countText(rows))
                        : tr("%0… %1 с").arg(done, secondsText(since_.elapsed())),
               false);
}

void QueryPane::showOutcome(const QueryOutcome& outcome) {
    if (session_.isRunning()) { // the next query
        return;
    }
    tick_.stop();
    busy_->hide();
    cancel_->hide();
    switch (outcome.kind) {
    case QueryOutcome::Kind::Cancelled:
        return setMessage(outcome.rows > 0 ? tr("Прервано, строк: %0").arg(countText(outcome.rows))
                                           : tr("Прервано"),
                          false);
    case QueryOutcome::Kind::Failed: {
        if (!outcome.place) {
            return setMessage(outcome.message, true);
        }
        const TextPlace place = shifted(*outcome.place, start_.line, start_.column);
        editor_->showFault(place);
        return setMessage(
            tr("Строка %0, столбец %1: %2").arg(place.line).arg(place.column).arg(outcome.message), true);
    }
    case QueryOutcome::Kind::Done: break;
    }
    const QString seconds = secondsText(outcome.milliseconds);
    if (!outcome.message.isEmpty()) {
        Q_EMIT reported(outcome.message);
    }
    setMessage(outcome.changedRows > 0
                   ? tr("Изменено строк: %0, %1 с").arg(countText(outcome.changedRows), seconds)
                   : tr("Строк: %0, %1 с").arg(countText(outcome.rows), seconds),
               false);
}

void QueryPane::setMessage(const QString& text, bool isFault) {
    isFault_ = isFault;
    isWritten_ = false;
    message_->setStyleSheet(isFault ? QStringLiteral("color: #B71C1C;") : QString());
    message_->setText(text);
}

} // namespace orvane::desk

#include "host/desk/session/Session.h"

#include <platform/work/Progress.h>

#include <algorithm>
#include <utility>

namespace orvane::desk {

namespace {

/// What runs on another thread to tell the window: a function with the arguments of `tell`, which is called
/// with copies of them on the thread of `receiver`, unless that is gone.
template<class Tell>
auto queued(QObject* receiver, Tell tell) {
    return [receiver, tell](auto... arguments) {
        QMetaObject::invokeMethod(
            receiver, [tell, arguments...] { tell(arguments...); }, Qt::QueuedConnection);
    };
}

QString progressText(const work::Progress::State& state) {
    return state.total > 0 && !state.work.isEmpty()
               ? QStringLiteral("%0: %1 %").arg(state.work).arg(state.done * 100 / state.total)
               : state.work;
}

} // namespace

Session::Session(QObject* parent) : QObject(parent) {
    constexpr int interruptionMs = 5; // one that comes just between two statements has no effect
    interruption_.setInterval(interruptionMs);
    connect(&interruption_, &QTimer::timeout, this, [this] { thread_->cancel(cancelled_); });

    sinkBefore_ = loggerInstance()->exchangeSink([this](const LogEntry& entry) {
        if (entry.level == LogLevel::Warning) {
            queued(this, [this](const QString& text) { Q_EMIT reported(text); })(entry.text);
        }
    });
    work::Progress::exchangeWatcher([this](const work::Progress::State& state) {
        queued(this, [this](const QString& text) { Q_EMIT progressed(text); })(progressText(state));
    });
    thread_ =
        std::make_unique<EngineThread>([this] { return std::make_unique<EngineWork>(*thread_, events()); },
                                       queued(this, [this](const QString& reason) {
                                           failure_ = reason;
                                           Q_EMIT failed(reason);
                                       }));
    thread_->start();
}

Session::~Session() {
    thread_.reset();
    work::Progress::exchangeWatcher({});
    loggerInstance()->exchangeSink(std::move(sinkBefore_));
}

EngineEvents Session::events() {
    EngineEvents events;
    events.tablesChanged = queued(this, [this](const TableInfos& tables, const QStringList& functions) {
        tables_ = tables;
        functions_ = functions;
        Q_EMIT tablesChanged();
    });
    events.opened = queued(this, [this](const QVector<quint64>& tables) { Q_EMIT opened(tables); });
    events.reported = queued(this, [this](const QString& text) { Q_EMIT reported(text); });
    events.resultBegun = queued(this, [this](const ResultRowsInfo& result) { Q_EMIT resultBegun(result); });
    events.queryEnded = queued(this, [this](const QueryOutcome& outcome) {
        end();
        Q_EMIT queryEnded(outcome);
    });
    events.exported = queued(this, [this](const QString& path, const QueryOutcome& outcome) {
        end();
        Q_EMIT exported(path, outcome);
    });
    events.selected = queued(this, [this](const SelectedFeatures& features) {
        selection_ = features;
        Q_EMIT selectionChanged();
    });
    events.layerRead = queued(this, [this](quint64 table, const std::shared_ptr<RowStore>& features,
                                           bool isWhole) { Q_EMIT layerRead(table, features, isWhole); });
    events.labelled = queued(this, [this](quint64 table, const QString& expression, const LabelTexts& texts) {
        Q_EMIT labelled(table, expression, texts);
    });
    events.labellingFailed =
        queued(this, [this](quint64 table, const QString& expression, const QString& reason) {
            Q_EMIT labellingFailed(table, expression, reason);
        });
    return events;
}

const TableInfo* Session::table(quint64 key) const {
    const auto found = std::find_if(tables_.begin(), tables_.end(),
                                    [key](const TableInfo& table) { return table.key == key; });
    return found == tables_.end() ? nullptr : &*found;
}

void Session::open(const QString& path) {
    post(EngineThread::When::Anytime, [path](EngineWork& work) { work.open(path); });
}

void Session::close(quint64 table) {
    post(EngineThread::When::Anytime, [table](EngineWork& work) { work.close(table); });
}

void Session::rename(quint64 table, const QString& name) {
    post(EngineThread::When::Anytime, [table, name](EngineWork& work) { work.rename(table, name); });
}

void Session::run(const QString& text) {
    if (!begin()) {
        return;
    }
    post(EngineThread::When::BetweenQueries,
         [query = lastQuery_, text](EngineWork& work) { work.run(query, text); });
    Q_EMIT queryBegun();
}

void Session::exportResult(const QString& path) {
    if (!begin()) {
        return;
    }
    post(EngineThread::When::BetweenQueries,
         [query = lastQuery_, path](EngineWork& work) { work.exportResult(query, path); });
    Q_EMIT queryBegun();
}

void Session::cancel() {
    if (running_ != 0) {
        cancelled_ = lastQuery_;
        thread_->cancel(cancelled_);
        interruption_.start();
    }
}

/// False where there is no engine, which nobody waits for then.
bool Session::begin() {
    if (!failure_.isEmpty()) {
        Q_EMIT failed(failure_);
        return false;
    }
    cancel();
    ++lastQuery_;
    ++running_;
    return true;
}

void Session::end() {
    --running_;
    if (lastQuery_ - running_ >= cancelled_) { // they end in their order
        interruption_.stop();
    }
}

void Session::select(quint64 table, const QVector<qint64>& ids) {
    post(EngineThread::When::Anytime, [table, ids](EngineWork& work) { work.select(table, ids); });
}

void Session::selectRows(quint64 table, const QVector<qint64>& rowNumbers) {
    post(EngineThread::When::Anytime,
         [table, rowNumbers](EngineWork& work) { work.selectRows(table, rowNumbers); });
}

void Session::readLayer(quint64 table) {
    post(EngineThread::When::Anytime, [table](EngineWork& work) { work.readLayer(table); });
}

void Session::label(quint64 table, const QString& expression, const QVector<qint64>& ids) {
    post(EngineThread::When::Anytime,
         [table, expression, ids](EngineWork& work) { work.label(table, expression, ids); });
}

} // namespace orvane::desk

#pragma once

#include "host/desk/session/EngineThread.h"
#include "host/desk/session/EngineWork.h"

#include <platform/log/Logger.h>

#include <QObject>
#include <QTimer>

namespace orvane::desk {

/// The engine as the window uses it: every call returns at once, what comes of it is told by a signal. The
/// engine itself works in a thread of its own. Used from the thread of the window; one at a time in a
/// process.
class Session final : public QObject {
    Q_OBJECT
public:
    explicit Session(QObject* parent = nullptr);
    /// Cancels what runs.
    ~Session() override;

    /// Opens every layer of a file.
    void open(const QString& path);
    void close(quint64 table);
    void rename(quint64 table, const QString& name);
    /// Runs statements. A query that runs still is cancelled.
    void run(const QString& text);
    /// Writes the rows of the last result into a file; may be cancelled as a query.
    void exportResult(const QString& path);
    void cancel();
    bool isRunning() const { return running_ != 0; }

    /// Selects features by their identifiers; table 0 for none.
    void select(quint64 table, const QVector<qint64>& ids);
    /// Selects features by the row numbers that a result has for them.
    void selectRows(quint64 table, const QVector<qint64>& rowNumbers);
    /// Reads the features of a layer: layerRead tells, several times.
    void readLayer(quint64 table);
    /// Computes an expression for features of a table.
    void label(quint64 table, const QString& expression, const QVector<qint64>& ids);

    const TableInfos& tables() const { return tables_; }
    const TableInfo* table(quint64 key) const;
    const QStringList& functions() const { return functions_; }
    const SelectedFeatures& selection() const { return selection_; }

Q_SIGNALS:
    void tablesChanged();
    void opened(const QVector<quint64>& tables);
    void reported(const QString& text);
    /// The engine is not there; nothing will be done.
    void failed(const QString& reason);
    void queryBegun();
    void resultBegun(const orvane::desk::ResultRowsInfo& result);
    void queryEnded(const orvane::desk::QueryOutcome& outcome);
    void exported(const QString& path, const orvane::desk::QueryOutcome& outcome);
    void selectionChanged();
    void layerRead(quint64 table, std::shared_ptr<orvane::desk::RowStore> features, bool isWhole);
    void labelled(quint64 table, const QString& expression, const orvane::desk::LabelTexts& texts);
    void labellingFailed(quint64 table, const QString& expression, const QString& reason);
    /// A long piece of work within a query, making an index for instance; an empty text when it has ended.
    void progressed(const QString& work);

private:
    EngineEvents events();
    void post(EngineThread::When when, EngineThread::Task task) { thread_->post(when, std::move(task)); }
    bool begin();
    void end();

    TableInfos tables_;
    QStringList functions_;
    SelectedFeatures selection_;
    QString failure_; ///< why there is no engine
    quint64 lastQuery_ = 0;
    quint64 cancelled_ = 0; ///< the last that was cancelled
    quint64 running_ = 0;   ///< how many queries have begun and not ended
    QTimer interruption_;
    CuteMessageLogger::Sink sinkBefore_;
    std::unique_ptr<EngineThread> thread_; ///< the last: it ends first
};

} // namespace orvane::desk

#pragma once

#include "host/desk/session/EngineHost.h"
#include "host/desk/session/LayerReading.h"
#include "host/desk/session/QueryRunner.h"

#include <QElapsedTimer>
#include <QObject>

#include <map>
#include <memory>

namespace orvane::adaptor {
class FeatureExpression;
}

namespace orvane::desk {

class EngineThread;

/// Texts of features by their identifiers.
using LabelTexts = QHash<qint64, QString>;

/// What the thread of the engine tells. Called on that thread.
struct EngineEvents {
    std::function<void(const TableInfos& tables, const QStringList& functions)> tablesChanged;
    /// The tables of a file that the user has opened.
    std::function<void(const QVector<quint64>& tables)> opened;
    /// What went wrong without ending anything, or is worth knowing.
    std::function<void(const QString& text)> reported;
    std::function<void(const ResultRowsInfo& result)> resultBegun;
    std::function<void(const QueryOutcome& outcome)> queryEnded;
    std::function<void(const QString& path, const QueryOutcome& outcome)> exported;
    std::function<void(const SelectedFeatures& features)> selected;
    /// The features of a layer: their identifiers and geometries, as they come.
    std::function<void(quint64 table, std::shared_ptr<RowStore> features, bool isWhole)> layerRead;
    std::function<void(quint64 table, const QString& expression, const LabelTexts& texts)> labelled;
    std::function<void(quint64 table, const QString& expression, const QString& reason)> labellingFailed;
};

/// All that is done on the thread of the engine. A failure is told by an event; nothing is thrown but by the
/// constructor.
class EngineWork final : public QObject {
    Q_OBJECT
public:
    /// Throws std::runtime_error when there is no engine.
    EngineWork(EngineThread& thread, EngineEvents events);
    ~EngineWork() override;

    EngineHost& host() { return host_; }

    void open(const QString& source);
    void close(quint64 table);
    void rename(quint64 table, const QString& name);
    /// `query` is its number, by which it is cancelled; they ascend.
    void run(quint64 query, const QString& text);
    void exportResult(quint64 query, const QString& path);
    /// Selects features by their identifiers, or by the row numbers that results have.
    void select(quint64 table, const QVector<qint64>& ids);
    void selectRows(quint64 table, const QVector<qint64>& rowNumbers);
    /// Reads identifiers and geometries of all features of a table, in portions, from the beginning.
    void readLayer(quint64 table);
    void label(quint64 table, const QString& expression, const QVector<qint64>& ids);

private:
    bool goesOn();
    void readPortion(quint64 table, const std::shared_ptr<LayerReading>& reading);
    void tellTables();
    void tellSelection();

    EngineThread& thread_;
    EngineEvents events_;
    EngineHost host_;
    QueryRunner runner_;
    quint64 query_ = 0;         ///< that runs
    QElapsedTimer sinceOthers_; ///< since other tasks ran
    std::map<quint64, std::shared_ptr<LayerReading>> readings_;
    struct Label {
        QString text;
        std::unique_ptr<adaptor::FeatureExpression> expression;
    };
    std::map<quint64, Label> labels_;
    QString toldTables_;
};

} // namespace orvane::desk

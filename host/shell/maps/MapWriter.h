#pragma once

#include "host/shell/maps/BlobShape.h"
#include "host/shell/maps/MapCanvas.h"
#include "host/shell/output/ResultWriter.h"

#include "host/adaptor/FeatureExpression.h"

#include <QVariant>

#include <optional>

namespace orvane::shell {

/// Of standard output, if a map goes there. Colours are for terminals, and not where NO_COLOR or a dumb
/// terminal is in the environment.
TerminalSpace terminalSpace(bool isStandardOutput);

/// What of a result becomes a map, and where it goes.
struct MapRequest {
    MapOptions options;
    std::optional<PictureFormat> picture; ///< none for a map in the terminal
    TerminalSpace terminal;
    QString fill; ///< expressions over the columns of the result; empty for none
    QString label;
    QStringList background; ///< names of tables
};

/// Draws the result of a statement as a map. Calls throw std::runtime_error, for the user: no geometry, a
/// wrong expression, nothing to draw.
class MapWriter : public ResultWriter {
public:
    /// Nothing is owned. The statement is the one whose rows are drawn.
    MapWriter(MapRequest request, sqlite3_stmt* statement, Engine& engine, Output& output);
    ~MapWriter() override;

    void begin(const std::vector<std::string>& columns) override;
    void row(const ResultRow& row) override;
    void end() override;

private:
    /// A value of each row: of a column, or of an expression.
    struct Computed {
        const char* option;
        int column = -1;
        std::unique_ptr<adaptor::FeatureExpression> expression = nullptr;
        bool isAsked() const { return column >= 0 || expression; }
    };

    bool findGeometry();
    void prepare();
    void prepare(Computed& computed, const QString& text);
    void addRow();
    void addToBlock();
    void addBlock();
    QVariant columnValue(int column) const;
    void addBackground(const QString& table);

    MapRequest request_;
    sqlite3_stmt* statement_;
    Engine& engine_;
    std::unique_ptr<MapCanvas> canvas_;
    BlobShape shapes_;
    QStringList columns_;
    int geometryColumn_ = -1;
    bool isPrepared_ = false;
    std::int64_t rows_ = 0;
    Computed fill_{"--map-fill"};
    Computed label_{"--map-label"};
    std::shared_ptr<const dp::TableSchema> schema_; ///< of the result's columns, for expressions
    std::vector<int> schemaColumns_;                ///< the result's column of each attribute
    std::vector<dp::FeaturePtr> block_;             ///< rows whose expressions are not computed yet
};

} // namespace orvane::shell

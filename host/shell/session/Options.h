#pragma once

#include "host/shell/maps/MapCanvas.h"
#include "host/shell/output/ResultWriter.h"

#include "platform/log/Logger.h"
#include <orvane/engine/EngineCache.h>

#include <QString>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvane::shell {

/// A layer to open under a name of the user's choice; without layer name the only one of the file.
struct TableSource {
    QString name;
    QString path;
    QString layer;
};

/// Statements from the command line or from a file.
struct StatementSource {
    enum Kind { Command, Script };
    Kind kind = Command;
    std::string value; ///< the UTF-8 text, or the path
};

/// The features that the selection shall hold: rows of a table, or what a query finds.
struct SelectionSource {
    QString table;
    std::vector<qint64> ids;
    std::string query; ///< UTF-8, empty when rows are given
};

/// The value of a parameter of statements: NULL, a number or a UTF-8 text.
using ParameterValue = std::variant<std::monostate, std::int64_t, double, std::string>;
/// By their names in lower case, without the colon, or their numbers.
using Parameters = std::map<std::string, ParameterValue>;

/// What the command line asks for.
struct Options {
    std::vector<QString> files;
    std::vector<TableSource> tables;
    std::vector<StatementSource> statements; ///< in the order of the command line
    std::optional<SelectionSource> selection;
    Format format = Format::Table;
    std::optional<std::string> outputPath;
    /// The output is a table or layer in a format of GDAL's, told by its ending, not text.
    bool outputIsData = false;
    /// The output is a picture of a map, told by its ending.
    std::optional<PictureFormat> picture;
    MapOptions map;
    QString mapFill; ///< expressions; empty for none
    QString mapLabel;
    QStringList mapBackground;            ///< names of tables
    std::optional<GeometryForm> geometry; ///< default: short on a terminal
    bool overwrite = false;               ///< data files that exist may be replaced
    std::optional<std::string> nullText;
    Parameters parameters;
    bool header = true;
    bool translateOnly = false;
    bool sqlite = false;
    bool timing = false;
    bool explain = false;
    bool trustReferences = false; ///< files open with what they refer to, wherever it lies
    bool noIndices = false;       ///< never make an attribute index
    QString indexDirectory;       ///< where attribute indices are kept; empty for the temporary directory
    engine::EngineCache::GaiaCache memo = engine::EngineCache::NoMemo;
    LogLevel logLevel = LogLevel::Warning;
};

/// The value of --locale, which the language of everything else depends on; empty when it is not given.
QString localeOption(int argc, const char* const* argv);

/// Whether the command line asks for a picture, which needs another application; known before all else.
bool wantsPicture(int argc, const char* const* argv);

/// "wkt", "short" or "geojson". Throws UsageError.
GeometryForm parseGeometryForm(const std::string& word);

/// "table", "csv", ... Throws UsageError.
Format parseFormat(const std::string& word);
/// NAME=VALUE or VALUE, whose name is empty. A number, NULL, or a text, which may stand in single quotes.
std::pair<std::string, ParameterValue> parseParameter(const std::string& argument);

/// NAME=FILE or NAME=FILE|LAYER in UTF-8. Throws UsageError.
TableSource parseTable(const std::string& argument);

/// Reads the command line; texts and paths are taken as UTF-8. Nothing when the user only asked for help or
/// for the version, which are then printed on standard output. Throws UsageError.
std::optional<Options> parseOptions(int argc, const char* const* argv);

} // namespace orvane::shell

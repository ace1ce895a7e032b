#include "host/adaptor/explaining/StatementExplanation.h"

#include "host/adaptor/explaining/ScanDescription.h"
#include "host/adaptor/explaining/ScanReport.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <sqlite3.h>

#include <map>
#include <string>
#include <vector>

namespace orvane::adaptor {

namespace {

struct Words {
    Q_DECLARE_TR_FUNCTIONS(orvane::adaptor)
};

/// A row of "Explain Query Plan".
struct Step {
    int id;
    int parent;
    QString text;
};

std::vector<Step> readSteps(sqlite3* database, std::string_view sqliteText) {
    std::vector<Step> steps;
    const std::string question = "Explain Query Plan " + std::string(sqliteText);
    sqlite3_stmt* handle = nullptr;
    sqlite3_prepare_v2(database, question.data(), static_cast<int>(question.size()), &handle, nullptr);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(handle, &sqlite3_finalize);
    while (handle && sqlite3_step(handle) == SQLITE_ROW) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle, 3));
        steps.push_back(
            {sqlite3_column_int(handle, 0), sqlite3_column_int(handle, 1), QString::fromUtf8(text)});
    }
    return steps;
}

struct KnownStep {
    QRegularExpression pattern; ///< of the whole text; captures a name, or nothing
    const char* words;
};

const std::vector<KnownStep>& knownSteps() {
    static const std::vector<KnownStep> steps = [] {
        const auto whole = [](const char* pattern) {
            return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(pattern)));
        };
        return std::vector<KnownStep>{
            {whole("USE TEMP B-TREE FOR (.+)"), QT_TRANSLATE_NOOP("orvane::adaptor", "сортировка для %0")},
            {whole("(?:CO-ROUTINE|MATERIALIZE) (.+)"), QT_TRANSLATE_NOOP("orvane::adaptor", "запрос %0:")},
            {whole("CORRELATED (?:SCALAR|LIST) SUBQUERY (.+)"),
             QT_TRANSLATE_NOOP("orvane::adaptor", "подзапрос %0, заново для каждой строки:")},
            {whole("(?:SCALAR|LIST) SUBQUERY (.+)"),
             QT_TRANSLATE_NOOP("orvane::adaptor", "подзапрос %0, один раз:")},
            {whole("SEARCH (.+) USING AUTOMATIC .*INDEX .*"),
             QT_TRANSLATE_NOOP("orvane::adaptor", "%0: временный индекс SQLite")},
            {whole("SCAN CONSTANT ROW"), QT_TRANSLATE_NOOP("orvane::adaptor", "одна строка без таблицы")},
            {whole("SCAN (\\S+)"), QT_TRANSLATE_NOOP("orvane::adaptor", "%0: все строки")},
        };
    }();
    return steps;
}

/// What a user may want to know of SQLite's own steps; others are shown as SQLite names them.
QString describeStep(const QString& text) {
    for (const KnownStep& step : knownSteps()) {
        if (const auto match = step.pattern.match(text); match.hasMatch()) {
            const QString words = Words::tr(step.words);
            return match.lastCapturedIndex() > 0 ? words.arg(match.captured(1)) : words;
        }
    }
    return text;
}

} // namespace

struct StatementExplanation::Internal {
    ScanRecorder recorder;
    std::vector<Step> steps;
};

StatementExplanation::StatementExplanation(sqlite3* database, std::string_view sqliteText)
    : internal_(std::make_unique<Internal>()) {
    internal_->steps = readSteps(database, sqliteText);
    internal_->recorder.restart();
}

StatementExplanation::~StatementExplanation() = default;

QStringList StatementExplanation::lines() const {
    static const QRegularExpression scan(
        QStringLiteral("^(?:SCAN|SEARCH) (.+) VIRTUAL TABLE INDEX \\d+:(\\d+) "));
    QStringList lines;
    std::map<int, int> depths;
    const auto append = [&lines](int depth, const QString& text) {
        lines += QString(2 * depth, QLatin1Char(' ')) + text;
    };
    for (const Step& step : internal_->steps) {
        const int depth = step.parent == 0 ? 0 : depths[step.parent] + 1;
        depths[step.id] = depth;
        const auto match = scan.match(step.text);
        const auto report = internal_->recorder.report(match.captured(2).toULongLong());
        if (!report) {
            append(depth, describeStep(step.text));
            continue;
        }
        const QStringList words = describe(*report, match.captured(1));
        append(depth, words.front());
        for (const QString& detail : words.mid(1)) {
            append(depth + 1, detail);
        }
    }
    return lines;
}

} // namespace orvane::adaptor

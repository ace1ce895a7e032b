#include "host/adaptor/explaining/ScanDescription.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>

namespace orvane::adaptor {

namespace {

using Outcome = IndexUse::Outcome;

struct Words {
    Q_DECLARE_TR_FUNCTIONS(orvane::adaptor)
};

QString number(double value) {
    return QString::number(value, 'f', 0);
}

QString milliseconds(double nanoseconds) {
    return QString::number(nanoseconds / 1e6, 'f', 2);
}

/// In brackets: whether what answered was there before.
QString origin(const ScanReport& report) {
    return report.makingMs
               ? Words::tr("сделан сейчас за %0 мс").arg(QString::number(*report.makingMs, 'f', 1))
               : Words::tr("был");
}

QString sourceConditions(const ScanReport& report) {
    QStringList texts;
    for (const PlannedCondition& condition : report.planned.conditions) {
        if (condition.isForSource) {
            texts += condition.text();
        }
    }
    return texts.join(QStringLiteral(", "));
}

/// The columns of the index, and the patterns that it was asked for.
QString indexedConditions(const ScanReport& report) {
    QStringList texts = report.indexColumns;
    for (const PlannedCondition& condition : report.planned.conditions) {
        const auto& attributes = report.indexAttributes;
        if (condition.isPattern &&
            std::find(attributes.begin(), attributes.end(), condition.attribute) != attributes.end()) {
            texts += condition.comparison;
        }
    }
    return texts.join(QStringLiteral(", "));
}

QString describe(Access access, const ScanReport& report) {
    switch (access) {
    case Access::WholeTable: return Words::tr("просмотр всей таблицы");
    case Access::SourceFilter: return Words::tr("фильтр источника: %0").arg(sourceConditions(report));
    case Access::RowNumber: return Words::tr("поиск по номеру строки");
    case Access::AttributeIndex:
        return Words::tr("индекс по %0 (%1)").arg(indexedConditions(report), origin(report));
    case Access::SpatialIndex: return Words::tr("R-дерево по геометрии (%0)").arg(origin(report));
    case Access::SourceIndex:
        return Words::tr("индекс файла по %0").arg(report.sourceIndexColumns.join(QStringLiteral(", ")));
    case Access::SourceSpatialIndex: return Words::tr("пространственный индекс файла");
    case Access::SourceBoxes: return Words::tr("просмотр рамок геометрии");
    case Access::Memory: return Words::tr("строки в памяти");
    case Access::Relation: return Words::tr("просмотр всей таблицы: у геометрий разные системы координат");
    }
    return {};
}

QString accesses(const ScanReport& report) {
    QStringList texts;
    const auto add = [&texts](const QString& text, std::int64_t times) {
        if (times > 0) {
            texts += times == 1 ? text : Words::tr("%0, раз: %1").arg(text).arg(times);
        }
    };
    for (std::size_t i = 0; i < accessCount; ++i) {
        const auto access = static_cast<Access>(i);
        add(describe(access, report), report.scansBy(access));
    }
    add(Words::tr("условие не выполнимо"), report.emptyScans);
    return texts.isEmpty() ? Words::tr("не понадобилась") : texts.join(QStringLiteral("; "));
}

std::int64_t scanCount(const ScanReport& report) {
    std::int64_t count = report.emptyScans;
    for (const std::int64_t scans : report.scans) {
        count += scans;
    }
    return count;
}

QString rows(const ScanReport& report) {
    const std::int64_t scans = scanCount(report);
    const QString expected = number(report.planned.expectedRows);
    QString text = scans > 1 ? Words::tr("строк %0, ожидалось %1 на раз").arg(report.rowsPassed).arg(expected)
                             : Words::tr("строк %0, ожидалось %1").arg(report.rowsPassed).arg(expected);
    if (report.rowsRead != report.rowsPassed) {
        text += Words::tr(", прочитано %0").arg(report.rowsRead);
    }
    return text;
}

/// Why no attribute index answers; %0 stands for conditions or columns, %1 and %2 for two costs.
QString reasonText(Outcome outcome) {
    switch (outcome) {
    case Outcome::Comparison: return Words::tr("нет индекса для %0: такое сравнение он не ускоряет");
    case Outcome::ColumnType: return Words::tr("нет индекса для %0: столбцы этого типа не индексируются");
    case Outcome::Pattern: return Words::tr("нет индекса для %0: с начала такого образца в индексе не найти");
    case Outcome::Collation: return Words::tr("нет индекса для %0: тексты сравниваются не по Locale");
    case Outcome::Operand: return Words::tr("нет индекса для %0: значение не того типа, что столбец");
    case Outcome::SmallTable: return Words::tr("нет индекса для %0: таблица мала");
    case Outcome::UnknownSize: return Words::tr("нет индекса для %0: число строк неизвестно");
    case Outcome::ScansCheaper:
        return Words::tr("нет индекса для %0: просмотры пока дешевле (%1 мс), чем его сделать (%2 мс)");
    case Outcome::FindsMuch: return Words::tr("индекс по %0 не годится: он нашёл бы слишком много строк");
    case Outcome::NoStorage: return Words::tr("нет индекса для %0: негде хранить");
    case Outcome::SwitchedOff: return Words::tr("нет индекса для %0: индексы выключены");
    case Outcome::NotAsked:
    case Outcome::Used: break;
    }
    return {};
}

/// Why no attribute index answered a table that was at last read otherwise.
QStringList reasons(const ScanReport& report) {
    QStringList lines, servable;
    const IndexUse& use = report.lastIndexUse;
    if (report.scansBy(Access::WholeTable) + report.scansBy(Access::SourceFilter) == 0 ||
        use.outcome == Outcome::Used) {
        return lines;
    }
    for (const PlannedCondition& condition : report.planned.conditions) {
        if (condition.index == Outcome::Used) {
            servable += condition.text();
        } else {
            lines += reasonText(condition.index).arg(condition.text());
        }
    }
    if (!servable.isEmpty() && use.outcome != Outcome::NotAsked) {
        QString text = reasonText(use.outcome)
                           .arg((use.attributes ? report.indexColumns : servable).join(QStringLiteral(", ")));
        lines += use.outcome == Outcome::ScansCheaper
                     ? text.arg(milliseconds(use.scanCost), milliseconds(use.makingCost))
                     : text;
    }
    return lines;
}

} // namespace

QStringList describe(const ScanReport& report, const QString& alias) {
    const QString& table = report.planned.table;
    const QString name = alias.isEmpty() || alias == table ? table : table + QLatin1Char(' ') + alias;
    QStringList lines{QStringLiteral("%0: %1").arg(name, accesses(report))};
    if (scanCount(report) > 0) {
        lines += rows(report);
    }
    if (report.isArranged) {
        lines += Words::tr("строки сгруппированы в памяти");
    }
    return lines + reasons(report);
}

} // namespace orvane::adaptor

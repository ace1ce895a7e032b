#pragma once

#include "host/desk/window/MainWindow.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>

namespace orvane::desk {

/// A window as a user finds it, driven by its widgets. What is waited for is a state, never a time.
class DeskTest : public ::testing::Test {
protected:
    static constexpr int patienceMs = 120'000; ///< only a test that fails waits so long

    DeskTest() {
        window.resize(1100, 760);
        window.show();
    }

    template<class Condition>
    static bool waitFor(Condition condition) {
        return QTest::qWaitFor(condition, patienceMs);
    }
    static QString example(const QString& file) { return QStringLiteral(ORVANE_EXAMPLE_DATA "/") + file; }
    /// Opens a file and waits for its tables.
    bool open(const QString& file) {
        QSignalSpy opened(&window.session(), &Session::opened);
        window.open({file});
        return waitFor([&] { return !opened.isEmpty(); }) &&
               waitFor([&] { return window.layers().isWhole(); });
    }
    /// Writes a query, runs it and waits for its end.
    QueryOutcome ask(const QString& query) {
        QueryOutcome outcome;
        QObject context;
        bool isEnded = false;
        QObject::connect(&window.session(), &Session::queryEnded, &context, [&](const QueryOutcome& told) {
            outcome = told;
            isEnded = !window.session().isRunning();
        });
        window.query().run(query);
        EXPECT_TRUE(waitFor([&] { return isEnded; }));
        return outcome;
    }
    /// Waits until the map shows everything.
    bool waitForMap() {
        return waitFor([&] { return window.layers().isWhole(); }) &&
               QTest::qWaitFor(
                   [&] {
                       QSignalSpy drawn(&window.map(), &MapView::drawn);
                       return drawn.wait(50) || !window.map().isDrawing();
                   },
                   patienceMs);
    }
    const TableInfo* table(const QString& name) {
        for (const TableInfo& info : window.session().tables()) {
            if (info.name == name) {
                return &info;
            }
        }
        return nullptr;
    }
    QString cell(int row, int column) {
        ResultModel& rows = window.result().rows();
        return rows.data(rows.index(row, column), Qt::DisplayRole).toString();
    }

    QTemporaryDir directory;
    MainWindow window{directory.filePath(QStringLiteral("history.json"))};
};

} // namespace orvane::desk

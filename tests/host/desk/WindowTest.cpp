#include "DeskTest.h"

#include "host/desk/window/Language.h"
#include "host/maps/projection/LayerProjection.h"

#include <QDropEvent>
#include <QFile>
#include <QMimeData>

namespace orvane::desk {
namespace {

using Kind = QueryOutcome::Kind;

TEST_F(DeskTest, OpensFilesAndAnswersQueries) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    ASSERT_TRUE(open(example(QStringLiteral("countries.gpkg"))));
    EXPECT_EQ(window.tree().topLevelItemCount(), 2);
    const QueryOutcome outcome =
        ask(QStringLiteral("Select c.name, c.population / 1000000 As millions, Upper(k.name_long), c.obj "
                           "From cities c, countries k\n"
                           "Where c.obj Within k.obj Order By c.population Desc Limit 5"));
    ASSERT_EQ(outcome.kind, Kind::Done) << outcome.message.toStdString();
    EXPECT_EQ(outcome.rows, 5);
    EXPECT_EQ(window.result().rows().rowCount(), 5);
    EXPECT_EQ(cell(0, 0), QStringLiteral("Shanghai"));
    EXPECT_EQ(cell(0, 3), QStringLiteral("Точка"));
    EXPECT_EQ(window.layers().result().rows->columns(),
              (QStringList{QStringLiteral("name"), QStringLiteral("millions"),
                           QStringLiteral("Upper(k.name_long)"), QStringLiteral("obj")}));
    EXPECT_EQ(window.map().picture().layers.size(), 3u); // the result above all
    EXPECT_TRUE(window.map().picture().layers.back().isResult());
    EXPECT_EQ(window.tree().topLevelItemCount(), 3);
    EXPECT_TRUE(window.messages().messages().isEmpty());
}

TEST_F(DeskTest, ShowsFaultsAtTheirPlace) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    struct Case {
        const char* query;
        const char* word; ///< that is underlined
        const char* message;
    };
    const Case cases[] = {
        {"Select name\nFrom cities\nWhere nme = 1", "nme", "Строка 3, столбец 7: нет столбца «nme»"},
        {"Select 1;\nSelect * From citys", "citys", "Строка 2, столбец 15: нет таблицы «citys»"},
        {"Select Uper(name) From cities", "Uper", "Строка 1, столбец 8: "},
        {"Select '🙂', name Form cities", "Form", "Строка 1, столбец 18: "},
        {"Select * From Selection", "Selection", "Строка 1, столбец 15: ничего не выбрано"},
        {"Select Upper(name, 1, 2, 3) From cities", "Upper", "Строка 1, столбец 8: "},
        {"Select 1 2", "2", "Строка 1, столбец 10: "},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.query);
        EXPECT_EQ(ask(QString::fromUtf8(each.query)).kind, Kind::Failed);
        EXPECT_TRUE(window.query().isFault());
        const auto marks = window.query().editor().extraSelections();
        ASSERT_EQ(marks.size(), 2); // of the current line and of the fault
        EXPECT_EQ(marks[1].cursor.selectedText().toStdString(), each.word);
        EXPECT_TRUE(window.query().message().startsWith(QString::fromUtf8(each.message)))
            << window.query().message().toStdString();
    }
    // It stays until the next query; what is found while someone writes goes when it is mended.
    EXPECT_EQ(ask(QStringLiteral("Select nme From cities")).kind, Kind::Failed);
    SqlEditor& editor = window.query().editor();
    QSignalSpy checked(&editor, &SqlEditor::syntaxChecked);
    QTest::qWait(600); // longer than the editor waits for the next letter
    EXPECT_TRUE(window.query().isFault());
    editor.replaceText(QStringLiteral("Select ) From cities"));
    ASSERT_TRUE(waitFor([&] { return checked.size() == 1; }));
    EXPECT_TRUE(window.query().isFault());
    editor.replaceText(QStringLiteral("Select name From cities"));
    ASSERT_TRUE(waitFor([&] { return checked.size() == 2; }));
    EXPECT_FALSE(window.query().isFault());
    EXPECT_EQ(ask(QStringLiteral("Select 1 + 1")).kind, Kind::Done);
    EXPECT_FALSE(window.query().isFault());
    EXPECT_EQ(window.query().editor().extraSelections().size(), 1);
}

TEST_F(DeskTest, SelectsByRowsAndOnTheMapForTheNextQuery) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    ASSERT_TRUE(open(example(QStringLiteral("countries.gpkg"))));
    QSignalSpy selected(&window.session(), &Session::selectionChanged);
    // Rows of a join are features of the table whose geometry they show.
    ASSERT_EQ(
        ask(QStringLiteral(
                "Select c.name, k.name_long, k.obj From cities c Join countries k On c.obj Within k.obj "
                "Where c.name In ('Paris', 'Berlin', 'Madrid') And c.population > 1000000 "
                "Order By c.name"))
            .rows,
        3);
    window.result().selectRows({1, 2}, false);
    ASSERT_TRUE(waitFor([&] { return window.session().selection().ids.size() == 2; }));
    EXPECT_EQ(window.session().selection().table, table(QStringLiteral("countries"))->key);
    ASSERT_EQ(ask(QStringLiteral("Select name_long From Selection Order By 1")).rows, 2);
    EXPECT_EQ(cell(0, 0), QStringLiteral("France"));
    EXPECT_EQ(cell(1, 0), QStringLiteral("Spain"));

    // On the map: what is under the mouse, of the uppermost layer.
    window.layers().setVisible(table(QStringLiteral("cities"))->key, false);
    ASSERT_TRUE(waitForMap());
    MapView& map = window.map();
    const maps::LayerProjection projection(map.picture().layers.front().features->coordSystem(),
                                           map.picture().system, map.picture().view);
    const auto pixel = projection.toPixel({100, 62}); // in Siberia
    ASSERT_TRUE(pixel);
    selected.clear();
    QTest::mouseClick(&map, Qt::LeftButton, Qt::NoModifier, pixel->toPoint());
    ASSERT_TRUE(waitFor([&] { return !selected.isEmpty(); }));
    ASSERT_EQ(ask(QStringLiteral("Select name_long From Selection")).rows, 1);
    EXPECT_EQ(cell(0, 0), QStringLiteral("Russian Federation"));

    // A result on the map is picked as rows of its table.
    ASSERT_EQ(ask(QStringLiteral("Select name_long, obj From countries Where name_long = 'Brazil'")).rows, 1);
    ASSERT_TRUE(waitForMap());
    const auto brazil = projection.toPixel({-53, -10});
    QTest::mouseClick(&map, Qt::LeftButton, Qt::NoModifier, brazil->toPoint());
    ASSERT_TRUE(waitFor([&] { return window.result().selectedRows() == Numbers{0}; }));
    ASSERT_TRUE(waitFor([&] { return window.session().selection().ids.size() == 1; }));

    // A click beside everything selects nothing.
    QTest::mouseClick(&map, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    ASSERT_TRUE(waitFor([&] { return window.session().selection().ids.isEmpty(); }));
    EXPECT_TRUE(window.result().selectedRows().empty());
    // Rows that stand for no feature select none.
    ask(QStringLiteral("Select Count(*) From countries"));
    window.result().selectRows({0}, false);
    EXPECT_EQ(window.layers().result().table, 0u);
}

TEST_F(DeskTest, CancelsAndGoesOn) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    Session& session = window.session();
    QueryOutcome outcome;
    int ended = 0;
    QObject::connect(&session, &Session::queryEnded, &window, [&](const QueryOutcome& told) {
        outcome = told;
        ++ended;
    });
    // One that computes for hours before its first row, and one that has hours of rows.
    for (const char* columns : {"Count(a.name & b.name & c.name)", "a.name, b.name, c.name"}) {
        const int before = ended;
        window.query().run(
            QStringLiteral("Select %0 From cities a, cities b, cities c").arg(QLatin1String(columns)));
        EXPECT_TRUE(session.isRunning());
        ASSERT_TRUE(waitFor([&] { return columns[0] == 'C' || window.result().rows().rowCount() > 1000; }));
        session.cancel();
        ASSERT_TRUE(waitFor([&] { return ended > before; }));
        EXPECT_EQ(outcome.kind, Kind::Cancelled);
        EXPECT_TRUE(window.query().message().startsWith(QStringLiteral("Прервано")));
    }
    EXPECT_GT(window.result().rows().rowCount(), 1000); // what came is kept
    // A query replaces the one that runs, which does not harm it.
    window.query().run(QStringLiteral("Select Count(a.name & b.name) From cities a, cities b, cities c"));
    EXPECT_EQ(ask(QStringLiteral("Select Count(*) From cities")).kind, Kind::Done);
    EXPECT_EQ(cell(0, 0), QStringLiteral("4442"));
    EXPECT_FALSE(session.isRunning());
}

TEST_F(DeskTest, RenamesAndClosesWhileAQueryReads) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    ASSERT_TRUE(open(example(QStringLiteral("indicators.csv"))));
    // In the tree, as F2 does.
    QTreeWidgetItem* item = window.tree().topLevelItem(0);
    const quint64 key = table(QStringLiteral("cities"))->key;
    item->setText(0, QStringLiteral("города мира"));
    ASSERT_TRUE(waitFor([&] { return table(QStringLiteral("города мира")) != nullptr; }));
    EXPECT_EQ(table(QStringLiteral("города мира"))->key, key);
    EXPECT_EQ(ask(QStringLiteral("Select Count(*) From \"города мира\"")).kind, Kind::Done);
    item->setText(0, QStringLiteral("indicators")); // which is taken
    ASSERT_TRUE(waitFor([&] { return !window.messages().messages().isEmpty(); }));
    EXPECT_TRUE(waitFor([&] { return item->text(0) == QStringLiteral("города мира"); }));

    window.query().run(
        QStringLiteral("Select a.name From \"города мира\" a, \"города мира\" b, \"города мира\" c"));
    ASSERT_TRUE(waitFor([&] { return window.result().rows().rowCount() > 1000; }));
    window.session().close(key);
    ASSERT_TRUE(waitFor([&] { return window.session().tables().size() == 1; }));
    EXPECT_EQ(window.tree().topLevelItemCount(), 2); // the result, and the other table
    window.session().cancel();
    ASSERT_TRUE(waitFor([&] { return !window.session().isRunning(); }));
    EXPECT_EQ(ask(QStringLiteral("Select Count(*) From \"города мира\"")).kind, Kind::Failed);
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    EXPECT_EQ(ask(QStringLiteral("Select Count(*) From cities")).kind, Kind::Done);
}

TEST_F(DeskTest, TakesDroppedFilesAndKeepsWhatItSaysOfBadOnes) {
    const QString broken = directory.filePath(QStringLiteral("нет.gpkg"));
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a table");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(broken), QUrl::fromLocalFile(example(QStringLiteral("cities.shp"))),
                  QUrl::fromLocalFile(directory.filePath(QStringLiteral("absent.shp")))});
    QDragEnterEvent enter(QPoint(300, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(300, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &drop);
    ASSERT_TRUE(waitFor([&] { return window.messages().messages().size() == 2; }));
    EXPECT_TRUE(window.messages().isVisible());
    EXPECT_TRUE(window.messages().messages().first().contains(QStringLiteral("нет.gpkg")));
    EXPECT_TRUE(waitFor([&] { return table(QStringLiteral("cities")) != nullptr; }));
    window.messages().clear();
    EXPECT_FALSE(window.messages().isVisible());
}

TEST_F(DeskTest, LabelsFeaturesByAnExpression) {
    ASSERT_TRUE(open(example(QStringLiteral("countries.gpkg"))));
    const quint64 key = table(QStringLiteral("countries"))->key;
    QSignalSpy labelled(&window.session(), &Session::labelled);
    window.layers().setLabel(key, QStringLiteral("Upper(name_long) & '!'"));
    ASSERT_TRUE(waitFor([&] { return !labelled.isEmpty(); }));
    ASSERT_TRUE(waitForMap());
    const auto labels = window.map().picture().layers.front().labels;
    ASSERT_TRUE(labels);
    EXPECT_TRUE(labels->values().contains(QStringLiteral("BRAZIL!")));

    window.layers().setLabel(key, QStringLiteral("no_such_column"));
    ASSERT_TRUE(waitFor([&] { return !window.messages().messages().isEmpty(); }));
    EXPECT_TRUE(window.messages().messages().first().contains(QStringLiteral("no_such_column")));
}

TEST_F(DeskTest, WritesTheResultAndTheMap) {
    ASSERT_TRUE(open(example(QStringLiteral("cities.shp"))));
    QSignalSpy exported(&window.session(), &Session::exported);
    ask(QStringLiteral("Select name, population, obj From cities Where population > 5000000"));
    const QString path = directory.filePath(QStringLiteral("большие.gpkg"));
    window.exportResult(path);
    ASSERT_TRUE(waitFor([&] { return exported.size() == 1; }));
    EXPECT_TRUE(window.messages().messages().isEmpty());
    ASSERT_TRUE(open(path));
    EXPECT_TRUE(table(QStringLiteral("большие"))->hasGeometry);
    window.exportResult(directory.filePath(QStringLiteral("x.unknown")));
    ASSERT_TRUE(waitFor([&] { return window.messages().messages().size() == 1; }));

    QSignalSpy drawn(&window.map(), &MapView::exported);
    const QString picture = directory.filePath(QStringLiteral("карта.png"));
    window.exportMap(picture);
    ASSERT_TRUE(waitFor([&] { return !drawn.isEmpty(); }));
    EXPECT_TRUE(QFile::exists(picture));
    // A result becomes a table by Into, and is seen at once.
    EXPECT_EQ(ask(QStringLiteral("Select name, obj Into big From cities Where population > 9000000")).kind,
              Kind::Done);
    EXPECT_TRUE(waitFor([&] { return table(QStringLiteral("big")) != nullptr; }));
}

TEST(Desk, SpeaksTheLanguageOfTheSystem) {
    const QLocale before;
    for (const auto& [locale, text] :
         {std::pair("de_DE", "nothing is selected"), std::pair("ru_RU", "ничего не выбрано")}) {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        const Language language;
        const QTemporaryDir directory;
        MainWindow window(directory.filePath(QStringLiteral("history.json")));
        window.query().run(QStringLiteral("Select * From Selection"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.query().isFault(); }, 60'000));
        EXPECT_TRUE(window.query().message().contains(QString::fromUtf8(text)))
            << window.query().message().toStdString();
    }
    QLocale::setDefault(before);
}

} // namespace
} // namespace orvane::desk

#include <QApplication>
#include <QLocale>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QLocale::setDefault(QLocale(QStringLiteral("ru_RU")));
    QApplication::addLibraryPath(QApplication::applicationDirPath() + QStringLiteral("/../plugins"));
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}

#include "IndexFixture.h"

#include "platform/core/TypedSettings.h"
#include "platform/di/ServiceLocator.h"
#include "platform/dp/SqliteDatabaseAccess.h"

#include <QDir>
#include <QTemporaryDir>
#include <QUuid>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane::engine {

namespace {

class StorageFile : public IndexFixture {
protected:
    StorageFile() {
        setDirectory(directory_.path());
        serviceLocator().exchange(settings_);
    }
    ~StorageFile() override { serviceLocator().exchange<TypedSettings>(nullptr); }

    void setDirectory(const QString& path) { settings_->setValue(DefaultSettingsList::IndexDirectory, path); }
    bool createStorage() { return store_->createStorage(makeSchema({QMetaType::Int})); }
    QStringList files() const { return QDir(directory_.path()).entryList(QDir::Files | QDir::Hidden); }

    /// Starts a process that makes storage and then waits until it is killed. Its destructors never run.
    pid_t startStorageProcess() {
        int channel[2];
        EXPECT_EQ(pipe(channel), 0);
        const pid_t child = fork();
        if (child == 0) {
            const char made = createStorage() ? '1' : '0';
            [[maybe_unused]] const auto written = write(channel[1], &made, 1);
            pause();
            _exit(0);
        }
        char made = '0';
        EXPECT_EQ(read(channel[0], &made, 1), 1);
        EXPECT_EQ(made, '1');
        close(channel[0]);
        close(channel[1]);
        return child;
    }
    static void endProcess(pid_t process) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }

    std::shared_ptr<TypedSettings> settings_ = std::make_shared<TypedSettings>();
    QTemporaryDir directory_;
};

TEST_F(StorageFile, IsInTheDirectoryOfTheSettingAndGoesWithTheStore) {
    ASSERT_TRUE(createStorage());
    const QStringList first = files();
    ASSERT_EQ(first.size(), 1);
    EXPECT_EQ(QUuid(first.front()).toString(), first.front());
    struct stat status {};
    ::stat(QFile::encodeName(directory_.filePath(first.front())).constData(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    ASSERT_TRUE(createStorage());
    EXPECT_EQ(files().size(), 1);
    EXPECT_NE(files(), first);
    store_.reset();
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(StorageFile, IsInTheTemporaryDirectoryWhenTheSettingNamesNone) {
    setDirectory(directory_.filePath(QStringLiteral("nowhere")));
    EXPECT_TRUE(createStorage());
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(StorageFile, LeavesAStoreWithoutStorageWhereNothingCanBeWritten) {
    setDirectory(QStringLiteral("/proc"));
    EXPECT_FALSE(createStorage());
    EXPECT_EQ(store_->addIndex({{0, 1}}), -1);
    setDirectory(directory_.path());
    EXPECT_TRUE(createStorage());
}

TEST_F(StorageFile, OfAKilledProcessIsRemovedAndNoOther) {
    const pid_t killed = startStorageProcess();
    const pid_t living = startStorageProcess();
    ASSERT_EQ(files().size(), 2);
    endProcess(killed);

    const QString foreignText = directory_.filePath(QUuid::createUuid().toString());
    QFile text(foreignText);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not ours, whatever the name says");
    text.close();
    const QString foreignDatabase = directory_.filePath(QUuid::createUuid().toString());
    dp::SqliteDatabaseAccess(foreignDatabase).exec(QStringLiteral("Create Table t(a)"));
    const QString otherName = directory_.filePath(QStringLiteral("index.db"));
    dp::SqliteDatabaseAccess(otherName).exec(QStringLiteral("Pragma application_id = 0x4f727649"));
    const QString link = directory_.filePath(QUuid::createUuid().toString());
    QFile::link(otherName, link);
    const QString beingMade = directory_.filePath(QUuid::createUuid().toString());
    const QString neverMade = directory_.filePath(QUuid::createUuid().toString());
    for (const QString& name : {beingMade, neverMade}) {
        QFile(name).open(QIODevice::WriteOnly);
    }
    const timespec longAgo[] = {{1, 0}, {1, 0}};
    ::utimensat(AT_FDCWD, QFile::encodeName(neverMade).constData(), longAgo, 0);
    QStringList kept{foreignText, foreignDatabase, otherName, link, beingMade};
    const QString somebodys = directory_.filePath(QUuid::createUuid().toString());
    constexpr uid_t somebody = 65534;
    QFile::copy(otherName, somebodys);
    if (::chown(QFile::encodeName(somebodys).constData(), somebody, somebody) == 0) {
        kept += somebodys;
    }

    ASSERT_TRUE(createStorage()); // the first one of this process in this directory
    EXPECT_EQ(files().size(), 2 + kept.size()) << "the living process's, ours, and those that are none";
    for (const QString& foreign : kept) {
        EXPECT_TRUE(QFile::exists(foreign)) << qPrintable(foreign);
    }
    endProcess(living);
}

} // namespace

} // namespace orvane::engine

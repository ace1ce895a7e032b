#pragma once

#include <QProcess>
#include <QStringList>

#include <string>

namespace orvane::shell {

/// What the program gave back.
struct Answer {
    int status = -1; ///< -1 when it crashed or did not end within two minutes
    std::string output;
    std::string errors;
};

/// What a program may use; 0 for as much as the tests.
struct Limits {
    qint64 mostBytes = 0; ///< of a file
    int mostOpenFiles = 0;
};

/// The built program under way, with English messages and nothing from the tester's locale.
class RunningProgram {
public:
    explicit RunningProgram(const QStringList& arguments, const QByteArray& input = {}, Limits limits = {});
    bool isRunning() const { return process_.state() == QProcess::Running; }
    void waitFor(int milliseconds) { process_.waitForFinished(milliseconds); }
    void signal(int number);
    Answer finish();

private:
    class Process : public QProcess {
    public:
        Limits limits;

    protected:
        void setupChildProcess() override;
    };

    Process process_;
};

Answer runProgram(const QStringList& arguments, const QByteArray& input = {});

/// The program where no file can grow beyond so many bytes, as on a full disk.
Answer runWithFullDisk(const QStringList& arguments, qint64 mostBytes);

/// One of the example files.
QString exampleFile(const char* name);

/// The program over the three example files, with options, words between blanks, and a statement.
Answer ask(const char* options, const char* statement);

/// How much slower than usual things may be: more than 1 under a sanitizer.
int slowdown();

} // namespace orvane::shell

#pragma once

#include <QProcess>
#include <QString>

#include <memory>
#include <string>

namespace orvane::testing {

/// A PostgreSQL server of the test program's own, in a temporary directory, on a socket, without network. It
/// ends with the program however that ends, and takes its directory along. One for all tests of a program.
class TestServer {
public:
    /// Null where PostgreSQL is not installed.
    static TestServer* instance();

    /// The database of the tests as the user would name it.
    QString source() const;
    /// The answer to statements, which come from another connection each time: values of the last one's rows
    /// joined by "|", rows by line breaks. A failure is one of the test.
    std::string sql(const std::string& statements) const;

    /// Ends the server at once, as a crash of the machine would.
    void kill();
    /// Starts it again, and waits until it answers.
    void start();
    /// Statements that the server carries out at the moment, other than the one that asks.
    std::string activity() const;

private:
    TestServer();
    ~TestServer();
    void command(const char* text);
    std::string connection() const;

    QProcess process_;
    QString directory_;
    bool isReady_ = false;
};

} // namespace orvane::testing

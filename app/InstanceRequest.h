#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// One request on the per-user instance channel, and its one-line JSON wire form:
//   {"request":"activate","arguments":["..."],"from":"OrvexPro"}   hand over a command line
//   {"request":"close","from":"OrvexPro"}                           a sibling wants us gone
// answered with {"ok":true} or {"ok":false,"error":"..."}. Each line ends with '\n'.
class InstanceRequest
{
public:
    enum class Kind { Invalid, Activate, Close };

    // A line longer than this is never read whole: the peer is not one of ours.
    static constexpr qint64 MaxLineBytes = 64 * 1024;

    static InstanceRequest activate(const QStringList& arguments, const QString& from);
    static InstanceRequest close(const QString& from);
    // Never fails: anything that is not a well-formed request becomes Invalid with error().
    static InstanceRequest fromLine(const QByteArray& line);

    QByteArray toLine() const; // of an activate or close request
    static QByteArray answerLine(bool ok, const QString& error = QString());
    // True only for a well-formed {"ok":true}; `error` receives the peer's reason otherwise.
    static bool answerIsOk(const QByteArray& line, QString* error = nullptr);

    Kind kind() const { return m_kind; }
    bool isValid() const { return m_kind != Kind::Invalid; }
    const QStringList& arguments() const { return m_arguments; }
    const QString& from() const { return m_from; }
    const QString& error() const { return m_error; }

private:
    static InstanceRequest invalid(const QString& error);

    Kind m_kind = Kind::Invalid;
    QStringList m_arguments;
    QString m_from;
    QString m_error;
};

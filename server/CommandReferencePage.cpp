#include "server/CommandReferencePage.h"

#include "server/HTWSCommand.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

namespace {

QString joinedDescriptions(const QMap<QString, QString>& descriptions)
{
    QStringList items;
    for (auto it = descriptions.cbegin(); it != descriptions.cend(); ++it)
        items << it.key() + QStringLiteral(": ") + it.value();
    return items.join(QLatin1Char('|'));
}

QString translated(const char* word)
{
    return QCoreApplication::translate("CommandReferencePage", word);
}

} // namespace

QString CommandReferencePage::templateText()
{
    QFile file(QStringLiteral(":/web/OrvexProAPI.proto.html"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

QString CommandReferencePage::commandElement(HTWSCommand* command)
{
    return QStringLiteral("<cmd desc=\"%1\" arg=\"%2\" returns=\"%3\">%4</cmd>")
        .arg(command->getDescription().toHtmlEscaped(),
             joinedDescriptions(command->getArgumentDescriptions()).toHtmlEscaped(),
             joinedDescriptions(command->getReturnsDescriptions()).toHtmlEscaped(), command->name().toHtmlEscaped());
}

QString CommandReferencePage::fill(const QString& templateText, const QList<HTWSCommand*>& commands,
                                   const QString& version, int port)
{
    QStringList elements;
    for (HTWSCommand* command : commands) {
        if (!command->isSecret())
            elements << commandElement(command);
    }
    QString page = templateText;
    page.replace(QStringLiteral("<commands/>"), elements.join(QLatin1Char('\n')));
    page.replace(QStringLiteral("$version"), version.toHtmlEscaped());
    page.replace(QStringLiteral("$port"), QString::number(port));
    page.replace(QStringLiteral("$Arguments"), translated("Arguments"));
    page.replace(QStringLiteral("$Returns"), translated("Returns"));
    page.replace(QStringLiteral("$Usage"), translated("Usage"));
    page.replace(QStringLiteral("$or"), translated("or"));
    return page;
}

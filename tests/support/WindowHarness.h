#pragma once

// The real window, built by the program's own start-up inside the test process, and what a test
// needs to look at it as a person does: items by name, clicks, the grabbed pixels, an HTTP
// client for the command interface, and the README's pictures when asked for.
#include "app/CommandLineOptions.h"
#include "app/DesktopStartup.h"
#include "app/ui/UiModel.h"
#include "support/ProgramUnderTest.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>

namespace WindowHarness {

struct Environment
{
    QTemporaryDir* home = nullptr;
    int apiPort = 0;
};

inline Environment& environment()
{
    static Environment shared;
    return shared;
}

inline QString homePath(const QString& relative) { return environment().home->filePath(relative); }

inline QByteArray httpGet(const QString& path)
{
    return ProgramUnderTest::httpGet(QStringLiteral("http://127.0.0.1:%1/%2").arg(environment().apiPort).arg(path));
}

inline QJsonObject apiCall(const QString& path) { return QJsonDocument::fromJson(httpGet(path)).object(); }

// Pixels whose grey level differs clearly from the background's.
inline int countDifferent(const QImage& image, QRgb background)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            count += qAbs(qGray(line[x]) - qGray(background)) > 40;
    }
    return count;
}

// Through the visual tree: view delegates have no object parent to find them by.
inline QQuickItem* findItem(QQuickItem* root, const QString& name)
{
    if (!root)
        return nullptr;
    if (root->objectName() == name)
        return root;
    for (QQuickItem* child : root->childItems()) {
        if (QQuickItem* found = findItem(child, name))
            return found;
    }
    return nullptr;
}

class WindowTestBase : public QObject
{
public:
    explicit WindowTestBase(DesktopStartup* startup)
        : m_startup(startup)
    {
    }

protected:
    UiModel* ui() const { return m_startup->ui(); }
    QQuickWindow* window() const { return m_startup->window(); }
    DesktopStartup* startup() const { return m_startup; }

    QQuickItem* item(const char* name) const { return findItem(window()->contentItem(), QLatin1String(name)); }

    QImage grab() const { return window()->grabWindow().convertToFormat(QImage::Format_ARGB32); }

    // The part of the window an item covers, in the grabbed image's pixels.
    QImage grabItem(QQuickItem* shown) const
    {
        const QImage whole = grab();
        const qreal ratio = whole.width() / qreal(window()->width());
        const QRectF area = shown->mapRectToScene(QRectF(0, 0, shown->width(), shown->height()));
        return whole.copy(QRectF(area.topLeft() * ratio, area.size() * ratio).toRect());
    }

    void click(QQuickItem* target) const
    {
        QTest::mouseClick(window(), Qt::LeftButton, {},
                          target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint());
    }

    void typeText(const QString& text) const
    {
        for (const QChar c : text)
            QTest::keyClick(window(), c.toLatin1());
    }

    void show(const QString& screen)
    {
        const int index = UiModel::screenIndex(screen);
        QVERIFY2(index >= 0, qPrintable(screen));
        ui()->setCurrentScreen(index);
        QTest::qWait(300);
    }

    // The pictures of the README, when asked for (ORVEX_SCREENSHOT_DIR).
    void saveScreenshot(const QString& name) const
    {
        const QString folder = qEnvironmentVariable("ORVEX_SCREENSHOT_DIR");
        if (!folder.isEmpty()) {
            QDir().mkpath(folder);
            grab().save(QDir(folder).filePath(name + QStringLiteral(".png")));
        }
    }

private:
    DesktopStartup* m_startup;
};

// Starts the window on the generator (10 Hz sine, 50 uV, 250 Hz) in an isolated home with
// `extraSettings` after the defaults, then runs the test object made by `makeTest`.
template <typename Test>
int run(int argc, char* argv[], const QList<QPair<QString, QString>>& extraSettings = {})
{
    QTemporaryDir home;
    environment().home = &home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    qputenv("TMPDIR", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "xcb");
    // The system browser and file manager are a script that notes what it was asked to open.
    QDir(home.path()).mkpath(QStringLiteral("bin"));
    QFile opener(home.filePath(QStringLiteral("bin/xdg-open")));
    if (opener.open(QIODevice::WriteOnly)) {
        opener.write("#!/bin/sh\necho \"$@\" >> \"" + home.filePath(QStringLiteral("opened.txt")).toLocal8Bit() + "\"\n");
        opener.close();
        opener.setPermissions(opener.permissions() | QFileDevice::ExeOwner);
    }
    qputenv("PATH", home.filePath(QStringLiteral("bin")).toLocal8Bit() + ":" + qgetenv("PATH"));
    environment().apiPort = ProgramUnderTest::freePort();

    CommandLineOptions options;
    options.device = QStringLiteral("generator");
    options.deviceGiven = true;
    options.apiPort = environment().apiPort;
    options.settings = { { QStringLiteral("SignalType"), QStringLiteral("Sine") },
                         { QStringLiteral("GeneratorBaseFrequency"), QStringLiteral("10") },
                         { QStringLiteral("GeneratorAmplitude"), QStringLiteral("50") },
                         { QStringLiteral("GeneratorSamplingRate"), QStringLiteral("250") },
                         { QStringLiteral("SpectrumWindowSeconds"), QStringLiteral("1") },
                         { QStringLiteral("DataFolder"), home.filePath(QStringLiteral("records")) } };
    options.settings.append(extraSettings);
    DesktopStartup startup(argc, argv, options);
    int code = 0;
    if (!startup.start(code)) {
        qCritical("the window did not start (%d)", code);
        return 1;
    }
    if (!QTest::qWaitForWindowExposed(startup.window()))
        return 1;
    Test test(&startup);
    return QTest::qExec(&test, argc, argv);
}

} // namespace WindowHarness

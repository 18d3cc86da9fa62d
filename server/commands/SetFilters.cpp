#include "server/commands/SetFilters.h"

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "settings/OrvexSettings.h"

#include <array>

namespace {
struct FilterArgument
{
    QString key;
    float* value;
    bool given;
};

// The filter setters' checks and texts: a float from 0 (off) to 100 Hz.
bool parseFilterValue(const QString& text, float& value, QString& error)
{
    bool ok = false;
    const float parsed = text.toFloat(&ok);
    if (!ok) {
        error = QStringLiteral("Could not parse '") + text + QStringLiteral("' as float");
        return false;
    }
    if (parsed < 0 || parsed > 100) {
        error = QStringLiteral("Filter value should be between 0 (off) and 100 Hz, '") + text
            + QStringLiteral("' given");
        return false;
    }
    value = parsed;
    return true;
}
}

SetFilters::SetFilters(DataServerContext* context, QObject* parent)
    : DataServerCommand(context, parent)
{
}

bool SetFilters::processCommand(Referrer, QJsonObject& response, QMap<QString, QString>& args)
{
    bool isNumber = false;
    int index = args.value(QStringLiteral("node")).toInt(&isNumber, 10);
    CortexCore* node = context() ? context()->getNode(isNumber ? index : 0) : nullptr;
    if (!node) {
        setError(response, QStringLiteral("This node index does not exist"));
        return false;
    }
    float hpf = 0, lpf = 0, bsf = 0, bsf2 = 0;
    node->getFilters(hpf, lpf, bsf, bsf2);
    std::array<FilterArgument, 4> filters { { { QStringLiteral("LPF"), &lpf, false },
                                              { QStringLiteral("HPF"), &hpf, false },
                                              { QStringLiteral("BSF"), &bsf, false },
                                              { QStringLiteral("BSF2"), &bsf2, false } } };
    // Every value is checked before anything changes, so a bad one leaves all four alone. With
    // none given the current values are applied again.
    for (FilterArgument& filter : filters) {
        const QString text = argumentCaseInsensitive(args, filter.key, QString());
        if (text.isNull())
            continue;
        QString error;
        if (!parseFilterValue(text, *filter.value, error)) {
            setError(response, error);
            return false;
        }
        filter.given = true;
    }
    node->setFilters(hpf, lpf, bsf, bsf2);
    if (OrvexSettings* settings = context()->getSettings()) {
        for (const FilterArgument& filter : filters) {
            if (filter.given)
                settings->setProperty(filter.key.toLatin1().constData(), *filter.value);
        }
    }
    return true;
}

QString SetFilters::getDescription()
{
    return tr("Sets filter settings");
}

QMap<QString, QString> SetFilters::getArgumentDescriptions()
{
    return createArgs({ { QStringLiteral("LPF"), tr("[Optional] Low-pass filter (0..100 Hz, 0 = off)") },
                        { QStringLiteral("HPF"), tr("[Optional] High-pass filter (0..100 Hz, 0 = off)") },
                        { QStringLiteral("BSF"), tr("[Optional] Band-stop filter (0..100 Hz, 0 = off)") },
                        { QStringLiteral("BSF2"), tr("[Optional] Second band-stop filter (0..100 Hz, 0 = off)") },
                        { QStringLiteral("node"), tr("[Optional] Index of the engine node, 0 by default") } });
}

#include "app/ui/MontageChannelEditor.h"

#include <QLocale>

#include <cmath>

namespace {
const QString Name = QStringLiteral("name");
const QString Type = QStringLiteral("type");
const QString Input = QStringLiteral("input");
const QString Reference = QStringLiteral("reference");
const QString HighPass = QStringLiteral("highPass");
const QString LowPass = QStringLiteral("lowPass");
const QString BandStop = QStringLiteral("bandStop");
const QString Scale = QStringLiteral("scale");
const QString Offset = QStringLiteral("offset");
const QString VisualScale = QStringLiteral("visualScale");

// A decimal point or comma, whatever the locale; an empty filter field is 0.
bool parseNumber(const QString& field, const QString& text, double& value)
{
    QString trimmed = text.trimmed();
    trimmed.replace(QLatin1Char(','), QLatin1Char('.'));
    if (trimmed.isEmpty() && (field == HighPass || field == LowPass || field == BandStop)) {
        value = 0;
        return true;
    }
    bool ok = false;
    value = QLocale::c().toDouble(trimmed, &ok);
    return ok && std::isfinite(value);
}
}

const QStringList& MontageChannelEditor::fields()
{
    static const QStringList all { Name, Type, Input, Reference, HighPass, LowPass, BandStop, Scale, Offset, VisualScale };
    return all;
}

bool MontageChannelEditor::apply(QList<MontageChannel>& montage, int row, const QString& field, const QString& text,
                                 QString& error) const
{
    if (row < 0 || row >= montage.size() || !fields().contains(field)) {
        error = QStringLiteral("No such channel or column");
        return false;
    }
    MontageChannel channel = montage[row];
    if (field == Name)
        return applyName(montage, row, text, error);
    if (field == Type) {
        const int type = typeNames.indexOf(text);
        if (type < 0) {
            error = QStringLiteral("Unknown channel type %1").arg(text);
            return false;
        }
        channel.userTag = type;
    } else if (field == Input || field == Reference) {
        if (!applyInput(channel, field, text, error))
            return false;
    } else {
        double value = 0;
        if (!parseNumber(field, text, value)) {
            error = QStringLiteral("'%1' is not a number").arg(text.trimmed());
            return false;
        }
        if (!applyNumber(channel, field, value, error))
            return false;
    }
    montage[row] = channel;
    return true;
}

bool MontageChannelEditor::applyName(QList<MontageChannel>& montage, int row, const QString& text, QString& error) const
{
    const QString name = text.trimmed();
    if (name.isEmpty())
        error = QStringLiteral("A channel needs a name");
    else if (name.contains(QLatin1Char(',')))
        error = QStringLiteral("A channel name cannot contain a comma");
    for (int i = 0; i < montage.size() && error.isEmpty(); ++i) {
        if (i != row && montage[i].name.compare(name, Qt::CaseInsensitive) == 0)
            error = QStringLiteral("Another channel is already called %1").arg(montage[i].name);
    }
    if (!error.isEmpty())
        return false;
    montage[row].name = name;
    return true;
}

// Inputs are given by their 0-based number; the reference also takes -1 for none.
bool MontageChannelEditor::applyInput(MontageChannel& channel, const QString& field, const QString& text,
                                      QString& error) const
{
    bool ok = false;
    const int input = text.trimmed().toInt(&ok);
    const int lowest = field == Reference ? -1 : 0;
    if (!ok || input < lowest || input >= inputCount) {
        error = QStringLiteral("The device has no input %1").arg(text.trimmed());
        return false;
    }
    (field == Input ? channel.group1 : channel.group2) = input;
    if (channel.group1 == channel.group2) {
        error = QStringLiteral("A channel cannot be its own reference");
        return false;
    }
    return true;
}

bool MontageChannelEditor::applyNumber(MontageChannel& channel, const QString& field, double value, QString& error) const
{
    if (field == Scale) {
        if (value == 0)
            error = QStringLiteral("The scale cannot be 0");
        channel.scale = value;
    } else if (field == Offset) {
        channel.offset = value;
    } else if (field == VisualScale) {
        if (value <= 0)
            error = QStringLiteral("The visual scale must be above 0");
        channel.visualScale = value;
    } else {
        (field == HighPass ? channel.highPass : field == LowPass ? channel.lowPass : channel.bandStop) = value;
        checkFilters(channel, error);
    }
    return error.isEmpty();
}

bool MontageChannelEditor::checkFilters(const MontageChannel& channel, QString& error) const
{
    const double nyquist = samplingRate / 2;
    for (double cutoff : { channel.highPass, channel.lowPass, channel.bandStop }) {
        if (cutoff < 0)
            error = QStringLiteral("A cut-off cannot be negative");
        else if (nyquist > 0 && cutoff >= nyquist)
            error = QStringLiteral("A cut-off must stay below %1 Hz (half the sampling rate)").arg(nyquist);
        if (!error.isEmpty())
            return false;
    }
    const double high = channel.highPass > 0 ? channel.highPass : commonHighPass;
    const double low = channel.lowPass > 0 ? channel.lowPass : commonLowPass;
    if (high > 0 && low > 0 && high >= low) {
        error = QStringLiteral("The high-pass cut-off (%1 Hz) must stay below the low-pass one (%2 Hz)").arg(high).arg(low);
        return false;
    }
    return true;
}

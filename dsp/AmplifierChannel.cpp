#include "dsp/AmplifierChannel.h"

#include <algorithm>
#include <array>

namespace {

// Parsing and display use this fixed table, so a translated menu (st_TypeRange) never
// changes what a stored type text means.
const std::array<const char*, 8> kTypeTexts = {"EEG", "ECG", "EMG", "EOG", "Resp", "GSR", "PPG", "Temp"};

QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

QStringList typeTexts()
{
    QStringList texts;
    for (const char* text : kTypeTexts)
        texts << QString::fromLatin1(text);
    return texts;
}

QStringList defaultChoiceTexts(QList<float> AmplifierChannel::Filters::*choices)
{
    const AmplifierChannel::Filters defaults;
    QStringList texts;
    for (float value : defaults.*choices)
        texts << numberText(value);
    return texts;
}

} // namespace

QStringList AmplifierChannel::st_TypeRange = typeTexts();
QStringList AmplifierChannel::st_LPFRange = defaultChoiceTexts(&AmplifierChannel::Filters::lpfChoices);
QStringList AmplifierChannel::st_HPFRange = defaultChoiceTexts(&AmplifierChannel::Filters::hpfChoices);
QStringList AmplifierChannel::st_BSFRange = defaultChoiceTexts(&AmplifierChannel::Filters::bsfChoices);
QStringList AmplifierChannel::st_GroupRange;

AmplifierChannel::AmplifierChannel()
{
    fillGroupRange();
}

AmplifierChannel::AmplifierChannel(unsigned index, float scale, ChannelType type)
    : AmplifierChannel()
{
    m_index = static_cast<int>(index);
    m_scale = scale;
    m_name.clear();
    m_type = type;
}

AmplifierChannel::AmplifierChannel(const QString& text)
    : AmplifierChannel()
{
    parseStringData(text);
}

AmplifierChannel::AmplifierChannel(const QJsonObject& json)
    : AmplifierChannel()
{
    fromJson(json);
}

AmplifierChannel::AmplifierChannel(const AmplifierChannel* other)
    : AmplifierChannel()
{
    if (other)
        *this = *other;
}

AmplifierChannel::AmplifierChannel(const AmplifierChannel& other)
    : AmplifierChannel()
{
    *this = other;
}

void AmplifierChannel::fillGroupRange()
{
    if (!st_GroupRange.isEmpty())
        return;
    for (int group = 0; group <= 136; ++group)
        st_GroupRange << QString::number(group);
}

int AmplifierChannel::indexOfChoice(const QList<float>& choices, float value)
{
    const int index = static_cast<int>(choices.indexOf(value));
    return index < 0 ? 0 : index;
}

QStringList AmplifierChannel::choiceTexts(const QList<float>& choices)
{
    QStringList texts;
    texts.reserve(choices.size());
    for (float value : choices)
        texts << numberText(value);
    return texts;
}

// A value set from a file or through the API must always be selectable in its menu.
void AmplifierChannel::addChoice(QList<float>& choices, float value)
{
    if (choices.contains(value))
        return;
    choices.append(value);
    std::sort(choices.begin(), choices.end());
}

void AmplifierChannel::clearChoiceTexts()
{
    m_lpfTexts.clear();
    m_hpfTexts.clear();
    m_bsfTexts.clear();
}

void AmplifierChannel::setLPF(float value)
{
    m_filterText.clear();
    m_filters.lpf = value;
    addChoice(m_filters.lpfChoices, value);
    m_lpfTexts.clear();
}

void AmplifierChannel::setHPF(float value)
{
    m_filterText.clear();
    m_filters.hpf = value;
    addChoice(m_filters.hpfChoices, value);
    m_hpfTexts.clear();
}

void AmplifierChannel::setBSF(float value)
{
    m_filterText.clear();
    m_filters.bsf = value;
    addChoice(m_filters.bsfChoices, value);
    m_bsfTexts.clear();
}

void AmplifierChannel::getGroupValue(unsigned& group1, unsigned& group2) const
{
    group1 = m_groups.group1;
    group2 = m_groups.group2;
}

void AmplifierChannel::setFilterData(const Filters& filters)
{
    m_filterText.clear();
    m_filters = filters;
    clearChoiceTexts();
}

QStringList AmplifierChannel::getLPFValues() const
{
    if (m_lpfTexts.isEmpty())
        m_lpfTexts = choiceTexts(m_filters.lpfChoices);
    return m_lpfTexts;
}

QStringList AmplifierChannel::getHPFValues() const
{
    if (m_hpfTexts.isEmpty())
        m_hpfTexts = choiceTexts(m_filters.hpfChoices);
    return m_hpfTexts;
}

QStringList AmplifierChannel::getBSFValues() const
{
    if (m_bsfTexts.isEmpty())
        m_bsfTexts = choiceTexts(m_filters.bsfChoices);
    return m_bsfTexts;
}

QString AmplifierChannel::getTextType() const
{
    if (m_type < 0 || m_type >= static_cast<qint32>(kTypeTexts.size()))
        return QString();
    return QString::fromLatin1(kTypeTexts[static_cast<size_t>(m_type)]);
}

void AmplifierChannel::setTextChannelType(const QString& text)
{
    m_type = ChannelType_EEG;
    for (size_t i = 0; i < kTypeTexts.size(); ++i) {
        if (text == QLatin1String(kTypeTexts[i])) {
            m_type = static_cast<ChannelType>(i);
            return;
        }
    }
}

QString AmplifierChannel::getTextValue(int column) const
{
    switch (column) {
    case 0: return QString::number(m_index);
    case 1: return getTextType();
    case 2: return m_name;
    case 3: return QString::number(m_groups.group1);
    case 4: return QString::number(m_groups.group2);
    case 5: return numberText(m_scale);
    case 6: return numberText(m_filters.hpf);
    case 7: return numberText(m_filters.lpf);
    case 8: return numberText(m_filters.bsf);
    default: return QString();
    }
}

// The formatted text is built but never stored, so the cached text (empty after any filter
// setter) is what callers get. Screens rely on this; keep it.
QString AmplifierChannel::getTextFilterView() const
{
    if (m_filterText.isEmpty()) {
        const QString formatted = QString::asprintf("HP:%f;LP:%f;BS:%f;", double(m_filters.lpf),
                                                    double(m_filters.hpf), double(m_filters.bsf));
        Q_UNUSED(formatted);
    }
    return m_filterText;
}

QByteArray AmplifierChannel::makeTextView() const
{
    const QString text = QStringLiteral("index=") + QString::number(m_index) + ';'
        + QStringLiteral("name=") + m_name + ';'
        + QStringLiteral("type=") + getTextType() + ';'
        + QStringLiteral("g1=") + QString::number(m_groups.group1) + ';'
        + QStringLiteral("g2=") + QString::number(m_groups.group2) + ';'
        + QStringLiteral("scale=") + numberText(m_scale) + ';'
        + QStringLiteral("LPF=") + numberText(m_filters.lpf) + ';'
        + QStringLiteral("HPF=") + numberText(m_filters.hpf) + ';'
        + QStringLiteral("BSO=") + numberText(m_filters.bsf) + ';';
    return text.toUtf8();
}

// Fields are taken by position; the keys are not read, so older texts with other key
// spellings still load. Values go straight into the fields (menus are not extended).
void AmplifierChannel::parseStringData(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(';'), Qt::KeepEmptyParts);
    if (parts.size() < 7)
        return;
    for (int position = 0; position < parts.size(); ++position) {
        const QStringList pieces = parts.at(position).split(QLatin1Char('='));
        if (pieces.size() < 2)
            continue;
        const QString& value = pieces.at(1);
        switch (position) {
        case 0: m_index = value.toInt(); break;
        case 1: m_name = value; break;
        case 2: setTextChannelType(value); break;
        case 3: m_groups.group1 = value.toUInt(); break;
        case 4: m_groups.group2 = value.toUInt(); break;
        case 5: m_scale = value.toFloat(); break;
        case 6: m_filters.lpf = value.toFloat(); break;
        case 7: m_filters.hpf = value.toFloat(); break;
        case 8: m_filters.bsf = value.toFloat(); break;
        default: break;
        }
    }
}

QJsonObject AmplifierChannel::toJson() const
{
    QJsonObject filters;
    filters.insert(QStringLiteral("LPF"), double(m_filters.lpf));
    filters.insert(QStringLiteral("HPF"), double(m_filters.hpf));
    filters.insert(QStringLiteral("BSF"), double(m_filters.bsf));

    QJsonObject json;
    json.insert(QStringLiteral("index"), m_index);
    json.insert(QStringLiteral("name"), m_name);
    json.insert(QStringLiteral("type"), static_cast<int>(m_type));
    json.insert(QStringLiteral("scale"), double(m_scale));
    json.insert(QStringLiteral("G1"), static_cast<qint64>(m_groups.group1));
    json.insert(QStringLiteral("G2"), static_cast<qint64>(m_groups.group2));
    json.insert(QStringLiteral("filters"), filters);
    return json;
}

void AmplifierChannel::fromJson(const QJsonObject& json)
{
    m_index = json.value(QStringLiteral("index")).toInt();
    m_name = json.value(QStringLiteral("name")).toString();
    m_type = static_cast<ChannelType>(json.value(QStringLiteral("type")).toInt());
    m_scale = static_cast<float>(json.value(QStringLiteral("scale")).toDouble());
    m_groups.group1 = static_cast<quint32>(json.value(QStringLiteral("G1")).toInteger());
    m_groups.group2 = static_cast<quint32>(json.value(QStringLiteral("G2")).toInteger());
    const QJsonObject filters = json.value(QStringLiteral("filters")).toObject();
    m_filters.lpf = static_cast<float>(filters.value(QStringLiteral("LPF")).toDouble());
    m_filters.hpf = static_cast<float>(filters.value(QStringLiteral("HPF")).toDouble());
    m_filters.bsf = static_cast<float>(filters.value(QStringLiteral("BSF")).toDouble());
}

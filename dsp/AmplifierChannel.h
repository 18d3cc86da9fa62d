#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// Kind of signal on an amplifier input. The numbers are stored in channel JSON, keep them.
enum ChannelType : qint32
{
    ChannelType_EEG = 0,
    ChannelType_ECG = 1,
    ChannelType_EMG = 2,
    ChannelType_EOG = 3,
    ChannelType_Resp = 4,
    ChannelType_GSR = 5,
    ChannelType_PPG = 6,
    ChannelType_Temp = 7
};

// One physical amplifier input as the user configures it: number, name, signal type, scale,
// the three per-channel filter cut-offs chosen from short menus, and two display groups.
// Plain value type; external forms are JSON, a one-line "key=value;" text and column texts.
class AmplifierChannel
{
public:
    struct Filters
    {
        float lpf = 0.0f; // 0 = off
        float hpf = 0.0f;
        float bsf = 0.0f;
        float sampleRate = 100.0f; // written by the owning Montage
        QList<float> lpfChoices{0.0f, 20.0f, 30.0f, 40.0f, 50.0f, 60.0f, 70.0f};
        QList<float> hpfChoices{0.0f, 0.5f, 1.0f, 2.0f, 5.0f, 10.0f, 20.0f, 50.0f};
        QList<float> bsfChoices{0.0f, 50.0f, 60.0f};
    };

    struct GroupUnion
    {
        quint32 group1 = 0;
        quint32 group2 = 0;
    };

    // Menu texts shared by all channels: type names and the default filter choices.
    static QStringList st_TypeRange;
    static QStringList st_LPFRange;
    static QStringList st_HPFRange;
    static QStringList st_BSFRange;
    // "0".."136", filled by the first constructed channel.
    static QStringList st_GroupRange;

    AmplifierChannel();
    AmplifierChannel(unsigned index, float scale, ChannelType type);
    explicit AmplifierChannel(const QString& text);
    explicit AmplifierChannel(const QJsonObject& json);
    explicit AmplifierChannel(const AmplifierChannel* other);
    AmplifierChannel(const AmplifierChannel& other);
    AmplifierChannel& operator=(const AmplifierChannel& other) = default;

    bool operator==(const QString& name) const { return m_name == name; }

    int getIndex() const { return m_index; }
    void setIndex(int index) { m_index = index; }
    QString getName() const { return m_name; }
    void setChannelName(const QString& name) { m_name = name; }
    ChannelType getChannelType() const { return m_type; }
    void setChannelType(ChannelType type) { m_type = type; }
    float getScale() const { return m_scale; }
    void setScale(float scale) { m_scale = scale; }

    float getLPF() const { return m_filters.lpf; }
    void setLPF(float value);
    float getHPF() const { return m_filters.hpf; }
    void setHPF(float value);
    float getBSF() const { return m_filters.bsf; }
    void setBSF(float value);

    unsigned getGroup1() const { return m_groups.group1; }
    void setGroup1(unsigned group) { m_groups.group1 = group; }
    unsigned getGroup2() const { return m_groups.group2; }
    void setGroup2(unsigned group) { m_groups.group2 = group; }
    void getGroupValue(unsigned& group1, unsigned& group2) const;
    const GroupUnion& getGroupRef() const { return m_groups; }
    void setGroupData(const GroupUnion& groups) { m_groups = groups; }
    const Filters& getFilterRef() const { return m_filters; }
    void setFilterData(const Filters& filters);

    int getCurrentIndexLPF() const { return indexOfChoice(m_filters.lpfChoices, m_filters.lpf); }
    int getCurrentIndexHPF() const { return indexOfChoice(m_filters.hpfChoices, m_filters.hpf); }
    int getCurrentIndexBSF() const { return indexOfChoice(m_filters.bsfChoices, m_filters.bsf); }
    QStringList getLPFValues() const;
    QStringList getHPFValues() const;
    QStringList getBSFValues() const;

    QString getTextType() const;
    void setTextChannelType(const QString& text);
    QString getTextValue(int column) const;
    QString getTextFilterView() const;

    QByteArray makeTextView() const;
    void parseStringData(const QString& text);
    QJsonObject toJson() const;

private:
    static void fillGroupRange();
    static int indexOfChoice(const QList<float>& choices, float value);
    static QStringList choiceTexts(const QList<float>& choices);
    static void addChoice(QList<float>& choices, float value);
    void fromJson(const QJsonObject& json);
    void clearChoiceTexts();

    // This channel's menu texts (its choices may have grown beyond the shared defaults):
    // built on first request, dropped whenever the choices change.
    mutable QStringList m_lpfTexts;
    mutable QStringList m_hpfTexts;
    mutable QStringList m_bsfTexts;
    int m_index = 0;
    QString m_filterText; // cached filter text, cleared by every filter setter
    QString m_name;
    ChannelType m_type = ChannelType_EEG;
    float m_scale = 1.0f;
    Filters m_filters;
    GroupUnion m_groups;
};

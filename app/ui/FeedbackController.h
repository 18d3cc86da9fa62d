#pragma once

#include <QObject>
#include <QStringList>

class OrvexModel;
struct CortexDataResult;

// The feedback screens: which one is shown (shared with clients through GameManage), the live
// meditation and concentration levels that drive them, and the goals the person aims for.
// The goals are the screen's own: the normalisers' thresholds are on the raw rhythm scale,
// not on the 0-100 levels shown here.
class FeedbackController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList screens READ screens CONSTANT)
    Q_PROPERTY(QStringList titles READ titles CONSTANT)
    Q_PROPERTY(QString current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(int currentIndex READ currentIndex WRITE setCurrentIndex NOTIFY currentChanged)
    Q_PROPERTY(double meditation READ meditation NOTIFY levelsChanged)
    Q_PROPERTY(double concentration READ concentration NOTIFY levelsChanged)
    Q_PROPERTY(double meditationGoal READ meditationGoal WRITE setMeditationGoal NOTIFY goalsChanged)
    Q_PROPERTY(double concentrationGoal READ concentrationGoal WRITE setConcentrationGoal NOTIFY goalsChanged)
    Q_PROPERTY(bool meditationReached READ meditationReached NOTIFY reachedChanged)
    Q_PROPERTY(bool concentrationReached READ concentrationReached NOTIFY reachedChanged)
    Q_PROPERTY(double balloonLift READ balloonLift NOTIFY levelsChanged)
    Q_PROPERTY(bool fullScreen READ fullScreen WRITE setFullScreen NOTIFY fullScreenChanged)
public:
    static constexpr double DefaultGoal = 60;

    explicit FeedbackController(OrvexModel* model, QObject* parent = nullptr);

    QStringList screens() const;
    QStringList titles() const;
    QString current() const;
    bool setCurrent(const QString& screen);
    int currentIndex() const { return screens().indexOf(current()); }
    void setCurrentIndex(int index);

    // 0-100, -1 before the first value of a device.
    double meditation() const { return m_meditation; }
    double concentration() const { return m_concentration; }
    double meditationGoal() const { return m_meditationGoal; }
    double concentrationGoal() const { return m_concentrationGoal; }
    // Goals outside 0-100 are refused (false and a console line).
    bool setMeditationGoal(double goal);
    bool setConcentrationGoal(double goal);
    bool meditationReached() const { return reached(m_meditation, m_meditationGoal); }
    bool concentrationReached() const { return reached(m_concentration, m_concentrationGoal); }
    // How high the balloon floats: 0 (ground) to 1 (top), from concentration.
    double balloonLift() const;

    bool fullScreen() const { return m_fullScreen; }
    void setFullScreen(bool on);

public Q_SLOTS:
    // The newest levels; the engine's results arrive here.
    void setLevels(double meditation, double concentration);

Q_SIGNALS:
    void currentChanged();
    void levelsChanged();
    void goalsChanged();
    void reachedChanged();
    void fullScreenChanged();

private:
    static bool reached(double level, double goal) { return level >= 0 && level >= goal; }
    bool setGoal(double& goal, double value, const char* name);
    void onResult(const CortexDataResult& result);

    OrvexModel* m_model;
    double m_meditation = -1;
    double m_concentration = -1;
    double m_meditationGoal = DefaultGoal;
    double m_concentrationGoal = DefaultGoal;
    bool m_fullScreen = false;
};

#pragma once

#include "formats/EDFReader.h"
#include "formats/GeneralDataProvider.h"

// GeneralDataProvider over an EDF/BDF file. applyFilters() builds a filtered working copy
// beside the file ("<name>.temp.<suffix>") that reads take their samples from, and
// saveChanges() puts the working copy in place of a file. See docs/edf-providers.md.
class EDFDataProvider : public GeneralDataProvider
{
    Q_OBJECT
public:
    static constexpr int FilterOrder = 4;
    static constexpr float NotchBandwidth = 2.0f;

    explicit EDFDataProvider(const QString& path, QObject* parent = nullptr);
    ~EDFDataProvider() override;

    int getChannelCount() override;
    QList<QString> getChannelNames() override;
    QList<QString> getChannelTypes() override;
    int getDurationSamples() override;
    float getDurationSeconds() override;
    float getSamplingRate() override;
    QList<float> getSingleChannelDataSamples(unsigned channel, unsigned from, int to) override;
    QMap<double, QString> getMarkers() override;
    bool isValid() override { return m_valid; }

    QMap<QString, float> getPrefilters() const;
    // Any frequency above 0 or a gain other than 1.
    bool isFiltered() const;
    // Frequencies in Hz (0 = stage off). All stages off and gain 1 drops the working copy.
    // False (with a console line) when no copy could be made.
    bool applyFilters(double highPass, double lowPass, double notch, double gain);
    // Empty path: replace the file itself. The main reader is reopened on the target.
    bool saveChanges(const QString& path);
    bool closeFile();
    bool reopenFile();

    QString getPath() const { return m_path; }
    QString getWorkingCopyPath() const { return m_filteredPath; }
    static QString workingCopyPath(const QString& path);

private:
    bool writeWorkingCopy(const QString& target);
    void dropWorkingCopy();

    EDFReader* m_reader = nullptr;
    EDFReader* m_filtered = nullptr;
    bool m_valid = false;
    QString m_path;
    QString m_filteredPath;
    double m_highPass = 0.0;
    double m_lowPass = 0.0;
    double m_notch = 0.0;
    double m_gain = 1.0;
};

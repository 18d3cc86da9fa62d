#pragma once

#include <QString>

// Who and what a recording is of, as the EDF+/BDF+ header carries it.
struct PatientInfo
{
    int gender = 0;
    int birthYear = 0;
    int birthMonth = 0;
    int birthDay = 0;
    QString patientName;
    QString equipment;
    QString patientCode;
    QString patientAdditional;
};

#pragma once

#include <QStringList>

// The command words the data server registers, in registration order, written out
// independently of the server so tests notice a missing, extra or reordered command.
inline QStringList registeredCommandWords()
{
    return { "meditation", "meditationhistory", "concentration", "concentrationhistory", "bci", "bcis",
             "enabledatagrabmode", "disabledatagrabmode", "setdatastoragetime", "getdatastoragetime", "getfilters",
             "setfilters", "setlpf", "setbsf", "sethpf", "filtereddata", "grabfiltereddata", "rawdata", "grabrawdata",
             "addedfannotation", "rhythms", "rhythmshistory", "lastspectrum", "grabspectrum", "getspectrum",
             "startrecord", "stoprecord", "pauserecord", "continuerecord", "addfiletorecord", "getuserrecords",
             "records", "startsearch", "stopsearch", "listdevices", "devicecount", "getdeviceinfo", "startdevice",
             "currentdeviceinfo", "currentdevicesinfo", "makefavorite", "getfavoritedevicename", "setmontage",
             "version", "controloptions", "close", "addlogitem", "screeninfo", "getallsettings", "getsettings",
             "setsettings", "usermanage", "gamemanage", "openlink" };
}

#pragma once

#include <QJsonArray>
#include <QJsonObject>

class CortexCore;
class DataServerContext;

// The control values a client can steer by: the two indices, the mental state and every custom
// algorithm that is visible to control. BCI and BCIs read them, ControlOptions names them.
class ControlValues
{
public:
    // The latest level of a meta-index in percent; -1 while nothing has been measured or the
    // node streams nothing.
    static double indexLevel(const CortexCore* node, int index);
    // {"meditation", "concentration", "mentalstate", <algorithm name>: <last result>, ...}.
    static QJsonObject values(const CortexCore* node);
    // [{"name", "type": "proportional"/"discrete"}, ...] over every node, each name once.
    static QJsonArray options(const DataServerContext* context);

    // Until a state recogniser exists the mental state is always this.
    static constexpr double NoMentalState = -1;
};

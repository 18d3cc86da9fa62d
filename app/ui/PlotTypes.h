#pragma once

// The plot items and their data buffers, for QML: import OrvexPro.Plots 1.0.
namespace PlotTypes {
void registerAll();
}

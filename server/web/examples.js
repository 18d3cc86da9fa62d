// Example replies shown by the "Example output" buttons, keyed by command word.
window.apiExamples = {
  "listdevices": {"command": "listdevices", "result": true, "time": "2026.01.05-10.20.30.400",
    "devices": [{"name": "Generator", "serialNumber": "0000", "model": "Virtual", "preferredChannelCount": 8,
      "maxChannels": 21, "battery": -1, "channelModes": [{"channels": 8, "frequency": 250}]}]},
  "devicecount": {"command": "devicecount", "result": true, "time": "2026.01.05-10.20.30.400", "deviceCount": 1},
  "meditation": {"command": "meditation", "result": true, "time": "2026.01.05-10.20.30.400", "meditation": 57},
  "concentration": {"command": "concentration", "result": true, "time": "2026.01.05-10.20.30.400", "concentration": 43},
  "filtereddata": {"command": "filtereddata", "result": true, "time": "2026.01.05-10.20.30.400",
    "data": [[1.25, 1.5, 0.75], [-2.01, -1.5, -0.25]]},
  "getfilters": {"command": "getfilters", "result": true, "time": "2026.01.05-10.20.30.400",
    "LPF": 40, "HPF": 2, "BSF": 50, "BSF2": 0},
  "setdatastoragetime": {"command": "setdatastoragetime", "result": false, "time": "2026.01.05-10.20.30.400",
    "error": "Provide a number between 1 and 3600 seconds"},
  "version": {"command": "version", "result": true, "time": "2026.01.05-10.20.30.400",
    "version": "0.1.0", "port": 2336, "locale": "en_US"}
};

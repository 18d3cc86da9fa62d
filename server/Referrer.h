#pragma once

// Where a request came from; every command is told.
enum Referrer {
    ReferrerHttp = 0,
    ReferrerWebSocket = 1, // also messages run by the application itself
};

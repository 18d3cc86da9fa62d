#include "DataGrabberFuzz.h"
#include "FuzzEntries.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzEntries::quietConsole();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzEntries::datagrabber(data, size);
    return 0;
}

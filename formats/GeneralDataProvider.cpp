#include "formats/GeneralDataProvider.h"

#include "settings.h"

Settings& settings()
{
    static Settings values;
    return values;
}

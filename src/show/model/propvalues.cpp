#include "show/model/propvalues.h"

qint16 ledCount = 0;
float frameRate = 0.0F;
